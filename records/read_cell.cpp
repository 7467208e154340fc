#include "records/read_common.h"

#include <cstring>
#include <iterator>
#include <new>

namespace quillon {

namespace {

bool isSaveGameSub(Tag t) {
    switch (t) {
    case tag("LVCR"):
    case tag("ACDT"):
    case tag("ACSC"):
    case tag("ACSL"):
    case tag("CREC"):
    case tag("SCRI"):
    case tag("SLCS"):
    case tag("CRED"):
    case tag("SLSD"):
    case tag("SLFD"):
    case tag("CHRD"):
    case tag("STPR"):
    case tag("ACTN"):
    case tag("MNAM"):
    case tag("ANIS"):
    case tag("LSTN"):
    case tag("ND3D"):
    case tag("CSTN"):
    case tag("TGTN"):
    case tag("CSHN"):
    case tag("FGTN"):
    case tag("LSHN"):
    case tag("AADT"):
    case tag("WNAM"): return true;
    default: return false;
    }
}

// One sub-record of a reference after its FRMR; false for the first tag that is not its own.
bool readReferencePart(ByteCursor& in, Tag t, CellReference& ref) {
    switch (t) {
    case tag("NAME"): readZ(in, ref.NAMESize, ref.NAME); return true;
    case tag("DNAM"): readZ(in, ref.more.get().DNAMSize, ref.more.get().DNAM); return true;
    case tag("KNAM"): readZ(in, ref.more.get().KNAMSize, ref.more.get().KNAM); return true;
    case tag("TNAM"): readZ(in, ref.more.get().TNAMSize, ref.more.get().TNAM); return true;
    case tag("ANAM"): readZ(in, ref.more.get().ANAMSize, ref.more.get().ANAM); return true;
    case tag("CNAM"): readZ(in, ref.more.get().CNAMSize, ref.more.get().CNAM); return true;
    case tag("BNAM"): readZ(in, ref.more.get().BNAMSize, ref.more.get().BNAM); return true;
    case tag("XSOL"): readZ(in, ref.more.get().XSOLSize, ref.more.get().XSOL); return true;
    case tag("XCHG"): readV(in, ref.more.get().XCHGSize, ref.more.get().XCHG); return true;
    case tag("XSCL"): readV(in, ref.XSCLSize, ref.XSCL); return true;
    case tag("FLTV"): readV(in, ref.more.get().FLTVSize, ref.more.get().FLTV); return true;
    case tag("INTV"): readV(in, ref.more.get().INTVSize, ref.more.get().INTV); return true;
    case tag("INDX"): readV(in, ref.more.get().INDXSize, ref.more.get().INDX); return true;
    case tag("NAM9"): readV(in, ref.more.get().NAM9Size, ref.more.get().NAM9); return true;
    case tag("UNAM"): readV(in, ref.more.get().UNAMSize, ref.more.get().UNAM); return true;
    case tag("DODT"): readV(in, ref.more.get().DODTSize, ref.more.get().DODT); return true;
    case tag("DATA"):
        readV(in, ref.DATASize, ref.DATA);
        // Save games carry a second DATA right behind the first.
        if (in.nextIs(tag("DATA"))) readV(in, ref.more.get().DATA2Size, ref.more.get().DATA2);
        return true;
    case tag("ZNAM"):
        ref.Disabled = 1;
        in.skip(9);
        return true;
    case tag("DELE"): {
        ref.Deleted = 1;
        in.skip(8);
        Bytes<4> value = in.value<Bytes<4>>();
        if (value != Bytes<4>{100, 44, 72, 0}) ref.more.get().DELEValue = value;
        return true;
    }
    default:
        if (!isSaveGameSub(t)) return false;
        in.skip(4);
        i32 size = in.i32();
        ref.more.get().SaveData.push_back(tagText(t) + in.text(size));
        return true;
    }
}

// The place of a reference's sub-record in the order they are written in, as the editors write them.
int writtenRank(Tag t) {
    constexpr Tag order[] = {tag("NAME"), tag("XSCL"), tag("DODT"), tag("DNAM"), tag("FLTV"), tag("KNAM"),
                             tag("TNAM"), tag("ANAM"), tag("CNAM"), tag("UNAM"), tag("BNAM"), tag("XCHG"),
                             tag("INTV"), tag("NAM9"), tag("INDX"), tag("XSOL"), tag("ZNAM")};
    for (int i = 0; i < int(std::size(order)); ++i)
        if (order[i] == t) return i;
    if (t == tag("DATA")) return 100;
    if (t == tag("DELE")) return 101;
    return 50; // a savegame's own sub-records, written in their order before DATA
}

// The sub-records of a reference after its FRMR up to the first tag that is not its own; their
// order is kept where it is not the written one.
void readReferenceParts(ByteCursor& in, CellReference& ref) {
    thread_local std::vector<Tag> read;
    read.clear();
    bool ordered = true;
    int lastRank = -1;
    for (Tag t = in.peekTag(); readReferencePart(in, t, ref); t = in.peekTag()) {
        read.push_back(t);
        int rank = writtenRank(t);
        ordered = ordered && (rank > lastRank || (rank == lastRank && rank >= 50));
        lastRank = rank;
    }
    if (!ordered) ref.more.get().Order.assign(read.begin(), read.end());
}

// A reference: FRMR, then its sub-records up to the first tag that is not its own.
void readReference(ByteCursor& in, CellReference& ref) {
    readFields(in, ref.FRMRSize, ref, layout::reference);
    readReferenceParts(in, ref);
}

// A moved reference: MVRF and the cell it moved to, then the reference itself.
void readMovedReference(ByteCursor& in, CellReference& ref) {
    ReferenceDetails& moved = ref.more.get();
    readFields(in, moved.MVRFSize, moved, layout::movedReference);
    if (in.nextIs(tag("CNDT")))
        readV(in, moved.CNDTSize, moved.CNDT);
    else if (in.nextIs(tag("CNAM")))
        readU(in, moved.MovedCellSize, moved.MovedCell);
    else
        in.skip(4); // with neither, the FRMR's tag is passed over and its size word read as the tag
    readFields(in, ref.FRMRSize, ref, layout::reference);
    readReferenceParts(in, ref);
}

// The references of the cell whose tag is at the read position, counted from the FRMR
// sub-records within its size. A cell whose references would take memory far beyond its bytes
// (references of an FRMR alone, 12 bytes each) is refused as too large for memory.
std::size_t countReferences(const ByteCursor& in) {
    std::string_view header = in.ahead(16);
    if (header.size() < 16) return 0;
    std::int32_t size;
    std::memcpy(&size, header.data() + 4, 4);
    std::string_view body = in.ahead(16 + std::size_t(size > 0 ? size : 0)).substr(16);
    std::size_t references = 0;
    for (std::size_t p = 0; p + 8 <= body.size();) {
        Tag subTag;
        std::int32_t subSize;
        std::memcpy(&subTag, body.data() + p, 4);
        std::memcpy(&subSize, body.data() + p + 4, 4);
        if (subTag == tag("FRMR")) ++references;
        if (subSize < 0) break;
        p += 8 + std::size_t(subSize);
    }
    if (references * sizeof(CellReference) > 8 * body.size() + (std::size_t(64) << 20))
        throw std::bad_alloc();
    return references;
}

} // namespace

void readCell(ByteCursor& in, CellRecord& r, RecordStore&) {
    r.References.reserve(countReferences(in));
    bool pastNam0 = false;
    auto newReference = [&]() -> CellReference& {
        CellReference& ref = r.References.emplace_back();
        ref.Persistent = pastNam0 ? 0 : 1;
        return ref;
    };
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("RGNN"): readZ(in, r.RGNNSize, r.RGNN); return true;
        case tag("DATA"): readFields(in, r.DATASize, r, layout::cellData); return true;
        case tag("NAM0"):
            readV(in, r.NAM0Size, r.NAM0);
            pastNam0 = true; // references from here on are temporary
            return true;
        case tag("NAM5"): readFields(in, r.NAM5Size, r, layout::mapColour); return true;
        case tag("WHGT"): readV(in, r.WHGTSize, r.WHGT); return true;
        case tag("INTV"): readV(in, r.INTVSize, r.INTV); return true;
        case tag("AMBI"): readFields(in, r.AMBISize, r, layout::ambientLight); return true;
        case tag("MPCD"):
            in.skip(4);
            in.fields(r.MPCD); // the size word, then three values
            return true;
        case tag("MPNT"): // the map is not kept
            in.skip(4);
            in.skip(in.i32());
            return true;
        case tag("NAM8"):
            // A savegame's second map part is kept whole rather than taking the first one's place.
            if (r.NAM8Size != 0 && in.keepForeign()) return true;
            readU(in, r.NAM8Size, r.NAM8);
            return true;
        case tag("DELE"): r.Deleted = 1; return readDele(in, r);
        case tag("FRMR"): readReference(in, newReference()); return true;
        case tag("MVRF"): readMovedReference(in, newReference()); return true;
        default: return false;
        }
    });
    r.References.shrink_to_fit(); // a big master holds hundreds of thousands of references
}

} // namespace quillon

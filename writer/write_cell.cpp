#include "writer/write_common.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace quillon {

namespace {

// A moved reference's MVRF and the cell it moved to; false when it names no cell, which stops the
// cell.
bool writeMove(ByteSink& out, const ReferenceDetails& moved, Prompts& prompts) {
    out.writeFields(tag("MVRF"), moved.MVRFSize, moved, layout::movedReference);
    if (moved.CNDTSize >= 1) {
        out.writeV(tag("CNDT"), moved.CNDTSize, moved.CNDT);
    } else if (moved.MovedCellSize >= 1) {
        out.writeU(tag("CNAM"), moved.MovedCellSize, moved.MovedCell);
    } else if (!out.repairing()) {
        prompts.tell("Error while writing moved reference.");
        out.explain("cut short at a moved reference that names no cell (neither CNDT nor CNAM)");
        return false;
    }
    return true;
}

// The written order of a reference's sub-records after FRMR (the savegame's own ones before DATA).
constexpr Tag kReferenceParts[] = {tag("NAME"), tag("XSCL"), tag("DODT"), tag("DNAM"), tag("FLTV"),
                                   tag("KNAM"), tag("TNAM"), tag("ANAM"), tag("CNAM"), tag("UNAM"),
                                   tag("BNAM"), tag("XCHG"), tag("INTV"), tag("NAM9"), tag("INDX"),
                                   tag("XSOL"), tag("ZNAM"), 0,           tag("DATA"), tag("DELE")};

// Writes the parts of one reference, each once, by tag; 0 stands for the savegame's own ones.
class ReferenceParts {
public:
    ReferenceParts(ByteSink& out, const CellReference& ref) : out_(out), ref_(ref), more_(ref.more.view()) {}

    // The part of that tag, unless written already: the savegame's own sub-records one at a time.
    void write(Tag t) {
        std::size_t part = partIndex(t);
        if (part != kSaveData) {
            if (written_ & (1u << part)) return;
            written_ |= 1u << part;
        }
        switch (t) {
        case tag("NAME"): out_.writeZ(tag("NAME"), ref_.NAMESize, ref_.NAME); break;
        case tag("XSCL"): out_.writeVOpt(tag("XSCL"), ref_.XSCLSize, ref_.XSCL); break;
        case tag("DODT"): out_.writeVOpt(tag("DODT"), more_.DODTSize, more_.DODT); break;
        case tag("DNAM"): out_.writeZOpt(tag("DNAM"), more_.DNAMSize, more_.DNAM); break;
        case tag("FLTV"): out_.writeVOpt(tag("FLTV"), more_.FLTVSize, more_.FLTV); break;
        case tag("KNAM"): out_.writeZOpt(tag("KNAM"), more_.KNAMSize, more_.KNAM); break;
        case tag("TNAM"): out_.writeZOpt(tag("TNAM"), more_.TNAMSize, more_.TNAM); break;
        case tag("ANAM"): out_.writeZOpt(tag("ANAM"), more_.ANAMSize, more_.ANAM); break;
        case tag("CNAM"): out_.writeZOpt(tag("CNAM"), more_.CNAMSize, more_.CNAM); break;
        case tag("UNAM"): out_.writeVOpt(tag("UNAM"), more_.UNAMSize, more_.UNAM); break;
        case tag("BNAM"): out_.writeZOpt(tag("BNAM"), more_.BNAMSize, more_.BNAM); break;
        case tag("XCHG"): out_.writeVOpt(tag("XCHG"), more_.XCHGSize, more_.XCHG); break;
        case tag("INTV"): out_.writeVOpt(tag("INTV"), more_.INTVSize, more_.INTV); break;
        case tag("NAM9"): out_.writeVOpt(tag("NAM9"), more_.NAM9Size, more_.NAM9); break;
        case tag("INDX"): out_.writeVOpt(tag("INDX"), more_.INDXSize, more_.INDX); break;
        case tag("XSOL"): out_.writeZOpt(tag("XSOL"), more_.XSOLSize, more_.XSOL); break;
        case tag("ZNAM"):
            if (ref_.Disabled) out_.writeV(tag("ZNAM"), 1, std::uint8_t(0)); // its value byte was not kept
            break;
        case tag("DATA"):
            out_.writeVOpt(tag("DATA"), ref_.DATASize, ref_.DATA);
            out_.writeVOpt(tag("DATA"), more_.DATA2Size, more_.DATA2);
            break;
        case tag("DELE"):
            if (ref_.Deleted) {
                // The only DELE whose value is not zero: the bytes the original editor leaves
                // here, or those read.
                out_.sub(tag("DELE"), 4);
                out_.fields(more_.DELEValue ? *more_.DELEValue : Bytes<4>{100, 44, 72, 0});
            }
            break;
        default: writeSaveData(t == 0); break;
        }
    }

private:
    static constexpr std::size_t kSaveData = std::size(kReferenceParts);
    // The part's place in the written order; kSaveData for the savegame's own sub-records.
    static std::size_t partIndex(Tag t) {
        if (t == 0) return kSaveData;
        return std::size_t(std::find(std::begin(kReferenceParts), std::end(kReferenceParts), t) -
                           std::begin(kReferenceParts));
    }
    // The next of the savegame's own sub-records, or (all) every one left.
    void writeSaveData(bool all) {
        for (; saveData_ < more_.SaveData.size(); ++saveData_) {
            const std::string& entry = more_.SaveData[saveData_];
            if (entry.size() < 4) continue;
            Tag t;
            std::memcpy(&t, entry.data(), 4);
            out_.sub(t, std::int32_t(entry.size() - 4));
            out_.raw(entry.data() + 4, entry.size() - 4);
            if (!all) {
                ++saveData_;
                return;
            }
        }
    }

    ByteSink& out_;
    const CellReference& ref_;
    const ReferenceDetails& more_;
    std::uint32_t written_ = 0; // the parts written, by place
    std::size_t saveData_ = 0;
};

// One reference, its sub-records in the order read where that was kept; false when a moved
// reference names no target cell, which stops the cell.
bool writeReference(ByteSink& out, const CellReference& ref, Prompts& prompts) {
    const ReferenceDetails& more = ref.more.view();
    if (more.MVRFSize != 0 && !writeMove(out, more, prompts)) return false;
    out.writeFields(tag("FRMR"), ref.FRMRSize, ref, layout::reference);
    ReferenceParts parts(out, ref);
    for (Tag t : more.Order)
        parts.write(t);
    for (Tag t : kReferenceParts)
        parts.write(t);
    return true;
}

} // namespace

void writeCell(ByteSink& out, const CellRecord& r, WriteState& state) {
    out.header(tag("CELL"), r);
    out.writeZ(tag("NAME"), r.NAMESize, r.NAME);
    if (r.Deleted == 1) out.writeDele(); // cells test their DELE mark, not the flags
    out.writeFields(tag("DATA"), r.DATASize, r, layout::cellData);
    out.writeZOpt(tag("RGNN"), r.RGNNSize, r.RGNN);
    if (r.NAM5Size != 0) out.writeFields(tag("NAM5"), r.NAM5Size, r, layout::mapColour);
    out.writeVOpt(tag("WHGT"), r.WHGTSize, r.WHGT); // before a savegame's map, as the game writes it
    out.writeUOpt(tag("NAM8"), r.NAM8Size, r.NAM8);
    if (r.MPCD[0] != 0) {
        out.sub(tag("MPCD"), r.MPCD[0]); // the size word, then three values
        for (std::size_t i = 1; i < r.MPCD.size(); ++i)
            out.int32(r.MPCD[i]);
    }
    if (r.AMBISize != 0) out.writeFields(tag("AMBI"), r.AMBISize, r, layout::ambientLight);
    out.writeVOpt(tag("INTV"), r.INTVSize, r.INTV);
    bool hasReferences = !r.References.empty() && r.References.front().FRMRSize != 0;
    // Persistent references first, then NAM0, then the temporary ones, whatever the list order.
    for (int pass = 1; pass >= 0; --pass) {
        if (hasReferences) {
            for (const CellReference& ref : r.References) {
                if (ref.Persistent != pass) continue;
                if (!writeReference(out, ref, state.prompts)) return;
            }
        }
        if (pass == 1) out.writeVOpt(tag("NAM0"), r.NAM0Size, r.NAM0);
    }
}

} // namespace quillon

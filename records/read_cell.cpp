#include "records/read_common.h"

namespace quillon {

namespace {

bool isSaveGameSub(Tag t) {
    switch (t) {
    case tag("LVCR"): case tag("ACDT"): case tag("ACSC"): case tag("ACSL"): case tag("CREC"):
    case tag("SCRI"): case tag("SLCS"): case tag("CRED"): case tag("SLSD"): case tag("SLFD"):
    case tag("CHRD"): case tag("STPR"): case tag("ACTN"): case tag("MNAM"): case tag("ANIS"):
    case tag("LSTN"): case tag("ND3D"): case tag("CSTN"): case tag("TGTN"): case tag("CSHN"):
    case tag("FGTN"): case tag("LSHN"): case tag("AADT"): case tag("WNAM"):
        return true;
    default:
        return false;
    }
}

void readPlacement(ByteCursor& in, std::array<float, 6>& p) {
    for (float& f : p) f = in.f32();
}

// The sub-records of one reference after its FRMR; returns the first tag it does not take.
Tag readReferenceBody(ByteCursor& in, CellReference& ref) {
    Tag t = in.tag();
    for (;;) {
        switch (t) {
        case tag("NAME"): zsub(in, ref.NAMESize, ref.NAME); break;
        case tag("DNAM"): zsub(in, ref.more.get().DNAMSize, ref.more.get().DNAM); break;
        case tag("KNAM"): zsub(in, ref.more.get().KNAMSize, ref.more.get().KNAM); break;
        case tag("TNAM"): zsub(in, ref.more.get().TNAMSize, ref.more.get().TNAM); break;
        case tag("ANAM"): zsub(in, ref.more.get().ANAMSize, ref.more.get().ANAM); break;
        case tag("CNAM"): zsub(in, ref.more.get().CNAMSize, ref.more.get().CNAM); break;
        case tag("BNAM"): zsub(in, ref.more.get().BNAMSize, ref.more.get().BNAM); break;
        case tag("XSOL"): zsub(in, ref.more.get().XSOLSize, ref.more.get().XSOL); break;
        case tag("XCHG"): vsub(in, ref.more.get().XCHGSize, ref.more.get().XCHG); break;
        case tag("XSCL"): vsub(in, ref.XSCLSize, ref.XSCL); break;
        case tag("FLTV"): vsub(in, ref.more.get().FLTVSize, ref.more.get().FLTV); break;
        case tag("INTV"): vsub(in, ref.more.get().INTVSize, ref.more.get().INTV); break;
        case tag("INDX"): vsub(in, ref.more.get().INDXSize, ref.more.get().INDX); break;
        case tag("NAM9"): vsub(in, ref.more.get().NAM9Size, ref.more.get().NAM9); break;
        case tag("UNAM"): vsub(in, ref.more.get().UNAMSize, ref.more.get().UNAM); break;
        case tag("DODT"):
            ref.more.get().DODTSize = in.i32();
            readPlacement(in, ref.more.get().DODT);
            break;
        case tag("DATA"):
            ref.DATASize = in.i32();
            readPlacement(in, ref.DATA);
            t = in.tag();
            if (t == tag("DATA")) { // save games carry a second DATA right behind the first
                ref.more.get().DATA2Size = in.i32();
                readPlacement(in, ref.more.get().DATA2);
                break;
            }
            continue;
        case tag("ZNAM"):
            ref.Disabled = 1;
            in.skip(5);
            break;
        case tag("DELE"):
            ref.Deleted = 1;
            in.skip(8);
            break;
        default:
            if (!isSaveGameSub(t)) return t;
            {
                i32 size = in.i32();
                ref.more.get().SaveData.push_back(tagText(t) + in.text(size));
            }
            break;
        }
        t = in.tag();
    }
}

void readFrmr(ByteCursor& in, CellReference& ref) {
    ref.FRMRSize = in.i32();
    in.raw(ref.FRMR.data(), 3);
    ref.FRMRByte = in.u8();
}

} // namespace

Tag readCell(ByteCursor& in, CellRecord& r) {
    bool pastNam0 = false;
    Tag next = readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("RGNN"): zsub(in, r.RGNNSize, r.RGNN); return Step::Next;
        case tag("DATA"):
            r.DATASize = in.i32();
            r.CellFlags = in.i32();
            r.GridX = in.i32();
            r.GridY = in.i32();
            return Step::Next;
        case tag("NAM0"):
            vsub(in, r.NAM0Size, r.NAM0);
            pastNam0 = true; // references from here on are temporary
            return Step::Next;
        case tag("NAM5"):
            bsub(in, r.NAM5Size, r.NAM5);
            in.skip(1);
            return Step::Next;
        case tag("WHGT"): vsub(in, r.WHGTSize, r.WHGT); return Step::Next;
        case tag("INTV"): vsub(in, r.INTVSize, r.INTV); return Step::Next;
        case tag("AMBI"):
            r.AMBISize = in.i32();
            for (Bytes<3>* colour : {&r.Ambient, &r.Sunlight, &r.Fog}) {
                in.bytes(*colour);
                in.skip(1);
            }
            r.FogDensity = in.f32();
            return Step::Next;
        case tag("MPCD"):
            for (i32& v : r.MPCD) v = in.i32();
            return Step::Next;
        case tag("MPNT"): in.skip(in.i32()); return Step::Next; // the map is not kept
        case tag("NAM8"): wsub(in, r.NAM8Size, r.NAM8); return Step::Next;
        case tag("DELE"):
            r.Deleted = 1;
            skipDele(in, r);
            return Step::Next;
        case tag("FRMR"): {
            CellReference& ref = r.References.emplace_back();
            ref.Persistent = pastNam0 ? 0 : 1;
            readFrmr(in, ref);
            t = readReferenceBody(in, ref);
            return Step::InHand;
        }
        case tag("MVRF"): {
            CellReference& ref = r.References.emplace_back();
            ref.Persistent = pastNam0 ? 0 : 1;
            ReferenceDetails& moved = ref.more.get();
            moved.MVRFSize = in.i32();
            in.raw(moved.MVRF.data(), 3);
            moved.MVRFByte = in.u8();
            Tag next = in.tag();
            if (next == tag("CNDT")) {
                moved.CNDTSize = in.i32();
                moved.CNDT[0] = in.i32();
                moved.CNDT[1] = in.i32();
            } else if (next == tag("CNAM")) {
                wsub(in, moved.MovedCellSize, moved.MovedCell);
            }
            in.skip(4); // the FRMR tag that follows
            readFrmr(in, ref);
            t = readReferenceBody(in, ref);
            return Step::InHand;
        }
        default: return Step::End;
        }
    });
    r.References.shrink_to_fit(); // a big master holds hundreds of thousands of references
    return next;
}

} // namespace quillon

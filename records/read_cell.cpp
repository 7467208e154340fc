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
        case tag("DNAM"): zsub(in, ref.DNAMSize, ref.DNAM); break;
        case tag("KNAM"): zsub(in, ref.KNAMSize, ref.KNAM); break;
        case tag("TNAM"): zsub(in, ref.TNAMSize, ref.TNAM); break;
        case tag("ANAM"): zsub(in, ref.ANAMSize, ref.ANAM); break;
        case tag("CNAM"): zsub(in, ref.CNAMSize, ref.CNAM); break;
        case tag("BNAM"): zsub(in, ref.BNAMSize, ref.BNAM); break;
        case tag("XSOL"): zsub(in, ref.XSOLSize, ref.XSOL); break;
        case tag("XCHG"): vsub(in, ref.XCHGSize, ref.XCHG); break;
        case tag("XSCL"): vsub(in, ref.XSCLSize, ref.XSCL); break;
        case tag("FLTV"): vsub(in, ref.FLTVSize, ref.FLTV); break;
        case tag("INTV"): vsub(in, ref.INTVSize, ref.INTV); break;
        case tag("INDX"): vsub(in, ref.INDXSize, ref.INDX); break;
        case tag("NAM9"): vsub(in, ref.NAM9Size, ref.NAM9); break;
        case tag("UNAM"): vsub(in, ref.UNAMSize, ref.UNAM); break;
        case tag("DODT"):
            ref.DODTSize = in.i32();
            readPlacement(in, ref.DODT);
            break;
        case tag("DATA"):
            ref.DATASize = in.i32();
            readPlacement(in, ref.DATA);
            t = in.tag();
            if (t == tag("DATA")) { // save games carry a second DATA right behind the first
                ref.DATA2Size = in.i32();
                readPlacement(in, ref.DATA2);
                break;
            }
            continue;
        case tag("ZNAM"):
            ref.Disabled = 1;
            in.skip(5);
            break;
        case tag("DELE"):
            ref.Deleted = 1;
            skipDele(in);
            break;
        default:
            if (!isSaveGameSub(t)) return t;
            {
                i32 size = in.i32();
                ref.SaveData.push_back(tagText(t) + in.text(size));
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
    return readRecord(in, r, [&](Tag& t) {
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
            skipDele(in);
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
            ref.MVRFSize = in.i32();
            in.raw(ref.MVRF.data(), 3);
            ref.MVRFByte = in.u8();
            Tag next = in.tag();
            if (next == tag("CNDT")) {
                ref.CNDTSize = in.i32();
                ref.CNDT[0] = in.i32();
                ref.CNDT[1] = in.i32();
            } else if (next == tag("CNAM")) {
                wsub(in, ref.MovedCellSize, ref.MovedCell);
            }
            in.skip(4); // the FRMR tag that follows
            readFrmr(in, ref);
            t = readReferenceBody(in, ref);
            return Step::InHand;
        }
        default: return Step::End;
        }
    });
}

} // namespace quillon

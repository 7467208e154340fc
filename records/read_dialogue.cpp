#include "records/read_common.h"

namespace quillon {

Tag readDial(ByteCursor& in, DialRecord& r, std::string& currentTopic) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"):
            zsub(in, r.NAMESize, r.NAME);
            currentTopic = r.NAME; // every INFO that follows belongs to this topic
            return Step::Next;
        case tag("DATA"):
            r.DATASize = in.i32();
            // Deleted topics carry four bytes here; only one byte is read for any other size.
            if (r.DATASize == 4)
                in.skip(4);
            else
                r.DATA = in.u8();
            return Step::Next;
        case tag("XIDX"): vsub(in, r.XIDXSize, r.XIDX); return Step::Next;
        case tag("DELE"): skipDele(in, r); return Step::Next;
        default: return Step::End;
        }
    });
}

namespace {

// One SCVR and the INTV or FLTV right behind it; returns the tag after them.
Tag readCondition(ByteCursor& in, InfoCondition& c) {
    c.SCVRSize = in.i32();
    c.Index = char(in.u8());
    c.Type = char(in.u8());
    c.Function[0] = char(in.u8());
    c.Function[1] = char(in.u8());
    c.Comparison = char(in.u8());
    c.Name = in.text(c.SCVRSize - 5);
    Tag t = in.tag();
    if (t == tag("INTV")) {
        vsub(in, c.INTVSize, c.INTV);
        t = in.tag();
    } else if (t == tag("FLTV")) {
        vsub(in, c.FLTVSize, c.FLTV);
        t = in.tag();
    }
    return t;
}

} // namespace

Tag readInfo(ByteCursor& in, InfoRecord& r, const std::string& currentTopic) {
    r.Topic = currentTopic;
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("INAM"): zsub(in, r.INAMSize, r.INAM); return Step::Next;
        case tag("PNAM"): zsub(in, r.PNAMSize, r.PNAM); return Step::Next;
        case tag("NNAM"): zsub(in, r.NNAMSize, r.NNAM); return Step::Next;
        case tag("XIDX"): vsub(in, r.XIDXSize, r.XIDX); return Step::Next;
        case tag("DATA"):
            // Always 12 bytes, whatever the size word says.
            r.DATASize = in.i32();
            r.DialogueType = in.i32();
            r.Disposition = in.i32();
            r.Rank = in.u8();
            r.Gender = in.u8();
            r.PCRank = in.u8();
            r.Spare = in.u8();
            return Step::Next;
        case tag("ONAM"): zsub(in, r.ONAMSize, r.ONAM); return Step::Next;
        case tag("RNAM"): zsub(in, r.RNAMSize, r.RNAM); return Step::Next;
        case tag("CNAM"): zsub(in, r.CNAMSize, r.CNAM); return Step::Next;
        case tag("ANAM"): zsub(in, r.ANAMSize, r.ANAM); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("DNAM"): zsub(in, r.DNAMSize, r.DNAM); return Step::Next;
        case tag("NAME"): wsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("SNAM"): zsub(in, r.SNAMSize, r.SNAM); return Step::Next;
        case tag("QSTN"): vsub(in, r.QSTNSize, r.QSTN); return Step::Next;
        case tag("QSTF"): vsub(in, r.QSTFSize, r.QSTF); return Step::Next;
        case tag("QSTR"): vsub(in, r.QSTRSize, r.QSTR); return Step::Next;
        case tag("BNAM"): wsub(in, r.BNAMSize, r.BNAM); return Step::Next;
        case tag("SCVR"):
            // A condition beyond the game's six is kept all the same: dropping it would leave
            // the record's Size counting bytes that are no longer written.
            t = readCondition(in, r.Conditions.emplace_back());
            return Step::InHand;
        case tag("ACDT"): zsub(in, r.ACDTSize, r.ACDT); return Step::Next;
        case tag("DELE"): skipDele(in, r); return Step::Next;
        default: return Step::End;
        }
    });
}

} // namespace quillon

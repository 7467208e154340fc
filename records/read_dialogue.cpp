#include "records/read_common.h"

#include <algorithm>

namespace quillon {

void readDial(ByteCursor& in, DialRecord& r, RecordStore& store) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"):
            readZ(in, r.NAMESize, r.NAME);
            store.CurrentTopic = r.NAME; // every INFO that follows belongs to this topic
            return true;
        case tag("DATA"):
            in.skip(4);
            r.DATASize = in.i32();
            // Deleted topics carry four bytes here, kept as they are; the type stays 0.
            in.fixed(r.DATASize, r.DATASize == 4 ? 0 : 1, [&](ByteCursor& data) {
                if (r.DATASize != 4) r.DATA = data.u8();
            });
            return true;
        case tag("XIDX"): readV(in, r.XIDXSize, r.XIDX); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

namespace {

// One SCVR and the INTV or FLTV right behind it.
// The SCVR is read by its size: the five bytes of its head, then the name filling the rest.
void readCondition(ByteCursor& in, InfoCondition& c) {
    in.skip(4);
    c.SCVRSize = in.i32();
    in.keepEmpty(c.SCVRSize);
    std::string_view data = in.view(c.SCVRSize);
    ByteCursor head(reinterpret_cast<const std::uint8_t*>(data.data()),
                    std::min<std::size_t>(data.size(), 5));
    layout::conditionHead(c, [&](auto&&... f) { head.fields(f...); });
    if (data.size() > 5) c.Name = data.substr(5);
    if (in.nextIs(tag("INTV")))
        readV(in, c.INTVSize, c.INTV);
    else if (in.nextIs(tag("FLTV")))
        readV(in, c.FLTVSize, c.FLTV);
}

} // namespace

void readInfo(ByteCursor& in, InfoRecord& r, RecordStore& store) {
    r.Topic = store.CurrentTopic;
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("INAM"): readZ(in, r.INAMSize, r.INAM); return true;
        case tag("PNAM"): readZ(in, r.PNAMSize, r.PNAM); return true;
        case tag("NNAM"): readZ(in, r.NNAMSize, r.NNAM); return true;
        case tag("XIDX"): readV(in, r.XIDXSize, r.XIDX); return true;
        case tag("DATA"): readFields(in, r.DATASize, r, layout::responseData); return true; // always 12 bytes
        case tag("ONAM"): readZ(in, r.ONAMSize, r.ONAM); return true;
        case tag("RNAM"): readZ(in, r.RNAMSize, r.RNAM); return true;
        case tag("CNAM"): readZ(in, r.CNAMSize, r.CNAM); return true;
        case tag("ANAM"): readZ(in, r.ANAMSize, r.ANAM); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("DNAM"): readZ(in, r.DNAMSize, r.DNAM); return true;
        case tag("NAME"): readU(in, r.NAMESize, r.NAME); return true;
        case tag("SNAM"): readZ(in, r.SNAMSize, r.SNAM); return true;
        case tag("QSTN"): readV(in, r.QSTNSize, r.QSTN); return true;
        case tag("QSTF"): readV(in, r.QSTFSize, r.QSTF); return true;
        case tag("QSTR"): readV(in, r.QSTRSize, r.QSTR); return true;
        case tag("BNAM"): readU(in, r.BNAMSize, r.BNAM); return true;
        case tag("SCVR"):
            // A condition beyond the game's six is kept all the same: dropping it would leave
            // the record's Size counting bytes that are no longer written.
            readCondition(in, r.Conditions.emplace_back());
            return true;
        case tag("ACDT"): readZ(in, r.ACDTSize, r.ACDT); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

} // namespace quillon

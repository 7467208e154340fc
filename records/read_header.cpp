#include "records/read_common.h"

namespace quillon {

Tag readTes3(ByteCursor& in, Tes3Record& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("HEDR"):
            r.HEDRSize = in.i32();
            in.bytes(r.Version);
            r.FileType = in.i32();
            in.bytes(r.Company);
            in.bytes(r.Description);
            r.NumRecords = in.i32();
            return Step::Next;
        case tag("MAST"): {
            MasterEntry& m = r.Masters.emplace_back();
            zsub(in, m.MASTSize, m.MAST);
            return Step::Next;
        }
        case tag("DATA"): {
            if (r.Masters.empty()) r.Masters.emplace_back();
            vsub(in, r.Masters.back().DATASize, r.Masters.back().MasterSize);
            return Step::Next;
        }
        case tag("GMDT"):
            r.GMDTSize = in.i32();
            for (i32& v : r.GMDTValues) v = in.i32();
            in.bytes(r.CellName);
            r.GMDTValue7 = in.i32();
            in.bytes(r.PlayerName);
            return Step::Next;
        case tag("SCRD"): bsub(in, r.SCRDSize, r.SCRD); return Step::Next;
        case tag("SCRS"):
            // The screenshot is always taken as 65536 bytes, whatever its size word says.
            r.SCRSSize = in.i32();
            r.SCRS = in.text(65536);
            r.SCRS.resize(65536, '\0');
            return Step::Next;
        case tag("DELE"): skipDele(in, r); return Step::Next;
        default: return Step::End;
        }
    });
}

Tag readRaw(ByteCursor& in, Tag t, RawRecord& r) {
    r.Offset = std::uint32_t(in.pos() - 4);
    r.Tag = tagText(t);
    r.Size = in.i32();
    r.Header1 = in.i32();
    r.Flags = in.i32();
    r.Data = in.view(r.Size);
    return in.tag();
}

} // namespace quillon

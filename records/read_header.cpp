#include "records/read_common.h"

namespace quillon {

void readTes3(ByteCursor& in, Tes3Record& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("HEDR"): readFields(in, r.HEDRSize, r, layout::fileHeader); return true;
        case tag("MAST"): {
            MasterEntry& m = r.Masters.emplace_back();
            readZ(in, m.MASTSize, m.MAST);
            return true;
        }
        case tag("DATA"):
            if (r.Masters.empty()) r.Masters.emplace_back();
            readV(in, r.Masters.back().DATASize, r.Masters.back().MasterSize);
            return true;
        case tag("GMDT"): readFields(in, r.GMDTSize, r, layout::savedGame); return true;
        case tag("SCRD"): readV(in, r.SCRDSize, r.SCRD); return true;
        case tag("SCRS"):
            // The screenshot is always taken as 65536 bytes, whatever its size word says.
            in.skip(4);
            r.SCRSSize = in.i32();
            r.SCRS = in.text(65536);
            r.SCRS.resize(65536, '\0');
            return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readRaw(ByteCursor& in, RawRecord& r, RecordStore&) {
    r.Offset = std::uint32_t(in.pos());
    r.Tag = tagText(in.tag());
    r.Size = in.i32();
    r.Header1 = in.i32();
    r.Flags = in.i32();
    in.expectRecord(r.Offset, r.Size);
    r.Data = in.view(r.Size);
}

} // namespace quillon

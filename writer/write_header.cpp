#include "writer/write_common.h"

namespace quillon {

void WriteTes3Record(ByteSink& out, const Tes3Record& r, std::int32_t recordCount, std::int32_t fileType) {
    out.header(tag("TES3"), r);
    out.sub(tag("HEDR"), r.HEDRSize);
    out.bytes(r.Version);
    out.int32(fileType); // by the target's extension; the stored type is ignored
    out.bytes(r.Company);
    out.bytes(r.Description);
    out.int32(recordCount - 1); // the header does not count itself
    if (isDeleted(r)) {
        out.dele();
        return;
    }
    // An empty first master name means no masters at all, whatever later entries hold.
    if (!r.Masters.empty() && !r.Masters.front().MAST.empty()) {
        for (const MasterEntry& m : r.Masters) {
            out.z(tag("MAST"), m.MASTSize, m.MAST);
            out.v(tag("DATA"), m.DATASize, m.MasterSize);
        }
    }
    if (r.GMDTSize != 0) {
        out.sub(tag("GMDT"), r.GMDTSize);
        for (std::int32_t v : r.GMDTValues) out.int32(v);
        out.bytes(r.CellName);
        out.int32(r.GMDTValue7);
        out.bytes(r.PlayerName);
    }
    if (r.SCRDSize != 0) out.block(tag("SCRD"), r.SCRDSize, r.SCRD);
    if (r.SCRSSize != 0) out.u(tag("SCRS"), r.SCRSSize, r.SCRS);
}

void WriteRawRecord(ByteSink& out, const RawRecord& r) {
    // Records of unknown type kept no data: they come out as a bare header while Size still
    // counts the data, as the reader left them.
    out.raw(r.Tag.data(), r.Tag.size() < 4 ? r.Tag.size() : 4);
    out.int32(r.Size);
    out.int32(r.Header1);
    out.int32(r.Flags);
    out.raw(r.Data.data(), r.Data.size());
}

} // namespace quillon

#include "writer/write_common.h"

#include <algorithm>
#include <cstring>

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

namespace {

Tag rawTag(const RawRecord& r) {
    Tag t = 0;
    std::memcpy(&t, r.Tag.data(), std::min<std::size_t>(4, r.Tag.size()));
    return t;
}

// The ID a record of unknown type shows when its data open with a NAME, as most records' do.
std::string unknownRecordId(std::string_view data) {
    if (data.size() < 8 || data.substr(0, 4) != "NAME") return {};
    std::int32_t size;
    std::memcpy(&size, data.data() + 4, 4);
    std::string_view name = data.substr(8, size > 0 ? std::size_t(size) : 0);
    return std::string(name.substr(0, name.find('\0')));
}

} // namespace

void WriteRawRecord(ByteSink& out, const RawRecord& r) {
    out.header(rawTag(r), r);
    out.raw(r.Data.data(), r.Data.size());
}

void WriteUnknownRecord(ByteSink& out, const RawRecord& r) {
    out.header(rawTag(r), r);
    if (out.repairing()) {
        out.raw(r.Data.data(), r.Data.size());
        return;
    }
    // The format's rule: a bare header while Size still counts the data, which damages the file;
    // the write check names it.
    if (r.Size > 0) {
        out.explain("record of unknown type " + r.Tag + ": its " + groupedNumber(r.Size) +
                    " bytes of data are not kept");
        out.identify(unknownRecordId(r.Data));
    }
}

} // namespace quillon

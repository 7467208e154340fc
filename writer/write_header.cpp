#include "writer/es_write.h"
#include "writer/write_common.h"

#include <algorithm>
#include <cstring>

namespace quillon {

void writeTes3(ByteSink& out, const Tes3Record& r, WriteState& state) {
    out.header(tag("TES3"), r);
    Tes3Record written = r;
    if (state.fileType != kFileTypeAsRead) written.FileType = state.fileType; // by the target's extension
    written.NumRecords = state.recordCount - 1; // the header does not count itself
    out.writeFields(tag("HEDR"), r.HEDRSize, written, layout::fileHeader);
    if (isDeleted(r)) {
        out.writeDeletedForm();
        return;
    }
    // An empty first master name means no masters at all, whatever later entries hold.
    if (!r.Masters.empty() && !r.Masters.front().MAST.empty()) {
        for (const MasterEntry& m : r.Masters) {
            out.writeZ(tag("MAST"), m.MASTSize, m.MAST);
            out.writeV(tag("DATA"), m.DATASize, m.MasterSize);
        }
    }
    if (r.GMDTSize != 0) out.writeFields(tag("GMDT"), r.GMDTSize, r, layout::savedGame);
    out.writeVOpt(tag("SCRD"), r.SCRDSize, r.SCRD);
    out.writeUOpt(tag("SCRS"), r.SCRSSize, r.SCRS);
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

void writeRaw(ByteSink& out, const RawRecord& r, WriteState&) {
    out.header(rawTag(r), r);
    out.raw(r.Data.data(), r.Data.size());
}

void writeUnknown(ByteSink& out, const RawRecord& r) {
    out.header(rawTag(r), r);
    if (out.repairing() || r.Whole) {
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

#include "records/response_text.h"

#include "records/tags.h"

#include <algorithm>
#include <climits>

namespace quillon {

namespace {

std::int32_t clampedSize(std::int64_t size) {
    return std::int32_t(std::clamp<std::int64_t>(size, INT32_MIN, INT32_MAX));
}

// True when the record holds a NAME sub-record, empty or not.
bool hasText(const InfoRecord& r) {
    if (r.NAMESize != 0 || !r.NAME.empty()) return true;
    if (!r.Kept) return false;
    const KeptSubRecords& kept = r.Kept.view();
    return std::any_of(kept.begin(), kept.end(), [](const KeptSubRecord& k) {
        return k.kind == KeptSubRecord::Kind::Empty && k.tag == tag("NAME");
    });
}

} // namespace

void setResponseText(InfoRecord& r, std::string text) {
    std::int64_t growth = std::int64_t(text.size()) - std::int64_t(r.NAME.size());
    std::int64_t header = !text.empty() && !hasText(r) ? 8 : 0;
    r.Size = clampedSize(std::int64_t(r.Size) + growth + header);
    r.NAMESize = clampedSize(std::int64_t(r.NAMESize) + growth);
    r.NAME = std::move(text);
}

} // namespace quillon

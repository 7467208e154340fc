#include "app/record_counts.h"

#include <cstdlib>

namespace quillon {

namespace {

enum class Family { Data, Save };

struct Label {
    const char* caption = nullptr;
    std::size_t (*count)(const RecordStore&) = nullptr;
    Family family = Family::Data;
};

constexpr std::array<Label, kCountLabels> makeLabels() {
    std::array<Label, kCountLabels> labels{};
#define QUILLON_LABEL(T, Record, read, write, label, family)                                                 \
    labels[label] = {#T ":", [](const RecordStore& s) { return s.T.size(); }, Family::family};
    QUILLON_RECORD_TYPES(QUILLON_LABEL)
#undef QUILLON_LABEL
    labels[CountLabel::Unknown] = {"Unknown:", [](const RecordStore& s) { return s.Unknown.size(); }};
    labels[CountLabel::Total] = {"Total:", [](const RecordStore&) { return std::size_t(0); }};
    return labels;
}
constexpr std::array<Label, kCountLabels> kLabels = makeLabels();

constexpr bool everyLabelPlaced() {
    for (const Label& l : kLabels)
        if (!l.caption) return false;
    return true;
}
static_assert(everyLabelPlaced(), "two record types share a count label, or one is left empty");

} // namespace

const char* countCaption(std::size_t i) {
    return kLabels[i].caption;
}
std::size_t storedCount(const RecordStore& store, std::size_t i) {
    return kLabels[i].count(store);
}
// CNTC stands among the savegame labels although the window lists it first.
bool isSavegameLabel(std::size_t i) {
    return kLabels[i].family == Family::Save;
}

void RecordCounts::ShowRecordCounts(const RecordStore& store, std::int32_t total) {
    for (std::size_t i = 0; i < kCountLabels; ++i)
        if (i != CountLabel::Total) shown[i] = std::to_string(storedCount(store, i));
    shown[CountLabel::Total] = std::to_string(total);
}

std::int64_t RecordCounts::number(std::size_t i) const {
    return std::strtoll(shown[i].c_str(), nullptr, 10);
}

} // namespace quillon

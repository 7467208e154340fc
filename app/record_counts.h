#pragma once
#include "records/record_store.h"

#include <array>
#include <cstdint>
#include <string>

namespace quillon {

constexpr std::size_t kCountLabels = 57;

// Where each count stands among the window's labels: CountLabel::CELL, CountLabel::Total, ...
namespace CountLabel {
enum : std::size_t {
#define QUILLON_LABEL(T, Record, read, write, label, ...) T = label,
    QUILLON_RECORD_TYPES(QUILLON_LABEL)
#undef QUILLON_LABEL
        Unknown = QUILLON_UNKNOWN_LABEL,
    Total = QUILLON_TOTAL_LABEL,
};
} // namespace CountLabel

// The caption of count label i ("ACTI:" ... "STLN:"), in the display's own order.
const char* countCaption(std::size_t i);
// The number of records of label i's type in the store (0 for the total label).
std::size_t storedCount(const RecordStore& store, std::size_t i);
// True for the twelve labels under "Savegames Specific".
bool isSavegameLabel(std::size_t i);

// The 57 count labels as the window shows them.
struct RecordCounts {
    std::array<std::string, kCountLabels> shown;
    RecordCounts() { ResetRecordCounts(); }

    void ResetRecordCounts() { shown.fill("0"); }
    // Every type's count from the store, then the total given by the caller.
    void ShowRecordCounts(const RecordStore& store, std::int32_t total);
    // A label's caption read as a number, as commands that test the display do.
    std::int64_t number(std::size_t i) const;
};

} // namespace quillon

#pragma once
#include "records/prompts.h"
#include "records/record_store.h"

#include <cstdint>
#include <string>

namespace quillon {

struct WriteResult {
    enum Status { Written, Declined, Failed };
    Status status = Written;
    double ms = 0;     // elapsed milliseconds; 0 when declined
    std::string error; // what went wrong when Failed
};

// The header's file type for a target name: 1 for ESM, 32 for ESS, 0 otherwise.
std::int32_t fileTypeFor(const std::string& path);

// Serialises the whole store in the file's fixed type order; recordCount (the header included)
// goes into the header. The store's CurrentTopic ends as the last topic written.
std::string serialiseStore(RecordStore& store, std::int32_t recordCount, std::int32_t fileType, Prompts& prompts);

// Writes the store to path. Asks first for a savegame (declining writes nothing). The old file
// survives any failure.
WriteResult WriteESFile(RecordStore& store, const std::string& path, std::int32_t recordCount, Prompts& prompts);

} // namespace quillon

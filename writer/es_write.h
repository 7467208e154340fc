#pragma once
#include "records/prompts.h"
#include "records/record_store.h"
#include "writer/safe_file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct WriteResult {
    // Refused: the output would have been damaged and the user chose to write nothing.
    enum Status { Written, Declined, Failed, Refused };
    Status status = Written;
    double ms = 0;     // elapsed milliseconds; 0 when declined
    std::string error; // what went wrong when Failed
};

// The header's file type for a target name: 1 for ESM, 32 for ESS, kFileTypeAsRead for OpenMW's
// names (whose header keeps the type it was read with), 0 otherwise.
inline constexpr std::int32_t kFileTypeAsRead = -1;
std::int32_t fileTypeFor(const std::string& path);

// The bytes of a whole store and the records among them that would be damaged.
struct Serialised {
    std::string bytes;
    std::vector<DamagedRecord> damaged;
};

// Serialises the whole store in the file's fixed type order; recordCount (the header included)
// goes into the header. The store's CurrentTopic ends as the last topic written. When repairing,
// damaged records are written so that they frame, and none is reported.
Serialised serialiseChecked(RecordStore& store, std::int32_t recordCount, std::int32_t fileType,
                            Prompts& prompts, bool repairing);
// The bytes alone, exactly as the format's rules give them.
std::string serialiseStore(RecordStore& store, std::int32_t recordCount, std::int32_t fileType,
                           Prompts& prompts);

// True when the records of bytes follow one another exactly as their Size words say, to the end:
// a check of written bytes that knows nothing of the writers (the fuzzers and tests use it).
bool framesThroughout(std::string_view bytes);

// Writes the store to path. Asks first for a savegame (declining writes nothing); output that
// would be damaged is named and written only as the user chooses. The old file survives any
// failure.
WriteResult WriteESFile(RecordStore& store, const std::string& path, std::int32_t recordCount,
                        Prompts& prompts, ReadOnlyTarget readOnly = ReadOnlyTarget::Refuse);

} // namespace quillon

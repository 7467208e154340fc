#pragma once
// The dialogue check: what a writer should look at in a data file, found without changing it.
#include "app/cleanup_settings.h"
#include "records/record_store.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace quillon {

struct Finding {
    std::string kind;            // loop, long, style, choice, topic, master, damage or unknown
    std::string record = "INFO"; // the record's type
    std::string id;              // the record's ID (an INFO's INAM)
    std::string topic, actor;    // for responses
    std::string detail;
    std::string before, after; // for style: the text and what the clean-up makes of it
    std::size_t info = 0;      // for responses: the index in the store's INFO array
};

// Every kind, in the order a file's findings are listed.
extern const char* const kFindingKinds[8];

struct CheckOptions {
    CleanupSettings style;      // the clean-up the style findings compare with
    std::set<std::string> only; // the kinds to report; empty for all
    std::int32_t fileType = 0;  // as the target of a Save would have it
    // The topics of the masters found; a master not found is named in missingMasters.
    std::set<std::string> masterTopics;
    std::vector<std::string> missingMasters;
};

// The findings of a store read whole, kind by kind.
std::vector<Finding> checkDialogue(RecordStore& store, std::int32_t recordCount, const CheckOptions& options);

// The masters the header names, looked for beside the file (in any letter case): their topic
// names go into options.masterTopics, the names of those not found into options.missingMasters.
void findMasterTopics(const RecordStore& store, const std::string& path, CheckOptions& options);

} // namespace quillon

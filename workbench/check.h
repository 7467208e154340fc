#pragma once
// The dialogue check: what a writer should look at in a data file, found without changing it.
#include "app/cleanup_settings.h"
#include "app/finding.h"
#include "app/load_order.h"
#include "app/outcome.h"
#include "app/session.h"
#include "records/record_store.h"
#include "workbench/spell_checker.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace quillon {

// Every kind, in the order a file's findings are listed.
extern const char* const kFindingKinds[16];

struct CheckOptions {
    CleanupSettings style;      // the clean-up the style findings compare with
    std::set<std::string> only; // the kinds to report; empty for all
    std::int32_t fileType = 0;  // as the target of a Save would have it
    // The file's masters, when they were looked for: their topics are known to the topic check,
    // their responses answer choices, and a master not found or changed is a finding.
    const LoadOrder* masters = nullptr;
    // The spelling check's dictionary, when it was asked for: a plain check needs none.
    SpellChecker* spelling = nullptr;
    // What the check says beside its findings (functions of script extenders passed over).
    std::vector<std::string>* notes = nullptr;
};

// The findings of a store read whole, kind by kind.
std::vector<Finding> checkDialogue(RecordStore& store, std::int32_t recordCount, const CheckOptions& options);

// Check Dialogue: the check of the open file, shown for review with the session's clean-up
// settings; a response can be edited from the list, its sizes following its text.
// With a spell checker, spelling findings are listed too.
Outcome CheckDialogue(Session& session, Dialogs& dialogs, SpellChecker* spelling = nullptr);

} // namespace quillon

#pragma once
// The dialogue of two data files compared response by response, by INFO ID.
#include "records/record_store.h"

#include <string>
#include <vector>

namespace quillon {

struct DialogueChange {
    std::string change; // added, removed or changed
    std::string field;  // what changed: text, topic, actor, result or conditions
    std::string id, topic, actor;
    std::string before, after; // the field's old and new value (the text for added and removed)
};

// Responses of older missing from newer, then those of newer added or changed, in file order. A
// response whose ID stands several times is matched with the same occurrence of the other file.
std::vector<DialogueChange> diffDialogue(const RecordStore& older, const RecordStore& newer);

} // namespace quillon

#pragma once
#include "records/types_dialogue.h"

#include <string>

namespace quillon {

// A response's text changes and its sizes follow, wherever the change comes from (import,
// clean-up, translation, an editor): the record and its NAME grow or shrink with the text, and a
// NAME the record lacked adds its sub-record's 8-byte header.
void setResponseText(InfoRecord& r, std::string text);

} // namespace quillon

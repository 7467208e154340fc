#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

// One thing the dialogue check found for a writer to look at.
struct Finding {
    std::string kind;            // loop, long, style, choice, topic, master, damage or unknown
    std::string record = "INFO"; // the record's type
    std::string id;              // the record's ID (an INFO's INAM)
    std::string topic, actor;    // for responses
    std::string detail;
    std::string before, after;            // for style: the text and what the clean-up makes of it
    std::size_t info = 0;                 // for responses: the index in the store's INFO array
    std::size_t line = 0;                 // for script and reference: the script's line, from 1
    std::string word;                     // for spelling: the word not known
    std::vector<std::string> suggestions; // and what the dictionary offers instead
};

} // namespace quillon

#pragma once
#include "records/es_types.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

// One thing the dialogue check found for a writer to look at.
struct Finding {
    std::string kind;            // master, unknown, damage, loop, choice, topic, script, reference, long,
                                 // style, spelling; or a kind of the translation check
    std::string record = "INFO"; // the record's type
    std::string id;              // the record's ID (an INFO's INAM)
    std::string topic, actor;    // for responses
    std::string detail;
    std::string before, after;            // for style: the text and what the clean-up makes of it
    std::size_t info = 0;                 // for responses: the index in the store's INFO array
    std::size_t line = 0, column = 0;     // for script and reference: where in the script, from 1
    std::string word;                     // for spelling: the word not known
    std::vector<std::string> suggestions; // and what the dictionary offers instead
};

// A finding of that kind about the response at index i of infos.
inline Finding aboutResponse(const std::vector<InfoRecord>& infos, std::size_t i, const char* kind,
                             std::string detail = {}) {
    const InfoRecord& r = infos[i];
    Finding f;
    f.kind = kind;
    f.id = r.INAM;
    f.topic = r.Topic;
    f.actor = r.ONAM;
    f.detail = std::move(detail);
    f.info = i;
    return f;
}

} // namespace quillon

#pragma once
// A topic's responses in the order the game tries them once every file of the load order is
// read: merged file by file, record by record. A response whose ID and previous response (PNAM)
// are both already there is replaced where it stands; any other goes after its PNAM, first for
// an empty PNAM, last for a PNAM not merged yet (moving an existing ID there). NNAM plays no part.
// Deleted responses stay as anchors until the last file is merged.
#include "records/record_store.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

// One file of the load order, in load order.
struct DialogueSource {
    std::string name;
    const RecordStore* store = nullptr;
    std::string path = {}; // where it was read, for the link files beside it; empty when not known
};

struct MergedResponse {
    const InfoRecord* info = nullptr;
    std::size_t file = 0; // the index of the source that gave it its place and content
};

enum class TopicType : std::uint8_t { Topic = 0, Voice = 1, Greeting = 2, Persuasion = 3, Journal = 4 };
const char* topicTypeName(std::uint8_t type);

struct MergedTopic {
    std::string name;      // in the letter case of the first file that has it
    std::uint8_t type = 0; // the last file's
    std::vector<MergedResponse> responses;
};

// A response of a later file put where its writer may not have meant it.
struct OrderEvent {
    enum Kind {
        UnknownPrevious, // its PNAM names no response merged before it: it goes last
        AboveFirst,      // a new response with an empty PNAM goes above an earlier file's first one
        Moved,           // an earlier file's response of its ID, with another PNAM, is moved
    } kind;
    const InfoRecord* info;
    std::size_t file;
    std::string topic;
    std::size_t otherFile = 0; // for AboveFirst and Moved: the file whose response it passes or moves
};

// Every topic of the sources, merged; sorted by type (Topic, Greeting, Persuasion, Voice,
// Journal) and then by ID in any letter case, which is also the order greetings are tried in.
// events, when given, gets what the merge did to responses of files after the first.
std::vector<MergedTopic> mergeDialogue(const std::vector<DialogueSource>& sources,
                                       std::vector<OrderEvent>* events = nullptr);

} // namespace quillon

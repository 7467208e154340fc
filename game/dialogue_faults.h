#pragma once
// Faults only the game's rules reveal, found on the merged order of a load order:
//   shadowed  a response an earlier one of its topic always pre-empts (it passes whenever this
//             one would), judged only where that reasoning is safe;
//   never     a response whose filters contradict each other, or a slot that can never hold;
//   order     a response the merge puts where its writer hardly meant it: last, for a previous
//             response (PNAM) no earlier file has; above an earlier file's first response, for an
//             empty PNAM; or an earlier file's response moved, for its ID with another PNAM;
//   journal   an index a quest already has (only the first is ever written), a second entry
//             naming the quest;
//   link      a topic no text of the load order links (by the game's rule, a longer topic
//             swallowing a mention) and no AddTopic adds: the player never learns it.
#include "game/dialogue_order.h"

#include <string>
#include <vector>

namespace quillon {

struct DialogueFault {
    const char* kind;
    const InfoRecord* info; // a response of the last source; null for a topic (link)
    std::string topic;
    std::string detail; // UTF-8
};

// The faults of the last source's responses. orderKnown says every master was read (neither
// missing nor summarised): shadowed and order depend on the whole order, never and journal on the
// response alone (journal with what the masters hold of its quest, when known). link needs the
// whole order and at least one master: a file naming none may still be played over the game's
// own, whose texts mention what it adds.
std::vector<DialogueFault> dialogueFaults(const std::vector<DialogueSource>& sources, bool orderKnown);

} // namespace quillon

#pragma once
// The spelling check: the words of every response, topic name and journal entry, against a
// dictionary and the names the file and its masters define.
#include "app/finding.h"
#include "app/load_order.h"
#include "records/record_store.h"
#include "workbench/spell_checker.h"

#include <string_view>
#include <vector>

namespace quillon {

struct WordAt {
    std::string_view word;
    std::size_t at; // where it starts in the text, in characters
};

// The words of a text worth checking: letters joined by apostrophes, without placeholders
// (%PCName), numbers and tokens holding digits or underscores (IDs).
std::vector<WordAt> wordsToCheck(std::string_view text);
// The same into words (emptied first), whose room is used again.
void wordsToCheck(std::string_view text, std::vector<WordAt>& words);

// Takes as correct every word of the names a store defines (NPCs, creatures, cells, regions,
// factions and their ranks, topics, items, spells, classes, races, birthsigns, and the IDs of its
// actors and speakers); acceptLoreNames those of the proper names the clean-up's word tables write.
void acceptNames(SpellChecker& checker, const RecordStore& store);
// The same for one name.
void acceptName(SpellChecker& checker, std::string_view name);
void acceptLoreNames(SpellChecker& checker);

// True when the checker knows the word, or it is a possessive or plural of a name it accepts
// (Fargoth's, Hlaalus).
bool spelledRight(SpellChecker& checker, std::string_view word);

// The spelling findings of the store's responses and topic names.
// namesKnown says every master was found: without, capitalised words are not judged (see there).
void checkSpelling(const RecordStore& store, SpellChecker& checker, std::vector<Finding>& out,
                   bool namesKnown = true);

} // namespace quillon

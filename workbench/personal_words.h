#pragma once
// The writer's own words: a UTF-8 list, one word a line, in $XDG_DATA_HOME/quillon/words.txt
// (~/.local/share/quillon/words.txt), that "Add to My Words" in the window adds to and every
// spelling check, in the window and on the command line, takes as spelled right.
#include "workbench/spell_checker.h"

#include <string>
#include <string_view>

namespace quillon {

std::string personalWordsPath();

// Accepts every word of the UTF-8 list in text that the code page can hold.
void acceptWordList(SpellChecker& checker, std::string_view text);
// Accepts the words of the personal list; empty, or what went wrong reading it (a missing list is
// no fault).
std::string acceptPersonalWords(SpellChecker& checker);
// Adds a word (the code page's bytes) to the personal list, which is replaced whole only once the
// new one is written; empty, or what went wrong.
std::string addPersonalWord(std::string_view word);

} // namespace quillon

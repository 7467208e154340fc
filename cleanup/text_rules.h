#pragma once
#include "app/cleanup_settings.h"
#include "cleanup/word_tables.h"

#include <span>
#include <string>

namespace quillon {

// The clean-up of one response text, every step in its fixed order. quoteParity carries the
// state of the quote spacing from one response to the next; it starts false for a command.
std::string cleanResponse(std::string text, const CleanupSettings& settings, bool& quoteParity);

// The same clean-up in three stages, for many responses cleaned side by side: the steps before
// the quote spacing and those after it depend on the text alone, while the quote spacing carries
// its parity from one response to the next and so takes the responses in order.
void cleanBeforeQuotes(std::string& text, const CleanupSettings& settings);
void spaceQuotes(std::string& text, const CleanupSettings& settings, bool& quoteParity);
void cleanAfterQuotes(std::string& text, const CleanupSettings& settings);

// Applies the rows of a word table in order, each to the result of the one before.
void applyWordRows(std::string& text, std::span<const WordRow> rows, bool temple);

// What clicking "Capitalize New Sentences" does to "Capitalize After Ellipsis": enabled while
// sentences are capitalised, cleared and disabled otherwise.
void onCapitalizeSentencesClicked(bool sentencesChecked, bool& ellipsisChecked, bool& ellipsisEnabled);

} // namespace quillon

#pragma once
// How result scripts are read for choices and topics: the lines the loop rule matches, the lines
// as written, and the choices and topics a line names.
#include "records/es_types.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillon {

// A function condition on the choice function, with any comparison but not-equal.
bool isChoiceCondition(const InfoCondition& c);
// The script as lines to match: two blanks to one (one pass, so three become two), commas gone,
// comments cut off. Line i is line i of the script as written.
std::vector<std::string> scriptLines(const std::string& script);
// The script's lines as written, split at CR LF.
std::vector<std::string> writtenLines(const std::string& script);
// True when a prepared line offers the choice last, or followed by further choices.
bool offersChoice(const std::string& line, std::int32_t choice);
// Every choice number a prepared line offers: Choice "text" 1 "text" 2 ...
std::vector<std::int32_t> choicesOn(const std::string& line);
// The topics a prepared line adds: AddTopic "name" or AddTopic name.
std::vector<std::string> topicsAddedOn(const std::string& line);

} // namespace quillon

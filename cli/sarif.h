#pragma once
// The check's findings as SARIF 2.1.0, the format code-scanning services read: one rule per kind
// of finding, each finding a result in its file, the record or response as its logical location.
#include "app/finding.h"

#include <ostream>
#include <string>
#include <vector>

namespace quillon {

// One result of the run.
std::string sarifResult(const std::string& file, const Finding& f);
// The whole log: the tool with its rules, then the results (each made by sarifResult).
void printSarif(std::ostream& out, const std::vector<std::string>& results);

} // namespace quillon

#pragma once
#include <ostream>
#include <string>
#include <vector>

namespace quillon {

// Runs one command line (without the program name); returns the exit status: 0 success,
// 1 the command reported a failure, 2 bad usage.
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace quillon

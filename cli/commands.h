#pragma once
#include <ostream>
#include <string>
#include <vector>

namespace quillon {

// What becomes of a command's records when it ends: freed, or left to the process's exit, which
// takes them back at once instead of one by one (hundreds of thousands in a large master).
enum class Teardown { Free, LeaveToExit };

// Runs one command line (without the program name); returns the exit status: 0 success,
// 1 the command reported a failure, 2 bad usage.
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           Teardown teardown = Teardown::Free);

} // namespace quillon

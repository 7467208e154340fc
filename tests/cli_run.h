#pragma once
// The command line run in-process, with what it printed.
#include "cli/commands.h"

#include <sstream>
#include <string>
#include <vector>

namespace quillon::test {

struct CliRun {
    int status;
    std::string out, err;
};

inline CliRun cli(std::vector<std::string> args) {
    std::ostringstream out, err;
    int status = runCli(args, out, err);
    return {status, out.str(), err.str()};
}

} // namespace quillon::test

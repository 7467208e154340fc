#include "cli/commands.h"

#include <csignal>
#include <cstdio>
#include <iostream>

int main(int argc, char** argv) {
    // Past a file-size limit a write fails with an error the commands report, instead of the
    // signal ending the program with no word.
    std::signal(SIGXFSZ, SIG_IGN);
    int status = quillon::runCli(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
    // Results lost on a full or closed standard output are a failure, not a success.
    if (!(std::cout << std::flush) || std::fflush(stdout) != 0) {
        std::cerr << "quillon: the results could not be written to standard output\n";
        return 1;
    }
    return status;
}

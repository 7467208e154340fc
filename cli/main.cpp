#include "cli/cli_dialogs.h"
#include "cli/commands.h"

#include <iostream>

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    try {
        return quillon::runCli(args, std::cout, std::cerr);
    } catch (const quillon::CliError& e) {
        std::cerr << "quillon: " << e.what() << "\n";
        return 1;
    }
}

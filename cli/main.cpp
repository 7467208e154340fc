#include "cli/commands.h"
#include "records/source_bytes.h"
#include "writer/safe_file.h"

#include <csignal>
#include <cstdio>
#include <iostream>

#include <unistd.h>

namespace {

// A mapped file cut short by another program while it is read: the command stops with a word
// instead of dying silently. Safe replacement renames only a finished file, so none is replaced.
void fileCutShort(int) {
    quillon::removeTemporaryInProgress();
    const char message[] = "quillon: a file changed on disk while it was read (another program cut it "
                           "short); the command stopped and replaced no file\n";
    ssize_t ignored = ::write(2, message, sizeof message - 1);
    (void)ignored;
    ::_exit(1);
}

} // namespace

int main(int argc, char** argv) {
    // Past a file-size limit a write fails with an error the commands report, instead of the
    // signal ending the program with no word.
    std::signal(SIGXFSZ, SIG_IGN);
    // A run lasts moments: files are mapped rather than copied, and its records are not freed.
    quillon::setLoading(quillon::Loading::Map);
    std::signal(SIGBUS, fileCutShort);
    quillon::removeTemporaryOnSignals();
    int status = quillon::runCli(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr,
                                 quillon::Teardown::LeaveToExit);
    // Results lost on a full or closed standard output are a failure, not a success.
    if (!(std::cout << std::flush) || std::fflush(stdout) != 0) {
        std::cerr << "quillon: the results could not be written to standard output\n";
        return 1;
    }
    return status;
}

// Hostile inputs, each at a size that runs in seconds: the command ends with its output or a
// clear message, within bounded memory, and never aborts. Each case runs the command line in a
// child process so that its peak memory and its way of ending can be seen.
#include "cli/commands.h"
#include "helpers.h"

#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace quillon;
using namespace quillon::test;

namespace {

struct Ended {
    bool exited = false; // by returning, not by a signal
    int status = -1;
    long peakKb = 0;
    std::string err;
};

// Runs the command line in a child, under an address-space limit when one is given.
Ended runChild(const std::vector<std::string>& args, const std::string& errFile, rlim_t addressLimit = 0,
               const std::string& input = {}) {
    pid_t pid = ::fork();
    if (pid == 0) {
        if (addressLimit) {
            rlimit limit{addressLimit, addressLimit};
            ::setrlimit(RLIMIT_AS, &limit);
        }
        if (!input.empty()) std::freopen(input.c_str(), "rb", stdin);
        std::ostringstream out;
        std::ofstream err(errFile);
        int code = runCli(args, out, err);
        err.flush();
        ::_exit(code);
    }
    int status = 0;
    rusage usage{};
    ::wait4(pid, &status, 0, &usage);
    return {WIFEXITED(status), WIFEXITED(status) ? WEXITSTATUS(status) : -1, usage.ru_maxrss,
            readAll(errFile)};
}

std::string header() {
    return Rec("TES3").sub("HEDR", hedr(0)).bytes();
}

} // namespace

TEST(Hostile, OutputThatTheTopicRuleMakesQuadraticIsStreamed) {
    if (sanitized()) GTEST_SKIP() << "memory is not measured under the sanitizers";
    TempDir dir;
    std::string bytes = header();
    for (int i = 0; i < 1500; ++i)
        bytes += Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes();
    for (int i = 0; i < 1500; ++i)
        bytes += Rec("INFO")
                     .z("INAM", std::to_string(i))
                     .sub("DATA", std::string(12, '\0'))
                     .text("NAME", "Hello")
                     .bytes();
    Ended r = runChild({"save", dir.write("q.esp", bytes), "-o", dir.file("out.esp")}, dir.file("err"));
    ASSERT_TRUE(r.exited);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_GT(std::filesystem::file_size(dir.file("out.esp")),
              100'000'000u);        // every response after every topic
    EXPECT_LT(r.peakKb, 64 * 1024); // but never held whole
}

// 32 MB of empty 16-byte NPC_ records would take 1.4 GB as actor structures: the file is refused
// within 8 times its size plus 64 MB, and records open before it stay.
TEST(Hostile, FilesOfTinyRecordsAreRefusedWithinBoundedMemory) {
    TempDir dir;
    std::string bytes = header();
    std::string empty = Rec("NPC_").bytes();
    bytes.reserve(bytes.size() + 32 * 1024 * 1024);
    while (bytes.size() < 32 * 1024 * 1024)
        bytes += empty;
    std::string path = dir.write("many.esp", bytes);
    Ended r = runChild({"counts", path}, dir.file("err"), sanitized() ? 0 : rlim_t(512) << 20);
    ASSERT_TRUE(r.exited) << "ended by a signal";
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.err.find("quillon: Not enough memory for counts on \"" + path + "\"."), std::string::npos)
        << r.err;
    if (!sanitized()) {
        EXPECT_LT(r.peakKb, (8 * 32 + 64) * 1024);
    }

    RecordStore store = readStore(file(1, {Rec("STAT").z("NAME", "kept").bytes()}));
    ScriptedPrompts prompts;
    std::int32_t count = 0;
    EXPECT_THROW(ReadESBuffer(store, bytes, count, true, prompts), std::bad_alloc);
    ASSERT_EQ(store.STAT.size(), 1u);
    EXPECT_EQ(store.STAT[0].NAME, "kept");
}

// The time of these cases is bounded by the test's time limit: a quadratic rule would exceed it.
TEST(Hostile, CleanUpAndLoopsStayLinear) {
    TempDir dir;
    std::string line;
    while (line.size() < 2'000'000)
        line += "Vivec said \"ALMSIVI...\" -- to the n'wah , yes?  ";
    Ended cleaned =
        runChild({"morrowindize-text", "--all"}, dir.file("err"), 0, dir.write("in.txt", line + "\n"));
    EXPECT_TRUE(cleaned.exited);
    EXPECT_EQ(cleaned.status, 0);

    std::string script;
    for (int i = 0; i < 10000; ++i)
        script += "Choice \"Again\" 1\r\n";
    std::string plugin = oneTopic({response("1", "a", "Hi", script)});
    Ended loops = runChild({"loops", dir.write("l.esp", plugin)}, dir.file("err"));
    EXPECT_TRUE(loops.exited);
    EXPECT_EQ(loops.status, 0);
}

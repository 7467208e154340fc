// Size words that reach far beyond the file, at every record and at the first sub-records of the
// corpus's files: every command that opens a file, reading it mapped as the command line does
// (its pages handed back every page, so that small files take that path too), ends with its
// usual lines. A crash or a sanitizer report ends the whole test.
#include "cli_run.h"
#include "helpers.h"
#include "records/source_bytes.h"

#include <unistd.h>

using namespace quillon;
using namespace quillon::test;

namespace {

// Where the size words of a file stand: each record's, and those of its first two sub-records.
std::vector<std::size_t> sizeWords(const std::string& bytes) {
    std::vector<std::size_t> at;
    std::size_t p = 0;
    for (const std::string& record : splitRecords(bytes)) {
        at.push_back(p + 4);
        std::size_t sub = 16;
        for (int i = 0; i < 2 && sub + 8 <= record.size(); ++i) {
            at.push_back(p + sub + 4);
            std::int32_t size;
            std::memcpy(&size, record.data() + sub + 4, 4);
            if (size < 0) break;
            sub += 8 + std::size_t(size);
        }
        p += record.size();
    }
    return at;
}

struct MappedLoading {
    MappedLoading() { setLoading(Loading::Map, std::size_t(::sysconf(_SC_PAGESIZE))); }
    ~MappedLoading() { setLoading(Loading::Copy); }
};

} // namespace

// Split in four, every fourth size word to a part, so that the parts run side by side.
class SizeWords : public testing::TestWithParam<int> {};
constexpr int kParts = 4;

TEST_P(SizeWords, BeyondTheEndNeverEndACommandBySignal) {
    QUILLON_NEED_CORPUS();
    MappedLoading mapped;
    TempDir dir = TempDir::inMemory();
    // Each command that opens a file, with what makes it write something.
    const std::vector<std::vector<std::string>> commands = {
        {"counts"},
        {"save", "-o", dir.file("out.esp"), "--yes"},
        {"check"},
        {"loops"},
        {"export-dialogue", "-o", dir.file("out.txt")},
        {"npc-list", "--cell", "a", "-o", dir.file("sheet.txt")},
        {"quotes", "--city", "a", "--format", "xml", "-o", dir.file("quotes.xml")},
    };
    int runs = 0, word = 0;
    for (const std::string& source : corpusFiles()) {
        std::string original = readAll(source);
        if (original.size() >= (1u << 20)) continue;
        std::string path =
            dir.write("damaged" + std::filesystem::path(source).extension().string(), original);
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        // The sanitized build, several times slower, tries the largest size and the one just past
        // the end; the plain build all four.
        std::vector<std::uint32_t> sizes = {0x7fffffffu, std::uint32_t(original.size() + 4096)};
        if (!sanitized()) sizes.insert(sizes.end(), {0x40000000u, 0x10000010u});
        for (std::size_t at : sizeWords(original)) {
            if (word++ % kParts != GetParam()) continue;
            for (std::uint32_t size : sizes) {
                // Four bytes changed where they stand, the rest of the file as it was.
                file.seekp(std::streamoff(at));
                file.write(reinterpret_cast<const char*>(&size), 4);
                file.flush();
                for (const auto& command : commands) {
                    std::vector<std::string> args = command;
                    args.insert(args.begin() + 1, path);
                    CliRun r = cli(args);
                    ++runs;
                    SCOPED_TRACE(std::filesystem::path(source).filename().string() + " size word at " +
                                 std::to_string(at) + " = " + std::to_string(size) + ": " + args[0]);
                    EXPECT_TRUE(r.status == 0 || r.status == 1) << r.err;
                    EXPECT_NE(r.err.find("-Reading \""), std::string::npos) << r.err;
                }
                file.seekp(std::streamoff(at));
                file.write(original.data() + at, 4);
            }
        }
    }
    EXPECT_GT(runs, sanitized() ? 10000 : 20000);
}

INSTANTIATE_TEST_SUITE_P(Corpus, SizeWords, testing::Range(0, kParts));

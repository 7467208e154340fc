// Records keep views into the bytes they were read from (reference IDs, records of unknown type,
// landscape data, script texts). Each way a session replaces, rewrites or drops those bytes, with
// the file copied (the window) and mapped (the command line): what is written afterwards is what
// the records say, never bytes of a file that is gone. Under AddressSanitizer a view that outlived
// its bytes is a report.
#include "app/file_commands.h"
#include "cli_run.h"
#include "helpers.h"
#include "records/source_bytes.h"
#include "writer/es_write.h"

#include <unistd.h>

using namespace quillon;
using namespace quillon::test;

namespace {

// A plugin with every kind of view, its texts marked by mark.
std::string viewsPlugin(const std::string& mark) {
    std::string schd = fixed("sc_" + mark, 32) + std::string(20, '\0');
    return file(0, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes(),
                    response("1", "npc_" + mark, "Hello from " + mark + "."),
                    Rec("SCPT")
                        .sub("SCHD", schd)
                        .sub("SCDT", "code")
                        .text("SCTX", "Begin sc_" + mark + "\r\nEnd")
                        .bytes(),
                    Rec("CELL")
                        .z("NAME", "Cell " + mark)
                        .sub("DATA", le32(1) + le32(0) + le32(0))
                        .i32("FRMR", 1)
                        .z("NAME", "ref_" + mark)
                        .sub("DATA", std::string(24, '\0'))
                        .bytes(),
                    Rec("LAND").sub("INTV", le32(0) + le32(0)).sub("VHGT", std::string(64, mark[0])).bytes(),
                    Rec("ZZZZ").z("NAME", "unknown_" + mark).bytes()});
}

// What a store read by copy writes, repaired so that the unknown record keeps its data.
std::string written(RecordStore& store) {
    ScriptedPrompts prompts;
    return serialiseChecked(store, 0, 0, prompts, true).bytes;
}
std::string expected(const std::string& bytes) {
    RecordStore store = readStore(bytes);
    return written(store);
}

struct Loadings : testing::TestWithParam<Loading> {
    Loadings() { setLoading(GetParam(), std::size_t(::sysconf(_SC_PAGESIZE))); }
    ~Loadings() override { setLoading(Loading::Copy); }
    Session session;
    ScriptedDialogs dialogs;
    TempDir dir;
    bool open(const std::string& path) {
        dialogs.answers = {Answer::Cancel}; // Yes to all at the record of unknown type
        return openPath(session, dialogs, path).isDone();
    }
};

} // namespace

TEST_P(Loadings, CloseThenOpenAnotherFileWritesTheNewOne) {
    ASSERT_TRUE(open(dir.write("a.esp", viewsPlugin("a"))));
    Close(session);
    std::filesystem::remove(dir.file("a.esp"));
    ASSERT_TRUE(open(dir.write("b.esp", viewsPlugin("b"))));
    EXPECT_TRUE(written(session.store) == expected(viewsPlugin("b")));
}

TEST_P(Loadings, SavingOverTheFileReadKeepsTheRecords) {
    std::string path = dir.write("a.esp", viewsPlugin("a"));
    ASSERT_TRUE(open(path));
    dialogs.damageChoices = {DamageChoice::Repair, DamageChoice::Repair};
    ASSERT_TRUE(Save(session, dialogs).isDone());
    std::string saved = readAll(path);
    // The file the records were read from has been replaced; they still write themselves whole.
    EXPECT_TRUE(written(session.store) == expected(viewsPlugin("a")));
    ASSERT_TRUE(Save(session, dialogs).isDone());
    EXPECT_TRUE(readAll(path) == saved);
}

TEST_P(Loadings, SaveAsThenOpeningTheCopy) {
    ASSERT_TRUE(open(dir.write("a.esp", viewsPlugin("a"))));
    dialogs.damageChoices = {DamageChoice::Repair};
    ASSERT_TRUE(saveAsPath(session, dialogs, dir.file("copy.esp")).isDone());
    std::filesystem::remove(dir.file("a.esp"));
    EXPECT_TRUE(written(session.store) == expected(viewsPlugin("a")));
    ASSERT_TRUE(open(dir.file("copy.esp")));
    EXPECT_TRUE(written(session.store) == expected(viewsPlugin("a")));
}

TEST_P(Loadings, OpeningAgainAFileAnotherProgramRewroteInPlace) {
    std::string path = dir.write("a.esp", viewsPlugin("a") + viewsPlugin("padding"));
    ASSERT_TRUE(open(path));
    // Rewritten where it stands, shorter: a mapping of the old file now reaches past its end.
    std::ofstream(path, std::ios::binary | std::ios::trunc) << viewsPlugin("b");
    ASSERT_TRUE(open(path));
    EXPECT_TRUE(written(session.store) == expected(viewsPlugin("b")));
}

TEST_P(Loadings, CommandsThatOpenTwoFiles) {
    std::string a = dir.write("a.esp", viewsPlugin("a")), b = dir.write("b.esp", viewsPlugin("b"));
    CliRun diff = cli({"diff-dialogue", a, b});
    EXPECT_EQ(diff.status, 1) << diff.err;
    EXPECT_NE(diff.out.find("\"Hello from a.\" -> \"Hello from b.\""), std::string::npos) << diff.out;
    CliRun check = cli({"check", a, b, "--only", "unknown"});
    EXPECT_EQ(check.status, 1) << check.err;
    EXPECT_NE(check.out.find("a.esp: unknown"), std::string::npos) << check.out;
    EXPECT_NE(check.out.find("b.esp: unknown"), std::string::npos) << check.out;
}

INSTANTIATE_TEST_SUITE_P(Views, Loadings, testing::Values(Loading::Copy, Loading::Map),
                         [](const testing::TestParamInfo<Loading>& info) {
                             return info.param == Loading::Copy ? "Copied" : "Mapped";
                         });

// The commands' own failure paths: a failure in the middle of a walk ends the command with its
// failure line and keeps what was done; the listing commands number their failures.
#include "app/error_numbers.h"
#include "app/file_commands.h"
#include "cleanup/morrowindize.h"
#include "cli/commands.h"
#include "dialogue/dialogue_commands.h"
#include "helpers.h"
#include "npclist/npc_list.h"

#include <sstream>
#include <sys/stat.h>

using namespace quillon;
using namespace quillon::test;

namespace {

// Dialogs whose editors run out of memory, as an allocation failure would end them.
struct ExhaustedDialogs : ScriptedDialogs {
    std::string editResponse(const std::string&, const std::string&, const std::string&) override {
        throw std::bad_alloc();
    }
    LoopFix fixLoop(const std::string&, const std::string&, const std::string&, const std::string&,
                    std::int32_t) override {
        throw std::bad_alloc();
    }
};

} // namespace

TEST(Failures, CleanUpEndsWithItsLineAndKeepsWhatWasDone) {
    TempDir dir;
    Session s;
    ExhaustedDialogs d;
    openPath(s, d,
             dir.write("m.esp", oneTopic({response("1", "npc", "vivec ,here"),
                                          response("2", "npc", std::string(600, 'a') + ".x."),
                                          response("3", "npc", "almsivi")})));
    d.answers = {Answer::Yes}; // edit the over-long one by hand: the editor fails
    Morrowindize(s, d);
    EXPECT_EQ(lastLog(s), "-An error occured during dialogue clean-up.");
    EXPECT_EQ(s.store.INFO[0].NAME, "Vivec, here");
    EXPECT_EQ(s.store.INFO[2].NAME, "almsivi"); // never reached
}

TEST(Failures, LoopDetectionNumbersItsFailure) {
    TempDir dir;
    Session s;
    ExhaustedDialogs d;
    openPath(s, d, dir.write("l.esp", oneTopic({response("1", "npc", "Again?", "Choice \"Again\" 1")})));
    DetectLoops(s, d);
    EXPECT_EQ(d.messages.back(), "Quillon has encountered an error number #7: Out of memory.");
    EXPECT_EQ(lastLog(s), "-An error occured during loop detection.");
}

TEST(Failures, NpcListNumbersEachKindOfWriteFailure) {
    TempDir dir;
    std::string world =
        file(0, {Rec("NPC_").z("NAME", "a").z("FNAM", "A").sub("NPDT", std::string(12, '\0')).bytes(),
                 Rec("CELL").z("NAME", "Balmora").sub("DATA", std::string(12, '\0')).bytes()});
    ::mkfifo(dir.file("fifo.txt").c_str(), 0644);
    struct Case {
        std::string target, message;
    };
    std::vector<Case> cases = {{dir.file("missing/list.txt"), "#76: Path not found."},
                               {dir.file("fifo.txt"), "#75: Path/File access error."}};
    for (const Case& c : cases) {
        Session s;
        ScriptedDialogs d;
        openPath(s, d, dir.write("w.esp", world));
        d.savePaths = {c.target};
        d.inputs = {"Balmora"};
        ExportNpcList(s, d, NpcListFormat::PlainText, false);
        EXPECT_EQ(d.messages.back(), "Quillon has encountered an error number " + c.message) << c.target;
        EXPECT_EQ(lastLog(s), "-An error occured during NPC listing. The list may be incomplete.");
    }
    EXPECT_TRUE(std::filesystem::is_fifo(dir.file("fifo.txt"))); // an existing target that is no file stays
    EXPECT_EQ(writeFailureKind(ENOSPC), FailureKind::DiskFull);
    EXPECT_EQ(writeFailureKind(EACCES), FailureKind::PermissionDenied);
}

TEST(Failures, DecliningTheSavegameQuestionOnTheCommandLine) {
    TempDir dir;
    std::string in = dir.write("s.esp", file(0, {Rec("STAT").z("NAME", "s").z("MODL", "m").bytes()}));
    std::ostringstream out, err;
    EXPECT_EQ(runCli({"save", in, "-o", dir.file("out.ess"), "--no"}, out, err), 0);
    // Nothing written (the target made empty first, as Save As does), and the finishing line
    // with no time and the full count.
    EXPECT_TRUE(readAll(dir.file("out.ess")).empty());
    EXPECT_NE(err.str().find("-Finished writing \"out.ess\" in 0.000 seconds. 2 records have been written."),
              std::string::npos);
    EXPECT_EQ(runCli({"save", in, "--yes", "--no"}, out, err), 2);
}

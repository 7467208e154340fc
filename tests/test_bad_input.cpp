// What a user sees for each kind of bad input: a clear message or log line, never a crash, and
// never a damaged file on disk.
#include "app/file_commands.h"
#include "app/text.h"
#include "cli/cli_dialogs.h"
#include "dialogue/dialogue_commands.h"
#include "helpers.h"
#include "npclist/npc_list.h"

#include <thread>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace quillon;
using namespace quillon::test;

namespace {

std::string plugin() {
    return file(2, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes(),
                    Rec("INFO")
                        .z("INAM", "1")
                        .sub("DATA", std::string(12, '\0'))
                        .z("ONAM", "a")
                        .text("NAME", "Hello")
                        .bytes()});
}

} // namespace

TEST(BadInput, DataFilesThatCannotBeRead) {
    TempDir dir;
    std::filesystem::create_directory(dir.file("folder.esp"));
    struct Case {
        std::string path, log, message;
    };
    for (const Case& c : std::vector<Case>{
             {dir.file("missing.esp"), "-Failed reading \"missing.esp\".",
              "Cannot read \"missing.esp\": the file does not exist."},
             {dir.file("folder.esp"), "-Failed reading \"folder.esp\".",
              "Cannot read \"folder.esp\": it is a folder, not a file."},
             {dir.write("x.txt", plugin()), "-Failed reading \"x.txt\".", "The selected file is invalid."},
             {dir.write("empty.esp", ""), "-Warning: \"empty.esp\" holds no records.", ""},
             {dir.write("text.esp", "This is not a data file at all.\n"),
              "-Warning: \"text.esp\" does not begin with a TES3 header; it may not be a data file.", ""},
             {dir.write("cut.esp", plugin().substr(0, plugin().size() - 2)),
              "-Warning: \"cut.esp\" ends inside a record; its last record is incomplete.", ""}}) {
        Session s;
        ScriptedDialogs d;
        d.answers = {Answer::Cancel, Answer::Cancel};
        openPath(s, d, c.path);
        EXPECT_EQ(lastLog(s), c.log) << c.path;
        if (!c.message.empty()) {
            EXPECT_EQ(d.messages.back(), c.message) << c.path;
        }
    }
}

TEST(BadInput, DialogueTextFilesThatDoNotMatch) {
    TempDir dir;
    struct Case {
        const char* name;
        std::string text;
        const char* foundId;
    };
    std::string good = "\"1\"\r\n\"T\"\r\n\"a\"\r\n\"Hi\"\r\n";
    for (const Case& c : std::vector<Case>{
             {"fewer lines", "\"1\"\r\n\"T\"\r\n", "line 3. Required ID: \"1\". Found: the end"},
             {"more lines", good + "\r\n\r\n\"2\"\r\n", "line 5. Required ID: \"1\". Found: an empty line"},
             {"no closing quote", "\"1\"\r\n\"T\"\r\n\"a\"\r\n\"Hi\r\nthere\r\n",
              "line 6. Required ID: \"1\". Found: the end"},
             {"no quotes at all", "1\r\nT\r\na\r\nHi\r\n", "line 1. Required ID: \"1\". Found: 1."}}) {
        Session s;
        ScriptedDialogs d;
        openPath(s, d, dir.write("p.esp", plugin()));
        d.answers = {Answer::No};
        importDialogueFrom(s, d, dir.write("in.txt", c.text));
        EXPECT_EQ(lastLog(s), "-An error occured during dialogue importing.") << c.name;
        EXPECT_EQ(d.messages.back().rfind("The file has been edited incorrectly at line ", 0), 0u) << c.name;
        EXPECT_NE(d.messages.back().find(c.foundId), std::string::npos)
            << c.name << ": " << d.messages.back();
        EXPECT_EQ(s.store.INFO[0].NAME, "Hello") << c.name; // nothing imported
    }
    // Bytes the code page leaves undefined are kept as they are.
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("p.esp", plugin()));
    importDialogueFrom(s, d, dir.write("in.txt", "\"1\"\r\n\"T\"\r\n\"a\"\r\n\"\x81\x8d\x8f\x90\x9d\"\r\n"));
    EXPECT_EQ(s.store.INFO[0].NAME, "\x81\x8d\x8f\x90\x9d");
}

TEST(BadInput, OutputsThatCannotBeWritten) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    std::string path = dir.write("p.esp", plugin());
    openPath(s, d, path);
    for (const std::string& target : {dir.file("no/such/folder/out.txt"), std::string("/dev/full")}) {
        exportDialogueTo(s, d, target);
        EXPECT_EQ(lastLog(s), "-An error occured during dialogue exporting.") << target;
        EXPECT_NE(d.messages.back().find("could not be written"), std::string::npos) << target;
    }
    EXPECT_FALSE(std::filesystem::is_regular_file("/dev/full")); // a device is never replaced

    // A full disk, as a limit on the size of files this process may write.
    std::string old = dir.write("old.txt", "the previous export");
    struct rlimit before {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = before;
    small.rlim_cur = 16;
    ::setrlimit(RLIMIT_FSIZE, &small);
    exportDialogueTo(s, d, old);
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(lastLog(s), "-An error occured during dialogue exporting.");
    EXPECT_EQ(readAll(old), "the previous export");
    d.savePaths = {dir.file("no/such/folder/list.txt")};
    d.inputs = {"a"};
    s.counts.shown[CountLabel::CELL] = s.counts.shown[CountLabel::NPC_] = "1";
    ExportNpcList(s, d, NpcListFormat::PlainText, false);
    EXPECT_EQ(lastLog(s), "-An error occured during NPC listing. The list may be incomplete.");
}

TEST(BadInput, AFileChangedSinceItWasOpened) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    std::string path = dir.write("p.esp", plugin());
    openPath(s, d, path);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    dir.write("p.esp", plugin() + "changed by another program");
    d.answers = {Answer::No};
    EXPECT_FALSE(Save(s, d).isDone());
    EXPECT_EQ(d.messages.back(),
              "\"p.esp\" has been changed on disk since it was opened. Overwrite it with the "
              "records open here?");
    EXPECT_EQ(lastLog(s), "-An error occured. Nothing has been written.");
    EXPECT_EQ(readAll(path), plugin() + "changed by another program");
    d.answers = {Answer::Yes};
    EXPECT_TRUE(Save(s, d).isDone());
    EXPECT_TRUE(Save(s, d).isDone()); // written by us: no question the second time
    EXPECT_EQ(d.messages.size(), 2u);
}

TEST(BadInput, SavingThroughALinkKeepsTheLink) {
    TempDir dir;
    std::string real = dir.write("real.esp", plugin());
    std::filesystem::create_symlink(real, dir.file("link.esp"));
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.file("link.esp"));
    s.store.INFO[0].NAME = "Howdy";
    ASSERT_TRUE(Save(s, d).isDone());
    EXPECT_TRUE(std::filesystem::is_symlink(dir.file("link.esp")));
    EXPECT_NE(readAll(real).find("Howdy"), std::string::npos);
}

TEST(BadInput, SpecialFilesAreRefusedWithoutBlocking) {
    TempDir dir;
    ::mkfifo(dir.file("pipe.esp").c_str(), 0644);
    std::filesystem::create_symlink("/dev/zero", dir.file("zero.esp"));
    for (const char* name : {"pipe.esp", "zero.esp"}) {
        Session s;
        ScriptedDialogs d;
        EXPECT_TRUE(openPath(s, d, dir.file(name)).isFailed()) << name;
        EXPECT_EQ(d.messages.back(),
                  "Cannot read \"" + std::string(name) + "\": it is not an ordinary file.");
    }
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("p.esp", plugin()));
    EXPECT_FALSE(
        saveAsPath(s, d, dir.file("pipe.esp")).isDone()); // opening the pipe to create it would block
    EXPECT_EQ(lastLog(s), "-Nothing has been written.");
    EXPECT_TRUE(std::filesystem::is_fifo(dir.file("pipe.esp")));
}

TEST(BadInput, LongTargetNamesSaveAndLeaveNoTemporaryFile) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("p.esp", plugin()));
    std::string longName = std::string(250, 'n') + ".esp"; // 254 bytes: the name limit is 255
    ASSERT_TRUE(saveAsPath(s, d, dir.file(longName)).isDone());
    EXPECT_EQ(splitRecords(readAll(dir.file(longName))).back(), splitRecords(plugin()).back());
    for (const auto& entry : std::filesystem::directory_iterator(dir.file("")))
        EXPECT_EQ(entry.path().filename().string().find(".quillon"), std::string::npos);
}

TEST(BadInput, TextsFromFilesAreShownSafely) {
    EXPECT_EQ(forTerminal("tag \x1b[2J\r\nnext\tline\x7f"), "tag \\x1b[2J\nnext\tline\\x7f");
    EXPECT_EQ(readableExcerpt(std::string(100, 'x'), 10), "xxxxxxxxxx... (100 characters)");
    EXPECT_EQ(readableExcerpt("short"), "short");
    // A mismatched import line of any length is named by its start and length.
    Session s;
    ScriptedDialogs d;
    TempDir dir;
    openPath(s, d, dir.write("p.esp", plugin()));
    importDialogueFrom(s, d, dir.write("t.txt", "\"" + std::string(5000000, 'z') + "\"\r\n"));
    EXPECT_LT(d.messages.back().size(), 300u);
    EXPECT_NE(d.messages.back().find("(5,000,002 characters)"), std::string::npos);
}

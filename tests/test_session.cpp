#include "app/file_commands.h"
#include "helpers.h"

#include <unistd.h>

using namespace quillon;
using namespace quillon::test;

namespace {

std::vector<std::string> logLines(const Session& s) {
    std::vector<std::string> lines;
    const std::string& c = s.log.caption();
    for (std::size_t start = 0, at; (at = c.find("\r\n", start)) != std::string::npos; start = at + 2)
        lines.push_back(c.substr(start, at - start));
    return lines;
}

std::string withoutTime(std::string line) {
    std::size_t at = line.find(" in ");
    std::size_t end = line.find(" seconds", at);
    if (at != std::string::npos && end != std::string::npos) line.replace(at + 4, end - at - 4, "T");
    return line;
}

std::string plugin(std::int32_t headerCount, int stats) {
    std::string bytes = file(headerCount, {});
    for (int i = 0; i < stats; ++i)
        bytes += Rec("STAT").z("NAME", "s" + std::to_string(i)).z("MODL", "m").bytes();
    return bytes;
}

} // namespace

TEST(Log, KeepsTheNewestSixLines) {
    Log log;
    for (int i = 1; i <= 7; ++i)
        log.LogLine("-" + std::to_string(i));
    EXPECT_EQ(log.caption(), "-2\r\n-3\r\n-4\r\n-5\r\n-6\r\n-7\r\n");
    // Two lines at once into a full log: the oldest line and the empty tail beyond place 7 go.
    log.LogLine("-a\r\n-b");
    EXPECT_EQ(log.caption(), "-3\r\n-4\r\n-5\r\n-6\r\n-7\r\n-a\r\n-b");
    Log warned;
    warned.LogLine("-x");
    warned.setCaption("-WARNING: Morrowind installation coould not be detected.\r\n");
    EXPECT_EQ(warned.caption(), "-WARNING: Morrowind installation coould not be detected.\r\n");
}

TEST(Open, LogsReadCountsAndHeaderMismatch) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    d.openPaths = {dir.write("x.esp", plugin(2, 2))};
    Open(s, d);
    EXPECT_EQ(logLines(s).at(0), "-Reading \"x.esp\"...");
    EXPECT_EQ(withoutTime(logLines(s).at(1)), "-Read 3 records from \"x.esp\" successfully in T seconds.");
    EXPECT_EQ(d.fileRequests[0].flags, 0x1004u);
    EXPECT_EQ(d.refreshes, 1);
    EXPECT_TRUE(s.fileGroupEnabled);
    EXPECT_EQ(s.counts.shown[CountLabel::STAT], "2"); // STAT
    EXPECT_EQ(s.counts.shown[CountLabel::TES3], "1"); // TES3
    EXPECT_EQ(s.counts.shown[CountLabel::Total], "3");
    EXPECT_EQ(s.openFolder, dir.file("x.esp").substr(0, dir.file("x.esp").size() - 6));

    openPath(s, d, dir.write("y.esm", plugin(12, 11)));
    EXPECT_EQ(withoutTime(logLines(s).back()),
              "-Read 12 records from \"y.esm\" successfully in T seconds. File should contain 12 record(s).");

    Close(s);
    EXPECT_EQ(logLines(s).back(), "-Closed \"y.esm\" successfully.");
    EXPECT_FALSE(s.fileGroupEnabled);
    for (const std::string& shown : s.counts.shown)
        EXPECT_EQ(shown, "0");
    EXPECT_TRUE(s.currentPath.empty());
}

TEST(Open, CancelAndFailures) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    d.openPaths = {"  "};
    Open(s, d);
    EXPECT_EQ(s.log.caption(), "");
    openPath(s, d, dir.file("gone.esp"));
    EXPECT_EQ(logLines(s).back(), "-Failed reading \"gone.esp\".");
    EXPECT_FALSE(s.fileGroupEnabled);
    EXPECT_EQ(d.messages.back(), "Cannot read \"gone.esp\": the file does not exist.");
    openPath(s, d, dir.write("cut.esp", plugin(1, 1).substr(0, 340)));
    EXPECT_EQ(logLines(s).back(),
              "-Warning: \"cut.esp\" ends inside a record; its last record is incomplete.");
}

TEST(Save, WritesOverTheCurrentFileWithDisplayedTotal) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    std::string path = dir.write("p.esp", plugin(5, 2));
    openPath(s, d, path);
    s.counts.shown[CountLabel::Total] = "7"; // the header's count comes from the display
    ASSERT_TRUE(Save(s, d).isDone());
    EXPECT_EQ(logLines(s).at(2), "-Writing \"p.esp\"...");
    EXPECT_EQ(withoutTime(logLines(s).at(3)),
              "-Finished writing \"p.esp\" in T seconds. 7 records have been written.");
    std::string out = readAll(path);
    EXPECT_EQ(out.substr(24 + 296, 4), le32(6));
    EXPECT_EQ(out.substr(24 + 4, 4), le32(0)); // a plugin's file type
}

TEST(Save, FailureKeepsTheOldFile) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    std::string path = dir.write("keep.esp", plugin(1, 1));
    openPath(s, d, path);
    if (::geteuid() == 0) GTEST_SKIP() << "running as root: a read-only folder does not stop writing";
    std::string before = readAll(path);
    std::filesystem::permissions(dir.file(""),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    bool ok = Save(s, d).isDone();
    std::filesystem::permissions(dir.file(""), std::filesystem::perms::owner_all);
    EXPECT_FALSE(ok);
    EXPECT_EQ(logLines(s).back(), "-An error occured. Nothing has been written.");
    EXPECT_EQ(readAll(path), before);
}

TEST(Save, FullDiskKeepsTheOldFileAndSaysSo) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    Session s;
    ScriptedDialogs d;
    TempDir dir;
    openPath(s, d, dir.write("f.esp", plugin(1, 1)));
    s.currentPath = s.recordsPath = "/dev/full/x.esp";
    EXPECT_FALSE(Save(s, d).isDone());
    EXPECT_EQ(logLines(s).back(), "-An error occured. Nothing has been written.");
    EXPECT_NE(d.messages.back().find("could not be written"), std::string::npos);
}

TEST(SaveAs, MakesTheFileCurrentOnlyOnceWritten) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("a.esp", plugin(1, 1)));
    d.savePaths = {dir.file("b.ess")};
    d.answers = {Answer::No}; // decline the savegame question
    EXPECT_TRUE(SaveAs(s, d));
    EXPECT_EQ(d.fileRequests.back().filterIndex, 2);
    EXPECT_EQ(d.fileRequests.back().flags, 2u);
    EXPECT_EQ(logLines(s).back(),
              "-Finished writing \"b.ess\" in 0.000 seconds. 2 records have been written.");
    EXPECT_FALSE(std::filesystem::exists(dir.file("b.ess"))); // declined: no empty file is left
    EXPECT_EQ(s.currentPath, dir.file("a.esp"));
    d.savePaths = {dir.file("c.esp")};
    EXPECT_TRUE(SaveAs(s, d));
    EXPECT_EQ(s.currentPath, dir.file("c.esp"));

    d.savePaths = {dir.file("/no/such/folder/d.esp")};
    EXPECT_FALSE(SaveAs(s, d));
    EXPECT_EQ(logLines(s).back(), "-Nothing has been written.");
    EXPECT_EQ(s.currentPath, dir.file("c.esp")); // a failed Save As keeps the file it had
}

TEST(Counts, CaptionsAndSavegameLabels) {
    EXPECT_STREQ(countCaption(0), "ACTI:");
    EXPECT_STREQ(countCaption(27), "MGEF:");
    EXPECT_STREQ(countCaption(28), "PGRD:");
    EXPECT_STREQ(countCaption(42), "Unknown:");
    EXPECT_STREQ(countCaption(44), "Total:");
    EXPECT_STREQ(countCaption(56), "STLN:");
    int savegame = 0;
    for (std::size_t i = 0; i < kCountLabels; ++i)
        savegame += isSavegameLabel(i);
    EXPECT_EQ(savegame, 12);
}

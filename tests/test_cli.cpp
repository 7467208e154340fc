#include "cli_run.h"
#include "helpers.h"

#include <sstream>

using namespace quillon;
using namespace quillon::test;

TEST(Cli, CountsPrintsEveryLabelInOrder) {
    TempDir dir;
    std::string path = dir.write("c.esp", file(1, {Rec("STAT").z("NAME", "s").z("MODL", "m").bytes()}));
    CliRun r = cli({"counts", path});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out.substr(0, 9), "ACTI: 0\nA");
    EXPECT_NE(r.out.find("\nSTAT: 1\nSSCR: 0\nTES3: 1\nUnknown: 0\nCNTC: 0\nTotal: 2\nWEAP: 0\n"),
              std::string::npos);
    EXPECT_EQ(r.out.substr(r.out.size() - 8), "STLN: 0\n");
    EXPECT_NE(r.err.find("-Read 2 records from \"c.esp\" successfully in "), std::string::npos);
}

TEST(Cli, UsageAndFailures) {
    EXPECT_EQ(cli({}).status, 2);
    EXPECT_EQ(cli({"frobnicate"}).status, 2);
    EXPECT_EQ(cli({"counts"}).status, 2);
    EXPECT_EQ(cli({"counts", "a.esp", "--unknown=maybe"}).status, 2);
    EXPECT_EQ(cli({"--help"}).status, 0);
    TempDir dir;
    CliRun missing = cli({"counts", dir.file("none.esp")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("-Failed reading \"none.esp\"."), std::string::npos);
    std::string unknown = dir.write("u.esp", file(1, {Rec("ZZZZ").bytes()}));
    EXPECT_EQ(cli({"counts", unknown, "--unknown=no"}).status, 1);
    CliRun kept = cli({"counts", unknown});
    EXPECT_EQ(kept.status, 0);
    EXPECT_NE(kept.err.find("-Warning: kept 1 record(s) of unknown type in \"u.esp\" without a question."),
              std::string::npos);
    EXPECT_NE(kept.out.find("Unknown: 1"), std::string::npos);
}

TEST(Cli, SaveRefusesASavegameWithoutYes) {
    TempDir dir;
    std::string path = dir.write("s.esp", file(0, {}));
    CliRun refused = cli({"save", path, "-o", dir.file("out.ess")});
    EXPECT_EQ(refused.status, 1);
    CliRun done = cli({"save", path, "-o", dir.file("out.ess"), "--yes"});
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(readAll(dir.file("out.ess")).substr(28, 4), le32(32));
}

TEST(Cli, EveryCommandOnTheSamplePlugin) {
    TempDir dir;
    std::string sample = std::string(QUILLON_SAMPLES) + "/kestrel_sample.esp";
    if (!std::filesystem::exists(sample)) GTEST_SKIP() << "no sample plugin at " << sample;
    EXPECT_EQ(cli({"export-dialogue", sample, "-o", dir.file("d.txt")}).status, 0);
    CliRun long_ = cli({"import-dialogue", sample, dir.file("d.txt"), "-o", dir.file("i.esp")});
    EXPECT_EQ(long_.status, 1); // one response is over 512 characters
    EXPECT_NE(long_.err.find("response \"32141306822751913985\" is longer than 512 characters"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir.file("i.esp")));
    EXPECT_EQ(
        cli({"import-dialogue", sample, dir.file("d.txt"), "-o", dir.file("i.esp"), "--long=trim"}).status,
        0);

    CliRun loops = cli({"loops", sample, "--fail-on-loop"});
    EXPECT_EQ(loops.status, 1);
    // Named by its ID, with the script line as written (commas kept), once.
    EXPECT_EQ(loops.out,
              "INFO 11093306851471414733 (topic \"little secret\", actor \"ks_fenrick\"): choice 2 "
              "offered again: Choice \"Yes, tell me again\" 2 \"No, thank you\" 3\n");
    EXPECT_EQ(cli({"loops", sample}).status, 0);

    EXPECT_EQ(cli({"quotes", sample, "--city", "Kestrel", "--format", "kst", "-o", dir.file("q.kst")}).status,
              0);
    EXPECT_EQ(readAll(dir.file("q.kst")).size() % 576, 0u);
    EXPECT_EQ(cli({"npc-list", sample, "--cell", "KESTREL", "--no-clones", "-o", dir.file("n.txt")}).status,
              0);
    EXPECT_EQ(readAll(dir.file("n.txt")).substr(readAll(dir.file("n.txt")).size() - 13), "Total NPCs: 3");
    CliRun cleaned = cli({"morrowindize", sample, "-o", dir.file("m.esp"), "--all"});
    EXPECT_EQ(cleaned.status, 0);
    EXPECT_NE(cleaned.err.find("kept the original text of a response of \"ks_fenrick\""), std::string::npos);
    EXPECT_EQ(cli({"npc-list", sample, "--cell", "x", "--format", "pdf", "-o", dir.file("n")}).status, 2);
}

TEST(Cli, VersionAndACompletionForEveryCommand) {
    CliRun version = cli({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("quillon ", 0), 0u);
    std::string completion = readAll(QUILLON_DATA "/quillon.bash-completion");
    std::string commands = completion.substr(completion.find("local commands=\""));
    commands = commands.substr(0, commands.find('\n'));
    // Every command the help lists (indented two blanks, lower case first) can be completed.
    std::istringstream help(cli({"--help"}).out);
    int listed = 0;
    for (std::string line; std::getline(help, line);) {
        if (line.size() < 3 || line.rfind("  ", 0) != 0 || !std::islower(static_cast<unsigned char>(line[2])))
            continue;
        std::string name = line.substr(2, line.find(' ', 2) - 2);
        EXPECT_NE(commands.find(" " + name + " "), std::string::npos) << name;
        ++listed;
    }
    EXPECT_EQ(listed, 20); // check has two lines
}

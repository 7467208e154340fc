// The spelling check: only words that neither the dictionary nor the load order's names know are
// named, with their corrections; in the file's code page, Cyrillic included.
#include "cli_run.h"
#include "helpers.h"
#include "workbench/personal_words.h"
#include "workbench/spelling.h"

using namespace quillon;
using namespace quillon::test;

namespace {

std::string header(const std::string& master) {
    Rec r("TES3");
    r.sub("HEDR", hedr(0));
    if (!master.empty()) r.z("MAST", master).sub("DATA", std::string(8, '\0'));
    return r.bytes();
}

std::string npc(const std::string& id, const std::string& name) {
    return Rec("NPC_").z("NAME", id).z("FNAM", name).z("RNAM", "Dark Elf").bytes();
}

std::string topic(const std::string& name) {
    return Rec("DIAL").z("NAME", name).sub("DATA", std::string(1, '\0')).bytes();
}

bool haveDictionary(const std::string& name) {
    std::string error;
    return SpellChecker::open(name, error) != nullptr;
}

} // namespace

TEST(Spelling, OnlyTheMisspeltWordIsNamedWithItsCorrection) {
    if (!haveDictionary("en_US")) GTEST_SKIP() << "the en_US dictionary (hunspell-en-us) is not installed";
    TempDir dir;
    Rec guild("FACT");
    guild.z("NAME", "hh").z("FNAM", "House Hlaalu").sub("RNAM", fixed("Hearthfriend", 32));
    std::filesystem::create_directories(dir.file("data"));
    dir.write(
        "data/Base.esm",
        file(0, {npc("ilmeni", "Ilmeni Dren"), guild.bytes(),
                 Rec("CELL").z("NAME", "Seyda Neen").sub("DATA", le32(0) + le32(-2) + le32(-9)).bytes()}));
    std::string text =
        "Ilmeni Dren of Seyda Neen, a Hearthfriend of the Hlaalus, asked about Balmora and Dagoth "
        "for %PCName and ks_fenrick at 12 o'clock: Fargoth's kwamakin will come tommorow.";
    std::string plugin = dir.write("p.esp", header("Base.esm") + npc("fargoth", "Fargoth") +
                                                topic("Balmora") + response("1", "fargoth", text));
    std::string words = dir.write("words.txt", "Kwamakin\n");
    CliRun r = cli({"check", plugin, "--only", "spelling", "--data", dir.file("data"), "--words", words});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << r.out;
    EXPECT_EQ(r.out.rfind(plugin +
                              ": spelling: INFO 1 (topic \"Balmora\", actor \"fargoth\"): \"tommorow\" at "
                              "character " +
                              std::to_string(text.find("tommorow") + 1) +
                              " is not in the dictionary; did you mean \"tomorrow\"",
                          0),
              0u)
        << r.out;

    CliRun json = cli({"check", plugin, "--spelling", "--only", "spelling", "--json", "--data",
                       dir.file("data"), "--words", words});
    EXPECT_NE(json.out.find("\"kind\": \"spelling\""), std::string::npos) << json.out;
    EXPECT_NE(json.out.find("\"word\": \"tommorow\", \"suggestions\": [\"tomorrow\""), std::string::npos)
        << json.out;

    // Without the master its names are not known, so capitalised words (which may be its names) are
    // not judged; without --words the word list's are not known.
    CliRun alone = cli({"check", plugin, "--only", "spelling"});
    EXPECT_NE(alone.out.find("\"kwamakin\""), std::string::npos) << alone.out;
    for (const char* word : {"\"Hearthfriend\"", "\"Ilmeni\""})
        EXPECT_EQ(alone.out.find(word), std::string::npos) << word << alone.out;
}

TEST(Spelling, AskedForOnlyAndWithADictionaryThatExists) {
    TempDir dir;
    std::string plugin =
        dir.write("p.esp", header("") + topic("T") + response("1", "a", "Tommorow never comes."));
    CliRun plain = cli({"check", plugin});
    EXPECT_EQ(plain.out.find("spelling"), std::string::npos);
    CliRun missing = cli({"check", plugin, "--spelling", "--dictionary", "xx_NOWHERE"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("the dictionary \"xx_NOWHERE\" was not found"), std::string::npos)
        << missing.err;
    CliRun noList = cli({"check", plugin, "--spelling", "--words", dir.file("none.txt")});
    EXPECT_EQ(noList.status, 2);
    // A dictionary in a character set nobody knows is refused, not taken to misspell every word.
    dir.write("odd.aff", "SET NO-SUCH-CHARSET\n");
    std::string dic = dir.write("odd.dic", "1\nTomorrow\n");
    CliRun odd = cli({"check", plugin, "--spelling", "--dictionary", dic});
    EXPECT_EQ(odd.status, 2);
    EXPECT_NE(
        odd.err.find("in the character set \"NO-SUCH-CHARSET\" (its SET line), which this system cannot "
                     "convert"),
        std::string::npos)
        << odd.err;
}

TEST(Spelling, CyrillicTextThroughTheCodePage) {
    if (!haveDictionary("ru_RU")) GTEST_SKIP() << "the ru_RU dictionary (hunspell-ru) is not installed";
    TempDir dir;
    // "Привет, Фаргот! Как дила?" in Windows-1251, with a name and one misspelt word.
    std::string text = "\xcf\xf0\xe8\xe2\xe5\xf2, \xd4\xe0\xf0\xe3\xee\xf2! \xca\xe0\xea \xe4\xe8\xeb\xe0?";
    std::string plugin = dir.write("p.esp", header("") + npc("fargoth", "\xd4\xe0\xf0\xe3\xee\xf2") +
                                                topic("T") + response("1", "fargoth", text));
    CliRun r = cli({"check", plugin, "--only", "spelling", "--code-page", "1251", "--dictionary", "ru_RU"});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_NE(r.out.find("\"\xd0\xb4\xd0\xb8\xd0\xbb\xd0\xb0\" at character " +
                         std::to_string(text.find("\xe4\xe8") + 1)),
              std::string::npos)
        << r.out; // дила
    EXPECT_NE(r.out.find("did you mean"), std::string::npos) << r.out;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << r.out;
}

TEST(Spelling, WordsToCheckLeaveOutPlaceholdersNumbersAndIds) {
    std::vector<std::string> words;
    for (const WordAt& w : wordsToCheck("%PCName's 3 guar_2 don't 'quoted' well-known M'aiq x9"))
        words.emplace_back(w.word);
    EXPECT_EQ(words, (std::vector<std::string>{"don't", "quoted", "well", "known", "M'aiq"}));
}

TEST(Spelling, ManyResponsesAreNamedInTheOrderOfTheFile) {
    if (!haveDictionary("en_US")) GTEST_SKIP() << "the en_US dictionary (hunspell-en-us) is not installed";
    TempDir dir;
    // Enough responses to be shared among the cores: the findings still come in store order.
    std::string records = header("") + topic("Guar");
    std::string expected;
    for (int i = 0; i < 6000; ++i) {
        bool misspelt = i % 1000 == 999;
        records += response(std::to_string(i), "a", misspelt ? "A guar, tommorow." : "A guar, tomorrow.");
        if (misspelt) expected += std::to_string(i) + ",";
    }
    std::string plugin = dir.write("p.esp", records);
    CliRun r = cli({"check", plugin, "--only", "spelling"});
    std::string named;
    std::istringstream lines(r.out);
    for (std::string line; std::getline(lines, line);)
        named += line.substr(line.find("INFO ") + 5, line.find(" (topic") - line.find("INFO ") - 5) + ",";
    EXPECT_EQ(named, expected) << r.out;
}

// On the real plugins without their masters, most findings are misspellings: every word reported
// has been judged (a new one must be), every misspelling judged is still found, and at least half
// of the findings are misspellings.
TEST(Spelling, OnRealPluginsWithoutTheirMastersMostFindingsAreMisspellings) {
    QUILLON_NEED_CORPUS();
    if (!haveDictionary("en_US")) GTEST_SKIP() << "the en_US dictionary (hunspell-en-us) is not installed";
    std::map<std::string, bool> judged;
    std::istringstream sample(readAll(QUILLON_GOLDEN "/spelling_sample.tsv"));
    for (std::string line; std::getline(sample, line);)
        if (!line.empty() && line[0] != '#')
            judged[line.substr(0, line.find('\t'))] = line.substr(line.find('\t') + 1) == "yes";
    std::map<std::string, int> reported;
    int findings = 0, misspellings = 0;
    for (const std::string& path : corpusFiles()) {
        if (path.ends_with(".ess")) continue;
        std::istringstream out(cli({"check", path, "--only", "spelling"}).out);
        for (std::string line; std::getline(out, line);) {
            std::size_t quote = line.find("): \"") + 4;
            std::string word = line.substr(quote, line.find('"', quote) - quote);
            ASSERT_TRUE(judged.count(word)) << "not judged yet: " << word;
            ++reported[word];
            ++findings;
            misspellings += judged[word];
        }
    }
    for (const auto& [word, misspelt] : judged)
        EXPECT_TRUE(!misspelt || reported.count(word)) << word << " is no longer found";
    EXPECT_GE(misspellings * 2, findings)
        << misspellings << " misspellings among " << findings << " findings";
}

// "Add to My Words" keeps a word in the writer's own list (UTF-8, one a line), which every check
// of the command line reads too.
TEST(Spelling, TheWritersOwnWordsAreKeptAndReadByTheCommandLine) {
    if (!haveDictionary("en_US")) GTEST_SKIP() << "the en_US dictionary (hunspell-en-us) is not installed";
    TempDir dir;
    const char* before = std::getenv("XDG_DATA_HOME");
    std::string kept = before ? before : "";
    ::setenv("XDG_DATA_HOME", dir.file("share").c_str(), 1);
    std::string plugin =
        dir.write("p.esp", oneTopic({response("1", "", "The kwamakin said caf\xe9 tommorow.")}));
    EXPECT_EQ(addPersonalWord("kwamakin"), "");
    EXPECT_EQ(addPersonalWord("caf\xe9"), "");
    EXPECT_EQ(readAll(dir.file("share/quillon/words.txt")), "kwamakin\ncaf\xc3\xa9\n");
    CliRun r = cli({"check", plugin, "--only", "spelling"});
    EXPECT_EQ(r.out.find("kwamakin"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("caf"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("tommorow"), std::string::npos) << r.out;
    if (before)
        ::setenv("XDG_DATA_HOME", kept.c_str(), 1);
    else
        ::unsetenv("XDG_DATA_HOME");
}

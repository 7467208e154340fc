// Corrections for unknown words: the edit distance that ranks them, and what the checker offers
// from the dictionary's words, their forms and the load order's names.
#include "cli_run.h"
#include "helpers.h"
#include "workbench/near_words.h"
#include "workbench/spell_checker.h"

using namespace quillon;
using namespace quillon::test;

TEST(Corrections, EditDistanceCountsTypingSlipsAsHalfAnEdit) {
    struct Case {
        const char* a;
        const char* b;
        int halfEdits;
    };
    for (auto [a, b, halfEdits] : std::initializer_list<Case>{{"bussiness", "business", 1},
                                                              {"ocurred", "occurred", 1},
                                                              {"worhsipper", "worshipper", 1},
                                                              {"teh", "the", 1},
                                                              {"Almvisi", "Almsivi", 4},
                                                              {"Balmora", "BALMORA", 0},
                                                              {"", "abc", 6},
                                                              {"cat", "dog", 6}}) {
        EXPECT_EQ(editDistance(a, b), halfEdits) << a << " / " << b;
        EXPECT_EQ(editDistance(b, a), halfEdits) << b << " / " << a;
    }
}

TEST(Corrections, NearestWordsShareLetterPairsWithinTheLengthsAsked) {
    NearWords words({"honor", "hour", "colour", "honorific", "manor", "Hlaalu", "hone", "zebra"});
    std::vector<std::string> found;
    for (std::size_t i : words.nearest("honour", 3, 1, 8))
        found.push_back(words[i]);
    EXPECT_EQ(found, (std::vector<std::string>{"honor", "hour", "hone"}));
    // "honorific" shares as much but is longer than asked for; "zebra" shares nothing.
    for (std::size_t i : words.nearest("honour", 10, 1, 8)) {
        EXPECT_NE(words[i], "honorific");
        EXPECT_NE(words[i], "zebra");
    }
    EXPECT_TRUE(words.nearest("", 3, 1, 8).empty());
    EXPECT_TRUE(words.nearest(std::string(200, 'a'), 3, 1, 300).empty());
}

TEST(Corrections, TheDictionaryItsFormsAndTheNamesOfTheLoadOrder) {
    std::string error;
    std::unique_ptr<SpellChecker> checker = SpellChecker::open("en_US", error);
    if (!checker) GTEST_SKIP() << "the en_US dictionary (hunspell-en-us) is not installed";
    checker->accept("Almsivi");
    struct Case {
        const char* word;
        const char* first;
    };
    for (auto [word, first] : std::initializer_list<Case>{{"bussiness", "business"},
                                                          {"ocurred", "occurred"},
                                                          {"travelled", "traveled"}, // a form of "travel"
                                                          {"Worshippers", "Worshipers"},
                                                          {"afterall", "after all"},
                                                          {"Almvisi", "Almsivi"}, // a name, not a word
                                                          {"Ok", "OK"},           // letter case alone
                                                          {"tw", "two"}}) {       // not "TWA"
        const std::vector<std::string>& offered = checker->suggestions(word);
        ASSERT_FALSE(offered.empty()) << word;
        EXPECT_EQ(offered.front(), first) << word;
        EXPECT_LE(offered.size(), 5u);
        for (const std::string& s : offered)
            EXPECT_EQ(s.find('\''), std::string::npos) << word << ": " << s; // no possessives
    }
    checker->suggestAll({"tommorow", "recieve", "tommorow"});
    EXPECT_EQ(checker->suggestions("tommorow").front(), "tomorrow");
    EXPECT_EQ(checker->suggestions("recieve").front(), "receive");
}

TEST(Corrections, ADictionaryInItsOwnEncodingAtAPath) {
    TempDir dir;
    // ISO 8859-1, as older dictionaries are: "café" and "naïve" in single bytes.
    dir.write("fr_test.aff", "SET ISO8859-1\nTRY e\n");
    dir.write("fr_test.dic", "3\ncaf\xe9\nna\xefve\nthe\n");
    std::string plugin =
        dir.write("p.esp", file(0, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes(),
                                    response("1", "a", "the caf\xe9 the cafe the naive")}));
    CliRun r = cli({"check", plugin, "--only", "spelling", "--dictionary", dir.file("fr_test.dic")});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 2) << r.out;
    EXPECT_NE(r.out.find("\"cafe\" at character 14 is not in the dictionary; did you mean \"caf\xc3\xa9\""),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("\"naive\" at character 23 is not in the dictionary; did you mean \"na\xc3\xafve\""),
              std::string::npos)
        << r.out;
}

// Words the dictionary marks never to be suggested (NOSUGGEST, FORBIDDENWORD: profanity and
// slurs) are never offered, in any way the dictionary writes its flags.
TEST(Corrections, WordsMarkedNeverToSuggestAreNeverOffered) {
    TempDir dir;
    for (auto [flagLine, marked, plain] :
         {std::tuple{"", "/!", "/M"}, std::tuple{"FLAG long\n", "/Zz!!", "/Zz"},
          std::tuple{"FLAG num\n", "/12,99", "/12"}}) {
        std::string never = std::string(flagLine) +
                            (std::string(flagLine).find("long") != std::string::npos  ? "NOSUGGEST !!\n"
                             : std::string(flagLine).find("num") != std::string::npos ? "NOSUGGEST 99\n"
                                                                                      : "NOSUGGEST !\n");
        dir.write("d.aff", "SET UTF-8\n" + never);
        std::string dic = dir.write("d.dic", "2\nbadword" + std::string(marked) + "\nbadger" + plain + "\n");
        std::string error;
        std::unique_ptr<SpellChecker> checker = SpellChecker::open(dic, error);
        ASSERT_TRUE(checker) << error;
        const std::vector<std::string>& offered = checker->suggestions("badwerd");
        EXPECT_EQ(std::count(offered.begin(), offered.end(), "badword"), 0) << flagLine;
        EXPECT_EQ(
            std::count(checker->suggestions("badgr").begin(), checker->suggestions("badgr").end(), "badger"),
            1)
            << flagLine;
    }
}

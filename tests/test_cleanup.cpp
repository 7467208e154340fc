#include "app/file_commands.h"
#include "app/text.h"
#include "cleanup/morrowindize.h"
#include "cleanup/text_rules.h"
#include "helpers.h"

using namespace quillon;
using namespace quillon::test;

namespace {

CleanupSettings with(std::initializer_list<bool CleanupSettings::*> on) {
    CleanupSettings s;
    for (auto flag : on)
        s.*flag = true;
    return s;
}

std::string clean(const std::string& text, const CleanupSettings& s) {
    bool parity = false;
    return cleanResponse(text, s, parity);
}

struct Case {
    const char* in;
    const char* out;
};

void expectAll(const CleanupSettings& s, std::initializer_list<Case> cases) {
    for (auto [in, out] : cases)
        EXPECT_EQ(clean(in, s), out) << in;
}

// The rules read literally: every row and every letter pass over the whole text, one after the
// other. The fast paths must give exactly the same bytes.
namespace reference {

void all(std::string& t, std::string_view s, std::string_view r) {
    replaceAllIgnoreCase(t, s, r);
}
bool once(std::string& t, std::string_view s, std::string_view r) {
    std::size_t at = findIgnoreCase(t, s);
    if (at == std::string::npos) return false;
    t.replace(at, s.size(), r);
    return true;
}
void repeat(std::string& t, std::string_view s, std::string_view r) {
    while (containsIgnoreCase(t, s))
        all(t, s, r);
}

std::string clean(std::string t, const CleanupSettings& s, bool& parity) {
    if (s.isLineBreaks) all(t, "\r\n", " ");
    all(t, "\x85", "..."), all(t, "....", "..."), all(t, "\x92", "'"), all(t, "`", "'"), all(t, "@", "");
    all(t, "#", ""), all(t, "\x94", "\""), all(t, "\x93", "\""), all(t, "\t", " ");
    if (s.isSquare) all(t, "(", "["), all(t, ")", "]"), all(t, "{", "["), all(t, "}", "]");
    all(t, "&", " and "), all(t, "\x97", "-"), all(t, "\x06", "-");
    if (!s.isDashes) {
        repeat(t, "--", "-");
        if (s.isDashSpaces) all(t, " -", " - "), all(t, "- ", " - ");
    } else if (s.isDashSpaces) {
        all(t, " --", " -- "), all(t, "-- ", " -- ");
    }
    all(t, ".", ". "), all(t, ",", ", "), all(t, "?", "? "), all(t, "!", "! "), all(t, ";", "; "),
        all(t, ":", ": ");
    all(t, " ,", ","), all(t, " .", "."), all(t, " ;", ";"), all(t, " :", ":"), all(t, " !", "!"),
        all(t, " ?", "?");
    t = trimBlanks(t);
    if (s.isSpaceQuotes) {
        all(t, "\"", " XXThisIsAQuoteXX ");
        while (containsIgnoreCase(t, "XXThisIsAQuoteXX")) {
            once(t, parity ? " XXThisIsAQuoteXX" : "XXThisIsAQuoteXX ", "\"");
            parity = !parity;
        }
    }
    repeat(t, "  ", " ");
    all(t, "\" .", "\"."), all(t, "\" ,", "\","), all(t, "\" ?", "\"?"), all(t, "\" !", "\"!"),
        all(t, "\" :", "\":");
    auto table = [&](std::span<const WordRow> rows) {
        for (const WordRow& row : rows)
            if (!row.templeOnly || s.isTemple) all(t, row.search, row.replacement);
    };
    if (s.isAmerican) table(americanSpelling());
    table(properNames());
    if (s.isSlang) table(slang());
    if (s.isSentences) {
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            std::string upper(1, char(letter - 32));
            if (!s.isEllipsis) all(t, "...", "XXThisIsAnEllipsisXX");
            if (!t.empty() && t[0] >= 'a' && t[0] <= 'z')
                once(t, std::string(1, t[0]), std::string(1, char(t[0] - 32)));
            for (const char* mark : {". ", "? ", "! "})
                all(t, mark + std::string(1, letter), mark + upper);
            if (!s.isEllipsis) all(t, "XXThisIsAnEllipsisXX", "...");
        }
    }
    return t;
}

} // namespace reference

} // namespace

TEST(TextRules, PunctuationAndCharacters) {
    expectAll({}, {{"Hello ,world", "Hello, world"},
                   {"Wait...what", "Wait... what"},
                   {"The end.", "The end."},
                   {"a.....b", "a.... b"},
                   {"a....b", "a... b"},
                   {"   ", ""},
                   {"x\x85y", "x... y"},
                   {"it\x92s `so` @#", "it's 'so'"},
                   {"\x93Hi\x94", "\"Hi\""},
                   {"a\tb & c", "a b and c"},
                   {"a\x97"
                    "b a\x96"
                    "b a\x06"
                    "b",
                    "a-b a\x96"
                    "b a-b"},
                   {"Morrowind.ESM", "Morrowind. ESM"},
                   {"(x) {y}", "(x) {y}"}});
    expectAll(with({&CleanupSettings::isSquare}), {{"(x) {y}", "[x] [y]"}});
    expectAll(with({&CleanupSettings::isLineBreaks}), {{"one\r\ntwo", "one two"}});
    expectAll({}, {{"one\r\ntwo", "one\r\ntwo"}});
}

TEST(TextRules, Dashes) {
    expectAll({}, {{"a---b", "a-b"}, {"a - b", "a - b"}});
    expectAll(with({&CleanupSettings::isDashSpaces}), {{"a -b", "a - b"}, {"well-known", "well-known"}});
    expectAll(with({&CleanupSettings::isDashes, &CleanupSettings::isDashSpaces}),
              {{"a -- b", "a -- b"}, {"a--b", "a--b"}, {"a --b", "a -- b"}});
    expectAll(with({&CleanupSettings::isDashes}), {{"a---b", "a---b"}});
}

TEST(TextRules, QuoteSpacingCarriesItsParity) {
    CleanupSettings s = with({&CleanupSettings::isSpaceQuotes});
    expectAll(s, {{"He said\"hi\"and left", "He said \"hi\" and left"}, {"\" hi \"", " \" hi \" "}});
    bool parity = false;
    EXPECT_EQ(cleanResponse("An \"odd one", s, parity), "An \"odd one");
    EXPECT_TRUE(parity);
    EXPECT_EQ(cleanResponse("then\"x\"y", s, parity), "then\" x \"y"); // starts with a closing quote
    EXPECT_EQ(clean("a XXThisIsAQuoteXXb", s), "a XXThisIsAQuoteXXb"); // typed by the writer: no hang
}

TEST(TextRules, SentencesAndEllipsis) {
    expectAll(with({&CleanupSettings::isSentences}), {{"well... maybe. yes", "Well... maybe. Yes"},
                                                      {"why? no! ok", "Why? No! Ok"},
                                                      {"\xe9t\xe9. \xe9", "\xe9t\xe9. \xe9"}});
    expectAll(with({&CleanupSettings::isSentences, &CleanupSettings::isEllipsis}),
              {{"well... maybe", "Well... Maybe"}});
    expectAll(with({&CleanupSettings::isEllipsis}), {{"well... maybe", "well... maybe"}});
}

TEST(WordTables, RowsAndOrder) {
    EXPECT_EQ(americanSpelling().size(), 40u);
    EXPECT_EQ(properNames().size(), 400u);
    EXPECT_EQ(slang().size(), 40u);
    expectAll(with({&CleanupSettings::isAmerican}), {{"Armour and colour", "Armor and Color"},
                                                     {"an honour", "an honor"},
                                                     {"Apologise", "apologize"},
                                                     {"my armour", "my Armor"}});
    expectAll({}, {{"the temple of vivec", "the temple of Vivec"},
                   {"TAMRIEL", "Tamriel"},
                   {"tamreel", "Tamriel"},
                   {"Daedra", "Daedra"},
                   {"daedric aedric", "Daedric Aedric"},
                   {"zanib camp", "Zainab camp"},
                   {"Inside, Gro - Bakh", "Inside, gro-Bakh"},
                   {"european", "european"},
                   {"kuama", "kwama"}});
    expectAll(with({&CleanupSettings::isTemple}), {{"the temple of vivec", "the Temple of Vivec"}});
    expectAll(with({&CleanupSettings::isSlang}),
              {{"I'm gonna go", "I'm going to go"},
               {"IMHO", "in my humble opinion"},
               {"Gonna go", "going to go"},
               {"euros", "Drakes"},
               {"a fuc\ak b", "a cursek b"},
               {"a fuck b", "a fuck b"}}); // only the bell-character spelling matches
}

TEST(TextRules, FastPathsAgreeWithTheLiteralRules) {
    const char* pieces[] = {
        "vivec",   "Armour", " gonna ", "...",  "....", ". ",   "? ",     "!",      ",",
        " ,",      "\"",     "\x93",    "\x94", "\x85", "\x92", "--",     " - ",    "-",
        "&",       "(",      "}",       "\r\n", "  ",   "\t",   "temple", "daedra", "zanib camp",
        "Gro - ",  "well",   "maybe",   "yes",  "a",    "I",    "fuc\a ", "IMO",    "sea of ghosts",
        "balmora", "x",      ";",       ":",    "\xe9", "dude", "khul ",  " odai"};
    // Besides the pieces, search texts of the tables in any letter case, whole or halved, so that
    // a replacement can make or join another row's text.
    std::vector<std::string_view> searches;
    for (auto table : {americanSpelling(), properNames(), slang()})
        for (const WordRow& row : table)
            searches.push_back(row.search);
    std::mt19937 random(7);
    auto tableText = [&] {
        std::string_view search = searches[random() % searches.size()];
        std::string text(random() % 3   ? search
                         : random() % 2 ? search.substr(0, search.size() / 2)
                                        : search.substr(search.size() / 2));
        for (char& c : text)
            if (random() % 4 == 0) c = char(std::toupper(static_cast<unsigned char>(c)));
        return text;
    };
    for (int i = 0; i < 6000; ++i) {
        std::string text;
        for (int n = random() % 25; n > 0; --n)
            text += random() % 3 ? std::string(pieces[random() % std::size(pieces)]) : tableText();
        CleanupSettings s;
        for (bool* flag : {&s.isLineBreaks, &s.isAmerican, &s.isSentences, &s.isSpaceQuotes, &s.isSlang,
                           &s.isTemple, &s.isDashes, &s.isEllipsis, &s.isSquare, &s.isDashSpaces})
            *flag = random() % 2;
        bool fastParity = i % 3 == 0, plainParity = fastParity;
        ASSERT_EQ(cleanResponse(text, s, fastParity), reference::clean(text, s, plainParity)) << text;
        ASSERT_EQ(fastParity, plainParity);
    }
}

TEST(CapitalizeSentencesOption, ClearsAndGreysEllipsis) {
    bool checked = true, enabled = true;
    onCapitalizeSentencesClicked(false, checked, enabled);
    EXPECT_FALSE(checked);
    EXPECT_FALSE(enabled);
    onCapitalizeSentencesClicked(true, checked, enabled);
    EXPECT_TRUE(enabled);
    EXPECT_FALSE(checked); // re-enabled, still unchecked
}

TEST(Morrowindize, LogsCountsAndLimits) {
    TempDir dir;
    auto info = [](const std::string& id, const std::string& text, std::int32_t type = 0) {
        return Rec("INFO")
            .z("INAM", id)
            .sub("DATA", le32(type) + std::string(8, '\0'))
            .z("ONAM", "npc")
            .text("NAME", text)
            .bytes();
    };
    std::string exact = std::string(511, 'a') + ".";  // 512 after clean-up
    std::string over = std::string(509, 'b') + ".x."; // grows to 513
    Session s;
    ScriptedDialogs d;
    openPath(s, d,
             dir.write("m.esp", file(0, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes(),
                                         info("1", "vivec"), info("2", "Hello ,you"), info("3", exact),
                                         info("4", over, 4), info("5", over), info("6", "Fine.")})));
    InfoRecord second = s.store.INFO[1];
    d.answers = {Answer::Yes, Answer::Cancel};
    d.edits = {"edited"};
    Morrowindize(s, d);
    EXPECT_EQ(s.store.INFO[0].NAME, "Vivec"); // case only: kept, not counted
    EXPECT_EQ(s.store.INFO[1].NAME, "Hello, you");
    EXPECT_EQ(s.store.INFO[1].Size, second.Size);
    EXPECT_EQ(s.store.INFO[2].NAME, exact);
    EXPECT_EQ(s.store.INFO[3].NAME, "edited");
    EXPECT_EQ(s.store.INFO[3].NAMESize, 6);
    EXPECT_EQ(d.editRequests, std::vector<std::string>{"npc|Journal Entry"});
    EXPECT_EQ(s.store.INFO[4].NAME, over); // no question after Cancel
    EXPECT_EQ(d.messages.size(), 2u);
    EXPECT_EQ(d.messages[0],
              "Clean Up|One of the responses has become more than 511 characters after clean up. "
              "Do you want to edit it by hand? Otherwise original text will be used.\r\n\r\nCancel "
              "is \"No to all\"");
    EXPECT_NE(
        s.log.caption().find("-Morrowindizing 6 responses from \"m.esp\"...\r\n-2 responses from \"m.esp\" "
                             "have been Morrowindized successfully.\r\n"),
        std::string::npos);

    Morrowindize(s, d);
    EXPECT_NE(s.log.caption().find("-All dialogues in \"m.esp\" are already Morrowindish."),
              std::string::npos);
}

// A file large enough to be cleaned side by side gives what cleaning one response after the other
// gives, the quote spacing's parity carried across all of them.
TEST(Morrowindize, ManyResponsesCleanAsOneAfterTheOther) {
    const char* pieces[] = {"vivec ", "armour ", "gonna ", "well ,", "--", "n'wah ", "Seyda neen", "..."};
    std::mt19937 random(11);
    std::vector<std::string> texts;
    std::string bytes = file(0, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes()});
    for (int i = 0; i < 6000; ++i) {
        // One quote mark in every response but the first: the parity differs at every even place,
        // where the responses would be shared among cores.
        std::string text = i ? "\"" : "";
        for (int n = 1 + random() % 12; n > 0; --n)
            text += pieces[random() % std::size(pieces)];
        texts.push_back(text);
        bytes += response(std::to_string(i + 1), "npc", text);
    }
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("many.esp", bytes));
    ASSERT_EQ(s.store.INFO.size(), texts.size());
    for (bool* flag : {&s.settings.isAmerican, &s.settings.isSpaceQuotes, &s.settings.isSlang,
                       &s.settings.isSentences, &s.settings.isDashSpaces})
        *flag = true;
    Morrowindize(s, d);
    bool parity = false;
    for (std::size_t i = 0; i < texts.size(); ++i)
        ASSERT_EQ(s.store.INFO[i].NAME, cleanResponse(texts[i], s.settings, parity)) << i;
}

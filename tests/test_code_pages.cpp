// Central European and Cyrillic plugins: texts shown, compared and converted by their code page,
// and dialogue text files from UTF-8 editors.
#include "app/encoding.h"
#include "app/file_commands.h"
#include "app/text.h"
#include "cli_run.h"
#include "dialogue/dialogue_commands.h"
#include "helpers.h"

using namespace quillon;
using namespace quillon::test;

namespace {

// Sets a code page for one test and puts the default back after it.
struct ActivePage {
    explicit ActivePage(CodePage page) { setActiveCodePage(page); }
    ~ActivePage() { setActiveCodePage(CodePage::Windows1252); }
};

// "Привет" and "ПРИВЕТ" in Windows-1251.
const std::string kHello = "\xCF\xF0\xE8\xE2\xE5\xF2", kHelloUpper = "\xCF\xD0\xC8\xC2\xC5\xD2";

std::string cyrillicPlugin() {
    return file(0, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes(),
                    Rec("INFO")
                        .z("INAM", kHello)
                        .sub("DATA", std::string(12, '\0'))
                        .z("ONAM", "npc")
                        .text("NAME", "\xC4\xEE\xE1\xF0\xFB\xE9 \xE4\xE5\xED\xFC \x97 \xA8\xEB\xEA\xE0")
                        .bytes()});
}

} // namespace

TEST(CodePages, LetterCaseFollowsThePage) {
    EXPECT_FALSE(equalsIgnoreCase("\xA8", "\xB8")); // diaeresis and cedilla in Windows-1252
    {
        ActivePage cyrillic(CodePage::Windows1251);
        EXPECT_TRUE(equalsIgnoreCase(kHello, kHelloUpper));
        EXPECT_TRUE(equalsIgnoreCase("\xA8", "\xB8"));                                   // Ё ё
        EXPECT_TRUE(containsIgnoreCase("\xC1\xC0\xCB\xCC\xCE\xD0\xC0", "\xE1\xE0\xEB")); // БАЛМОРА, бал
    }
    {
        ActivePage central(CodePage::Windows1250);
        EXPECT_TRUE(equalsIgnoreCase("\xA3\xF3\xE4\xBC", "\xB3\xD3\xC4\xBE")); // Łódľ
        EXPECT_FALSE(equalsIgnoreCase("\xDF", "\xFF"));                        // ß has no capital here
    }
    EXPECT_FALSE(equalsIgnoreCase("\xA8", "\xB8"));
}

TEST(CodePages, EveryByteSurvivesUnicode) {
    for (CodePage page : {CodePage::Windows1252, CodePage::Windows1250, CodePage::Windows1251}) {
        ActivePage active(page);
        std::string all;
        for (int b = 0; b < 256; ++b)
            all += char(b);
        std::string back;
        char32_t missing = 0;
        ASSERT_TRUE(fromUtf8(toUtf8(all), back, missing)) << codePageName(page);
        EXPECT_EQ(back, all) << codePageName(page);
    }
    ActivePage cyrillic(CodePage::Windows1251);
    EXPECT_EQ(toUtf8(kHello), "Привет");
    std::string bytes;
    char32_t missing = 0;
    EXPECT_FALSE(fromUtf8("Łódź", bytes, missing));
    EXPECT_EQ(missing, U'Ł');
}

// Exported, saved by a UTF-8 editor with a byte-order mark, its ID retyped in capitals, imported
// and saved: every byte as a plain save has it.
TEST(CodePages, CyrillicDialogueThroughAUtf8Editor) {
    ActivePage cyrillic(CodePage::Windows1251);
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    std::string path = dir.write("ru.esp", cyrillicPlugin());
    openPath(s, d, path);
    ASSERT_TRUE(exportDialogueTo(s, d, dir.file("d.txt"), TextEncoding::Utf8).isDone());
    std::string text = readAll(dir.file("d.txt"));
    ASSERT_EQ(text.rfind("\xEF\xBB\xBF", 0), 0u); // the mark that says UTF-8
    ASSERT_NE(text.find("Привет"), std::string::npos);
    text.replace(text.find("Привет"), std::string("Привет").size(), "ПРИВЕТ");
    EXPECT_TRUE(importDialogueFrom(s, d, dir.write("e.txt", text)).isDone());
    EXPECT_EQ(lastLog(s), "-Imported 1 responses to \"ru.esp\" successfully.");
    ASSERT_TRUE(saveAsPath(s, d, dir.file("out.esp")).isDone());
    Session plain;
    openPath(plain, d, path);
    ASSERT_TRUE(saveAsPath(plain, d, dir.file("plain.esp")).isDone());
    EXPECT_EQ(readAll(dir.file("out.esp")), readAll(dir.file("plain.esp")));

    std::string foreign = text;
    foreign.replace(foreign.find("Ёлка"), std::string("Ёлка").size(), "中");
    Outcome refused = importDialogueFrom(s, d, dir.write("f.txt", foreign));
    EXPECT_TRUE(refused.isFailed());
    EXPECT_EQ(d.messages.back(),
              "The text file holds a character that windows-1251 cannot store (U+4E2D), in the response \"" +
                  kHello + "\".");
}

// A Windows-1252 plugin exported, opened and saved by a UTF-8 editor: the import gives back the
// bytes of a plain save.
TEST(CodePages, WesternDialogueThroughAUtf8Editor) {
    TempDir dir;
    std::string path = dir.write("w.esp", oneTopic({response("1", "npc", "It\x92s the \x93old road\x94.")}));
    ASSERT_EQ(cli({"export-dialogue", path, "-o", dir.file("d.txt")}).status, 0);
    dir.write("u.txt", toUtf8(readAll(dir.file("d.txt"))));
    ASSERT_EQ(cli({"import-dialogue", path, dir.file("u.txt"), "-o", dir.file("out.esp")}).status, 0);
    ASSERT_EQ(cli({"save", path, "-o", dir.file("plain.esp")}).status, 0);
    EXPECT_EQ(readAll(dir.file("out.esp")), readAll(dir.file("plain.esp")));
}

TEST(CodePages, CommandLineTakesUtf8Arguments) {
    TempDir dir;
    std::string world =
        file(0, {Rec("NPC_")
                     .z("NAME", "n")
                     .z("FNAM", "\xC8\xE2\xE0\xED")
                     .sub("NPDT", std::string(12, '\0'))
                     .i32("FLAG", 0)
                     .bytes(),
                 Rec("CELL")
                     .z("NAME", "\xC1\xC0\xCB\xCC\xCE\xD0\xC0")
                     .sub("DATA", std::string(12, '\0'))
                     .raw("FRMR" + le32(4) + le32(1) + "NAME" + le32(2) + "n" + std::string(1, '\0'))
                     .bytes()});
    std::string path = dir.write("w.esp", world);
    CliRun html = cli({"npc-list", path, "--cell", "балм", "--format", "html", "-o", dir.file("n.htm"),
                       "--code-page", "1251"});
    EXPECT_EQ(html.status, 0) << html.err;
    std::string sheet = readAll(dir.file("n.htm"));
    EXPECT_NE(sheet.find("charset=windows-1251"), std::string::npos);
    EXPECT_NE(sheet.find("\xC8\xE2\xE0\xED"), std::string::npos); // Иван, as the file's bytes
    CliRun western = cli({"npc-list", path, "--cell", "балм", "-o", dir.file("n.txt")});
    EXPECT_EQ(western.status, 2); // Windows-1252 has no Cyrillic letters
    EXPECT_NE(western.err.find("--cell holds a character that windows-1252 cannot store"), std::string::npos);
    EXPECT_EQ(cli({"counts", path, "--code-page", "866"}).status, 2);
    EXPECT_EQ(activeCodePage(), CodePage::Windows1252); // every run starts from the default
}

// A Central European plugin: the cell search ignores Polish letter case and the spreadsheet shows
// the names in UTF-8.
TEST(CodePages, CentralEuropeanCellsAndSheet) {
    TempDir dir;
    std::string world =
        file(0, {Rec("NPC_")
                     .z("NAME", "n")
                     .z("FNAM", "Bo\xBF"
                                "ena") // Bożena
                     .sub("NPDT", std::string(12, '\0'))
                     .i32("FLAG", 1)
                     .bytes(),
                 Rec("CELL")
                     .z("NAME", "\xA3\xD3\x44\x8F, Karczma") // ŁÓDŹ, Karczma
                     .sub("DATA", std::string(12, '\0'))
                     .raw("FRMR" + le32(4) + le32(1) + "NAME" + le32(2) + "n" + std::string(1, '\0'))
                     .bytes()});
    std::string path = dir.write("pl.esp", world);
    CliRun r = cli({"npc-list", path, "--cell", "łódź", "--format", "csv", "-o", dir.file("n.csv"),
                    "--code-page", "1250"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(readAll(dir.file("n.csv")), "cell,name,gender,race,class,faction,rank,description,writer\r\n"
                                          "\"ŁÓDŹ, Karczma\",Bożena,F,,,,,,\r\n");
}

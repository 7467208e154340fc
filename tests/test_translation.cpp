// The PO round trip: a template gettext's tools accept, a PO applied (topic renaming following every
// AddTopic), one PO carried into several plugins, and the translation check.
#include "cli_run.h"
#include "helpers.h"
#include "translation/po_file.h"
#include "writer/es_write.h"

#include <cstdlib>

using namespace quillon;
using namespace quillon::test;

namespace {

std::string topic(const std::string& name) {
    return Rec("DIAL").z("NAME", name).sub("DATA", std::string(1, '\0')).bytes();
}

// A topic, responses naming it (one with %PCName), a result script and a script adding it.
std::string plugin() {
    std::string schd = fixed("ks_secret", 32) + std::string(20, '\0');
    return file(
        0, {Rec("SCPT")
                .sub("SCHD", schd)
                .sub("SCDT", "x")
                .text("SCTX", "Begin ks_secret\r\nAddTopic \"Little Secret\"\r\nEnd")
                .bytes(),
            topic("little secret"), response("1", "ks_fenrick", "Ask me about my little secret, %PCName."),
            response("2", "ks_fenrick", "It stays a secret.", "AddTopic \"little secret\"\r\nGoodbye")});
}

// The template's entries, each given a translation by translate (the msgid when it returns it).
std::string translated(const std::string& pot, const std::function<std::string(const PoEntry&)>& translate) {
    std::string error;
    std::vector<PoEntry> entries = readPo(pot, error);
    EXPECT_EQ(error, "");
    for (PoEntry& e : entries)
        e.translation = translate(e);
    return poText(entries, "test");
}

const char* const kTopicUk =
    "\xd0\xbc\xd0\xb0\xd0\xbb\xd0\xb5\xd0\xbd\xd1\x8c\xd0\xba\xd0\xb0 \xd1\x82\xd0\xb0\xd1\x94"
    "\xd0\xbc\xd0\xbd\xd0\xb8\xd1\x86\xd1\x8f"; // маленька таємниця
const char* const kTopic1251 = "\xec\xe0\xeb\xe5\xed\xfc\xea\xe0 \xf2\xe0\xba\xec\xed\xe8\xf6\xff";

} // namespace

TEST(Translation, TemplateRoundTripAndTopicRenaming) {
    TempDir dir;
    std::string esp = dir.write("p.esp", plugin()), pot = dir.file("p.pot");
    ASSERT_EQ(cli({"translate-template", esp, "-o", pot}).status, 0);
    if (std::system(("msgfmt --check -o /dev/null " + pot + " 2>/dev/null").c_str()) != 0 &&
        std::system("msgfmt --version >/dev/null 2>&1") == 0)
        ADD_FAILURE() << "msgfmt --check refuses the template:\n" << readAll(pot);
    EXPECT_NE(readAll(pot).find("msgctxt \"DIAL little secret\""), std::string::npos);
    EXPECT_NE(readAll(pot).find("#. speaker: ks_fenrick"), std::string::npos);

    // Translations equal to the texts: exactly a plain save.
    std::string same = dir.write("same.po", translated(readAll(pot), [](const PoEntry& e) { return e.id; }));
    ASSERT_EQ(cli({"translate", esp, same, "-o", dir.file("same.esp")}).status, 0);
    ASSERT_EQ(cli({"save", esp, "-o", dir.file("plain.esp")}).status, 0);
    EXPECT_TRUE(readAll(dir.file("same.esp")) == readAll(dir.file("plain.esp")));

    // gettext's own tools take a PO made from it and merge it with the template.
    if (std::system("msgmerge --version >/dev/null 2>&1") == 0) {
        EXPECT_EQ(std::system(("msgmerge --quiet -o /dev/null " + same + " " + pot).c_str()), 0);
    }

    // Ukrainian in Windows-1251: the topic renamed with its responses and every AddTopic.
    std::string uk =
        dir.write("uk.po", translated(readAll(pot), [](const PoEntry& e) {
                      if (e.context.rfind("DIAL", 0) == 0) return std::string(kTopicUk);
                      if (e.context == "INFO 1")
                          return std::string(
                              "\xd0\x97\xd0\xb0\xd0\xbf\xd0\xb8\xd1\x82\xd0\xb0\xd0\xb9 %PCName"); // Запитай
                      return std::string();
                  }));
    CliRun r = cli({"translate", esp, uk, "-o", dir.file("uk.esp"), "--code-page", "1251"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.err.find("script \"ks_secret\" to recompile in the editor"), std::string::npos) << r.err;
    std::string out = readAll(dir.file("uk.esp"));
    EXPECT_TRUE(framesThroughout(out));
    RecordStore back = readStore(out);
    ASSERT_EQ(back.DIAL.size(), 1u);
    EXPECT_EQ(back.DIAL[0].NAME, kTopic1251);
    ASSERT_EQ(back.INFO.size(), 2u);
    EXPECT_EQ(back.INFO[0].Topic, kTopic1251);
    EXPECT_EQ(back.INFO[0].NAME, "\xc7\xe0\xef\xe8\xf2\xe0\xe9 %PCName");
    EXPECT_EQ(back.INFO[1].BNAM, "AddTopic \"" + std::string(kTopic1251) + "\"\r\nGoodbye");
    EXPECT_EQ(std::string(back.SCPT[0].SCTX),
              "Begin ks_secret\r\nAddTopic \"" + std::string(kTopic1251) + "\"\r\nEnd");

    // A character the page lacks: refused, nothing written.
    CliRun western = cli({"translate", esp, uk, "-o", dir.file("western.esp")});
    EXPECT_EQ(western.status, 1);
    EXPECT_FALSE(std::filesystem::exists(dir.file("western.esp")));
}

TEST(Translation, OnePoCarriedIntoEveryPluginRepeatingTheText) {
    TempDir dir;
    std::string master = dir.write("m.esp", plugin());
    std::string repeating = dir.write(
        "r.esp", file(0, {topic("little secret"), response("2", "ks_fenrick", "It stays a secret.")}));
    ASSERT_EQ(cli({"translate-template", master, "-o", dir.file("m.pot")}).status, 0);
    std::string po =
        dir.write("m.po", translated(readAll(dir.file("m.pot")), [](const PoEntry& e) {
                      return e.context == "INFO 2" ? std::string("Es bleibt ein Geheimnis.") : std::string();
                  }));
    std::filesystem::create_directories(dir.file("out"));
    CliRun r = cli({"translate", master, repeating, po, "--out-dir", dir.file("out")});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* name : {"m.esp", "r.esp"}) {
        RecordStore s = readStore(readAll(dir.file(std::string("out/") + name)));
        ASSERT_FALSE(s.INFO.empty()) << name;
        EXPECT_EQ(s.INFO.back().NAME, "Es bleibt ein Geheimnis.") << name;
    }
}

TEST(Translation, TheCheckNamesWhatATranslatorShouldLookAt) {
    TempDir dir;
    std::string esp = dir.write("p.esp", plugin() + response("3", "ks_fenrick", "Old text.") +
                                             response("4", "ks_fenrick", "Belittle secrets, do not.") +
                                             response("5", "ks_fenrick", "Little secrets!"));
    std::vector<PoEntry> po = {
        {{}, "DIAL little secret", "little secret", "kleines Geheimnis", false},
        {{}, "INFO 1", "Ask me about my little secret, %PCName.", "Frag mich, Fremder.", false},
        {{}, "INFO 2", "It stays a secret.", "\xe4\xb8\x80", false}, // a character no Western page has
        {{}, "INFO 3", "Older text.", "Alter Text.", false},
        {{}, "INFO 4", "Belittle secrets, do not.", "Nicht.", false},
        {{}, "INFO 5", "Little secrets!", "Ein Superkleines Geheimnis!", false},
    };
    CliRun r = cli({"check-translation", esp, dir.write("p.po", poText(po, "p"))});
    EXPECT_EQ(r.status, 1);
    // Links by the game's rule: none inside a word ("Belittle"), one at a word's start whatever
    // follows ("Little secrets"), so a translated name inside a word links nothing.
    for (const char* line : {"placeholder: INFO 1", "hyperlink: INFO 1", "charset: INFO 2", "stale: INFO 3",
                             "hyperlink: INFO 5"})
        EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
    EXPECT_EQ(r.out.find("hyperlink: INFO 4"), std::string::npos) << r.out;
}

TEST(Translation, AMangledPoFileIsNamedWithItsLine) {
    std::string error;
    EXPECT_TRUE(readPo("msgid \"a\"\nmsgstr \"b\nmsgid", error).empty());
    EXPECT_EQ(error.rfind("line 2:", 0), 0u) << error;
    error.clear();
    std::vector<PoEntry> kept = readPo("#, fuzzy\nmsgctxt \"INFO 1\"\nmsgid \"x\\\"y\"\n\"z\"\nmsgstr \"t\"\n"
                                       "#~ msgid \"old\"\n#~ msgstr \"gone\"\n",
                                       error);
    ASSERT_EQ(kept.size(), 1u) << error;
    EXPECT_TRUE(kept[0].fuzzy);
    EXPECT_EQ(kept[0].id, "x\"yz");
}

// What would garble or merge a plugin is refused whole: a PO in another character set, two topics
// translated to one name (or a topic to another's name); and the check names every text the PO lacks.
TEST(Translation, NothingGarbledNothingMerged) {
    TempDir dir;
    std::string esp =
        dir.write("p.esp", plugin() + topic("old secret") + response("3", "ks_fenrick", "New words."));
    std::string header = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=KOI8-R\\n\"\n\n";
    std::string koi =
        dir.write("koi.po", header + "msgctxt \"INFO 1\"\nmsgid \"Ask me about my little secret, "
                                     "%PCName.\"\nmsgstr \"\xf0\xd2\xc9\xd7\xc5\xd4\"\n");
    CliRun garbled = cli({"translate", esp, koi, "-o", dir.file("out.esp")});
    EXPECT_EQ(garbled.status, 1);
    EXPECT_NE(garbled.err.find("gives the character set KOI8-R; only UTF-8 is read"), std::string::npos)
        << garbled.err;
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.esp")));

    std::vector<PoEntry> po = {
        {{}, "DIAL little secret", "little secret", "Geheimnis", false},
        {{}, "DIAL old secret", "old secret", "geheimnis", false},
    };
    CliRun merged = cli({"translate", esp, dir.write("m.po", poText(po, "p")), "-o", dir.file("out.esp")});
    EXPECT_EQ(merged.status, 1);
    EXPECT_NE(
        merged.err.find("\"little secret\" and \"old secret\" would both be named \"geheimnis\" (msgctxt "
                        "\"DIAL little secret\" and \"DIAL old secret\")"),
        std::string::npos)
        << merged.err;
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.esp")));

    // The template's entries without INFO 3, added since: named, though the PO has no word of it.
    std::vector<PoEntry> older = {{{}, "INFO 1", "Ask me about my little secret, %PCName.", "Frag.", false}};
    CliRun check = cli({"check-translation", esp, dir.write("o.po", poText(older, "p"))});
    EXPECT_NE(
        check.out.find("untranslated: INFO 3 (topic \"old secret\", actor \"ks_fenrick\"): the PO has no "
                       "entry for it"),
        std::string::npos)
        << check.out;
    CliRun empty = cli({"check-translation", esp, dir.write("e.po", poText({}, "p"))});
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(std::count(empty.out.begin(), empty.out.end(), '\n'), 3) << empty.out;
}

// Names the player reads and books are offered with a msgctxt naming record and field, and
// applied with their sizes; a sound's file name is no name to translate.
TEST(Translation, ObjectNamesAndBooksAreTranslatedToo) {
    TempDir dir;
    std::string book = Rec("BOOK")
                           .z("NAME", "bk_note")
                           .z("MODL", "m.nif")
                           .z("FNAM", "A Note")
                           .sub("BKDT", std::string(20, '\0'))
                           .sub("TEXT", std::string("Meet me at dusk.\0", 17))
                           .bytes();
    std::string esp = dir.write(
        "p.esp",
        file(
            0,
            {Rec("WEAP").z("NAME", "dagger_x").z("MODL", "w.nif").z("FNAM", "Iron Dagger").bytes(),
             Rec("SOUN").z("NAME", "snd").z("FNAM", "fx\\boom.wav").sub("DATA", std::string(3, '\0')).bytes(),
             book}));
    ASSERT_EQ(cli({"translate-template", esp, "-o", dir.file("p.pot")}).status, 0);
    std::string pot = readAll(dir.file("p.pot"));
    EXPECT_NE(pot.find("msgctxt \"WEAP dagger_x FNAM\"\nmsgid \"Iron Dagger\""), std::string::npos) << pot;
    EXPECT_NE(pot.find("msgctxt \"BOOK bk_note TEXT\"\nmsgid \"Meet me at dusk.\""), std::string::npos)
        << pot;
    EXPECT_EQ(pot.find("boom"), std::string::npos);
    std::string po = dir.write("p.po", translated(pot, [](const PoEntry& e) {
                                   return e.context == "WEAP dagger_x FNAM" ? std::string("Eisendolch")
                                          : e.context == "BOOK bk_note TEXT"
                                              ? std::string("Triff mich bei Dämmerung.")
                                              : std::string();
                               }));
    CliRun r = cli({"translate", esp, po, "-o", dir.file("de.esp")});
    ASSERT_EQ(r.status, 0) << r.err;
    RecordStore de = readStore(readAll(dir.file("de.esp")));
    ASSERT_EQ(de.WEAP.size(), 1u);
    EXPECT_EQ(de.WEAP[0].FNAM, "Eisendolch");
    EXPECT_EQ(de.BOOK.at(0).TEXT, std::string("Triff mich bei D\xe4mmerung.\0", 26));
    // What was written frames throughout: it saves again unchanged.
    EXPECT_EQ(cli({"save", dir.file("de.esp"), "-o", dir.file("again.esp")}).status, 0);
    EXPECT_EQ(readAll(dir.file("again.esp")), readAll(dir.file("de.esp")));
}

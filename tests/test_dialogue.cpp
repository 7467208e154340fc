#include "app/file_commands.h"
#include "dialogue/dialogue_commands.h"
#include "helpers.h"
#include "writer/es_write.h"

using namespace quillon;
using namespace quillon::test;

namespace {

// A response as the tests state it: ID, actor and text, with a result script, type and
// condition only where a test needs them.
struct Response {
    Response(std::string id, std::string actor, std::string text, std::string script = {},
             std::int32_t type = 0, std::string condition = {})
        : id(std::move(id)), actor(std::move(actor)), text(std::move(text)), script(std::move(script)),
          type(type), condition(std::move(condition)) {}
    std::string id, actor, text, script;
    std::int32_t type = 0;
    std::string condition; // an SCVR body, with INTV 3
};

std::string infoRecord(const Response& r) {
    Rec rec("INFO");
    rec.z("INAM", r.id).sub("DATA", le32(r.type) + std::string(8, '\0'));
    if (!r.actor.empty()) rec.z("ONAM", r.actor);
    rec.text("NAME", r.text);
    if (!r.condition.empty()) rec.sub("SCVR", r.condition).i32("INTV", 3);
    if (!r.script.empty()) rec.text("BNAM", r.script);
    return rec.bytes();
}

// A session holding one topic with these responses, opened from a file in dir.
struct Fixture {
    TempDir dir;
    Session session;
    ScriptedDialogs dialogs;

    explicit Fixture(const std::vector<Response>& responses, std::vector<std::string> more = {}) {
        std::string bytes =
            file(0, {Rec("DIAL").z("NAME", "Topic").sub("DATA", std::string(1, '\0')).bytes()});
        for (const Response& r : responses)
            bytes += infoRecord(r);
        for (const std::string& m : more)
            bytes += m;
        openPath(session, dialogs, dir.write("d.esp", bytes));
    }
    std::string lastLog() const {
        std::string c = session.log.caption();
        c.resize(c.size() - 2);
        return c.substr(c.rfind("\r\n") + 2);
    }
    std::string exported() {
        exportDialogueTo(session, dialogs, dir.file("out.txt"));
        return readAll(dir.file("out.txt"));
    }
    void import(const std::string& text, std::deque<Answer> answers) {
        dialogs.answers = std::move(answers);
        importDialogueFrom(session, dialogs, dir.write("in.txt", text));
    }
};

} // namespace

TEST(ExportDialogue, FourQuotedLinesPerResponse) {
    Fixture f({{"1", "fargoth", "Hello \"friend\".\r\nBye."}, {"2", "", ""}});
    EXPECT_EQ(f.exported(), "\"1\"\r\n\"Topic\"\r\n\"fargoth\"\r\n\"Hello \"friend\".\r\nBye.\"\r\n\r\n\r\n"
                            "\"2\"\r\n\"Topic\"\r\n\"\"\r\n\"\"\r\n");
    EXPECT_EQ(f.lastLog(), "-Exported 2 responses from \"d.esp\" successfully.");

    Fixture empty({});
    empty.exported();
    EXPECT_FALSE(std::filesystem::exists(empty.dir.file("out.txt"))); // no file is left behind
    EXPECT_EQ(empty.dialogs.messages.back(),
              "The operation encountered an error: \"d.esp\" holds no dialogue responses.");
    EXPECT_EQ(empty.lastLog(), "-An error occured during dialogue exporting.");

    empty.dialogs.savePaths = {""};
    ExportDialogue(empty.session, empty.dialogs); // cancelled: nothing more
    EXPECT_EQ(empty.lastLog(), "-An error occured during dialogue exporting.");
    EXPECT_EQ(empty.dialogs.fileRequests.back().defaultExtension, ".txt");
}

TEST(ImportDialogue, UnchangedExportSavesTheSameBytes) {
    // Lines end at CR LF only: a lone LF or CR stays inside its text.
    Fixture f({{"1", "a", "One.\r\nTwo lines."},
               {"2", "b", "\"Quoted\" text"},
               {"3", "", ""},
               {"4", "c", "lone LF\nhere and lone CR\rthere"}});
    std::string text = f.exported();
    ScriptedPrompts prompts;
    std::string before = serialiseStore(f.session.store, 5, 0, prompts);
    f.import(text, {Answer::No});
    EXPECT_EQ(f.lastLog(), "-Imported 4 responses to \"d.esp\" successfully.");
    EXPECT_EQ(serialiseStore(f.session.store, 5, 0, prompts), before);
    f.import(text, {Answer::Yes}); // remove line breaks
    EXPECT_EQ(f.session.store.INFO[0].NAME, "One. Two lines.");
}

TEST(ImportDialogue, EditedTextsAdjustTheSizes) {
    Fixture f({{"1", "a", "Twenty characters!!!"}, {"2", "b", "keep"}});
    InfoRecord before = f.session.store.INFO[0];
    std::string text = f.exported();
    text.replace(text.find("Twenty characters!!!"), 20, "Ten chars.");
    f.import(text, {Answer::No});
    const InfoRecord& r = f.session.store.INFO[0];
    EXPECT_EQ(r.NAME, "Ten chars.");
    EXPECT_EQ(r.NAMESize, before.NAMESize - 10);
    EXPECT_EQ(r.Size, before.Size - 10);
    text.replace(text.find("Ten chars."), 10, "Ten \"\"chars\"\".");
    f.import(text, {Answer::No});
    EXPECT_EQ(r.NAME, "Ten \"chars\"."); // doubled quotes collapse
    EXPECT_EQ(r.Size, before.Size - 8);
    EXPECT_EQ(f.session.store.INFO[1].Size, Fixture({{"2", "b", "keep"}}).session.store.INFO[0].Size);
}

TEST(ImportDialogue, MismatchChangesNothingAndNamesTheLine) {
    Fixture f({{"1", "a", "x"}, {"2", "b", "y"}, {"3", "c", "z"}});
    ScriptedPrompts prompts;
    std::string before = serialiseStore(f.session.store, 4, 0, prompts);
    std::string text = f.exported();
    std::replace(text.begin(), text.end(), 'x', 'X');
    std::size_t third = text.find("\"3\"");
    text.replace(third, 3, "\"30\"");
    std::size_t line = 1 + std::size_t(std::count(text.begin(), text.begin() + long(third), '\n'));
    f.import(text, {Answer::No});
    EXPECT_EQ(f.dialogs.messages.back(),
              "The file has been edited incorrectly at line " + std::to_string(line) +
                  ". Required ID: \"3\". Found: \"30\". Nothing has been imported.");
    EXPECT_EQ(f.lastLog(), "-An error occured during dialogue importing.");
    // The responses before the bad one keep their texts: all or nothing.
    EXPECT_EQ(f.session.store.INFO[0].NAME, "x");
    EXPECT_EQ(serialiseStore(f.session.store, 4, 0, prompts), before);

    Fixture cased({{"abc", "a", "x"}});
    cased.import("\"ABC\"\r\n\"Topic\"\r\n\"a\"\r\n\"new\"\r\n", {Answer::No});
    EXPECT_EQ(cased.session.store.INFO[0].NAME, "new");
    cased.import("\"ABC\"\r\n\"Topic\"\r\n\"a\"\r\n\"again\"\r\n\r\n",
                 {Answer::No}); // more lines: a second pass
    EXPECT_EQ(cased.dialogs.messages.back().rfind("The file has been edited incorrectly at line 5.", 0), 0u);
}

TEST(ImportDialogue, LongTextsAreEditedOrCut) {
    std::string longText(600, 'a');
    Fixture f({{"1", "fargoth", "x"}, {"2", "", "y", "", 4}, {"3", "", "z"}});
    std::string text = f.exported();
    for (const char* short_ : {"\"x\"", "\"y\"", "\"z\""})
        text.replace(text.find(short_), 3, "\"" + longText + "\"");
    f.dialogs.edits = {std::string(513, 'e')};
    f.import(text,
             {Answer::No, Answer::No, Answer::Yes, Answer::Cancel}); // the first answers the line breaks
    EXPECT_EQ(f.session.store.INFO[0].NAME, std::string(512, 'a'));
    EXPECT_EQ(f.dialogs.editRequests, std::vector<std::string>{"Journal Entry|Topic"});
    EXPECT_EQ(f.session.store.INFO[1].NAME, std::string(512, 'e')); // still too long after editing: cut
    EXPECT_EQ(f.session.store.INFO[2].NAME.size(), 512u);
    EXPECT_EQ(f.dialogs.messages[1],
              "Quillon Warning|The response \"1\" is bigger than 512 characters. Do you want "
              "to edit it by hand? Otherwise it will be trimmed to fit.\r\n\r\nCancel is "
              "\"No to all\"");
    std::size_t questions = f.dialogs.messages.size();
    f.import(text, {Answer::No, Answer::Cancel}); // after "No to all" no further question
    EXPECT_EQ(f.dialogs.messages.size(), questions + 2);
}

TEST(DetectLoops, ChoicePatterns) {
    struct Case {
        const char* line;
        std::int32_t choice;
        bool offers;
    };
    for (auto [line, choice, offers] :
         std::initializer_list<Case>{{"Choice \"Yes\" 1 \"No\" 2", 2, true},
                                     {"Choice \"No\" 2 \"Yes\" 1", 2, true},
                                     {"Choice \"Maybe\" 12", 2, false},
                                     {"choice \"again\" 3", 3, true},
                                     {"Choice, \"Again\", 3", 3, true},
                                     {"Choice \"A\",3", 3, false},
                                     {"Goodbye ; Choice \"Yes\" 2", 2, false},
                                     {"  MessageBox  \"x\"\r\nChoice  \"Go\"  2", 2, true},
                                     {"Choice   \"Go\" 2", 2, false}}) // one pass: three blanks become two
        EXPECT_EQ(!linesOfferingChoice(line, choice).empty(), offers) << line;
}

TEST(DetectLoops, FindingsFixesAndOutcomes) {
    std::string choice3 = scvr('0', '1', "50", '0');
    Fixture f({{"1", "fargoth", "Again?", "Choice \"Again\" 3", 0, choice3},
               {"2", "b", "not-equal", "Choice \"Again\" 3", 0, scvr('0', '1', "50", '1')},
               {"3", "c", "short", "C 3", 0, choice3}});
    InfoRecord before = f.session.store.INFO[0];
    f.dialogs.loopFixes = {{LoopFixStatus::Accept, "Fixed text, ten longer.", "Goodbye"}};
    DetectLoops(f.session, f.dialogs);
    EXPECT_EQ(f.dialogs.editRequests, std::vector<std::string>{"fargoth|Topic|3"});
    EXPECT_EQ(f.session.store.INFO[0].NAME, "Fixed text, ten longer.");
    EXPECT_EQ(f.session.store.INFO[0].BNAM, "Goodbye");
    EXPECT_EQ(f.session.store.INFO[0].Size, before.Size); // sizes are left as they were
    EXPECT_EQ(f.lastLog(), "-Loop check successful.");

    Fixture cancel({{"1", "a", "Again?", "Choice \"Again\" 3", 0, choice3}});
    cancel.dialogs.loopFixes = {{LoopFixStatus::Cancel, "", ""}};
    DetectLoops(cancel.session, cancel.dialogs);
    EXPECT_EQ(cancel.lastLog(), "-Loop check cancelled.");
    EXPECT_EQ(cancel.session.store.INFO[0].NAME, "Again?");

    Fixture none({});
    DetectLoops(none.session, none.dialogs);
    EXPECT_EQ(none.lastLog(), "-\"d.esp\" contains no dialogue responses.");
}

TEST(ExportQuotes, XmlAndKestrelFiles) {
    std::string npc = Rec("NPC_")
                          .z("NAME", "Fargoth")
                          .z("FNAM", "Fargoth")
                          .z("RNAM", "Wood Elf")
                          .z("CNAM", "Thief")
                          .bytes();
    std::string crab = Rec("CREA").z("NAME", "crab").z("FNAM", "Mud Crab").bytes();
    std::string odd = Rec("NPC_").z("NAME", "odd_id").z("FNAM", "odd_name").bytes();
    Fixture f({{"1", "fargoth", "Welcome, %Name the %RACE."},
               {"2", "crab", "I am %name, a %class of %faction."},
               {"3", "", "Nobody speaks."},
               {"4", "fargoth", "Hello %PC."},
               {"5", "odd_id", "Odd."},
               {"6", "unknown_guy", "Who?"}},
              {npc, crab, odd});
    f.dialogs.savePaths = {f.dir.file("q.xml")};
    f.dialogs.inputs = {"Seyda Neen"};
    ExportQuotesXml(f.session, f.dialogs);
    EXPECT_EQ(
        readAll(f.dir.file("q.xml")),
        "<quotes><quote><text>Welcome, Fargoth the Wood Elf.</text><npc>Fargoth</npc><city>Seyda Neen</city>"
        "</quote><quote><text>I am Mud Crab, a  of .</text><npc>Mud Crab</npc><city>Seyda Neen</city></quote>"
        "<quote><text>Hello %PC.</text><npc>Fargoth</npc><city>Seyda Neen</city></quote><quote><text>Odd."
        "</text><npc>odd_name</npc><city>Seyda Neen</city></quote><quote><text>Who?</text><npc>Unknown_guy"
        "</npc><city>Seyda Neen</city></quote></quotes>");
    EXPECT_EQ(f.lastLog(), "-Exported 6 responses from \"d.esp\" successfully.");

    f.dialogs.savePaths = {f.dir.file("q.kst")};
    f.dialogs.prompts.clear();
    // An empty answer for a found name falls back to the actor ID, asked for in turn when it
    // holds "_"; the typed text replaces a name even when empty.
    f.dialogs.inputs = {"Seyda Neen", "", "Odd Name", ""};
    ExportQuotesKst(f.session, f.dialogs);
    std::string kst = readAll(f.dir.file("q.kst"));
    ASSERT_EQ(kst.size(), 4u * 576); // no "%PC" response, no actor-less response
    EXPECT_EQ(kst.substr(0, 32), fixed("Fargoth", 32));
    EXPECT_EQ(kst.substr(32, 32), fixed("Seyda Neen", 32));
    EXPECT_EQ(kst.substr(64, 512), fixed("Welcome, Fargoth the Wood Elf.", 512));
    EXPECT_EQ(kst.substr(2 * 576, 32), fixed("Odd Name", 32));
    // The prompts: the city, then each name holding "_", as the box's only text.
    EXPECT_EQ(f.dialogs.prompts,
              (std::vector<std::string>{"Please, enter the name of the city to export from:", "odd_name",
                                        "Odd_id", "Unknown_guy"}));
    EXPECT_EQ(kst.substr(3 * 576, 32), std::string(32, '\0'));
}

// Two deliberate departures from the classic export: the file is replaced whole, so a longer
// older file leaves no stale tail, and a write that fails is reported instead of logged as done.
TEST(ExportQuotes, DeliberatelyReplacedWholeAndFailuresReported) {
    std::string npc = Rec("NPC_").z("NAME", "Fargoth").z("FNAM", "Fargoth").bytes();
    Fixture f({{"1", "fargoth", "Hi."}}, {npc});
    std::string path = f.dir.write("q.kst", std::string(5000, 'x'));
    f.dialogs.savePaths = {path};
    f.dialogs.inputs = {"Balmora"};
    ExportQuotesKst(f.session, f.dialogs);
    EXPECT_EQ(readAll(path).size(), 576u);

    f.dialogs.savePaths = {f.dir.file("no-such-folder/q.xml")};
    f.dialogs.inputs = {"Balmora"};
    ExportQuotesXml(f.session, f.dialogs);
    EXPECT_EQ(f.lastLog(), "-An error occured during dialogue exporting.");
    EXPECT_NE(f.dialogs.messages.back().find("could not be written"), std::string::npos);
}

// The quote file's text is the filled text cut to its field: filled whole when that stays small,
// found without filling all of it when it could grow out of bounds.
TEST(ExportQuotes, KestrelTextIsTheFilledTextCutToItsField) {
    std::string npc = Rec("NPC_")
                          .z("NAME", "a")
                          .z("FNAM", "the %RACE " + std::string(500, 'n')) // a name that holds a placeholder
                          .z("RNAM", "Dark Elf")
                          .z("CNAM", "%name")
                          .bytes();
    std::string growing;
    for (int i = 0; i < 3000; ++i)
        growing += i % 3 ? "%Name %nAmE " : "%class, %Faction; %%race ";
    for (const std::string& text : {growing, std::string("%class and %Name, a %race.")}) {
        Fixture f({{"1", "a", text}}, {npc});
        f.dialogs.savePaths = {f.dir.file("q.xml")};
        f.dialogs.inputs = {"Vivec"};
        ExportQuotesXml(f.session, f.dialogs);
        std::string xml = readAll(f.dir.file("q.xml"));
        std::string filled = xml.substr(xml.find("<text>") + 6, 512);
        filled = filled.substr(0, filled.find("</text>"));
        f.dialogs.savePaths = {f.dir.file("q.kst")};
        f.dialogs.inputs = {"Vivec"};
        ExportQuotesKst(f.session, f.dialogs);
        std::string kst = readAll(f.dir.file("q.kst")).substr(64, 512);
        EXPECT_EQ(kst.substr(0, kst.find('\0')), filled);
        EXPECT_GT(filled.size(), text.size() < 100 ? 500u : 511u);
    }
}

TEST(Corpus, ExportThenImportChangesNothing) {
    QUILLON_NEED_CORPUS();
    for (const std::string& path : corpusFiles()) {
        SCOPED_TRACE(path);
        TempDir dir;
        Session s;
        ScriptedDialogs d;
        d.answers = {Answer::Cancel}; // keep every unknown record
        openPath(s, d, path);
        if (s.store.INFO.empty() || s.store.INFO.front().INAMSize == 0) continue;
        ScriptedPrompts prompts;
        std::string before = serialiseStore(s.store, 1, 0, prompts);
        exportDialogueTo(s, d, dir.file("d.txt"));
        d.answers = {Answer::No};
        importDialogueFrom(s, d, dir.file("d.txt"));
        std::string log = s.log.caption();
        bool quoteEndsLine = false; // a text line ending in a quote ends the text early on import
        for (const InfoRecord& r : s.store.INFO)
            quoteEndsLine |= r.NAME.find("\"\r\n") != std::string::npos || r.NAME.size() > kMaxResponse;
        if (quoteEndsLine) continue;
        EXPECT_NE(log.find("-Imported "), std::string::npos);
        EXPECT_TRUE(serialiseStore(s.store, 1, 0, prompts) == before);
    }
}

// The command line answers by these identities and exits by these outcomes, never by the words.
TEST(Commands, NameTheirQuestionsAndReportTheirOutcomes) {
    Fixture f({{"7", "fargoth", "Hi."}});
    f.dialogs.answers = {Answer::No, Answer::No};
    Outcome imported = importDialogueFrom(
        f.session, f.dialogs,
        f.dir.write("in.txt", "\"7\"\r\n\"Topic\"\r\n\"fargoth\"\r\n\"" + std::string(600, 'x') + "\"\r\n"));
    EXPECT_TRUE(imported.isDone());
    ASSERT_EQ(f.dialogs.asked.size(), 2u);
    EXPECT_EQ(f.dialogs.asked[0].id, QuestionId::RemoveLineBreaks);
    EXPECT_EQ(f.dialogs.asked[1].id, QuestionId::LongResponse);
    EXPECT_EQ(f.dialogs.asked[1].subject, "7");

    Outcome mismatch = importDialogueFrom(f.session, f.dialogs, f.dir.write("bad.txt", "\"8\"\r\n"));
    EXPECT_TRUE(mismatch.isFailed());
    EXPECT_NE(mismatch.reason().find("line 1. Required ID: \"7\". Found: \"8\""), std::string::npos);

    f.dialogs.savePaths = {""};
    EXPECT_TRUE(ExportDialogue(f.session, f.dialogs).isDeclined());
    f.dialogs.savePaths = {f.dir.file("q.xml")};
    f.dialogs.inputs = {"Balmora"};
    EXPECT_TRUE(ExportQuotesXml(f.session, f.dialogs).isDone());
    EXPECT_EQ(f.dialogs.asked.back().id, QuestionId::CityName);

    Fixture empty({});
    EXPECT_TRUE(empty.session.store.INFO.empty());
    EXPECT_TRUE(exportDialogueTo(empty.session, empty.dialogs, empty.dir.file("e.txt")).isFailed());
    EXPECT_TRUE(DetectLoops(empty.session, empty.dialogs).isDeclined());
}

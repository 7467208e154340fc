// The dialogue check and diff, as a nightly build runs them from the command line.
#include "app/file_commands.h"
#include "cli_run.h"
#include "helpers.h"
#include "workbench/check.h"

using namespace quillon;
using namespace quillon::test;

namespace {

// A response shown on choice `shownOn` (0: on no choice) whose script is `script`.
std::string scripted(const std::string& id, const std::string& text, std::int32_t shownOn,
                     const std::string& script) {
    Rec r("INFO");
    r.z("INAM", id).sub("DATA", std::string(12, '\0')).z("ONAM", "npc").text("NAME", text);
    if (shownOn) r.sub("SCVR", scvr('0', '1', "50", '0')).i32("INTV", shownOn);
    if (!script.empty()) r.text("BNAM", script);
    return r.bytes();
}

// A plugin of topic "T" (and "Known") with these responses, and a master named in its header.
std::string plugin(std::initializer_list<std::string> responses, const std::string& master = "") {
    Rec header("TES3");
    header.sub("HEDR", hedr(0));
    if (!master.empty()) header.z("MAST", master).sub("DATA", std::string(8, '\0'));
    std::string bytes = header.bytes() + Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes();
    for (const std::string& r : responses)
        bytes += r;
    return bytes + Rec("DIAL").z("NAME", "Known").sub("DATA", std::string(1, '\0')).bytes();
}

} // namespace

TEST(Check, EachKindOnAMadePlugin) {
    TempDir dir;
    std::string path = dir.write(
        "w.esp", plugin({scripted("1", "Again?", 1, "Choice \"Again\" 1"),
                         scripted("2", "Pick.", 0, "Choice, \"One\", 1, \"Five\", 5\r\nAddTopic \"Known\""),
                         scripted("3", "Go.", 0, "addtopic \"Elsewhere\" ; from the master"),
                         scripted("4", std::string(600, 'x'), 0, ""),
                         scripted("5", "Beware the sea of ghosts.", 0, "")},
                        "Master.esm"));
    // Without its master nothing the master could settle is judged: no choice, no topic.
    CliRun r = cli({"check", path});
    EXPECT_EQ(r.status, 1);
    std::string p = path + ": ";
    EXPECT_EQ(
        r.out,
        p +
            "master: TES3 \"Master.esm\": not found (beside the file, in the --data folders, OpenMW's "
            "data folders or the game's Data Files); choice, topic, reference, shadowed, order and link "
            "findings, undeclared variables and capitalised words of the spelling check are left out, "
            "since its records could settle them (give it with --data DIR or --openmw-cfg FILE, or its "
            "summary with --master-summary FILE, which stands in for all but shadowed, order and link)\n" +
            p + "loop: INFO 1 (topic \"T\", actor \"npc\"): choice 1 offered again: Choice \"Again\" 1\n" +
            p + "long: INFO 4 (topic \"T\", actor \"npc\"): 600 characters, over 512\n" + p +
            "style: INFO 5 (topic \"T\", actor \"npc\"): the clean-up changes letter case only: \"Beware "
            "the sea of ghosts.\" -> \"Beware the Sea Of Ghosts.\"\n");

    // The master beside the file (in another letter case) holds the topic: no topic finding; the
    // choice no response of the topic answers is one.
    dir.write("master.ESM",
              file(0, {Rec("DIAL").z("NAME", "ELSEWHERE").sub("DATA", std::string(1, '\0')).bytes()}));
    CliRun withMaster = cli({"check", path, "--only", "topic,master,choice"});
    EXPECT_EQ(withMaster.out,
              p + "choice: INFO 2 (topic \"T\", actor \"npc\"): choice 5 is offered but no response "
                  "of the topic is shown on it: Choice, \"One\", 1, \"Five\", 5\n");
    EXPECT_EQ(withMaster.status, 1);
    // A script ends at its first NUL byte, and a colon after Choice is passed over.
    std::string ended = dir.write(
        "n.esp",
        plugin({scripted("1", "Pick.", 0, std::string("Choice: \"One\" 1\r\n\0Choice \"x\" 7", 30))}));
    CliRun nul = cli({"check", ended, "--only", "choice,script"});
    EXPECT_EQ(nul.out,
              ended + ": choice: INFO 1 (topic \"T\", actor \"npc\"): choice 1 is offered but no response of "
                      "the topic is shown on it: Choice: \"One\" 1\n");
}

TEST(Check, JsonExitCodesAndSeveralFiles) {
    TempDir dir;
    std::string clean = dir.write("clean.esp", plugin({scripted("1", "Hello.", 0, "")}));
    std::string loop = dir.write("loop.esp", plugin({scripted("1", "Again?", 1, "Choice \"Again\" 1")}));
    EXPECT_EQ(cli({"check", clean}).status, 0);
    EXPECT_EQ(cli({"check", clean, "--only", "loops"}).status, 2);

    CliRun both = cli({"check", clean, loop, "--only", "loop"});
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.out.rfind(loop + ": loop: INFO 1", 0), 0u) << both.out;

    CliRun json = cli({"check", loop, "--json", "--only", "loop,style"});
    EXPECT_EQ(json.out,
              "[\n {\"file\": \"" + loop +
                  "\", \"kind\": \"loop\", \"record\": \"INFO\", \"id\": \"1\", \"topic\": \"T\", "
                  "\"actor\": \"npc\", \"detail\": \"choice 1 offered again: Choice \\\"Again\\\" 1\"}\n]\n");
    EXPECT_EQ(cli({"check", clean, "--json"}).out, "[]\n");

    CliRun loops = cli({"loops", clean, loop});
    EXPECT_EQ(loops.out,
              loop + ": INFO 1 (topic \"T\", actor \"npc\"): choice 1 offered again: Choice \"Again\" 1\n");
}

TEST(Check, RecordsSaveWouldDamageAndUnknownTypes) {
    TempDir dir;
    std::string bytes = plugin({scripted("1", "Hello.", 0, "")}) + Rec("LUAL").z("NAME", "script").bytes();
    CliRun r = cli({"check", dir.write("u.esp", bytes), "--only", "unknown,damage"});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("unknown: LUAL: record of unknown type at byte "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("damage: LUAL \"script\": "), std::string::npos) << r.out;
}

TEST(DiffDialogue, AnImportEditedCopy) {
    TempDir dir;
    std::string old =
        dir.write("old.esp", plugin({scripted("1", "Hello.", 0, ""), scripted("2", "Bye.", 0, "")}));
    EXPECT_EQ(cli({"diff-dialogue", old, old}).status, 0);
    ASSERT_EQ(cli({"export-dialogue", old, "-o", dir.file("d.txt")}).status, 0);
    std::string text = readAll(dir.file("d.txt"));
    text.replace(text.find("Bye."), 4, "Farewell,\r\nfriend.");
    dir.write("d.txt", text);
    ASSERT_EQ(cli({"import-dialogue", old, dir.file("d.txt"), "-o", dir.file("new.esp")}).status, 0);

    CliRun r = cli({"diff-dialogue", old, dir.file("new.esp")});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out,
              "changed text: INFO 2 (topic \"T\", actor \"npc\"): \"Bye.\" -> \"Farewell,\\r\\nfriend.\"\n");
    std::string fewer =
        dir.write("fewer.esp", plugin({scripted("1", "Hello!", 0, ""), scripted("3", "New.", 1, "")}));
    CliRun json = cli({"diff-dialogue", old, fewer, "--json"});
    EXPECT_EQ(json.out.find("{\"change\": \"removed\", \"field\": \"text\", \"id\": \"2\""), 3u) << json.out;
    EXPECT_NE(json.out.find("{\"change\": \"changed\", \"field\": \"text\", \"id\": \"1\""),
              std::string::npos);
    EXPECT_NE(json.out.find("{\"change\": \"added\", \"field\": \"text\", \"id\": \"3\""), std::string::npos);
}

// The window's Check Dialogue without the window: the findings reach the dialogs, and a response
// edited from the list keeps its sizes in step with its text.
TEST(CheckDialogue, ShowsFindingsAndEditsAResponse) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("w.esp", plugin({scripted("1", "Again?", 1, "Choice \"Again\" 1")})));
    std::int32_t size = s.store.INFO[0].Size, textSize = s.store.INFO[0].NAMESize;
    d.findingsToEdit = {0};
    d.edits = {"Once more?"};
    EXPECT_TRUE(CheckDialogue(s, d).isDone());
    ASSERT_EQ(d.findingsShown.size(), 1u);
    EXPECT_EQ(d.findingsShown[0].kind, "loop");
    EXPECT_EQ(d.textsAfterEdit, std::vector<std::string>{"Once more?"});
    EXPECT_EQ(s.store.INFO[0].Size, size + 4);
    EXPECT_EQ(s.store.INFO[0].NAMESize, textSize + 4);
    EXPECT_EQ(lastLog(s), "-Checked 1 responses from \"w.esp\": 1 findings.");
}

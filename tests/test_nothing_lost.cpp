// No command, answer, cancel or failure empties, truncates or replaces a file the user did not
// ask to replace, and no edit is dropped without a question.
#include "app/file_commands.h"
#include "cli_run.h"
#include "dialogue/dialogue_commands.h"
#include "helpers.h"
#include "npclist/npc_list.h"
#include "translation/translation_commands.h"
#include "writer/es_write.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace quillon;
using namespace quillon::test;

namespace {

std::string dialoguePlugin() {
    return oneTopic({response("1", "fargoth", "Hello."), response("2", "fargoth", "Farewell.")});
}

// A plugin whose second record is of a type nobody knows.
std::string pluginWithUnknownRecord() {
    return file(0, {Rec("GLOB").z("NAME", "g").sub("FNAM", "f").sub("FLTV", le32(0)).bytes(),
                    Rec("ZZZZ").z("NAME", "x").bytes(),
                    Rec("GLOB").z("NAME", "h").sub("FNAM", "f").sub("FLTV", le32(0)).bytes()});
}

struct FileState {
    std::string bytes;
    ino_t inode;
    mode_t mode;
};

FileState stateOf(const std::string& path) {
    struct stat st {};
    ::stat(path.c_str(), &st);
    return {readAll(path), st.st_ino, mode_t(st.st_mode & 07777)};
}

void expectUntouched(const std::string& path, const FileState& before, const std::string& what) {
    FileState now = stateOf(path);
    EXPECT_EQ(now.inode, before.inode) << what;
    EXPECT_TRUE(now.bytes == before.bytes) << what;
    EXPECT_EQ(now.mode, before.mode) << what;
}

} // namespace

TEST(NothingLost, ReadOnlyFilesAreReplacedOnlyWhenTheUserSaysSo) {
    TempDir dir;
    std::string plugin = dir.write("p.esp", dialoguePlugin());
    std::string target = dir.write("target.out", "keep me");
    ::chmod(target.c_str(), 0444);
    ::chmod(plugin.c_str(), 0444);
    FileState pluginBefore = stateOf(plugin), targetBefore = stateOf(target);
    // Every command that writes refuses, whoever runs it (the superuser could write the file).
    const std::vector<std::vector<std::string>> commands = {
        {"save", plugin},
        {"save", plugin, "-o", target},
        {"export-dialogue", plugin, "-o", target},
        {"translate-template", plugin, "-o", target},
        {"quotes", plugin, "--city", "Seyda Neen", "--format", "xml", "-o", target},
        {"morrowindize", plugin, "-o", target},
    };
    for (const auto& args : commands) {
        CliRun r = cli(args);
        EXPECT_EQ(r.status, 1) << args[0] << r.err;
        EXPECT_NE(r.err.find("is read-only. Replace it all the same? (it has been left as it is; add "
                             "--replace-read-only to replace it)"),
                  std::string::npos)
            << args[0] << r.err;
        expectUntouched(plugin, pluginBefore, args[0]);
        expectUntouched(target, targetBefore, args[0]);
    }
    // Asked for, the file is replaced and stays read-only.
    CliRun replaced = cli({"export-dialogue", plugin, "-o", target, "--replace-read-only"});
    EXPECT_EQ(replaced.status, 0) << replaced.err;
    FileState after = stateOf(target);
    EXPECT_EQ(after.bytes.substr(0, 3), "\"1\"");
    EXPECT_EQ(after.mode, mode_t(0444));

    // The window asks, and No keeps the file; other permissions are kept as they were.
    Session s;
    ScriptedDialogs d;
    openPath(s, d, plugin);
    d.answers = {Answer::No};
    EXPECT_TRUE(Save(s, d).isDeclined());
    ASSERT_FALSE(d.asked.empty());
    EXPECT_EQ(d.asked.back().id, QuestionId::ReplaceReadOnly);
    EXPECT_EQ(lastLog(s), "-An error occured. Nothing has been written.");
    expectUntouched(plugin, pluginBefore, "window save answered No");
    ::chmod(plugin.c_str(), 0640);
    // Another owner and group are kept where the system lets this user give them.
    bool superuser = ::geteuid() == 0 && ::chown(plugin.c_str(), 1234, 5678) == 0;
    EXPECT_TRUE(Save(s, d).isDone());
    struct stat saved {};
    ::stat(plugin.c_str(), &saved);
    EXPECT_EQ(saved.st_mode & 07777, mode_t(0640));
    if (superuser) {
        EXPECT_EQ(saved.st_uid, uid_t(1234));
        EXPECT_EQ(saved.st_gid, gid_t(5678));
    }
}

TEST(NothingLost, OutputsAppearOnlyOnceComplete) {
    TempDir dir;
    // The NPC list keeps the old list when no cell name follows, and its dialog asks first.
    std::string world = dir.write(
        "w.esp", file(0, {Rec("NPC_").z("NAME", "a").z("FNAM", "A").bytes(),
                          Rec("CELL").z("NAME", "c").sub("DATA", le32(1) + le32(0) + le32(0)).bytes()}));
    std::string sheet = dir.write("sheet.txt", "last week's list");
    Session s;
    ScriptedDialogs d;
    openPath(s, d, world);
    d.savePaths = {sheet};
    d.inputs = {""};
    EXPECT_TRUE(ExportNpcList(s, d, NpcListFormat::PlainText, false).isDeclined());
    EXPECT_EQ(readAll(sheet), "last week's list");
    EXPECT_TRUE(d.fileRequests.back().flags & PromptOverwrite);
    // The translation template's dialog asks before it replaces a translated PO.
    d.savePaths = {""};
    ExportTranslationTemplate(s, d);
    EXPECT_TRUE(d.fileRequests.back().flags & PromptOverwrite);

    // Refused, declined or failed saves leave no file behind.
    std::string plugin = dir.write("p.esp", dialoguePlugin());
    std::string cut = dir.write("cut.esp", std::string("TES3\xff\0\0\0\0\0\0\0\0\0\0\0HEDR", 20));
    struct Case {
        std::vector<std::string> args;
        const char* target;
    };
    for (const Case& c : std::vector<Case>{
             {{"save", plugin, "-o", dir.file("declined.ess"), "--no"}, "declined.ess"},
             {{"save", cut, "-o", dir.file("refused.esp")}, "refused.esp"},
             {{"save", dir.write("u.esp", pluginWithUnknownRecord()), "-o", dir.file("damaged.esp")},
              "damaged.esp"},
         }) {
        cli(c.args);
        EXPECT_FALSE(std::filesystem::exists(dir.file(c.target))) << c.target;
    }
}

TEST(NothingLost, AStoreReadInPartIsNotSavedOverItsFileUnasked) {
    TempDir dir;
    std::string path = dir.write("u.esp", pluginWithUnknownRecord());
    FileState before = stateOf(path);
    Session s;
    ScriptedDialogs d;
    d.answers = {Answer::No}; // stop at the unknown record: nothing stays open
    openPath(s, d, path);
    EXPECT_EQ(lastLog(s),
              "-Warning: reading stopped at a record of unknown type; no record of \"u.esp\" is open.");
    EXPECT_FALSE(s.readWhole);
    d.answers = {Answer::No};
    EXPECT_TRUE(Save(s, d).isDeclined());
    EXPECT_EQ(d.asked.back().id, QuestionId::SaveIncompleteRead);
    EXPECT_EQ(lastLog(s), "-An error occured. Nothing has been written.");
    expectUntouched(path, before, "save of a read stopped early");

    // A file cut short is read in part too; a whole one is not.
    std::string whole = dialoguePlugin();
    for (auto [bytes, partial] :
         {std::pair{whole.substr(0, whole.size() - 5), true}, std::pair{whole, false}}) {
        Session t;
        ScriptedDialogs e;
        e.answers = {Answer::Cancel};
        openPath(t, e, dir.write("d.esp", bytes));
        EXPECT_EQ(t.readWhole, !partial) << t.log.caption();
    }
}

TEST(NothingLost, ChangedRecordsAreOfferedForSavingBeforeTheyAreDropped) {
    TempDir dir;
    std::string path = dir.write("p.esp", dialoguePlugin());
    Session s;
    ScriptedDialogs d;
    openPath(s, d, path);
    EXPECT_TRUE(mayDropRecords(s, d));
    EXPECT_TRUE(d.asked.empty()); // nothing changed: nothing to ask

    std::string text = readAll(dir.file("p.esp"));
    d.savePaths = {dir.file("out.txt")};
    ExportDialogue(s, d);
    std::string exported = readAll(dir.file("out.txt"));
    exported.replace(exported.find("Hello."), 6, "Greetings.");
    d.answers = {Answer::No}; // keep line breaks
    ASSERT_TRUE(importDialogueText(s, d, exported, false).isDone());
    EXPECT_TRUE(s.modified);

    d.answers = {Answer::Cancel};
    EXPECT_FALSE(mayDropRecords(s, d));
    EXPECT_EQ(d.asked.back().id, QuestionId::SaveChanges);
    EXPECT_EQ(d.messages.back(), "Save changes to \"p.esp\"?");
    d.answers = {Answer::No};
    EXPECT_TRUE(mayDropRecords(s, d)); // discard
    EXPECT_EQ(readAll(path), text);
    d.answers = {Answer::Yes};
    EXPECT_TRUE(mayDropRecords(s, d)); // save first
    EXPECT_NE(readAll(path).find("Greetings."), std::string::npos);
    EXPECT_FALSE(s.modified);

    // The setting turned off gives the old behaviour: no question.
    s.modified = true;
    s.askBeforeDiscarding = false;
    std::size_t asked = d.asked.size();
    EXPECT_TRUE(mayDropRecords(s, d));
    EXPECT_EQ(d.asked.size(), asked);
}

TEST(SaveAs, StartsOnTheOpenFilesTypeAndAddsTheChosenExtension) {
    EXPECT_EQ(filterExtension(kSaveDataFilter, 1, ".esp"), ".esm");
    EXPECT_EQ(filterExtension(kSaveDataFilter, 5, ".esp"), ".omwaddon");
    EXPECT_EQ(filterExtension(kSaveDataFilter, 7, ".esm"), ".esm"); // All Files: the open file's own
    EXPECT_EQ(filterExtension(kSaveDataFilter, 99, ".esp"), ".esp");
    EXPECT_EQ(filterIndexOf(kSaveDataFilter, ".OmwAddon"), 5);
    EXPECT_EQ(filterIndexOf(kSaveDataFilter, ".txt"), 0);

    TempDir dir;
    for (auto [name, index, extension] :
         {std::tuple{"m.esm", 1, ".esm"}, std::tuple{"a.omwaddon", 5, ".omwaddon"},
          std::tuple{"x.esp", 2, ".esp"}}) {
        Session s;
        ScriptedDialogs d;
        openPath(s, d, dir.write(name, dialoguePlugin()));
        d.savePaths = {""};
        EXPECT_TRUE(SaveAs(s, d).isDeclined());
        EXPECT_EQ(d.fileRequests.back().filterIndex, index) << name;
        EXPECT_EQ(d.fileRequests.back().defaultExtension, extension) << name;
    }
}

TEST(NothingLost, AnImportThatRefusesLongTextsNamesEachAndChangesNothing) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("p.esp", dialoguePlugin()));
    ScriptedPrompts prompts;
    std::string before = serialiseStore(s.store, 3, 0, prompts);
    std::string text = "\"1\"\r\n\"T\"\r\n\"fargoth\"\r\n\"" + std::string(600, 'a') + "\"\r\n\r\n\r\n" +
                       "\"2\"\r\n\"T\"\r\n\"fargoth\"\r\n\"" + std::string(513, 'b') + "\"\r\n";
    ImportAnswers answers;
    answers.removeLineBreaks = false;
    answers.longTexts = ImportAnswers::LongTexts::Refuse;
    EXPECT_TRUE(importDialogueFrom(s, d, dir.write("in.txt", text), answers).isFailed());
    EXPECT_TRUE(d.asked.empty()); // every answer was given
    EXPECT_EQ(d.messages.back(),
              "response \"1\" is longer than 512 characters (topic \"T\", actor \"fargoth\")\n"
              "response \"2\" is longer than 512 characters (topic \"T\", actor \"fargoth\")\n"
              "Shorten them in the text file; nothing has been imported.");
    EXPECT_EQ(serialiseStore(s.store, 3, 0, prompts), before);
    EXPECT_FALSE(s.modified);

    answers.longTexts = ImportAnswers::LongTexts::Trim;
    EXPECT_TRUE(importDialogueFrom(s, d, dir.file("in.txt"), answers).isDone());
    EXPECT_EQ(s.store.INFO[0].NAME, std::string(512, 'a'));
    EXPECT_TRUE(s.modified);
}

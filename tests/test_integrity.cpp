// A data file is never written damaged without the user's choice: everything the format allows is
// kept, the editors' deletions are read as they mean them, and output that would not frame is
// named, refused, repaired or forced.
#include "app/file_commands.h"
#include "cli/commands.h"
#include "dialogue/dialogue_commands.h"
#include "helpers.h"
#include "records/es_read.h"
#include "writer/es_write.h"

#include <sstream>

using namespace quillon;
using namespace quillon::test;

namespace {

// The records of a file written back from bytes, header included.
Serialised rewrite(const std::string& bytes, bool repairing = false) {
    RecordStore store = readStore(bytes);
    ScriptedPrompts prompts;
    return serialiseChecked(store, 1, 0, prompts, repairing);
}

std::string header() {
    return Rec("TES3").sub("HEDR", hedr(0)).bytes();
}

std::string effect(char fill) {
    return std::string(24, fill);
}

int run(std::vector<std::string> args, std::string* err = nullptr) {
    std::ostringstream out, errors;
    int code = runCli(args, out, errors);
    if (err) *err = errors.str();
    return code;
}

} // namespace

TEST(KeepEverything, SlotOverflowsRoundTripByteForByte) {
    Rec clot("CLOT");
    clot.z("NAME", "robe").z("MODL", "m.nif").sub("CTDT", std::string(12, '\0'));
    for (int i = 0; i < 17; ++i)
        clot.sub("INDX", std::string(1, char(i))).text("BNAM", "part" + std::to_string(i));
    Rec spel("SPEL");
    spel.z("NAME", "s").sub("SPDT", std::string(12, '\0'));
    for (char c = 'a'; c < 'a' + 9; ++c)
        spel.sub("ENAM", effect(c));
    Rec npc("NPC_");
    npc.z("NAME", "n").z("MODL", "m").sub("NPDT", std::string(12, '\0')).i32("FLAG", 0);
    for (int i = 0; i < 5; ++i)
        npc.sub("DODT", std::string(24, char(i))).z("DNAM", "Cell " + std::to_string(i));
    Rec info("INFO");
    info.z("INAM", "i").sub("DATA", std::string(12, '\0'));
    for (char slot = '0'; slot < '7'; ++slot)
        info.sub("SCVR", scvr(slot, '1', "00", '0')).i32("INTV", slot);
    // The record after the overflowing one is the one a short write used to swallow.
    std::string acti = Rec("ACTI").z("NAME", "after").z("MODL", "a.nif").bytes();
    for (const std::string& record : {clot.bytes(), spel.bytes(), npc.bytes()}) {
        Serialised out = rewrite(header() + record + acti);
        EXPECT_TRUE(out.damaged.empty()) << record.substr(0, 4);
        std::vector<std::string> records = splitRecords(out.bytes);
        ASSERT_EQ(records.size(), 3u) << record.substr(0, 4);
        EXPECT_EQ(std::count(records.begin(), records.end(), record), 1) << record.substr(0, 4);
        EXPECT_EQ(std::count(records.begin(), records.end(), acti), 1) << record.substr(0, 4);
    }
    Rec dial = Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0'));
    Serialised out = rewrite(header() + dial.bytes() + info.bytes());
    EXPECT_TRUE(out.damaged.empty());
    EXPECT_EQ(splitRecords(out.bytes).back(), info.bytes());
}

TEST(KeepEverything, LaterRunsOfInventorySpellsAndDestinationsAreKept) {
    auto item = [](const char* id) { return le32(1) + fixed(id, 32); };
    Rec npc("NPC_");
    npc.z("NAME", "n").z("MODL", "m").sub("NPDT", std::string(12, '\0')).i32("FLAG", 0);
    npc.sub("NPCO", item("a"))
        .sub("NPCS", fixed("s1", 32))
        .sub("NPCO", item("b"))
        .sub("NPCS", fixed("s2", 32));
    npc.sub("DODT", std::string(24, '\1'))
        .sub("AI_W", std::string(14, '\0'))
        .sub("DODT", std::string(24, '\2'));
    Serialised out = rewrite(header() + npc.bytes());
    EXPECT_TRUE(out.damaged.empty());
    // Written in the writers' order: all inventory, all spells, then the destinations.
    Rec expected("NPC_");
    expected.z("NAME", "n").z("MODL", "m").sub("NPDT", std::string(12, '\0')).i32("FLAG", 0);
    expected.sub("NPCO", item("a"))
        .sub("NPCO", item("b"))
        .sub("NPCS", fixed("s1", 32))
        .sub("NPCS", fixed("s2", 32));
    expected.sub("DODT", std::string(24, '\1'))
        .sub("DODT", std::string(24, '\2'))
        .sub("AI_W", std::string(14, '\0'));
    EXPECT_EQ(splitRecords(out.bytes).back(), expected.bytes());
}

TEST(EditorDeletions, DeleWithoutTheFlagDeletesAndRoundTrips) {
    // As OpenMW-CS writes them: Flags 0, DELE, and only what identifies the record.
    std::string npc = Rec("NPC_").z("NAME", "gone").i32("DELE", 0).bytes();
    std::string dial = Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes();
    std::string info = Rec("INFO").z("INAM", "1").z("PNAM", "0").z("NNAM", "2").i32("DELE", 0).bytes();
    std::string scpt =
        Rec("SCPT").sub("SCHD", fixed("OldScript", 32) + std::string(20, '\0')).i32("DELE", 0).bytes();
    std::string pgrd =
        Rec("PGRD").sub("DATA", std::string(12, '\0')).z("NAME", "Cell").i32("DELE", 0).bytes();
    std::string stat = Rec("STAT").z("NAME", "after").z("MODL", "a.nif").bytes();
    std::string bytes = header() + npc + scpt + stat + pgrd + dial + info;
    RecordStore store = readStore(bytes);
    ASSERT_EQ(store.SCPT.size(), 1u);
    EXPECT_EQ(store.STAT.size(), 1u); // the record after a deleted script is read as itself
    EXPECT_TRUE(isDeleted(store.NPC_.at(0)));
    EXPECT_EQ(store.NPC_[0].Flags, 0);
    Serialised out = rewrite(bytes);
    EXPECT_TRUE(out.damaged.empty());
    // Regrouped by type; every record itself unchanged.
    EXPECT_EQ(out.bytes, header() + scpt + stat + npc + pgrd + dial + info);
}

TEST(EditorDeletions, FlagsAloneLeaveScriptsAndPathGridsWhole) {
    std::string scpt =
        Rec("SCPT", 0x20).sub("SCHD", fixed("S", 32) + std::string(20, '\0')).text("SCTX", "x").bytes();
    std::string pgrd = Rec("PGRD", 0x20).sub("DATA", std::string(12, '\0')).z("NAME", "C").bytes();
    Serialised out = rewrite(header() + scpt + pgrd);
    EXPECT_EQ(out.bytes, header() + scpt + pgrd);
}

namespace {

// A plugin whose output cannot frame: a record of unknown type and a moved reference that names
// no cell.
std::string damagingPlugin() {
    std::string unknown = Rec("LUAL").z("NAME", "lua_script").text("DATA", std::string(4096, 'x')).bytes();
    std::string cell = Rec("CELL")
                           .z("NAME", "Balmora")
                           .sub("DATA", le32(0) + le32(0) + le32(0))
                           .sub("MVRF", le32(7))
                           .sub("CNAM", "") // names no cell
                           .sub("FRMR", le32(7))
                           .z("NAME", "chair")
                           .sub("DATA", std::string(24, '\0'))
                           .bytes();
    std::string stat = Rec("STAT").z("NAME", "s").z("MODL", "m").bytes();
    return header() + stat + cell + unknown;
}

} // namespace

TEST(DamagedOutput, IsNamedRefusedRepairedOrForced) {
    TempDir dir;
    std::string path = dir.write("mod.esp", damagingPlugin());
    Session s;
    ScriptedDialogs d;
    d.answers = {Answer::Yes}; // keep the unknown record
    openPath(s, d, path);
    std::string before = readAll(path);

    d.damageChoices = {DamageChoice::WriteNothing};
    EXPECT_FALSE(Save(s, d).isDone());
    EXPECT_EQ(readAll(path), before);
    EXPECT_EQ(lastLog(s), "-An error occured. Nothing has been written.");
    ASSERT_EQ(d.damageReports.size(), 1u);
    const DamageReport& report = d.damageReports[0];
    EXPECT_EQ(report.file, "mod.esp");
    EXPECT_TRUE(report.repairable);
    ASSERT_EQ(report.records.size(), 2u);
    EXPECT_EQ(report.records[0].tag, "CELL");
    EXPECT_EQ(report.records[0].id, "Balmora");
    EXPECT_NE(report.records[0].cause.find("moved reference"), std::string::npos);
    EXPECT_EQ(report.records[1].tag, "LUAL");
    EXPECT_EQ(report.records[1].id, "lua_script");
    EXPECT_EQ(report.records[1].offset, before.find("LUAL"));
    EXPECT_EQ(report.records[1].cause, "record of unknown type LUAL: its 4,123 bytes of data are not kept");

    d.damageChoices = {DamageChoice::Repair};
    ASSERT_TRUE(Save(s, d).isDone());
    std::string repaired = readAll(path);
    EXPECT_TRUE(framesThroughout(repaired));
    std::vector<std::string> records = splitRecords(repaired);
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[1], splitRecords(before)[1]);         // the undamaged STAT is untouched
    EXPECT_EQ(records[3], splitRecords(before)[3]);         // the unknown record keeps its data
    EXPECT_NE(records[2].find("chair"), std::string::npos); // the cell goes on past the moved reference

    d.damageChoices = {DamageChoice::WriteAsIs};
    ScriptedPrompts prompts;
    RecordStore fresh = readStore(before);
    std::string partsBytes = serialiseStore(fresh, 4, 0, prompts);
    d.answers = {Answer::Yes};
    openPath(s, d, dir.write("again.esp", before));
    ASSERT_TRUE(Save(s, d).isDone());
    EXPECT_EQ(readAll(dir.file("again.esp")), partsBytes);
    EXPECT_FALSE(framesThroughout(partsBytes));
}

TEST(DamagedOutput, CommandLineRefusesUnlessRepairOrForce) {
    TempDir dir;
    std::string in = dir.write("mod.esp", damagingPlugin());
    std::string err;
    EXPECT_EQ(run({"save", in, "-o", dir.file("out.esp")}, &err), 1);
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.esp")) && !readAll(dir.file("out.esp")).empty());
    EXPECT_NE(err.find("LUAL \"lua_script\", read at byte"), std::string::npos);
    EXPECT_NE(err.find("-Nothing has been written."), std::string::npos);
    EXPECT_EQ(run({"save", in, "-o", dir.file("fixed.esp"), "--repair"}), 0);
    EXPECT_TRUE(framesThroughout(readAll(dir.file("fixed.esp"))));
    EXPECT_EQ(run({"save", in, "-o", dir.file("forced.esp"), "--force"}), 0);
    EXPECT_FALSE(framesThroughout(readAll(dir.file("forced.esp"))));
    EXPECT_EQ(run({"save", in, "--repair", "--force"}), 2);
    // Nothing of the above touched the input.
    EXPECT_EQ(readAll(in), damagingPlugin());
}

TEST(DamagedOutput, EditsThatLeaveSizesBehindAreNamedAndRepaired) {
    std::string plugin = oneTopic({response("77", "fargoth", "Hello there.", "Choice \"Again\" 1")});
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("loop.esp", plugin));
    d.loopFixes = {LoopFix{LoopFixStatus::Accept, "Hello there, friend.", "Goodbye"}};
    DetectLoops(s, d);
    ASSERT_EQ(s.store.INFO[0].NAME, "Hello there, friend.");
    EXPECT_FALSE(Save(s, d).isDone());
    ASSERT_EQ(d.damageReports.size(), 1u);
    ASSERT_EQ(d.damageReports[0].records.size(), 1u);
    EXPECT_EQ(d.damageReports[0].records[0].id, "77");
    EXPECT_EQ(d.damageReports[0].records[0].cause, "response text changed by the loop fix without its sizes");
    d.damageChoices = {DamageChoice::Repair};
    ASSERT_TRUE(Save(s, d).isDone());
    RecordStore back = readStore(readAll(dir.file("loop.esp")));
    ASSERT_EQ(back.INFO.size(), 1u);
    EXPECT_EQ(back.INFO[0].NAME, "Hello there, friend.");
    EXPECT_EQ(back.INFO[0].BNAM, "Goodbye");
    EXPECT_TRUE(framesThroughout(readAll(dir.file("loop.esp"))));

    // An imported empty text: the record no longer writes its text, but its Size counts it.
    Session e;
    ScriptedDialogs ed;
    std::string emptied = dir.write("empty.esp", plugin);
    openPath(e, ed, emptied);
    std::string text = dir.write("t.txt", "\"77\"\r\n\"T\"\r\n\"fargoth\"\r\n\"\"\r\n");
    ed.openPaths = {text};
    ImportDialogue(e, ed);
    ASSERT_TRUE(e.store.INFO[0].NAME.empty());
    EXPECT_FALSE(Save(e, ed).isDone());
    ASSERT_EQ(ed.damageReports.size(), 1u);
    EXPECT_NE(ed.damageReports[0].records[0].cause.find("emptied by the import"), std::string::npos);
}

TEST(RiskyQuestions, SaveAfterARefusedOpenAsksBeforeReplacingAnotherFile) {
    TempDir dir;
    std::string mod = dir.write("mod.esp", header() + Rec("STAT").z("NAME", "s").z("MODL", "m").bytes());
    std::string notes = dir.write("notes.txt", "my notes");
    Session s;
    ScriptedDialogs d;
    openPath(s, d, mod);
    openPath(s, d, notes);             // refused by its name; the records of mod.esp stay
    EXPECT_FALSE(Save(s, d).isDone()); // unanswered: the default is No
    EXPECT_EQ(
        d.messages.back(),
        "The records open here were read from \"mod.esp\". Save would replace \"notes.txt\" with them.");
    EXPECT_EQ(readAll(notes), "my notes");
    EXPECT_EQ(lastLog(s), "-An error occured. Nothing has been written.");
    d.answers = {Answer::Yes};
    EXPECT_TRUE(Save(s, d).isDone());
    EXPECT_EQ(splitRecords(readAll(notes)).back(), splitRecords(readAll(mod)).back());
}

TEST(CommandLine, EmptyOutputNameAndEndOfOptions) {
    TempDir dir;
    std::string in = dir.write("-x.esp", header() + Rec("STAT").z("NAME", "s").z("MODL", "m").bytes());
    std::string before = readAll(in);
    std::string err;
    EXPECT_EQ(run({"save", in, "-o", ""}, &err), 2);
    EXPECT_NE(err.find("-o needs a file name"), std::string::npos);
    std::filesystem::path home = std::filesystem::current_path();
    std::filesystem::current_path(dir.file(""));
    EXPECT_EQ(run({"save", "-x.esp"}), 2); // taken for an option
    EXPECT_EQ(run({"save", "-o", "copy.esp", "--", "-x.esp"}), 0);
    std::filesystem::current_path(home);
    EXPECT_EQ(splitRecords(readAll(dir.file("copy.esp"))).back(), splitRecords(before).back());
}

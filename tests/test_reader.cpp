#include "helpers.h"
#include "records/byte_cursor.h"
#include "records/es_read.h"

using namespace quillon;
using namespace quillon::test;

namespace {

struct Read {
    RecordStore store;
    ScriptedPrompts prompts;
    std::int32_t count = 0;
    double ms = 0;
    ReadDiagnostics diagnostics;
};

std::unique_ptr<Read> read(const std::string& bytes, std::deque<Answer> replies = {}) {
    auto r = std::make_unique<Read>();
    r->prompts.replies = std::move(replies);
    r->ms = ReadESBuffer(r->store, bytes, r->count, false, r->prompts, &r->diagnostics);
    return r;
}

} // namespace

TEST(ByteCursor, ReadsPastTheEndAsZerosAndStaysFailed) {
    const std::uint8_t data[] = {1, 0, 0, 0, 7};
    ByteCursor in(data, sizeof data);
    EXPECT_EQ(in.i32(), 1);
    EXPECT_EQ(in.i32(), 0); // only one byte left: the value reads as zero
    EXPECT_TRUE(in.failed());
    EXPECT_EQ(in.pos(), 5u);
    EXPECT_EQ(in.text(100), "");
    ByteCursor sized(data, sizeof data);
    EXPECT_EQ(sized.text(-3), "");
    EXPECT_EQ(sized.ztext(1), ""); // size 1: the empty text, one byte passed over
    EXPECT_EQ(sized.pos(), 1u);
    sized.skip(1000);
    EXPECT_EQ(sized.pos(), 5u);

    const std::uint8_t tagged[] = {'N', 'A', 'M', 'E', 1, 0, 0};
    ByteCursor look(tagged, sizeof tagged);
    EXPECT_TRUE(look.nextIs(tag("NAME")));
    EXPECT_EQ(look.pos(), 0u); // looking takes nothing
    look.skip(4);
    EXPECT_EQ(look.peekTag(), 0u); // three bytes are no tag
    EXPECT_FALSE(look.failed());
}

TEST(ReadDialogue, TopicsStampTheirResponses) {
    auto r = read(file(4, {Rec("INFO").z("INAM", "orphan").bytes(),
                           Rec("DIAL").z("NAME", "first").sub("DATA", std::string(1, '\0')).bytes(),
                           Rec("DIAL").z("NAME", "Second").sub("DATA", std::string(4, '\x07')).bytes(),
                           Rec("INFO").z("INAM", "a").bytes()}));
    ASSERT_EQ(r->store.INFO.size(), 2u);
    EXPECT_EQ(r->store.INFO[0].Topic, ""); // before any DIAL
    EXPECT_EQ(r->store.INFO[1].Topic, "Second");
    EXPECT_EQ(r->store.DIAL[1].DATASize, 4);
    EXPECT_EQ(r->store.DIAL[1].DATA, 0); // the four bytes are passed over
    EXPECT_EQ(r->count, 5);
}

TEST(ReadDialogue, InfoFieldsAndConditions) {
    Rec info("INFO", 0x20);
    info.z("INAM", "id1")
        .sub("DATA", le32(4) + le32(30)) // read by its size: the bytes it lacks read as zeros
        .z("ONAM", "fargoth")
        .text("NAME", std::string("Hello\0", 6))
        .sub("SCVR", scvr('0', '1', "50", '0'))
        .i32("INTV", 2)
        .sub("SCVR", scvr('1', '2', "sX", '3', "gvar"))
        .f("FLTV", 1.5f)
        .sub("SCVR", scvr('2', '1', "46", '0'))
        .text("BNAM", std::string("Goodbye\0", 8))
        .sub("DELE", le32(0));
    for (char slot = '3'; slot <= '6'; ++slot)
        info.sub("SCVR", scvr(slot, '1', "00", '0')).i32("INTV", slot);
    auto r = read(file(1, {info.bytes()}));
    ASSERT_EQ(r->store.INFO.size(), 1u);
    const InfoRecord& i = r->store.INFO[0];
    EXPECT_EQ(i.DATASize, 8);
    EXPECT_EQ(i.DialogueType, 4);
    EXPECT_EQ(i.Disposition, 30);
    EXPECT_EQ(i.PCRank, 0);
    EXPECT_EQ(i.NAME, std::string("Hello\0", 6)); // whole texts keep a trailing zero
    EXPECT_EQ(i.BNAM, std::string("Goodbye\0", 8));
    EXPECT_EQ(i.Conditions[0].INTV, 2);
    EXPECT_EQ(i.Conditions[1].Name, "gvar");
    EXPECT_EQ(i.Conditions[1].FLTVSize, 4);
    EXPECT_EQ(i.Conditions[1].INTVSize, 0);
    EXPECT_EQ(i.Conditions[2].INTVSize, 0); // no value followed it
    EXPECT_EQ(i.Conditions[2].FLTVSize, 0);
    ASSERT_EQ(i.Conditions.size(), 7u); // a seventh condition is kept, not dropped
    EXPECT_EQ(i.Conditions[6].INTV, '6');
    EXPECT_EQ(i.Flags, 0x20); // DELE leaves the flags as they were and marks the record
    EXPECT_TRUE(i.Dele);
    EXPECT_TRUE(r->prompts.asked.empty());
}

TEST(ReadActors, RunsListsAndStatisticForms) {
    auto item = [](const char* id) { return le32(1) + fixed(id, 32); };
    auto follow = std::string(12, '\0') + le16(5) + fixed("target", 32) + le16(1);
    auto r = read(file(2, {Rec("NPC_")
                               .z("NAME", "n1")
                               .sub("NPDT", std::string(12, '\x05'))
                               .i32("FLAG", 0x12345601)
                               .sub("NPCO", item("a"))
                               .sub("NPCO", item("b"))
                               .sub("NPCS", fixed("spell", 32))
                               .sub("NPCO", item("c"))
                               .sub("AI_W", std::string(14, '\x01'))
                               .sub("AI_T", std::string(16, '\0'))
                               .sub("AI_W", std::string(14, '\x02'))
                               .sub("AI_F", follow)
                               .z("CNDT", "Balmora")
                               .sub("DODT", std::string(24, '\0'))
                               .z("DNAM", "Vivec")
                               .bytes(),
                           Rec("NPC_").z("NAME", "n2").sub("NPDT", std::string(52, '\x06')).bytes()}));
    ASSERT_EQ(r->store.NPC_.size(), 2u);
    const NpcRecord& n = r->store.NPC_[0];
    EXPECT_EQ(n.NPDTShort[0], 5);
    EXPECT_EQ(n.NPDT[0], 0);
    EXPECT_EQ(n.FLAG[0], 0x01);
    EXPECT_EQ(n.FLAG[1], 0x56);
    ASSERT_EQ(n.Inventory.size(), 3u); // the second run of NPCO is kept after the first
    EXPECT_EQ(fixedText(n.Inventory[2].Item), "c");
    EXPECT_EQ(n.Spells.size(), 1u);
    ASSERT_EQ(n.Wander.size(), 2u); // package lists count across runs
    EXPECT_EQ(n.Wander[1].Reset, 2);
    EXPECT_EQ(n.Travel.size(), 1u);
    ASSERT_EQ(n.Follow.size(), 1u);
    EXPECT_EQ(n.Follow[0].CNDT, "Balmora");
    EXPECT_EQ(n.Destinations[0].DNAM, "Vivec");
    EXPECT_EQ(r->store.NPC_[1].NPDT[51], 6);
    EXPECT_EQ(r->store.NPC_[1].NPDTShort[0], 0);
}

TEST(ReadCell, ReferencesPersistenceMovesAndSaveData) {
    auto ref = [](std::int32_t index, const std::string& id) {
        return "FRMR" + le32(4) + le32(index) + "NAME" + le32(std::int32_t(id.size() + 1)) + id +
               std::string(1, '\0');
    };
    std::string moved = "MVRF" + le32(4) + le32(9) + "CNAM" + le32(7) + "Balmora" + ref(9, "moved");
    auto r = read(file(1, {Rec("CELL")
                               .z("NAME", "Vivec")
                               .sub("DATA", le32(1) + le32(0) + le32(0))
                               .raw(ref(1, "a") + "ZNAM" + le32(1) + std::string(1, '\1'))
                               .raw(ref(2, "b") + "ACDT" + le32(3) + "xyz" + "DATA" + le32(24) +
                                    std::string(24, '\0') + "DATA" + le32(24) + std::string(24, '\x01'))
                               .sub("MPNT", std::string(10, '\0'))
                               .sub("DELE", le32(0))
                               .i32("NAM0", 2)
                               .raw(moved)
                               .raw(ref(3, "c") + "DELE" + le32(4) + le32(0))
                               .bytes()}));
    ASSERT_EQ(r->store.CELL.size(), 1u);
    const CellRecord& c = r->store.CELL[0];
    ASSERT_EQ(c.References.size(), 4u);
    EXPECT_EQ(c.References[0].Persistent, 1);
    EXPECT_EQ(c.References[0].Disabled, 1);
    EXPECT_EQ(c.References[1].more.view().SaveData, std::vector<std::string>{"ACDTxyz"});
    EXPECT_EQ(c.References[1].more.view().DATA2Size, 24);
    EXPECT_EQ(c.References[2].Persistent, 0);
    EXPECT_EQ(c.References[2].more.view().MovedCell, "Balmora");
    EXPECT_EQ(c.References[2].NAME, "moved");
    EXPECT_EQ(c.References[3].Deleted, 1);
    EXPECT_EQ(c.Deleted, 1);
    EXPECT_EQ(c.NAM0, 2);
    EXPECT_TRUE(r->prompts.asked.empty()); // MPNT was passed over, not mistaken for a record
}

TEST(ReadObjects, GlobalValueRules) {
    auto glob = [](const std::string& name, char kind, float v) {
        return Rec("GLOB").z("NAME", name).sub("FNAM", std::string(1, kind)).f("FLTV", v).bytes();
    };
    auto r = read(file(7, {glob("ratskilled", 'f', 5), glob("a", 's', 2.5f), glob("b", 's', 3.5f),
                           glob("c", 's', 40000), glob("d", 's', -32768), glob("e", 's', -32767),
                           glob("f", 'f', 2.5f)}));
    std::vector<float> values;
    for (const GlobRecord& g : r->store.GLOB)
        values.push_back(g.FLTV);
    EXPECT_EQ(values, (std::vector<float>{0, 2, 4, 0, 0, -32767, 2.5f}));
}

TEST(ReadObjects, TextsSlotsAndBodyParts) {
    Rec spel("SPEL");
    spel.z("NAME", "s");
    for (int i = 0; i < 9; ++i)
        spel.sub("ENAM", std::string(24, char('0' + i)));
    Rec armo("ARMO");
    armo.z("NAME", "a").sub("AODT", std::string(24, '\0'));
    armo.sub("INDX", "\x01").text("BNAM", "male").text("CNAM", "female");
    armo.sub("INDX", "\x02").text("CNAM", "c-first").text("BNAM", "b").text("CNAM", "c-last");
    auto r = read(file(4, {Rec("BOOK").z("NAME", "b").text("TEXT", std::string("words\0", 6)).bytes(),
                           spel.bytes(), armo.bytes(),
                           Rec("FACT")
                               .z("NAME", "f")
                               .sub("RNAM", fixed("Rank", 32))
                               .raw("ANAM" + le32(3) + std::string("ab\0", 3) + "XXXX" + le32(4) + le32(-5))
                               .bytes()}));
    EXPECT_EQ(r->store.BOOK[0].TEXT, std::string("words\0", 6));
    ASSERT_EQ(r->store.SPEL[0].Effects.size(), 9u); // a ninth effect is kept
    EXPECT_EQ(r->store.SPEL[0].Effects[8].ENAM[0], '8');
    const ArmoRecord& a = r->store.ARMO[0];
    EXPECT_EQ(a.Parts[0].BNAM, "male");
    EXPECT_EQ(a.Parts[0].CNAM, "female");
    EXPECT_EQ(a.Parts[1].BNAM, "b");
    EXPECT_EQ(a.Parts[1].CNAM, "c-last");
    EXPECT_EQ(a.Parts.size(), 2u);
    const FactRecord& f = r->store.FACT[0];
    EXPECT_EQ(fixedText(f.Ranks[0].RNAM), "Rank");
    ASSERT_EQ(f.Reactions.size(), 1u); // the tag after ANAM is passed over untested
    EXPECT_EQ(f.Reactions[0].INTV, -5);
}

TEST(ReadDriver, FileNameCheck) {
    TempDir dir;
    ScriptedPrompts prompts;
    RecordStore store;
    store.STAT.emplace_back();
    for (const char* name : {"x.ESM", "y.ess", "z.esx"}) {
        std::int32_t count = 0;
        std::string path = dir.write(name, file(0, {}));
        EXPECT_GT(ReadESFile(store, path, count, true, prompts), 0) << name;
        EXPECT_EQ(count, 1) << name; // a header-only file
    }
    store.STAT.emplace_back();
    std::int32_t count = 5;
    EXPECT_EQ(ReadESFile(store, dir.write("a.bsa", file(0, {})), count, true, prompts), -1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(prompts.told.back(), "The selected file is invalid.");
    EXPECT_EQ(store.STAT.size(), 1u); // a refused file leaves the store alone
}

TEST(ReadDriver, UnreadableFilesAreReportedNotFatal) {
    TempDir dir;
    ScriptedPrompts prompts;
    RecordStore store;
    std::int32_t count = 0;
    EXPECT_EQ(ReadESFile(store, dir.file("missing.esp"), count, true, prompts), -1);
    EXPECT_EQ(prompts.told.back(), "Cannot read \"missing.esp\": the file does not exist.");
    std::filesystem::create_directory(dir.file("folder.esp"));
    EXPECT_EQ(ReadESFile(store, dir.file("folder.esp"), count, true, prompts), -1);
    EXPECT_EQ(prompts.told.back(), "Cannot read \"folder.esp\": it is a folder, not a file.");
}

TEST(ReadDriver, UnknownRecordQuestion) {
    std::string bytes = file(3, {Rec("ZZZZ").sub("DATA", "1234").bytes(), Rec("YYYY").bytes(),
                                 Rec("STAT").z("NAME", "s").bytes()});
    auto cancel = read(bytes, {Answer::Cancel});
    ASSERT_EQ(cancel->prompts.asked.size(), 1u); // Cancel is "Yes To All"
    EXPECT_EQ(cancel->prompts.asked[0],
              "Unknown record encountered at address: 324.\r\nContinue reading? Cancel is "
              "Yes To All.\r\nRecord Name: \"ZZZZ\"");
    ASSERT_EQ(cancel->store.Unknown.size(), 2u);
    EXPECT_EQ(cancel->store.Unknown[0].Size, 12);
    EXPECT_EQ(cancel->store.Unknown[0].Data.size(), 12u); // kept for a repair, never written as they are
    EXPECT_EQ(cancel->store.STAT.size(), 1u);
    EXPECT_FALSE(cancel->store.SkipUnknownPrompt); // lives for one read only
    EXPECT_EQ(cancel->count, 4);

    auto no = read(bytes, {Answer::No});
    EXPECT_EQ(no->ms, 0);
    EXPECT_TRUE(no->store.TES3.empty());
    EXPECT_EQ(no->count, 1); // what was counted before the question stays

    auto yes = read(bytes, {Answer::Yes, Answer::Yes});
    EXPECT_EQ(yes->prompts.asked.size(), 2u);
}

TEST(ReadDriver, DamagedInputEndsCleanly) {
    std::string good = file(2, {Rec("STAT").z("NAME", "s").z("MODL", "m.nif").bytes(),
                                Rec("INFO").z("INAM", "i").text("NAME", "Hello").bytes()});
    for (std::size_t cut = 0; cut < good.size(); ++cut) {
        auto r = read(good.substr(0, cut));
        EXPECT_LE(r->count, 3) << cut;
    }
    auto truncated = read(good.substr(0, good.size() - 3));
    EXPECT_TRUE(truncated->diagnostics.truncated);
    EXPECT_EQ(truncated->diagnostics.truncatedRecordAt,
              truncated->store.INFO.at(0).Offset); // the last record
    auto whole = read(good);
    EXPECT_FALSE(whole->diagnostics.truncated);
    // Sizes that point far past the end or below zero are clamped.
    auto huge = read(file(1, {Rec("INFO").subSized("NAME", 0x7fffffff, "abc").bytes()}));
    EXPECT_EQ(huge->store.INFO[0].NAME, "abc");
    auto negative = read(file(1, {Rec("INFO").subSized("INAM", -7, "").subSized("NAME", -1, "").bytes()}));
    EXPECT_EQ(negative->store.INFO.size(), 1u);
}

#include "helpers.h"
#include "records/es_read.h"
#include "writer/es_write.h"
#include "writer/write_common.h"

using namespace quillon;
using namespace quillon::test;

namespace {

std::string tags(const std::vector<std::string>& recs) {
    std::string out;
    for (const std::string& r : recs)
        out += r.substr(0, 4) + " ";
    return out;
}

// Reads the records, writes them back as a plugin and returns the records after the header.
std::vector<std::string> rewrite(std::initializer_list<std::string> input, std::int32_t fileType = 0) {
    RecordStore store = readStore(file(0, input));
    ScriptedPrompts prompts;
    std::vector<std::string> out = splitRecords(serialiseStore(store, 1, fileType, prompts));
    out.erase(out.begin());
    return out;
}

// Reads one record and writes it back; returns what follows its 16-byte header. The writer keeps
// the stored Size, so the body may be longer or shorter than Size says.
std::string writeOne(const std::string& record, std::int32_t fileType = 0) {
    RecordStore store = readStore(file(0, {record}));
    store.TES3.clear();
    ScriptedPrompts prompts;
    return serialiseStore(store, 1, fileType, prompts).substr(16);
}

std::string written(const std::function<void(ByteSink&)>& write) {
    ByteSink sink;
    write(sink);
    return sink.bytes();
}

} // namespace

TEST(WriteDriver, TypeOrderAndTopicMatching) {
    auto out = rewrite({Rec("ENCH").z("NAME", "e").sub("ENDT", std::string(16, '\0')).bytes(),
                        Rec("LAND").sub("INTV", std::string(8, '\0')).bytes(),
                        Rec("CELL").z("NAME", "c").sub("DATA", std::string(12, '\0')).bytes(),
                        Rec("SPEL").z("NAME", "s").sub("SPDT", std::string(12, '\0')).bytes(),
                        Rec("DIAL").z("NAME", "Topic").sub("DATA", std::string(1, '\0')).bytes(),
                        Rec("INFO").z("INAM", "1").sub("DATA", std::string(12, '\0')).bytes(),
                        Rec("DIAL").z("NAME", "topic").sub("DATA", std::string(1, '\0')).bytes(),
                        Rec("DIAL").z("NAME", "Topic").sub("DATA", std::string(1, '\0')).bytes(),
                        Rec("PGRD").sub("DATA", std::string(12, '\0')).z("NAME", "c").bytes()});
    // SPEL before ENCH; LAND and PGRD after the cells; a topic's responses follow every DIAL of
    // its exact NAME, and none follow the one that differs only in case.
    EXPECT_EQ(tags(out), "SPEL ENCH CELL LAND PGRD DIAL INFO DIAL DIAL INFO ");
}

TEST(WriteDriver, HeaderCountTypeAndMasters) {
    Tes3Record h;
    h.HEDRSize = 300;
    h.NumRecords = 99;
    h.FileType = 5;
    h.Masters = {{9, "Morrowind.esm", 8, 123}, {1, "", 8, 0}};
    RecordStore store;
    ScriptedPrompts prompts;
    WriteState state{store, prompts, 10, 1};
    std::string bytes = written([&](ByteSink& s) { writeTes3(s, h, state); });
    std::string hedr = bytes.substr(24, 300);
    EXPECT_EQ(hedr.substr(4, 4), le32(1));
    EXPECT_EQ(hedr.substr(296, 4), le32(9)); // the header does not count itself
    EXPECT_NE(bytes.find("MAST"), std::string::npos);
    EXPECT_EQ(bytes.find("GMDT"), std::string::npos);
    h.Masters[0].MAST.clear(); // an empty first name writes no master at all
    EXPECT_EQ(written([&](ByteSink& s) { writeTes3(s, h, state); }).find("MAST"), std::string::npos);
    h.Flags = 0x20;
    std::string deleted = written([&](ByteSink& s) { writeTes3(s, h, state); });
    EXPECT_EQ(deleted.substr(324), "DELE" + le32(4) + le32(0));

    for (auto [name, type] : std::initializer_list<std::pair<const char*, int>>{
             {"a.esm", 1}, {"a.EsM", 1}, {"a.ess", 32}, {"a.ESD", 0}, {"a.esp", 0}})
        EXPECT_EQ(fileTypeFor(name), type) << name;
}

TEST(WriteDialogue, OptionalSubRecordsAndConditions) {
    InfoRecord r;
    r.INAMSize = 2, r.INAM = "1";
    r.PNAMSize = -1, r.PNAM = "p"; // PNAM, NNAM and XIDX need a size above 0
    r.XIDXSize = -4;
    r.ONAMSize = -1, r.ONAM = "o"; // the others are written for any non-zero size
    r.DATASize = 12;
    r.ACDTSize = 4, r.ACDT = "abc";
    r.Conditions.resize(3);
    r.Conditions[0] = {5, '0', '1', {'5', '0'}, '0', "", 4, 7, 4, 1.0f};
    r.Conditions[2] = {9, '2', '2', {'s', 'X'}, '0', "glob", 0, 0, 4, 2.0f};
    std::string bytes = written([&](ByteSink& s) { writeInfo(s, r); });
    std::string expected = Rec("INFO")
                               .z("INAM", "1")
                               .sub("DATA", std::string(12, '\0'))
                               .subSized("ONAM", -1, std::string("o\0", 2))
                               .sub("SCVR", scvr('0', '1', "50", '0'))
                               .i32("INTV", 7) // only INTV when both are set
                               .subSized("SCVR", 9, scvr('2', '2', "sX", '0', "glob"))
                               .f("FLTV", 2.0f)
                               .z("ACDT", "abc") // written back, as savegames carry it
                               .bytes();
    EXPECT_EQ(bytes.substr(16), expected.substr(16));
}

TEST(WriteDialogue, DeletedForms) {
    std::string dial =
        writeOne(Rec("DIAL", 0x20).z("NAME", "T").sub("DATA", std::string(4, '\x09')).i32("XIDX", 3).bytes());
    EXPECT_EQ(dial, Rec("DIAL")
                        .z("NAME", "T")
                        .sub("DATA", std::string(4, '\x09')) // the four bytes as read
                        .i32("XIDX", 3)
                        .sub("DELE", le32(0))
                        .bytes()
                        .substr(16));
    InfoRecord info;
    info.Flags = 0x20;
    info.INAMSize = 2, info.INAM = "1", info.PNAMSize = 2, info.PNAM = "0", info.DATASize = 12;
    info.NAMESize = 3, info.NAME = "Bye", info.ONAMSize = 2, info.ONAM = "o";
    EXPECT_EQ(written([&](ByteSink& s) { writeInfo(s, info); }).substr(16), Rec("INFO")
                                                                                .z("INAM", "1")
                                                                                .z("PNAM", "0")
                                                                                .text("NAME", "Bye")
                                                                                .sub("DELE", le32(0))
                                                                                .bytes()
                                                                                .substr(16));
}

TEST(WriteObjects, DeletedFormsPerFamily) {
    std::string dele = "DELE" + le32(4) + le32(0);
    auto weapon = [](std::int32_t flags) {
        return Rec("WEAP", flags).z("NAME", "w").z("MODL", "m").sub("WPDT", std::string(32, '\0')).bytes();
    };
    EXPECT_EQ(writeOne(weapon(0x14)),
              "NAME" + le32(2) + std::string("w\0", 2) + dele); // low byte 20: deleted
    EXPECT_EQ(writeOne(weapon(0x13)), weapon(0).substr(16));    // 19: not deleted
    EXPECT_EQ(writeOne(Rec("SSCR", 0x20).text("NAME", "n").text("DATA", "d").bytes()),
              dele + "NAME" + le32(1) + "n" + "DATA" + le32(1) + "d");
    EXPECT_EQ(
        writeOne(Rec("PGRD", 0x20).sub("DATA", std::string(12, '\0')).z("NAME", "p").bytes()).find("DELE"),
        std::string::npos);
    EXPECT_EQ(writeOne(Rec("NPC_", 0x20).z("NAME", "n").z("FNAM", "F").bytes()),
              "NAME" + le32(2) + std::string("n\0", 2) + dele);
    EXPECT_EQ(writeOne(Rec("SKIL", 0x20).i32("INDX", 3).sub("SKDT", std::string(24, '\0')).bytes()),
              "INDX" + le32(4) + le32(3) + dele);
}

TEST(WriteObjects, ValueChoicesAndScriptText) {
    EXPECT_EQ(writeOne(Rec("GMST").text("NAME", "sVal").text("STRV", "hi").i32("INTV", 5).bytes()),
              "NAME" + le32(4) + "sVal" + "STRV" + le32(2) + "hi"); // one value only, STRV first
    // Empty sub-records are written where the record has them, and only there.
    std::string script = Rec("SCPT").sub("SCHD", std::string(52, '\0')).bytes();
    EXPECT_EQ(writeOne(script, 0).find("SCTX"), std::string::npos);
    std::string empty =
        Rec("SCPT").sub("SCHD", std::string(52, '\0')).sub("SCDT", "").sub("SCTX", "").bytes();
    EXPECT_EQ(writeOne(empty, 0), empty.substr(16));
}

TEST(WriteActors, StatisticFormsAndAiData) {
    std::string shortForm =
        Rec("NPC_").z("NAME", "a").sub("NPDT", std::string(12, '\x01')).i32("FLAG", 0x0201).bytes();
    EXPECT_EQ(writeOne(shortForm), shortForm.substr(16));
    // Other sizes are read and written by the size they declare, shorter or longer than the layout.
    for (std::size_t size : {40u, 60u}) {
        std::string odd =
            Rec("NPC_").z("NAME", "b").sub("NPDT", std::string(size, '\x02')).i32("FLAG", 8).bytes();
        EXPECT_EQ(writeOne(odd), odd.substr(16)) << size;
    }
    // A sub-record that the record lacks is not invented.
    std::string creature =
        Rec("CREA").z("NAME", "c").sub("NPDT", std::string(96, '\0')).i32("FLAG", 8).bytes();
    EXPECT_EQ(writeOne(creature), creature.substr(16));
}

TEST(WriteCell, ReferencePassesDeletionAndMovedReferences) {
    auto ref = [](std::int32_t index, const std::string& id) {
        return "FRMR" + le32(4) + le32(index) + "NAME" + le32(std::int32_t(id.size() + 1)) + id +
               std::string(1, '\0');
    };
    RecordStore store = readStore(file(1, {Rec("CELL")
                                               .z("NAME", "c")
                                               .sub("DELE", le32(0))
                                               .sub("DATA", std::string(12, '\0'))
                                               .raw(ref(1, "p"))
                                               .i32("NAM0", 1)
                                               .raw(ref(2, "t") + "DELE" + le32(4) + le32(0))
                                               .bytes()}));
    std::swap(store.CELL[0].References[0], store.CELL[0].References[1]); // temporary one first in the list
    ScriptedPrompts prompts;
    WriteState state{store, prompts};
    std::string cell = written([&](ByteSink& s) { writeCell(s, store.CELL[0], state); });
    std::string expected = Rec("CELL")
                               .z("NAME", "c")
                               .sub("DELE", le32(0))
                               .sub("DATA", std::string(12, '\0'))
                               .raw(ref(1, "p"))
                               .i32("NAM0", 1)
                               .raw(ref(2, "t") + "DELE" + le32(4) + le32(0)) // its value as read
                               .bytes();
    EXPECT_EQ(cell.substr(16), expected.substr(16));

    store.CELL[0].References[1].more.get().MVRFSize = 4; // moved, but to no cell
    std::string cut = written([&](ByteSink& s) { writeCell(s, store.CELL[0], state); });
    EXPECT_EQ(prompts.told, std::vector<std::string>{"Error while writing moved reference."});
    EXPECT_EQ(cut.find("NAM0"), std::string::npos); // the cell stops at the faulty reference
}

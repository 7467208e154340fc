// Deleted records as the editors leave them. The game's editor flags a record deleted and keeps
// its body, DELE at the end; OpenMW-CS writes the identifying sub-record and DELE with no flags.
// Written in its deleted form, which drops most of the body, either saves with no question into a
// file that frames and reads back deleted; one already in that form keeps its bytes.
#include "app/file_commands.h"
#include "helpers.h"
#include "writer/es_write.h"

using namespace quillon;
using namespace quillon::test;

namespace {

constexpr std::int32_t kEditorDeleted = 0x20;

struct Kind {
    const char* tag;
    std::string id;   // the sub-records every deleted form keeps
    std::string body; // what the editor leaves beside them
};

std::string z(const char* tag, const std::string& text) {
    return Rec("XXXX").z(tag, text).bytes().substr(16);
}
std::string sub(const char* tag, const std::string& data) {
    return Rec("XXXX").sub(tag, data).bytes().substr(16);
}

std::vector<Kind> kinds() {
    std::string named = z("NAME", "gone"), object = z("MODL", "m.nif") + z("FNAM", "Gone");
    std::vector<Kind> k = {
        {"GMST", sub("NAME", "sGone"), sub("STRV", "text")},
        {"GLOB", named, sub("FNAM", "s") + sub("FLTV", f32(1))},
        {"CLAS", named, z("FNAM", "Gone")},
        {"FACT", named, z("FNAM", "Gone")},
        {"RACE", named, z("FNAM", "Gone")},
        {"SOUN", named, z("FNAM", "gone.wav")},
        {"SKIL", sub("INDX", le32(3)), sub("SKDT", std::string(24, '\1'))},
        {"MGEF", sub("INDX", le32(3)), sub("MEDT", std::string(36, '\1'))},
        {"REGN", named, z("FNAM", "Gone")},
        {"BSGN", named, z("FNAM", "Gone")},
        {"LTEX", named, sub("INTV", le32(2))},
        {"STAT", named, z("MODL", "m.nif")},
        {"LEVI", named, sub("DATA", le32(1)) + sub("NNAM", "\1")},
        {"LEVC", named, sub("DATA", le32(1)) + sub("NNAM", "\1")},
        {"SNDG", named, sub("DATA", le32(1)) + z("SNAM", "gone")},
        {"NPC_", named, object},
        {"CREA", named, object},
    };
    for (const char* item : {"DOOR", "MISC", "WEAP", "CONT", "BODY", "LIGH", "ARMO", "CLOT", "REPA", "ACTI",
                             "APPA", "LOCK", "PROB", "INGR", "BOOK", "ALCH"})
        k.push_back({item, named, object});
    k.push_back({"SPEL", named, z("FNAM", "Gone")});
    k.push_back({"ENCH", named, sub("ENDT", std::string(16, '\1'))});
    return k;
}

struct Saved {
    std::string bytes;
    std::size_t damaged = 0;
};

// The file saved as Save writes it, with the damage the write check found.
Saved save(const std::string& bytes) {
    RecordStore store = readStore(bytes);
    ScriptedPrompts prompts;
    Serialised s = serialiseChecked(store, 2, 0, prompts, false);
    return {s.bytes, s.damaged.size()};
}

// How many records of the file read back deleted.
std::size_t deletedRecords(const std::string& bytes) {
    RecordStore store = readStore(bytes);
    std::size_t n = 0;
    store.forEachArray([&](const auto& array) {
        for (const auto& r : array)
            n += isDeleted(r);
    });
    return n;
}

std::string withHeader(const std::string& record) {
    return file(1, {record});
}

std::string record(const char* tag, std::int32_t flags, const std::string& body) {
    return Rec(tag, flags).raw(body).bytes();
}

} // namespace

TEST(DeletedForms, EditorAndOpenMwDeletionsSaveFramedAndReadBackDeleted) {
    for (const Kind& k : kinds()) {
        SCOPED_TRACE(k.tag);
        std::string dele = sub("DELE", le32(0));
        // The game's editor: flagged, its body kept, DELE last.
        std::string editor = withHeader(record(k.tag, kEditorDeleted, k.id + k.body + dele));
        Saved s = save(editor);
        EXPECT_EQ(s.damaged, 0u);
        EXPECT_TRUE(framesThroughout(s.bytes));
        EXPECT_LT(s.bytes.size(), editor.size()) << "the deleted form drops the body";
        EXPECT_EQ(deletedRecords(s.bytes), 1u);
        // OpenMW-CS: no flags, the deleted form already: every byte stays.
        std::string openmw = withHeader(record(k.tag, 0, k.id + dele));
        EXPECT_TRUE(save(openmw).bytes == openmw);
    }
}

TEST(DeletedForms, DialogueScriptsPathGridsAndTheHeader) {
    std::string dele = sub("DELE", le32(0));
    std::string topic = Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes();
    std::string responseBody = z("INAM", "7") + sub("DATA", std::string(12, '\0')) + z("ONAM", "npc") +
                               sub("NAME", "Said once.") + dele;
    std::string schd = sub("SCHD", fixed("sc_gone", 32) + std::string(20, '\0'));
    std::string script = schd + sub("SCVR", std::string("a\0", 2)) + sub("SCDT", "code") +
                         sub("SCTX", "Begin sc_gone\r\nshort a\r\nEnd") + dele;
    std::string grid =
        sub("DATA", std::string(12, '\0')) + z("NAME", "Cell") + sub("PGRP", std::string(16, '\1')) + dele;
    struct Case {
        const char* what;
        std::string bytes;
        std::size_t deleted;
    } cases[] = {
        // A response the editor flagged keeps its DATA and text; the deleted form has no DATA.
        {"INFO", file(2, {topic, record("INFO", kEditorDeleted, responseBody)}), 1},
        // A topic flagged deleted gets a DELE it did not carry.
        {"DIAL",
         file(1, {record("DIAL", kEditorDeleted, z("NAME", "T") + sub("DATA", std::string(1, '\0')))}), 1},
        // Scripts and path grids deleted by DELE, bodies kept, as the editor leaves them.
        {"SCPT", file(1, {record("SCPT", kEditorDeleted, script)}), 1},
        {"PGRD", file(1, {record("PGRD", 0, grid)}), 1},
        // SSCR keeps its body behind DELE: flagged without one, it gains twelve bytes.
        {"SSCR", file(1, {record("SSCR", kEditorDeleted, sub("DATA", "1") + sub("NAME", "gone"))}), 1},
        // A header deleted by its flags keeps only HEDR.
        {"TES3",
         Rec("TES3", kEditorDeleted)
             .sub("HEDR", hedr(0))
             .z("MAST", "Morrowind.esm")
             .sub("DATA", std::string(8, '\0'))
             .bytes(),
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Saved s = save(c.bytes);
        EXPECT_EQ(s.damaged, 0u);
        EXPECT_TRUE(framesThroughout(s.bytes));
        EXPECT_EQ(deletedRecords(s.bytes), c.deleted);
    }
}

TEST(DeletedForms, ARecordNotDeletedKeepsItsStoredSizes) {
    // A live record whose size says more than it holds is still named; a deleted one is not.
    std::string live = file(1, {Rec("STAT").z("NAME", "s").z("MODL", "m.nif").bytes()});
    std::int32_t wrong = 40;
    std::memcpy(live.data() + live.rfind("STAT") + 4, &wrong, 4);
    Saved s = save(live);
    EXPECT_EQ(s.damaged, 1u);
}

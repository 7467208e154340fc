// What other tools write reads whole and saves as it was read: OpenMW's files, sub-records of
// other sizes than their layout's, empty sub-records, savegames' own sub-records, the order of
// AI packages, and dialogue exports that an editor changed on the way.
#include "cli_run.h"
#include "helpers.h"
#include "records/es_read.h"
#include "records/response_text.h"
#include "writer/es_write.h"

#include <algorithm>
#include <cstring>

using namespace quillon;
using namespace quillon::test;

namespace {

// The records of a file but its header (whose count is the writer's), in sorted order: a save
// regroups them by type.
std::vector<std::string> bodyOf(const std::string& bytes) {
    std::vector<std::string> records = splitRecords(bytes);
    records.erase(records.begin());
    std::sort(records.begin(), records.end());
    return records;
}

// The same of the file after a plain save.
std::vector<std::string> savedBody(const std::string& bytes) {
    RecordStore store = readStore(bytes);
    ScriptedPrompts prompts;
    Serialised out = serialiseChecked(store, std::int32_t(splitRecords(bytes).size()), 0, prompts, false);
    EXPECT_TRUE(out.damaged.empty());
    return bodyOf(out.bytes);
}

// The header's file type.
std::int32_t fileTypeOf(const std::string& bytes) {
    std::int32_t type = -1;
    if (bytes.size() >= 32) std::memcpy(&type, bytes.data() + 28, 4);
    return type;
}

std::string omwHeader(std::int32_t fileType) {
    return Rec("TES3").sub("HEDR", hedr(1, fileType)).bytes();
}

} // namespace

// Sub-records of fixed layouts are read by the size they declare: shorter, longer or empty, they
// come back as they were, and the records after them are not lost.
TEST(RealFiles, OddAndEmptySubRecordsComeBackAsRead) {
    std::string item = le32(1) + fixed("a", 32);
    std::string body =
        Rec("GLOB").z("NAME", "g").sub("FNAM", "f\0" + std::string(1, '\0')).f("FLTV", 2.5f).bytes() +
        Rec("SCPT")
            .sub("SCHD", fixed("s", 32) + std::string(20, '\0'))
            .sub("SCDT", "")
            .sub("SCTX", "")
            .bytes() +
        Rec("NPC_")
            .z("NAME", "n")
            .sub("NPDT", std::string(14, '\x03'))
            .i32("FLAG", 1)
            .sub("NPCO", item)
            .sub("NPCS", fixed("spell", 36))
            .sub("AI_T", std::string(16, '\x01'))
            .sub("AI_W", std::string(14, '\x02'))
            .bytes() +
        Rec("CELL").z("NAME", "c").sub("DATA", std::string(16, '\x04')).bytes() +
        Rec("SSCR").text("DATA", "d").bytes() + Rec("STAT").z("NAME", "last").z("MODL", "m").bytes();
    std::string bytes = file(6, {body});
    RecordStore store = readStore(bytes);
    ASSERT_EQ(store.STAT.size(), 1u); // nothing after the odd sizes is lost
    EXPECT_EQ(store.NPC_[0].Spells.size(), 1u);
    EXPECT_EQ(fixedText(store.NPC_[0].Spells[0].Spell), "spell");
    EXPECT_FLOAT_EQ(store.GLOB[0].FLTV, 2.5f);
    EXPECT_EQ(store.CELL[0].GridX, 0x04040404);
    EXPECT_EQ(savedBody(bytes), bodyOf(bytes));
}

// A read that derails is not called successful: it says how many of the file's records it read.
TEST(RealFiles, ALossyReadSaysHowManyItRead) {
    TempDir dir;
    // A size word that reaches past its record swallows the next one.
    std::string bytes = file(2, {Rec("GLOB").z("NAME", "g").subSized("FNAM", 40, "s").bytes(),
                                 Rec("STAT").z("NAME", "s").bytes()});
    CliRun run = cli({"counts", dir.write("lost.esp", bytes)});
    EXPECT_NE(run.err.find("-Read 2 of the 3 records in \"lost.esp\""), std::string::npos) << run.err;
    CliRun whole = cli({"counts", dir.write("whole.esp", file(1, {Rec("STAT").z("NAME", "s").bytes()}))});
    EXPECT_NE(whole.err.find("-Read 2 records from \"whole.esp\" successfully"), std::string::npos);
}

// OpenMW's names are data files when they begin with a TES3 header; records of its own types are
// kept whole without a question, and the header keeps its file type.
TEST(RealFiles, OpenMWFilesReadAndSaveWhole) {
    TempDir dir;
    std::string lua = Rec("LUAL").sub("LUAS", "scripts/x.lua").sub("LUAF", le32(1)).bytes();
    std::string dial = Rec("DIAL").z("NAME", "t").sub("DATA", std::string(1, '\0')).bytes();
    std::string addon = omwHeader(0) + lua + dial;
    std::string path = dir.write("Mod.omwaddon", addon);
    CliRun counts = cli({"counts", path});
    EXPECT_EQ(counts.status, 0) << counts.err;
    EXPECT_EQ(counts.err.find("Unknown record"), std::string::npos);
    CliRun save = cli({"save", path, "-o", dir.file("Out.omwaddon")});
    ASSERT_EQ(save.status, 0) << save.err;
    std::string saved = readAll(dir.file("Out.omwaddon"));
    EXPECT_EQ(bodyOf(saved), bodyOf(addon));
    EXPECT_EQ(splitRecords(saved).back(), lua); // regrouped: its own types last
    EXPECT_EQ(fileTypeOf(saved), 0);

    std::string game = dir.write("Game.OMWGAME", omwHeader(1) + dial);
    EXPECT_EQ(cli({"save", game}).status, 0);
    EXPECT_EQ(fileTypeOf(readAll(game)), 1); // kept as read, whatever the name

    CliRun notData = cli({"counts", dir.write("text.omwaddon", "hello, world and more")});
    EXPECT_EQ(notData.status, 1);
    EXPECT_NE(notData.err.find("The selected file is invalid."), std::string::npos);
}

// A plugin whose master is an .omwaddon reads that master, not only finds it.
TEST(RealFiles, AnOpenMWMasterIsRead) {
    TempDir dir;
    dir.write("Base.omwaddon",
              omwHeader(0) + Rec("DIAL").z("NAME", "Base topic").sub("DATA", std::string(1, '\0')).bytes() +
                  Rec("INFO").z("INAM", "1").sub("DATA", std::string(12, '\0')).text("NAME", "Hi.").bytes());
    std::string plugin = Rec("TES3")
                             .sub("HEDR", hedr(1))
                             .z("MAST", "Base.omwaddon")
                             .sub("DATA", std::string(8, '\0'))
                             .bytes() +
                         Rec("INFO")
                             .z("INAM", "2")
                             .sub("DATA", std::string(12, '\0'))
                             .text("BNAM", "AddTopic \"Base topic\"")
                             .bytes();
    CliRun run = cli({"check", dir.write("p.esp", plugin), "--only", "topic,master"});
    EXPECT_EQ(run.out.find("Base topic"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("master"), std::string::npos) << run.out;
}

// A savegame reads whole and each of its records comes back byte for byte.
TEST(RealFiles, SavegamesComeBackByteForByte) {
    QUILLON_NEED_CORPUS();
    for (const std::string& path : corpusFiles()) {
        if (fileTypeFor(path) != 32) continue;
        SCOPED_TRACE(path);
        std::string original = readAll(path);
        RecordStore store;
        ScriptedPrompts prompts;
        std::int32_t count = 0;
        ReadESBuffer(store, original, count, true, prompts);
        EXPECT_TRUE(prompts.asked.empty());
        EXPECT_EQ(std::size_t(count), splitRecords(original).size());
        Serialised saved = serialiseChecked(store, count, 32, prompts, false);
        EXPECT_TRUE(saved.damaged.empty());
        std::map<std::string, std::vector<std::string>> before, after;
        for (std::string& r : splitRecords(original))
            before[r.substr(0, 4)].push_back(std::move(r));
        for (std::string& r : splitRecords(saved.bytes))
            after[r.substr(0, 4)].push_back(std::move(r));
        before.erase("TES3"), after.erase("TES3");
        EXPECT_TRUE(before == after);
    }
}

// A response given a text where it had none grows by the text and by its new NAME's header.
TEST(RealFiles, AResponseGivenATextStillFrames) {
    std::string without = Rec("INFO").z("INAM", "1").sub("DATA", std::string(12, '\0')).bytes();
    std::string with =
        Rec("INFO").z("INAM", "2").sub("DATA", std::string(12, '\0')).text("NAME", "Old.").bytes();
    std::string empty =
        Rec("INFO").z("INAM", "3").sub("DATA", std::string(12, '\0')).text("NAME", "").bytes();
    RecordStore store = readStore(file(
        4, {Rec("DIAL").z("NAME", "t").sub("DATA", std::string(1, '\0')).bytes() + without + with + empty}));
    ASSERT_EQ(store.INFO.size(), 3u);
    for (InfoRecord& r : store.INFO)
        setResponseText(r, "A new text.");
    ScriptedPrompts prompts;
    Serialised out = serialiseChecked(store, 5, 0, prompts, false);
    EXPECT_TRUE(out.damaged.empty());
    EXPECT_TRUE(framesThroughout(out.bytes));
    RecordStore back = readStore(out.bytes);
    for (const InfoRecord& r : back.INFO)
        EXPECT_EQ(r.NAME, "A new text.");
}

// An unedited export imports to the plain save whatever its bytes look like: code-page bytes that
// also read as UTF-8, and line ends an editor turned into LF.
TEST(RealFiles, UneditedExportsImportUnchanged) {
    TempDir dir;
    std::string plugin = file(3, {Rec("DIAL").z("NAME", "t").sub("DATA", std::string(1, '\0')).bytes() +
                                  Rec("INFO")
                                      .z("INAM", "1")
                                      .sub("DATA", std::string(12, '\0'))
                                      .text("NAME", "Caf\xC3\xA9 au lait.")
                                      .bytes() +
                                  Rec("INFO")
                                      .z("INAM", "2")
                                      .sub("DATA", std::string(12, '\0'))
                                      .text("NAME", "Two\r\nlines.")
                                      .bytes()});
    std::string path = dir.write("cafe.esp", plugin);
    ASSERT_EQ(cli({"save", path, "-o", dir.file("plain.esp")}).status, 0);
    for (const char* encoding : {"code-page", "utf-8"}) {
        SCOPED_TRACE(encoding);
        ASSERT_EQ(cli({"export-dialogue", path, "-o", dir.file("d.txt"), "--text-encoding", encoding}).status,
                  0);
        std::string text = readAll(dir.file("d.txt"));
        std::string lf;
        for (char c : text)
            if (c != '\r') lf += c;
        for (const std::string& variant : {text, lf}) {
            dir.write("in.txt", variant);
            CliRun back = cli({"import-dialogue", path, dir.file("in.txt"), "-o", dir.file("back.esp")});
            ASSERT_EQ(back.status, 0) << back.err;
            EXPECT_TRUE(readAll(dir.file("back.esp")) == readAll(dir.file("plain.esp")));
        }
    }
}

// The corpus's hand-made files whose GMST ends at a sub-record the format does not allow there
// stay a repair case, and the repaired output frames.
TEST(RealFiles, RepairedBlankFilesFrame) {
    QUILLON_NEED_CORPUS();
    TempDir dir;
    for (const std::string& path : corpusFiles()) {
        if (std::filesystem::path(path).filename().string().rfind("Blank", 0) != 0) continue;
        SCOPED_TRACE(path);
        std::string out = dir.file("repaired" + std::filesystem::path(path).extension().string());
        CliRun run = cli({"save", path, "-o", out, "--repair"});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_TRUE(framesThroughout(readAll(out)));
    }
}

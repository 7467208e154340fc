#include "app/file_commands.h"
#include "helpers.h"

#include "npclist/npc_list.h"
#include <sstream>

using namespace quillon;
using namespace quillon::test;

namespace {

std::string npc(const std::string& id, const std::string& name, const std::string& faction, bool female,
                bool shortForm, std::uint8_t rank) {
    return npcRecord(id, name, faction, rank, female, shortForm);
}

std::string refs(std::initializer_list<const char*> ids) {
    std::string out;
    for (const char* id : ids)
        out += "FRMR" + le32(4) + le32(1) + "NAME" + le32(std::int32_t(std::strlen(id) + 1)) + id +
               std::string(1, '\0');
    return out;
}

// Two cells (one exterior), NPCs with and without faction, both statistic forms, a clone, an NPC
// placed twice and an ID held by two records.
std::string smallWorld() {
    Rec guild("FACT");
    guild.z("NAME", "Fighters Guild").z("FNAM", "Fighters Guild");
    for (const char* rank : {"Associate", "Apprentice", "Journeyman"})
        guild.sub("RNAM", fixed(rank, 32));
    return file(
        0, {guild.bytes(), npc("smith", "Hlaren Ramoran", "fighters guild", false, false, 2),
            npc("aunt", "Ilmeni Dren", "", true, true, 0), npc("guard", "Imperial Guard", "", false, true, 0),
            npc("odd", "Odd One", "x", false, true, 0),
            npc("twin", "First Twin", "Fighters Guild", true, true, 1),
            npc("TWIN", "Second Twin", "Fighters Guild", false, true, 7),
            Rec("CELL")
                .z("NAME", "Balmora, Guild")
                .sub("DATA", le32(1) + le32(0) + le32(0))
                .raw(refs({"smith", "aunt", "guard", "aunt"}))
                .bytes(),
            Rec("CELL")
                .z("NAME", "Bitter Coast")
                .sub("DATA", le32(0) + le32(-3) + le32(7))
                .z("RGNN", "Bitter Coast Region")
                .raw(refs({"odd", "twin", "nobody"}))
                .bytes(),
            Rec("CELL").z("NAME", "Balmora, Empty").sub("DATA", le32(1) + le32(0) + le32(0)).bytes()});
}

struct Listed {
    std::string output, log;
    std::vector<std::string> messages;
};

Listed list(const std::string& world, NpcListFormat format, bool skipClones, const std::string& cell) {
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("w.esp", world));
    d.savePaths = {dir.file("list.out")};
    d.inputs = {cell};
    ExportNpcList(s, d, format, skipClones);
    return {readAll(dir.file("list.out")), s.log.caption(), d.messages};
}

void expectGolden(const std::string& output, const std::string& name) {
    std::string path = std::string(QUILLON_GOLDEN) + "/" + name;
    if (std::getenv("QUILLON_UPDATE_GOLDEN")) std::ofstream(path, std::ios::binary) << output;
    EXPECT_TRUE(output == readAll(path)) << "differs from " << path;
}

} // namespace

TEST(NpcList, MatchesTheGoldenSheets) {
    expectGolden(list(smallWorld(), NpcListFormat::PlainText, false, "a").output, "npc_list.txt");
    expectGolden(list(smallWorld(), NpcListFormat::PhpBB, false, "a").output, "npc_list_phpbb.txt");
    Listed html = list(smallWorld(), NpcListFormat::Html, true, "A");
    expectGolden(html.output, "npc_list.htm");
    EXPECT_NE(html.log.find("-Generating NPC List for cell \"*A*\" from \"w.esp\"...\r\n-Listed 6 NPCs in "
                            "\"list.out\" successfully.\r\n"),
              std::string::npos);
}

TEST(NpcList, ValuesOfOneEntry) {
    std::string out = list(smallWorld(), NpcListFormat::PlainText, false, "guild").output;
    EXPECT_NE(out.find("Balmora, Guild:\r\n\r\nHlaren Ramoran\r\nM\r\nDark Elf\r\nSmith\r\nfighters guild, "
                       "Journeyman\r\n"
                       "***Description***\r\n***To be asigned***\r\n\r\n"),
              std::string::npos);
    EXPECT_NE(out.find("Ilmeni Dren\r\nF\r\n"), std::string::npos);
    EXPECT_EQ(out.substr(out.size() - 13), "Total NPCs: 4"); // the NPC placed twice is listed twice
    std::string coast = list(smallWorld(), NpcListFormat::PlainText, false, "coast").output;
    EXPECT_EQ(coast.find("Bitter Coast (-3, 7):\r\n\r\nOdd One\r\nM\r\nDark Elf\r\nSmith\r\nNone\r\n"), 0u);
    EXPECT_NE(coast.find("First Twin\r\nF\r\nDark Elf\r\nSmith\r\nFighters Guild, Apprentice\r\n"),
              std::string::npos);
    EXPECT_NE(coast.find("Second Twin\r\nM\r\nDark Elf\r\nSmith\r\nFighters Guild, \r\n"),
              std::string::npos); // no rank 7
}

TEST(NpcList, ClonesFilter) {
    for (const char* clone :
         {"Imperial Guard", "Ordinator Guard", "Dreamer", "dead body", "Adventurer Bob", "CATTLE"})
        EXPECT_TRUE(isClone(clone)) << clone;
    for (const char* person : {"Dreamer Prophet", "Ordinator Captain", "Playful", "Vampire Hunter"})
        EXPECT_FALSE(isClone(person)) << person;
}

TEST(NpcList, NothingToListAndDisplayedCounts) {
    Listed none = list(smallWorld(), NpcListFormat::PlainText, false, "Empty");
    EXPECT_EQ(none.output, "Total NPCs: 0");
    EXPECT_NE(none.log.find("-No NPCs found in given cell in \"w.esp\"\r\n"), std::string::npos);

    Listed noCells = list(file(0, {npc("a", "A", "", false, true, 0)}), NpcListFormat::PlainText, false, "x");
    EXPECT_EQ(noCells.messages, std::vector<std::string>{"No cells found in current file."});

    // The test reads the display: a store with NPCs but a display showing none stops at once.
    TempDir dir;
    Session s;
    ScriptedDialogs d;
    openPath(s, d, dir.write("w.esp", smallWorld()));
    s.counts.shown[CountLabel::NPC_] = "0";
    ExportNpcList(s, d, NpcListFormat::Html, false);
    EXPECT_EQ(d.messages.back(), "No NPCs found in current file.");
    EXPECT_TRUE(d.fileRequests.empty());
}

TEST(Corpus, NpcListsOfEveryFileWithCellsAndNpcs) {
    QUILLON_NEED_CORPUS();
    for (const std::string& path : corpusFiles()) {
        Listed l = list(readAll(path), NpcListFormat::Html, true, "a");
        if (!l.messages.empty()) continue; // no cells or no NPCs
        EXPECT_NE(l.output.find("Total NPCs: "), std::string::npos) << path;
        EXPECT_EQ(l.output.substr(l.output.size() - 9), "</html>\r\n") << path;
    }
}

namespace {

// An RFC 4180 reader: rows of fields, quoted fields with doubled quotes and line breaks inside.
std::vector<std::vector<std::string>> parseCsv(const std::string& text) {
    std::vector<std::vector<std::string>> rows(1, std::vector<std::string>(1));
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"')
                rows.back().back() += text[++i];
            else if (c == '"')
                quoted = false;
            else
                rows.back().back() += c;
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            rows.back().emplace_back();
        } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            ++i;
            rows.emplace_back(1);
        } else {
            rows.back().back() += c;
        }
    }
    if (rows.back().size() == 1 && rows.back()[0].empty()) rows.pop_back();
    return rows;
}

} // namespace

// The spreadsheet holds the NPCs of the text sheet, in its order, one row each.
TEST(NpcList, CsvRowsMatchTheTextSheet) {
    auto rows = parseCsv(list(smallWorld(), NpcListFormat::Csv, false, "a").output);
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows[0], (std::vector<std::string>{"cell", "name", "gender", "race", "class", "faction", "rank",
                                                 "description", "writer"}));
    std::istringstream text(list(smallWorld(), NpcListFormat::PlainText, false, "a").output);
    std::vector<std::vector<std::string>> fromText;
    std::string cell;
    for (std::string line; std::getline(text, line);) {
        line.pop_back(); // CR
        if (!line.empty() && line.back() == ':') cell = line.substr(0, line.size() - 1);
        if (line.empty() || line.back() == ':' || line.rfind("Total NPCs", 0) == 0) continue;
        std::vector<std::string> entry{cell, line};
        for (int field = 0; field < 6; ++field) {
            std::getline(text, line);
            line.pop_back();
            entry.push_back(line);
        }
        fromText.push_back(entry);
    }
    ASSERT_EQ(rows.size() - 1, fromText.size());
    for (std::size_t i = 0; i < fromText.size(); ++i) {
        const auto& row = rows[i + 1];
        ASSERT_EQ(row.size(), 9u);
        const auto& t = fromText[i];
        EXPECT_EQ((std::vector<std::string>{row[0], row[1], row[2], row[3], row[4]}),
                  (std::vector<std::string>{t[0], t[1], t[2], t[3], t[4]}));
        EXPECT_EQ(row[5].empty() ? "None" : row[5] + ", " + row[6], t[5]); // the text joins faction and rank
    }
}

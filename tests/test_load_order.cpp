// A plugin read with its masters: found by every route in any letter case, in load order; cells
// merged as the game merges them; the NPC list, the quotes and the check looking through them.
#include "app/load_order.h"
#include "app/merged_cells.h"
#include "app/openmw_config.h"
#include "cli_run.h"
#include "helpers.h"

#include <map>

using namespace quillon;
using namespace quillon::test;
namespace fs = std::filesystem;

namespace {

// A header naming masters, each with the size recorded for it.
std::string header(std::vector<std::pair<std::string, std::int64_t>> masters) {
    Rec r("TES3");
    r.sub("HEDR", hedr(0));
    for (const auto& [name, size] : masters) {
        std::string recorded(8, '\0');
        std::memcpy(recorded.data(), &size, 8);
        r.z("MAST", name).sub("DATA", recorded);
    }
    return r.bytes();
}

std::string npc(const std::string& id, const std::string& name, const std::string& faction,
                std::uint8_t rank) {
    return npcRecord(id, name, faction, rank);
}

// A reference: its number (the master's place from 1 in the high byte), the ID placed, and DELE.
std::string ref(std::uint32_t number, const std::string& id, bool deleted = false) {
    std::string out = "FRMR" + le32(4) + le32(std::int32_t(number)) + "NAME" +
                      le32(std::int32_t(id.size() + 1)) + id + std::string(1, '\0');
    if (deleted) out += "DELE" + le32(4) + le32(0);
    return out;
}

std::string interior(const std::string& name, const std::string& references) {
    return Rec("CELL").z("NAME", name).sub("DATA", le32(1) + le32(0) + le32(0)).raw(references).bytes();
}

struct Folders {
    TempDir dir;
    std::map<std::string, std::string> env;
    Folders() { fs::create_directories(dir.file("home")); }
    std::string put(const std::string& relative, const std::string& bytes) {
        fs::create_directories(fs::path(dir.file(relative)).parent_path());
        return dir.write(relative, bytes);
    }
    MasterSearch search(std::vector<std::string> data = {}, std::string config = {}) {
        MasterSearch s;
        s.dataFolders = std::move(data);
        s.openMwConfig = std::move(config);
        s.system = {[this](const char* name) {
                        auto v = env.find(name);
                        return v == env.end() ? std::string() : v->second;
                    },
                    dir.file("home")};
        return s;
    }
    std::vector<std::string> found(const std::string& plugin, const MasterSearch& search) {
        RecordStore store = readStore(readAll(plugin));
        LoadOrder order = findMasters(store, plugin, search);
        std::vector<std::string> out;
        for (const auto& m : order.masters)
            out.push_back(m->name + "@" + (m->found() ? fs::relative(m->path, dir.file("")).string() : "-"));
        return out;
    }
};

} // namespace

TEST(LoadOrder, MastersAreFoundByEveryRouteInAnyCase) {
    Folders f;
    std::string master = file(0, {});
    std::string plugin = f.put("plugins/p.esp", header({{"Base.esm", 0}}));
    // Beside the plugin, its name in another case.
    f.put("plugins/BASE.ESM", master);
    EXPECT_EQ(f.found(plugin, f.search()), std::vector<std::string>{"Base.esm@plugins/BASE.ESM"});
    // The game's Data Files folder wins over the plugin's folder.
    f.put("game/Data Files/base.esm", master);
    f.env["QUILLON_DATA_FILES"] = f.dir.file("game/Data Files");
    EXPECT_EQ(f.found(plugin, f.search()), std::vector<std::string>{"Base.esm@game/Data Files/base.esm"});
    // OpenMW's data folders from the user's openmw.cfg win over that, the later folder first;
    // a quoted path keeps its quote escaped with &, ?userdata? is the user's data folder.
    f.put("openmw/one/Base.esm", master);
    f.put("openmw/t\"wo/Base.esm", master);
    f.put("home/.local/share/openmw/data/Base.esm", master);
    f.put("home/.config/openmw/openmw.cfg", "data=\"" + f.dir.file("openmw/one") + "\"\ndata=\"" +
                                                f.dir.file("openmw/t&\"wo") + "\"\nencoding=win1252\n");
    EXPECT_EQ(f.found(plugin, f.search()), std::vector<std::string>{"Base.esm@openmw/t\"wo/Base.esm"});
    f.put("home/.config/openmw/openmw.cfg", "data=" + f.dir.file("openmw/t\"wo") +
                                                "\ndata-local=?userdata?data\n" +
                                                "data=" + f.dir.file("openmw/one") + "\n");
    EXPECT_EQ(f.found(plugin, f.search()),
              std::vector<std::string>{"Base.esm@home/.local/share/openmw/data/Base.esm"});
    // $XDG_CONFIG_HOME moves the user's configuration; --openmw-cfg names another one.
    f.put("xdg/openmw/openmw.cfg", "data=" + f.dir.file("openmw/one") + "\n");
    f.env["XDG_CONFIG_HOME"] = f.dir.file("xdg");
    EXPECT_EQ(f.found(plugin, f.search()), std::vector<std::string>{"Base.esm@openmw/one/Base.esm"});
    f.put("other.cfg", "data=\"" + f.dir.file("openmw/t&\"wo") + "\"\ndata=?local?/x\n");
    RecordStore store = readStore(readAll(plugin));
    LoadOrder refused = findMasters(store, plugin, f.search({}, f.dir.file("other.cfg")));
    EXPECT_EQ(refused.masters.front()->path, f.dir.file("openmw/t\"wo/Base.esm"));
    ASSERT_EQ(refused.searchNotes.size(), 1u);
    EXPECT_NE(refused.searchNotes[0].find("?local?"), std::string::npos);
    // --data comes first of all.
    f.put("mine/base.ESM", master);
    EXPECT_EQ(f.found(plugin, f.search({f.dir.file("mine")})),
              std::vector<std::string>{"Base.esm@mine/base.ESM"});
}

// The engine's chain of configuration files: config= folders read after the file naming them,
// replace= dropping what earlier files gave, the one data-local last, a loop read once.
TEST(LoadOrder, OpenMwConfigurationIsReadAsTheEngineReadsIt) {
    Folders f;
    f.put("root/openmw.cfg", "data=" + f.dir.file("a") + "\nconfig=\"?userconfig?\"\nconfig=" +
                                 f.dir.file("root") + "\ncontent=Morrowind.esm\n");
    f.put("home/.config/openmw/openmw.cfg",
          "data=" + f.dir.file("b") + "\nreplace=content\ncontent=Mine.esp\ndata-local=?userdata?data\n" +
              "config=more\n");
    f.put("home/.config/openmw/more/openmw.cfg",
          "replace=data\ndata=" + f.dir.file("c") + "\ndata=?global?\n");
    OpenMwConfig config = readOpenMwConfig(f.search().system, f.dir.file("root/openmw.cfg"));
    EXPECT_EQ(config.path, f.dir.file("root/openmw.cfg"));
    EXPECT_EQ(config.dataFolders, (std::vector<std::string>{f.dir.file("c"), "/usr/share/games/openmw/",
                                                            f.dir.file("home/.local/share/openmw/data")}));
    EXPECT_EQ(config.values("content"), std::vector<std::string>{"Mine.esp"});
    EXPECT_TRUE(config.refused.empty());
}

TEST(LoadOrder, AChainOfMastersInLoadOrderEachOnce) {
    Folders f;
    f.put("data/A.esm", file(0, {}));
    std::string b = header({{"A.esm", 0}});
    f.put("data/B.esm", b);
    std::string plugin = f.put("p.esp", header({{"b.esm", 0}, {"A.ESM", 0}, {"C.esm", 0}}));
    EXPECT_EQ(f.found(plugin, f.search({f.dir.file("data")})),
              (std::vector<std::string>{"A.esm@data/A.esm", "b.esm@data/B.esm", "C.esm@-"}));
}

TEST(LoadOrder, TheCommandNamesMissingAndChangedMasters) {
    Folders f;
    std::string a = file(0, {});
    f.put("data/A.esm", a);
    f.put("data/B.esm", a);
    std::string plugin =
        f.put("p.esp", header({{"A.esm", std::int64_t(a.size())}, {"B.esm", 999}, {"Gone.esm", 10}}));
    CliRun r = cli({"load-order", plugin, "--data", f.dir.file("data")});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "A.esm: " + f.dir.file("data/A.esm") + " (" + std::to_string(a.size()) +
                         " bytes, as recorded)\nB.esm: " + f.dir.file("data/B.esm") + " (" +
                         std::to_string(a.size()) +
                         " bytes; p.esp recorded 999: changed)\nGone.esm: not found\n");
    CliRun check = cli({"check", plugin, "--only", "master", "--data", f.dir.file("data")});
    EXPECT_EQ(check.status, 1);
    EXPECT_NE(check.out.find("master: TES3 \"B.esm\": has changed since p.esp was saved: 999 bytes then"),
              std::string::npos)
        << check.out;
    EXPECT_NE(check.out.find("master: TES3 \"Gone.esm\": not found"), std::string::npos);
    std::string complete = f.put("q.esp", header({{"A.esm", std::int64_t(a.size())}}));
    EXPECT_EQ(cli({"load-order", complete, "--data", f.dir.file("data")}).status, 0);
}

// A master's cell given one more reference, one replaced and one deleted by the plugin.
TEST(LoadOrder, CellsMergeAndTheNpcListLooksThroughTheMasters) {
    Folders f;
    Rec guild("FACT");
    guild.z("NAME", "Guild").z("FNAM", "Guild");
    for (const char* rank : {"Novice", "Adept"})
        guild.sub("RNAM", fixed(rank, 32));
    f.put("data/Base.esm",
          file(0, {guild.bytes(), npc("ann", "Ann", "Guild", 1), npc("bob", "Bob", "", 0),
                   npc("cid", "Cid", "", 0), npc("dee", "Dee", "guild", 0),
                   interior("Balmora, Hall", ref(1, "ann") + ref(2, "bob") + ref(3, "cid"))}));
    std::string plugin =
        f.put("p.esp", header({{"Base.esm", 0}}) + npc("eve", "Eve", "Guild", 0) +
                           interior("balmora, hall",
                                    ref(1, "eve") + ref(0x01000002u, "dee") + ref(0x01000003u, "cid", true)));
    RecordStore own = readStore(readAll(plugin));
    LoadOrder order = findMasters(own, plugin, f.search({f.dir.file("data")}));
    readMasters(order);
    std::vector<MergedCell> cells = mergedCells(order, own);
    ASSERT_EQ(cells.size(), 1u);
    std::vector<std::string> placed;
    for (const CellReference* r : cells[0].references)
        placed.emplace_back(r->NAME);
    EXPECT_EQ(placed, (std::vector<std::string>{"ann", "dee", "eve"}));

    std::string out = f.dir.file("sheet.csv");
    CliRun with = cli({"npc-list", plugin, "--cell", "hall", "--format", "csv", "--with-masters", "-o", out,
                       "--data", f.dir.file("data")});
    ASSERT_EQ(with.status, 0) << with.err;
    EXPECT_EQ(readAll(out), "cell,name,gender,race,class,faction,rank,description,writer\r\n"
                            "\"balmora, hall\",Ann,M,Dark Elf,Smith,Guild,Adept,,\r\n"
                            "\"balmora, hall\",Dee,M,Dark Elf,Smith,guild,Novice,,\r\n"
                            "\"balmora, hall\",Eve,M,Dark Elf,Smith,Guild,Novice,,\r\n");
    EXPECT_NE(with.err.find("-Read the masters of \"p.esp\" (Base.esm) in "), std::string::npos) << with.err;
    // Without the flag, the plugin alone: its one NPC, no rank title its file lacks.
    CliRun alone = cli(
        {"npc-list", plugin, "--cell", "hall", "--format", "csv", "-o", out, "--data", f.dir.file("data")});
    ASSERT_EQ(alone.status, 0) << alone.err;
    EXPECT_EQ(readAll(out), "cell,name,gender,race,class,faction,rank,description,writer\r\n"
                            "\"balmora, hall\",Eve,M,Dark Elf,Smith,Guild,,,\r\n");
    EXPECT_EQ(alone.err.find("masters"), std::string::npos);
}

TEST(LoadOrder, QuotesAndTheCheckKnowWhatTheMastersDefine) {
    Folders f;
    f.put("data/Base.esm",
          file(0, {npc("ann", "Ann Arden", "", 0),
                   Rec("DIAL").z("NAME", "Old Topic").sub("DATA", std::string(1, '\0')).bytes()}));
    std::string plugin = f.put(
        "p.esp",
        header({{"Base.esm", 0}}) + Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes() +
            response("1", "ann", "Hello, %Name here.", "AddTopic \"old topic\"\r\nAddTopic \"Nowhere\""));
    std::string data = f.dir.file("data"), out = f.dir.file("q.xml");
    CliRun quotes = cli({"quotes", plugin, "--city", "Balmora", "--format", "xml", "-o", out,
                         "--with-masters", "--data", data});
    ASSERT_EQ(quotes.status, 0) << quotes.err;
    EXPECT_EQ(readAll(out),
              "<quotes><quote><text>Hello, Ann Arden here.</text><npc>Ann Arden</npc><city>Balmora</city>"
              "</quote></quotes>");
    CliRun check = cli({"check", plugin, "--only", "topic,master", "--data", data});
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out.find("old topic"), std::string::npos) << check.out;
    EXPECT_NE(check.out.find("AddTopic \"Nowhere\" names no topic"), std::string::npos) << check.out;
    EXPECT_EQ(check.out.find("master:"), std::string::npos) << check.out;
}

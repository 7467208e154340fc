// The check as a CI job runs it: a master summary stands in for the masters it was made from
// (the check with it finds exactly what the check with the masters finds; a summary that is not
// one is refused, naming its line), findings as SARIF, a whole OpenMW load order at once.
#include "cli_run.h"
#include "helpers.h"

#include <filesystem>

using namespace quillon;
using namespace quillon::test;

namespace {

std::string info(const std::string& id, const std::string& actor, std::int32_t index,
                 const std::string& script = "", bool onChoice = false) {
    std::string data = le32(0) + le32(index) + std::string(4, '\0');
    Rec r("INFO");
    r.z("INAM", id).sub("DATA", data).z("ONAM", actor).text("NAME", "Words of " + actor + ".");
    if (onChoice) r.sub("SCVR", scvr('0', '1', "50", '0')).i32("INTV", 1);
    if (!script.empty()) r.text("BNAM", script);
    return r.bytes();
}

std::string dial(const std::string& name, char type) {
    return Rec("DIAL").z("NAME", name).sub("DATA", std::string(1, type)).bytes();
}

// A master of every kind of ID the checks look up, a tab inside one of them.
std::string madeMaster() {
    std::string schd = fixed("npc_script", 32) + le32(1) + std::string(16, '\0');
    std::string ranks;
    return file(0, {Rec("SCPT")
                        .sub("SCHD", schd)
                        .sub("SCVR", std::string("met\0", 4))
                        .text("SCTX", "Begin npc_script\r\nshort met\r\nEnd")
                        .bytes(),
                    Rec("NPC_").z("NAME", "ann").z("FNAM", "Annwyn Tabbard").z("SCRI", "npc_script").bytes(),
                    Rec("MISC").z("NAME", "odd\tid").z("FNAM", "Odd").bytes(),
                    Rec("SPEL").z("NAME", "shock_bolt").z("FNAM", "Shock Bolt").bytes(),
                    Rec("GLOB").z("NAME", "bq_done").sub("FNAM", "s").sub("FLTV", le32(0)).bytes(),
                    Rec("FACT").z("NAME", "Guild").sub("RNAM", fixed("Apprentice", 32)).bytes(),
                    Rec("CELL").z("NAME", "Seyda Neen").sub("DATA", std::string(12, '\0')).bytes(),
                    dial("Greet", '\0'), info("m1", "ann", 0, "", true), dial("BQ_Quest", '\4'),
                    info("m2", "", 10)});
}

std::string plugin() {
    std::string header =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "Base.esm").sub("DATA", std::string(8, '\0')).bytes();
    return header + dial("Greet", '\0') +
           info(
               "p1", "ann", 0,
               "Choice \"Yes\" 1 \"No\" 2\r\nAddTopic \"Greet\"\r\nAddTopic \"Farewells\"\r\nset met to 1\r\n"
               "set unmet to 1") +
           info("p2", "ann", 0,
                "Journal BQ_Quest 10\r\nJournal BQ_Quest 20\r\nAddSpell shock_bolt\r\nAddSpell frost_bolt\r\n"
                "set ann.met to 1\r\nset ann.unmet to bq_done\r\nPCJoinFaction Guild\r\nPCJoinFaction "
                "Guilt\r\n"
                "PositionCell 0 0 0 0 \"Seyda\"\r\nAddItem \"odd\tid\" 1\r\nAddItem odd_id 1");
}

} // namespace

TEST(CheckForCi, AMasterSummaryStandsInForItsMastersFindingForFinding) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("data"));
    std::filesystem::create_directories(dir.file("ci"));
    std::string master = dir.write("data/Base.esm", madeMaster());
    std::string mod = dir.write("data/mod.esp", plugin());
    CliRun made = cli({"master-summary", master, "-o", dir.file("ci/base-summary.txt")});
    ASSERT_EQ(made.status, 0) << made.err;
    std::string summary = readAll(dir.file("ci/base-summary.txt"));
    EXPECT_NE(summary.find("object\tMISC\todd\\tid\t\n"), std::string::npos) << summary; // a tab, escaped
    EXPECT_NE(summary.find("name\tAnnwyn Tabbard\n"), std::string::npos);

    // The kinds a summary stands in for (the order of responses needs the master's own).
    const char* summarised = "master,choice,topic,script,reference";
    CliRun withMaster = cli({"check", mod, "--json", "--only", summarised});
    std::string alone = dir.write("ci/mod.esp", plugin());
    CliRun withSummary = cli({"check", alone, "--json", "--only", summarised, "--master-summary",
                              dir.file("ci/base-summary.txt")});
    CliRun without = cli({"check", alone, "--json", "--only", summarised});
    EXPECT_EQ(withMaster.status, 1);
    auto kinds = [](const std::string& json) {
        std::vector<std::string> out;
        for (std::size_t at = 0; (at = json.find("\"kind\": ", at)) != std::string::npos; ++at)
            out.push_back(json.substr(at + 9, json.find('"', at + 9) - at - 9));
        return out;
    };
    // The faults only the master settles: choice 2, AddTopic, the undeclared local, the remote
    // variable, the journal index, the spell, the faction and the ID no record has.
    EXPECT_EQ(kinds(withMaster.out),
              (std::vector<std::string>{"choice", "topic", "script", "reference", "reference", "reference",
                                        "reference", "reference"}))
        << withMaster.out;
    std::string fromSummary = withSummary.out;
    for (std::size_t at; (at = fromSummary.find("/ci/mod.esp")) != std::string::npos;)
        fromSummary.replace(at, 11, "/data/mod.esp");
    EXPECT_EQ(fromSummary, withMaster.out) << withSummary.err;
    EXPECT_NE(withSummary.err.find("-Master \"Base.esm\" was taken from the summary \"base-summary.txt\"."),
              std::string::npos)
        << withSummary.err;
    // Without master or summary none of them is judged.
    EXPECT_EQ(kinds(without.out), std::vector<std::string>{"master"}) << without.out;
}

TEST(CheckForCi, ASummaryThatIsNoneIsRefusedByLine) {
    TempDir dir;
    std::string mod = dir.write("mod.esp", plugin());
    struct Case {
        std::string text, error;
    } cases[] = {
        {"", "it is no master summary"},
        {"Quillon master summary 1\n", "it names no master"},
        {"Quillon master summary 1\nmaster\tBase.esm\ntopic\tmany\tGreet\n",
         "line 3: \"topic\" with these fields"},
        {"Quillon master summary 1\nmaster\tBase.esm\nobject\tXXXX\tid\t\n",
         "line 3: \"object\" with these fields"},
        {"Quillon master summary 1\nmaster\tBase.esm\ncell\tbad\\q\n", "line 3: it holds an escape"},
        {"Quillon master summary 1\nmaster\tBase.esm\nchoice\tGreet\t1 x\n", "line 3: \"choice\""},
    };
    for (const Case& c : cases) {
        std::string path = dir.write("s.txt", c.text);
        CliRun r = cli({"check", mod, "--master-summary", path});
        EXPECT_EQ(r.status, 2) << c.text;
        EXPECT_NE(r.err.find("cannot be used: " + c.error), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
    CliRun missing = cli({"check", mod, "--master-summary", dir.file("none.txt")});
    EXPECT_EQ(missing.status, 2);
}

TEST(CheckForCi, SarifNamesTheRuleTheRecordAndTheScriptLine) {
    TempDir dir;
    std::string mod =
        dir.write("mod.esp", oneTopic({response("1", "ann", "Hi.", "Goodbye\r\n  AddTopik \"x\"")}));
    CliRun sarif = cli({"check", mod, "--format", "sarif", "--only", "script"});
    EXPECT_EQ(sarif.status, 1) << sarif.err;
    EXPECT_EQ(
        sarif.out.rfind(
            "{\"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\", \"version\": \"2.1.0\"", 0),
        0u)
        << sarif.out;
    EXPECT_NE(sarif.out.find(
                  "{\"ruleId\": \"script\", \"ruleIndex\": 6, \"level\": \"error\", \"message\": {\"text\": "
                  "\"line 2: \\\"AddTopik\\\" is neither a function nor a keyword of the game\"}, "
                  "\"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": \"" +
                  dir.file("mod.esp") +
                  "\"}, \"region\": {\"startLine\": 2, \"startColumn\": 3}}, \"logicalLocations\": "
                  "[{\"name\": \"INFO 1\", \"fullyQualifiedName\": \"T/INFO 1\", \"kind\": \"object\"}]}]}"),
              std::string::npos)
        << sarif.out;
    // No finding: an empty run, exit 0; an unknown format is bad usage.
    CliRun clean = cli({"check", mod, "--format", "sarif", "--only", "long"});
    EXPECT_EQ(clean.status, 0);
    EXPECT_NE(clean.out.find("\"results\": []}]}"), std::string::npos) << clean.out;
    EXPECT_EQ(cli({"check", mod, "--format", "xml"}).status, 2);
}

TEST(CheckForCi, AllContentChecksTheConfigurationsLoadOrder) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("data"));
    dir.write("data/Base.esm", madeMaster());
    dir.write("data/mod.esp", plugin());
    std::string cfg =
        dir.write("openmw.cfg",
                  "data=\"" + dir.file("data") + "\"\ncontent=Base.esm\ncontent=MOD.esp\ncontent=gone.esp\n");
    CliRun r = cli({"check", "--openmw-cfg", cfg, "--all-content", "--only", "choice,reference"});
    EXPECT_EQ(r.status, 1);
    // The plugin's findings with its master known; the missing file named.
    EXPECT_NE(r.out.find(dir.file("data/mod.esp") + ": choice: INFO p1"), std::string::npos) << r.out;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 6) << r.out;
    EXPECT_NE(r.err.find("gone.esp: named by content= in " + cfg + " but in none of its data folders"),
              std::string::npos)
        << r.err;
    EXPECT_EQ(cli({"check", dir.file("data/mod.esp"), "--openmw-cfg", cfg, "--all-content"}).status, 2);
    EXPECT_EQ(cli({"check"}).status, 2);
}

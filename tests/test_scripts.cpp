// Scripts as the game's compiler reads them: valid lines of every form give nothing, each fault one
// problem on its line; IDs are looked up in the load order only when it is known whole.
#include "cli_run.h"
#include "helpers.h"
#include "script/script_check.h"

using namespace quillon;
using namespace quillon::test;

namespace {

// A load order knowing a few IDs of each kind.
ScriptNames known() {
    auto among = [](std::vector<std::string> ids) {
        return [ids](std::string_view id) {
            for (const std::string& k : ids)
                if (k.size() == id.size() && std::equal(k.begin(), k.end(), id.begin(), [](char a, char b) {
                        return std::tolower(static_cast<unsigned char>(a)) ==
                               std::tolower(static_cast<unsigned char>(b));
                    }))
                    return true;
            return false;
        };
    };
    ScriptNames n;
    n.complete = true;
    n.global = among({"gamehour", "questdone"});
    n.object = among({"gold_001", "fargoth", "iron dagger"});
    n.script = among({"ks_timer"});
    n.faction = among({"fighters guild"});
    n.cell = among({"balmora, guild of fighters"});
    n.journal = among({"ks_quest"});
    n.journalIndex = [](std::string_view, long index) { return index == 10 || index == 100; };
    return n;
}

std::vector<std::string> problems(const std::string& script, ScriptSource source = ScriptSource::Result,
                                  std::set<std::string> locals = {"talked"}, ScriptNames names = known()) {
    std::vector<std::string> out;
    for (const ScriptProblem& p : checkScript(script, source, std::move(locals), names))
        out.push_back(std::to_string(p.line) + " " + p.kind + ": " + p.reason);
    return out;
}

} // namespace

TEST(Scripts, ValidLinesOfEveryFormGiveNothing) {
    const char* valid[] = {
        "Journal ks_quest 10",
        "Journal \"ks_quest\", 100 ; the last stage",
        "SetJournalIndex ks_quest 10\r\nAddTopic \"little secret\"\r\nGoodbye",
        "if ( GetJournalIndex \"ks_quest\" >= 10 )\r\n\tModDisposition -5\r\nelseif ( talked == 1 )\r\n\tset "
        "talked to 2\r\n"
        "else\r\n\treturn\r\nendif",
        "Choice \"Yes\" 1 \"No, thank you\" 2",
        "Player->AddItem gold_001 100\r\n\"fargoth\"->RemoveItem \"iron dagger\" 1",
        "PCJoinFaction \"Fighters Guild\"\r\nPCRaiseRank \"Fighters Guild\"\r\nset QuestDone to GameHour + 1",
        "StartScript ks_timer\r\nPositionCell 10 20 30 0 \"Balmora, Guild of Fighters\"",
        "MessageBox \"Done, %.0f left\" talked",
        "while ( talked < 3 )\r\n\tset talked to talked + 1\r\nendwhile",
        // What the game's compiler passes over: a colon after Choice, another object's variable.
        "Choice: \"Yes\" 1 \"No\" 2",
        "ModDisposition \"fargoth\".talked\r\nModDisposition fargoth.talked",
    };
    for (const char* script : valid)
        EXPECT_EQ(problems(script), std::vector<std::string>{}) << script;
    // A script extender's function is no fault of the script, only named as passed over.
    EXPECT_EQ(problems("xSetRef player ; an MWSE function\r\nMGEOutputDebugString \"x\""),
              (std::vector<std::string>{"1 extender: xSetRef", "2 extender: MGEOutputDebugString"}));
    EXPECT_EQ(problems("Begin ks_timer\r\nshort counter\r\nset counter to counter + 1\r\nEnd ks_timer",
                       ScriptSource::Record, {}),
              std::vector<std::string>{});
}

TEST(Scripts, EachFaultOnItsLine) {
    struct Case {
        const char* script;
        std::string problem;
    } cases[] = {
        {"Goodbye\r\nAddTopik \"x\"",
         "2 script: \"AddTopik\" is neither a function nor a keyword of the game"},
        {"if ( talked == 1 )\r\nGoodbye", "1 script: if is not closed by endif"},
        {"Goodbye\r\nendif", "2 script: endif without if"},
        {"else", "1 script: else without if"},
        {"while ( talked )\r\nendwhile\r\nendwhile", "3 script: endwhile without while"},
        {"set nothing to 1",
         "1 script: the variable \"nothing\" is not declared (neither a global nor a local of "
         "the speaker's script)"},
        {"MessageBox \"unclosed", "1 script: a text is not closed by its quote"},
        {"Choice \"Yes\" \"No\" 2", "1 script: Choice must pair each text in quotes with a number"},
        {"Journal ks_quest", "1 script: Journal takes 2 arguments, 1 given"},
        {"ModDisposition \"many\"", "1 script: argument 1 of ModDisposition is a number, not \"many\""},
        {"Journal ks_quest 20", "1 reference: the journal \"ks_quest\" has no entry of index 20"},
        {"Journal ks_other 10", "1 reference: Journal: no journal \"ks_other\" in the load order"},
        {"AddItem gold_002 1", "1 reference: AddItem: no object \"gold_002\" in the load order"},
        {"StartScript ks_nothing", "1 reference: StartScript: no script \"ks_nothing\" in the load order"},
        {"PCJoinFaction \"Mages Guild\"",
         "1 reference: PCJoinFaction: no faction \"Mages Guild\" in the load order"},
        {"\"nobody\"->Disable", "1 reference: the reference \"nobody\" names no object of the load order"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(problems(c.script), std::vector<std::string>{c.problem}) << c.script;
    EXPECT_EQ(problems("Begin x\r\nshort a", ScriptSource::Record, {}),
              std::vector<std::string>{"1 script: Begin is not closed by End"});
}

TEST(Scripts, WithAMasterMissingNeitherVariablesNorIdsAreJudged) {
    ScriptNames partial = known();
    partial.complete = false;
    EXPECT_EQ(problems("set nothing to 1\r\nAddItem gold_002 1\r\nJournal ks_other 10", ScriptSource::Result,
                       {}, partial),
              std::vector<std::string>{});
}

TEST(Scripts, TheCheckNamesTheResponseAndTheLineAndUsesTheSpeakersScript) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("data"));
    std::string schd = fixed("npc_script", 32) + le32(1) + std::string(16, '\0'); // one short
    dir.write("data/Base.esm",
              file(0, {Rec("SCPT")
                           .sub("SCHD", schd)
                           .sub("SCVR", std::string("met\0", 4))
                           .text("SCTX", "Begin npc_script\r\nshort met\r\nEnd")
                           .bytes(),
                       Rec("NPC_").z("NAME", "ann").z("FNAM", "Ann").z("SCRI", "npc_script").bytes()}));
    std::string header =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "Base.esm").sub("DATA", std::string(8, '\0')).bytes();
    std::string plugin = dir.write(
        "p.esp", header + Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes() +
                     response("1", "ann", "Hello.", "set met to 1\r\nGoodbye\r\nFlyAway\r\nxGetRef") +
                     response("2", "ann", "Again.", "set unmet to 1"));
    CliRun r = cli({"check", plugin, "--only", "script,reference", "--json", "--data", dir.file("data")});
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_NE(
        r.out.find("\"kind\": \"script\", \"record\": \"INFO\", \"id\": \"1\", \"topic\": \"T\", \"actor\": "
                   "\"ann\", "
                   "\"detail\": \"line 3: \\\"FlyAway\\\" is neither a function nor a keyword of the game\", "
                   "\"line\": 3}"),
        std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find("\"id\": \"2\""), std::string::npos)
        << r.out; // unmet is no variable of ann's script
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '{'), 2) << r.out;
    EXPECT_NE(r.err.find("uses 1 function(s) of script extenders"), std::string::npos) << r.err;
}

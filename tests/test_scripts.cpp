// Scripts as the game's compiler reads them: valid lines of every form give nothing, each fault one
// problem on its line; IDs are looked up in the load order only when it is known whole.
#include "cli_run.h"
#include "helpers.h"
#include "script/script_check.h"
#include "script/script_reader.h"

using namespace quillon;
using namespace quillon::test;

namespace {

// A load order knowing a few IDs of each kind.
ScriptNames known() {
    auto among = [](std::vector<std::string> ids) {
        return [ids](std::string_view id) {
            for (const std::string& k : ids)
                if (sameName(k, id)) return true;
            return false;
        };
    };
    ScriptNames n;
    n.complete = true;
    n.global = among({"gamehour", "questdone"});
    n.has = [among](IdKind kind, std::string_view id) {
        switch (kind) {
        case IdKind::Object: return among({"gold_001", "fargoth", "iron dagger", "ex_door-1"})(id);
        case IdKind::Spell: return among({"fireball"})(id);
        case IdKind::Journal: return among({"ks_quest"})(id);
        case IdKind::Script: return among({"ks_timer"})(id);
        case IdKind::Faction: return among({"fighters guild"})(id);
        case IdKind::Cell: return among({"balmora, guild of fighters"})(id);
        case IdKind::Sound: return among({"thunder"})(id);
        case IdKind::Region: return among({"ascadian isles region"})(id);
        }
        return false;
    };
    n.journalIndex = [](std::string_view, long index) { return index == 10 || index == 100; };
    n.localsOf = [](std::string_view id) -> std::optional<std::set<std::string>> {
        if (sameName(id, "fargoth")) return std::set<std::string>{"talked"};
        if (sameName(id, "ks_timer")) return std::set<std::string>{"counter"};
        if (sameName(id, "gold_001")) return std::set<std::string>{};
        return std::nullopt;
    };
    return n;
}

std::vector<std::string>
problems(const std::string& script, ScriptSource source = ScriptSource::Result,
         std::optional<std::set<std::string>> locals = std::set<std::string>{"talked"},
         ScriptNames names = known()) {
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
        "AddSpell fireball\r\nCast \"fireball\" player\r\nPlaySound thunder\r\nChangeWeather \"Ascadian "
        "Isles "
        "Region\" 4",
        "if ( player->GetItemCount \"gold_001\" >= 10 )\r\nendif\r\nif ( \"fargoth\"->GetHealth < 1 "
        ")\r\nendif",
        "set talked to ( talked * 2 ) - -1 / GetPCRank \"Fighters Guild\"\r\nset talked to -talked",
        "if ( GetDistance player > 100 )\r\nendif",
        "if ( Random 100 < 30 )\r\nendif\r\nif ( GetDisabled == 0 )\r\nendif",
        "set fargoth.talked to 1\r\nset \"fargoth\".talked to fargoth.talked + 1\r\nset ks_timer.counter to "
        "0",
        // What the game's compiler passes over: a colon after Choice, another object's variable,
        // = for ==, brackets for parentheses, a condition without them, a minus inside an ID.
        "Choice: \"Yes\" 1 \"No\" 2",
        "ModDisposition \"fargoth\".talked\r\nModDisposition fargoth.talked",
        "if ( talked = 1 )\r\nelseif [ talked => 2 ]\r\nelseif talked < = 3\r\nendif",
        "ex_door-1->Lock 50\r\nif ( GetJournalIndex ks_quest >= 10 )\r\nendif",
    };
    for (const char* script : valid)
        EXPECT_EQ(problems(script), std::vector<std::string>{}) << script;
    // A script extender's function is no fault of the script, only named as passed over.
    EXPECT_EQ(problems("xSetRef player ; an MWSE function\r\nMGEOutputDebugString \"x\"\r\nif ( xGetRef > 1 )"
                       "\r\nendif"),
              (std::vector<std::string>{"1 extender: xSetRef", "2 extender: MGEOutputDebugString",
                                        "3 extender: xGetRef"}));
    EXPECT_EQ(problems("Begin ks_timer\r\nshort counter\r\nset counter to counter + 1\r\nEnd ks_timer",
                       ScriptSource::Record, std::set<std::string>{}),
              std::vector<std::string>{});
}

// Broken result scripts, one fault each, of every kind the game's compiler or the load order
// rejects: each must give exactly its problem on its line.
TEST(Scripts, EachFaultOnItsLine) {
    struct Case {
        const char* script;
        std::string problem;
    } cases[] = {
        // Unknown functions and keywords, in statements and in expressions.
        {"Goodbye\r\nAddTopik \"x\"",
         "2 script: \"AddTopik\" is neither a function nor a keyword of the game"},
        {"StopScrpt ks_timer", "1 script: \"StopScrpt\" is neither a function nor a keyword of the game"},
        {"if ( GetJournalIndx \"ks_quest\" >= 10 )\r\nendif",
         "1 script: \"GetJournalIndx\" is neither a function nor a keyword of the game"},
        {"set talked to GetDispositon",
         "1 script: \"GetDispositon\" is neither a function nor a keyword of the game"},
        {"while ( nosuch 5 )\r\nendwhile",
         "1 script: \"nosuch\" is neither a function nor a keyword of the game"},
        // Missing or extra arguments.
        {"Journal ks_quest", "1 script: Journal takes 2 arguments, 1 given"},
        {"AddItem gold_001", "1 script: AddItem takes 2 arguments, 1 given"},
        {"Goodbye 1", "1 script: Goodbye takes at most 0 arguments, 1 given"},
        {"StartScript ks_timer ks_timer", "1 script: StartScript takes at most 1 argument, 2 given"},
        {"if ( GetDistance > 100 )\r\nendif", "1 script: GetDistance takes 1 argument, 0 given"},
        {"set talked to GetItemCount", "1 script: GetItemCount takes 1 argument, 0 given"},
        // A text or a name where a number belongs.
        {"ModDisposition \"many\"", "1 script: argument 1 of ModDisposition is a number, not \"many\""},
        {"AddItem gold_001 \"ten\"", "1 script: argument 2 of AddItem is a number, not \"ten\""},
        {"set talked to \"five\"", "1 script: the text \"five\" stands where a number belongs"},
        {"ModDisposition lots", "1 script: \"lots\" is neither a variable nor a function (neither a global "
                                "nor a local of the speaker's "
                                "script)"},
        {"if ( nothing == 1 )\r\nendif",
         "1 script: \"nothing\" is neither a variable nor a function (neither a global nor a local of the "
         "speaker's script)"},
        // Blocks not closed or closing nothing.
        {"if ( talked == 1 )\r\nGoodbye", "1 script: if is not closed by endif"},
        {"Goodbye\r\nendif", "2 script: endif without if"},
        {"else", "1 script: else without if"},
        {"elseif ( talked == 2 )", "1 script: elseif without if"},
        {"while ( talked )\r\nendwhile\r\nendwhile", "3 script: endwhile without while"},
        {"while ( talked < 2 )\r\nGoodbye", "1 script: while is not closed by endwhile"},
        {"if\r\nendif", "1 script: if has no condition"},
        // Expressions: parentheses, operands, operators.
        {"if ( talked == 1\r\nendif", "1 script: \"(\" is not closed by \")\""},
        {"if talked == 1 )\r\nendif", "1 script: \")\" closes no \"(\""},
        {"set talked to ( talked + 1", "1 script: \"(\" is not closed by \")\""},
        {"if ( talked == )\r\nendif", "1 script: an operand is missing before \")\""},
        {"set talked to talked +", "1 script: an operand is missing after \"+\""},
        {"if ( == 1 )\r\nendif", "1 script: an operand is missing before \"==\""},
        {"if ( talked 1 )\r\nendif", "1 script: an operator is missing before \"1\""},
        {"set talked to ( )", "1 script: \"( )\" holds nothing"},
        // set and texts.
        {"set talked 1", "1 script: set without a variable and to"},
        {"set talked to", "1 script: set talked to nothing"},
        {"MessageBox \"unclosed", "1 script: a text is not closed by its quote"},
        {"MessageBox talked", "1 script: MessageBox needs its text in quotes"},
        // Undeclared variables: local, global, another object's.
        {"set nothing to 1",
         "1 script: the variable \"nothing\" is not declared (neither a global nor a local of the speaker's "
         "script)"},
        {"set fargoth.untalked to 1", "1 reference: the script of \"fargoth\" has no variable \"untalked\""},
        {"set \"nobody\".talked to 1", "1 reference: no object or script \"nobody\" in the load order"},
        {"if ( gold_001.talked == 1 )\r\nendif",
         "1 reference: \"gold_001\" runs no script, so it has no variable \"talked\""},
        // Choice pairs.
        {"Choice \"Yes\" \"No\" 2", "1 script: Choice must pair each text in quotes with a number"},
        {"Choice \"Yes\" 1 \"No\"", "1 script: Choice must pair each text in quotes with a number"},
        {"Choice 1 \"Yes\"", "1 script: Choice must pair each text in quotes with a number"},
        // IDs the load order lacks, of every kind a function takes.
        {"Journal ks_quest 20", "1 reference: the journal \"ks_quest\" has no entry of index 20"},
        {"Journal ks_other 10", "1 reference: Journal: no journal \"ks_other\" in the load order"},
        {"AddItem gold_002 1", "1 reference: AddItem: no object \"gold_002\" in the load order"},
        {"StartCombat nobody", "1 reference: StartCombat: no object \"nobody\" in the load order"},
        {"AddSpell frostball", "1 reference: AddSpell: no spell \"frostball\" in the load order"},
        {"Cast fireball nobody", "1 reference: Cast: no object \"nobody\" in the load order"},
        {"StartScript ks_nothing", "1 reference: StartScript: no script \"ks_nothing\" in the load order"},
        {"PCJoinFaction \"Mages Guild\"",
         "1 reference: PCJoinFaction: no faction \"Mages Guild\" in the load order"},
        {"PositionCell 0 0 0 0 \"Vivec\"", "1 reference: PositionCell: no cell \"Vivec\" in the load order"},
        {"PlaySound \"Thunder2\"", "1 reference: PlaySound: no sound \"Thunder2\" in the load order"},
        {"ChangeWeather \"Bitter Coast Region\" 1",
         "1 reference: ChangeWeather: no region \"Bitter Coast Region\" in the load order"},
        {"if ( GetItemCount gold_002 > 0 )\r\nendif",
         "1 reference: GetItemCount: no object \"gold_002\" in the load order"},
        {"\"nobody\"->Disable", "1 reference: the reference \"nobody\" names no object of the load order"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(problems(c.script), std::vector<std::string>{c.problem}) << c.script;
    EXPECT_EQ(problems("Begin x\r\nshort a", ScriptSource::Record, std::set<std::string>{}),
              std::vector<std::string>{"1 script: Begin is not closed by End"});
}

TEST(Scripts, WithAMasterMissingNeitherVariablesNorIdsAreJudged) {
    ScriptNames partial = known();
    partial.complete = false;
    EXPECT_EQ(
        problems("set nothing to 1\r\nAddItem gold_002 1\r\nJournal ks_other 10\r\nif ( nothing == 1 )\r\n"
                 "endif\r\nset fargoth.untalked to 1",
                 ScriptSource::Result, std::set<std::string>{}, partial),
        std::vector<std::string>{});
    // A response any actor may give cannot know its speaker's locals, with every master there.
    EXPECT_EQ(problems("set nothing to 1", ScriptSource::Result, std::nullopt), std::vector<std::string>{});
    // A misspelt function is no variable a master could declare.
    EXPECT_EQ(problems("if ( GetJournalIndx ks_quest >= 10 )\r\nendif\r\nset talked to GetDispositon",
                       ScriptSource::Result, std::set<std::string>{}, partial)
                  .size(),
              2u);
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

// The real plugins' scripts (the compiler's tolerances among them, two hundred script texts and
// a hundred result scripts) give nothing without their masters but the one real fault among them.
TEST(Scripts, RealPluginsWithoutTheirMastersGiveOnlyRealFaults) {
    QUILLON_NEED_CORPUS();
    std::string found;
    for (const std::string& path : corpusFiles()) {
        if (path.ends_with(".ess")) continue;
        CliRun r = cli({"check", path, "--only", "script,reference,choice,topic"});
        found += r.out;
    }
    EXPECT_EQ(
        found,
        corpusDir() +
            "/OAAB_Data.esm: script: INFO 2533532098255582004 (topic \"spare a coin\", actor \"\"): line 1: "
            "Choice must pair each text in quotes with a number\n");
}

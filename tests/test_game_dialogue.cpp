// The game's view of dialogue: a topic's responses merged across the load order as the game
// merges them, conditions in words, and which response a speaker is given and why the ones above
// it are not.
#include "cli_run.h"
#include "game/conditions.h"
#include "game/dialogue_faults.h"
#include "game/dialogue_order.h"
#include "game/response_choice.h"
#include "game/topic_links.h"
#include "helpers.h"

using namespace quillon;
using namespace quillon::test;

namespace {

std::string dial(const std::string& name, char type = '\0', bool deleted = false) {
    Rec d("DIAL");
    d.z("NAME", name).sub("DATA", std::string(1, type));
    if (deleted) d.i32("DELE", 0);
    return d.bytes();
}

// A response: ID, previous response, and its filters given as sub-records after DATA.
struct Info {
    Info(std::string id, std::string pnam, std::string text = "")
        : id(std::move(id)), pnam(std::move(pnam)), text(std::move(text)) {}
    std::string id, pnam, text, actor;
    bool deleted = false;
    // No speaker rank, sex or PC rank: the editor's "none" is all bits set.
    std::string data = std::string(8, '\0') + "\xff\xff\xff" + std::string(1, '\0');
    std::vector<std::pair<std::string, std::string>> subs; // tag, body, in order
    std::string bytes() const {
        Rec r("INFO");
        r.z("INAM", id).z("PNAM", pnam).z("NNAM", "").sub("DATA", data);
        if (!actor.empty()) r.z("ONAM", actor);
        for (const auto& [tag, body] : subs)
            r.sub(tag.c_str(), body);
        r.text("NAME", text.empty() ? "Text " + id : text);
        if (deleted) r.i32("DELE", 0);
        return r.bytes();
    }
};

// DATA with disposition, speaker rank, sex and PC rank (-1 for none).
std::string data(std::int32_t disposition, int rank = -1, int sex = -1, int pcRank = -1) {
    return le32(0) + le32(disposition) + std::string{char(rank), char(sex), char(pcRank), '\0'};
}

std::string topicFile(std::initializer_list<Info> infos, const std::string& topic = "T") {
    std::string bytes = file(0, {dial(topic)});
    for (const Info& i : infos)
        bytes += i.bytes();
    return bytes;
}

std::vector<std::string> order(std::initializer_list<std::string> files) {
    std::vector<RecordStore> stores;
    for (const std::string& f : files)
        stores.push_back(readStore(f));
    std::vector<DialogueSource> sources;
    for (const RecordStore& s : stores)
        sources.push_back({"f", &s});
    std::vector<std::string> ids;
    for (const MergedTopic& t : mergeDialogue(sources))
        for (const MergedResponse& m : t.responses)
            ids.push_back(m.info->INAM);
    return ids;
}

} // namespace

// The worked examples of the merge rule: inserted after its PNAM, later files nearer the anchor,
// replaced in place, moved to the end by an unknown PNAM, to the front by an empty one, deleted
// responses anchoring until the end.
TEST(GameDialogue, ResponsesMergeAcrossTheLoadOrderAsTheGameMergesThem) {
    std::string master = topicFile({{"A", ""}, {"B", "A"}, {"C", "B"}});
    using V = std::vector<std::string>;
    EXPECT_EQ(order({master, topicFile({{"X", "A"}})}), (V{"A", "X", "B", "C"}));
    EXPECT_EQ(order({master, topicFile({{"X", "A"}}), topicFile({{"Y", "A"}})}),
              (V{"A", "Y", "X", "B", "C"}));
    EXPECT_EQ(order({master, topicFile({{"B", "A", "changed"}})}), (V{"A", "B", "C"}));
    EXPECT_EQ(order({master, topicFile({{"B", "X"}})}), (V{"A", "C", "B"}));
    EXPECT_EQ(order({master, topicFile({{"Z", ""}})}), (V{"Z", "A", "B", "C"}));
    Info deleted{"B", "A"};
    deleted.deleted = true;
    EXPECT_EQ(order({master, topicFile({deleted, {"X", "B"}})}), (V{"A", "X", "C"}));
    // A replacement takes the whole record where the old one stood.
    std::vector<RecordStore> stores{readStore(master), readStore(topicFile({{"B", "A", "new words"}}))};
    std::vector<MergedTopic> merged = mergeDialogue({{"m.esm", &stores[0]}, {"p.esp", &stores[1]}});
    ASSERT_EQ(merged.size(), 1u);
    EXPECT_EQ(merged[0].responses[1].info->NAME, "new words");
    EXPECT_EQ(merged[0].responses[1].file, 1u);
}

TEST(GameDialogue, TopicsAreOneNamespaceDeletedWithTheirResponsesAndGreetingsGoByID) {
    std::string master = file(0, {dial("Greeting 1", '\2'), Info{"g1", ""}.bytes(), dial("Greeting 0", '\2'),
                                  Info{"g0", ""}.bytes(), dial("rumors"), Info{"r", ""}.bytes(), dial("gone"),
                                  Info{"x", ""}.bytes()});
    std::string plugin = file(0, {dial("RUMORS", '\4'), dial("gone", '\0', true)});
    std::vector<RecordStore> stores{readStore(master), readStore(plugin)};
    std::vector<MergedTopic> merged = mergeDialogue({{"m", &stores[0]}, {"p", &stores[1]}});
    ASSERT_EQ(merged.size(), 3u);
    EXPECT_EQ(merged[0].name, "Greeting 0"); // greetings before journals, in ID order
    EXPECT_EQ(merged[1].name, "Greeting 1");
    EXPECT_EQ(merged[2].name, "rumors"); // the first file's letter case,
    EXPECT_EQ(merged[2].type, 4);        // the last file's type
    EXPECT_EQ(merged[2].responses.size(), 1u);
}

TEST(GameDialogue, ConditionsInWordsAndTheSlotsTheGameDrops) {
    auto words = [](const std::string& scvrBody, std::int32_t value, bool isFloat = false) {
        InfoCondition c;
        c.Index = scvrBody[0];
        c.Type = scvrBody[1];
        c.Function = {scvrBody[2], scvrBody[3]};
        c.Comparison = scvrBody[4];
        c.Name = scvrBody.substr(5);
        if (isFloat) {
            c.FLTVSize = 4;
            c.FLTV = float(value) + 0.5f;
        } else {
            c.INTVSize = 4;
            c.INTV = value;
        }
        std::optional<Condition> decoded = decodeCondition(c);
        return decoded ? describe(*decoded) : std::string("dropped");
    };
    EXPECT_EQ(words(scvr('0', '1', "06", '3'), 10), "PC Level \u2265 10");
    EXPECT_EQ(words(scvr('1', 'C', "sX", '0', "NoLore"), 0), "Not Local NoLore = 0");
    EXPECT_EQ(words(scvr('2', '4', "JX", '3', "MS_Trade"), 50), "Journal MS_Trade \u2265 50");
    EXPECT_EQ(words(scvr('3', '7', "XX", '0', "fargoth"), 1), "Not ID fargoth"); // its value means nothing
    EXPECT_EQ(words(scvr('4', '2', "fX", '5', "Random100"), 30, true), "Global Random100 \u2264 30.5");
    EXPECT_EQ(words(scvr('5', '1', "50", '1'), 2), "Choice \u2260 2");
    EXPECT_EQ(words(scvr('0', '1', "74", '0'), 1), "dropped");      // no function 74
    EXPECT_EQ(words(scvr('0', '1', "06", '7'), 1), "dropped");      // no comparison 7
    EXPECT_EQ(words(scvr('0', 'D', "XX", '0', "x"), 1), "dropped"); // no type D
    EXPECT_EQ(words(scvr('0', '3', "sX", '0'), 1), "dropped");      // a local without a name

    Info all{"1", ""};
    all.actor = "fargoth";
    all.data = data(30, 2, 1, 0);
    all.subs = {{"RNAM", std::string("Wood Elf\0", 9)},
                {"FNAM", std::string("Guild\0", 6)},
                {"DNAM", std::string("Thieves\0", 8)},
                {"ANAM", std::string("Seyda Neen\0", 11)}};
    RecordStore s = readStore(file(0, {dial("T"), all.bytes()}));
    EXPECT_EQ(speakerFilters(s.INFO.at(0), false),
              (std::vector<std::string>{"ID fargoth", "Race Wood Elf", "Faction Guild (rank \u2265 2)",
                                        "Sex Female", "PC Faction Thieves (rank \u2265 0)", "Cell Seyda Neen",
                                        "Disposition \u2265 30"}));
    EXPECT_EQ(speakerFilters(s.INFO.at(0), true).back(), "Index 30");
}

// Each filter in the game's order rejects the responses above the one given, and what the
// caller did not say is named as assumed.
TEST(GameDialogue, TheFirstResponseWhoseFiltersAllHoldIsGiven) {
    std::string schd = fixed("npc_script", 32) + le32(1) + std::string(16, '\0');
    auto npc = [](const std::string& id, const std::string& race, const std::string& faction, int rank,
                  bool female, const std::string& script) {
        std::string stats(12, '\0');
        stats[2] = 40; // disposition
        stats[4] = char(rank);
        Rec n("NPC_");
        n.z("NAME", id)
            .z("FNAM", id)
            .z("RNAM", race)
            .z("CNAM", "Smith")
            .z("ANAM", faction)
            .sub("NPDT", stats);
        n.i32("FLAG", female ? 1 : 0);
        if (!script.empty()) n.z("SCRI", script);
        return n.bytes();
    };
    auto slot = [](const std::string& body, std::int32_t value) {
        return std::vector<std::pair<std::string, std::string>>{{"SCVR", body}, {"INTV", le32(value)}};
    };
    auto with = [](Info i, std::vector<std::pair<std::string, std::string>> subs) {
        i.subs = std::move(subs);
        return i;
    };
    using S = Info;
    Info other{"1", ""};
    other.actor = "someone";
    Info elves{"2", "1"};
    elves.subs = {{"RNAM", std::string("Wood Elf\0", 9)}};
    Info noFaction{"3", "2"};
    noFaction.subs = {{"FNAM", std::string("FFFF\0", 5)}};
    Info male{"4", "3"};
    male.data = data(0, -1, 0);
    Info local = with(S{"5", "4"}, slot(scvr('0', '3', "sX", '0', "missing"), 0));
    Info noLore = with(S{"6", "5"}, slot(scvr('0', 'C', "sX", '0', "nolore"), 0));
    Info choice = with(S{"7", "6"}, slot(scvr('0', '1', "50", '0'), 1));
    Info journal = with(S{"8", "7"}, slot(scvr('0', '4', "JX", '3', "quest"), 50));
    Info cell{"9", "8"};
    cell.subs = {{"ANAM", std::string("Balmora\0", 8)}};
    Info fond{"10", "9"};
    fond.data = data(70);
    Info unknownGlobal = with(S{"11", "10"}, slot(scvr('0', '2', "sX", '0', "noSuchGlobal"), 5));
    std::string bytes =
        file(0, {Rec("SCPT").sub("SCHD", schd).sub("SCVR", std::string("nolore\0", 7)).bytes(),
                 npc("ann", "Dark Elf", "Guild", 3, true, "npc_script"), dial("T")}) +
        other.bytes() + elves.bytes() + noFaction.bytes() + male.bytes() + local.bytes() + noLore.bytes() +
        choice.bytes() + journal.bytes() + cell.bytes() + fond.bytes() + unknownGlobal.bytes();
    RecordStore store = readStore(bytes);
    std::vector<DialogueSource> sources{{"p.esp", &store}};
    MergedTopic topic = mergeDialogue(sources).at(0);
    Speaker ann = findSpeaker(sources, "ann");
    ASSERT_TRUE(ann.found);
    EXPECT_EQ(ann.disposition, 40);
    Situation s;
    ResponseChoice got = chooseResponse(topic, ann, s);
    auto reasons = [&] {
        std::vector<std::string> out;
        for (const auto& [i, why] : got.rejected)
            out.push_back(topic.responses[i].info->INAM + ": " + why);
        return out;
    };
    ASSERT_TRUE(got.given);
    EXPECT_EQ(topic.responses[*got.given].info->INAM, "11"); // a global the load order lacks passes
    EXPECT_EQ(reasons(), (std::vector<std::string>{
                             "1: ID someone", "2: Race Wood Elf", "3: No Faction", "4: Sex Male",
                             "5: Local missing = 0", "6: Not Local nolore = 0", "7: Choice = 1",
                             "8: Journal quest \u2265 50", "9: Cell Balmora", "10: Disposition \u2265 70"}));
    EXPECT_EQ(got.assumed, (std::vector<std::string>{"no choice is being answered",
                                                     "the journal quest is at 0", "the local nolore is 0",
                                                     "the player is in no cell that a filter names"}));
    // Given the answer, the quest and the cell, the responses they filtered now win.
    s.choice = 1;
    got = chooseResponse(topic, ann, s);
    EXPECT_EQ(topic.responses[*got.given].info->INAM, "7");
    s.choice.reset();
    s.variables["nolore"] = 1;
    got = chooseResponse(topic, ann, s);
    EXPECT_EQ(topic.responses[*got.given].info->INAM, "6");
    // A creature says only what names it.
    Speaker creature;
    creature.id = "ann";
    creature.found = creature.creature = true;
    got = chooseResponse(topic, creature, s);
    EXPECT_FALSE(got.given);
    EXPECT_EQ(got.rejected.at(1).second, "a creature says only what names its ID");
}

TEST(GameDialogue, TheCommandsShowTheOrderAndWhoSaysWhat) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("data"));
    Info a{"A", ""}, b{"B", "A"};
    a.actor = "fargoth";
    a.text = "Only to Fargoth.";
    b.text = "To anyone.";
    dir.write("data/Base.esm", topicFile({a, b}, "rumors"));
    Info x{"X", "A"};
    x.text = "After A, from the plugin.";
    x.subs = {{"SCVR", scvr('0', '1', "06", '3')}, {"INTV", le32(10)}};
    std::string header =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "Base.esm").sub("DATA", std::string(8, '\0')).bytes();
    std::string plugin = dir.write("p.esp", header + dial("rumors") + x.bytes());

    CliRun merged = cli({"dialogue", plugin, "--with-masters", "--data", dir.file("data")});
    EXPECT_EQ(merged.status, 0) << merged.err;
    EXPECT_EQ(merged.out, "Topic \"rumors\": 3 response(s)\n"
                          "  1. Base.esm INFO A [ID fargoth]\n     \"Only to Fargoth.\"\n"
                          "  2. p.esp INFO X [PC Level \u2265 10]\n     \"After A, from the plugin.\"\n"
                          "  3. Base.esm INFO B\n     \"To anyone.\"\n");
    CliRun alone = cli({"dialogue", plugin, "--json", "--data", dir.file("data")});
    EXPECT_NE(alone.out.find("\"conditions\": [\"PC Level \u2265 10\"]"), std::string::npos) << alone.out;
    EXPECT_EQ(cli({"dialogue", plugin, "--topic", "nothing"}).status, 1);

    CliRun low =
        cli({"who-says", plugin, "--topic", "Rumors", "--actor", "guard", "--data", dir.file("data")});
    EXPECT_EQ(low.status, 0) << low.err;
    EXPECT_EQ(low.out, "guard says \"To anyone.\" (Base.esm INFO B)\nPassed over, from the top:\n"
                       "  Base.esm INFO A: ID fargoth\n  p.esp INFO X: PC Level \u2265 10\n"
                       "Assumed: the actor is defined by none of the files read; PC Level is 0\n");
    CliRun high = cli({"who-says", plugin, "--topic", "rumors", "--actor", "guard", "--pc", "level=12",
                       "--json", "--data", dir.file("data")});
    EXPECT_EQ(high.out.rfind("{\"response\": {\"file\": \"p.esp\", \"id\": \"X\"", 0), 0u) << high.out;
    EXPECT_EQ(cli({"who-says", plugin, "--topic", "rumors", "--actor", "guard", "--pc", "lvl=3"}).status, 2);
}

// The faults only the game's rules reveal: a response an earlier one always pre-empts (and none
// where that is unsure), filters that contradict each other, a merge that puts a response last,
// first or moves another, a quest index given twice.
TEST(GameDialogue, FaultsOnlyTheGamesRulesReveal) {
    auto slot = [](const std::string& body, std::int32_t value) {
        return std::vector<std::pair<std::string, std::string>>{{"SCVR", body}, {"INTV", le32(value)}};
    };
    auto with = [](Info i, std::vector<std::pair<std::string, std::string>> subs,
                   const std::string& actor = "") {
        i.subs = std::move(subs);
        i.actor = actor;
        return i;
    };
    using S = Info;
    std::string master = topicFile({with(S{"M1", ""}, {}, "guard"), with(S{"M2", "M1"}, {}, "guard")});
    std::string plugin = topicFile(
        {with(S{"N1", "M1"}, {}, "someone"),                                  // after M1: fine
         with(S{"P1", "N1"}, slot(scvr('0', '1', "06", '3'), 5)),             // PC Level >= 5
         with(S{"P2", "P1"}, slot(scvr('0', '1', "06", '3'), 10), "fargoth"), // shadowed by P1
         with(S{"P3", "P2"}, slot(scvr('0', '3', "sX", '0', "talked"), 1)),   // a Local: never judged
         with(S{"P4", "P3"}, slot(scvr('0', '1', "06", '2'), 20)),            // PC Level > 20: shadowed
         with(S{"P5", "P4"}, {{"SCVR", scvr('0', '7', "XX", '0', "fargoth")}, {"INTV", le32(1)}}, "fargoth"),
         with(S{"P6", "P5"}, {{"SCVR", scvr('0', '4', "JX", '3', "q")},
                              {"INTV", le32(50)},
                              {"SCVR", scvr('1', '4', "JX", '4', "q")},
                              {"INTV", le32(20)}}),
         with(S{"P7", "P6"}, slot(scvr('0', '1', "38", '0'), 2)), // PC Sex = 2
         S{"P8", "gone"}, with(S{"P9", ""}, {}, "nobody"), with(S{"M2", "P9"}, {}, "guard")});
    std::vector<RecordStore> stores{readStore(master), readStore(plugin)};
    auto faults = [&](bool known) {
        std::vector<std::string> out;
        for (const DialogueFault& f : dialogueFaults({{"m.esm", &stores[0]}, {"p.esp", &stores[1]}}, known))
            out.push_back(std::string(f.kind) + " " + f.info->INAM + ": " + f.detail);
        return out;
    };
    EXPECT_EQ(
        faults(true),
        (std::vector<std::string>{
            "shadowed P2: never shown: p.esp INFO P1 above it (PC Level \u2265 5) is given whenever it would "
            "be",
            "shadowed P4: never shown: p.esp INFO P1 above it (PC Level \u2265 5) is given whenever it would "
            "be",
            "never P5: never shown: ID fargoth and Not ID fargoth",
            "never P6: never shown: Journal q < 20 contradicts an earlier slot",
            "never P7: never shown: PC Sex = 2 can never hold",
            "order P8: its previous response (PNAM gone) is in none of the files before it: it goes last",
            "order P9: its empty previous response (PNAM) puts it above the first response of m.esm",
            "order M2: it has the ID of a response of m.esm with another previous response (PNAM P9): that "
            "response is moved"}));
    // Without the whole load order only what the responses settle themselves.
    std::vector<std::string> alone = faults(false);
    EXPECT_EQ(alone.size(), 3u);
    EXPECT_TRUE(std::all_of(alone.begin(), alone.end(),
                            [](const std::string& f) { return f.rfind("never", 0) == 0; }));

    // A quest index given twice, a second quest name.
    Info first{"J1", "", "Started."}, again{"J2", "J1", "Again."}, named{"J3", "J2", "Named."};
    first.data = data(10);
    again.data = data(10);
    named.data = data(20);
    first.subs = {{"QSTN", std::string(1, '\1')}};
    named.subs = {{"QSTN", std::string(1, '\1')}};
    RecordStore quest = readStore(file(0, {dial("q", '\4'), first.bytes(), again.bytes(), named.bytes()}));
    std::vector<std::string> journal;
    for (const DialogueFault& f : dialogueFaults({{"q.esp", &quest}}, true))
        journal.push_back(f.info->INAM + ": " + f.detail);
    EXPECT_EQ(journal, (std::vector<std::string>{
                           "J2: index 10 is q.esp INFO J1's already; the game writes only the first",
                           "J3: a second entry naming the quest (the first: q.esp INFO J1)"}));
}

// Topic links as the game finds them: at a word's start, its end unchecked, the longest of
// overlapping matches, explicit @…# links.
TEST(GameDialogue, TopicLinksFollowTheGamesKeywordRule) {
    auto linked = [](std::vector<std::string> topics, const std::string& text) {
        std::vector<std::string> out;
        for (const TopicLink& l : TopicLinks(std::move(topics)).find(text))
            out.push_back(l.topic + (l.explicitLink ? "!" : "") + "@" + std::to_string(l.at));
        return out;
    };
    using V = std::vector<std::string>;
    EXPECT_EQ(linked({"foo bar", "bar lock", "lock so"}, "foo bar lock so"), V{"bar lock@4"});
    EXPECT_EQ(linked({"the dwemer", "dwemer language"}, "the dwemer language"), V{"dwemer language@4"});
    EXPECT_EQ(linked({"orc", "ring"}, "Force, Orcs, a Bring, gold-rings, (ring"), (V{"orc@7", "ring@35"}));
    EXPECT_EQ(linked({"work", "some work"}, "I've got some work for you. Work?"),
              (V{"some work@9", "work@28"}));
    EXPECT_EQ(linked({"Vivec"}, "Ask @Lord Vivec# about \"VIVEC\" or @unclosed"),
              (V{"lord vivec!@4", "Vivec@24"}));
    EXPECT_EQ(markedLinks("ask about work", TopicLinks({"work"}).find("ask about work")), "ask about @work#");
}

// A topic of the file no text links and no AddTopic adds is never learned; a longer topic that
// swallows its mentions is said. The links command marks what the game links.
TEST(GameDialogue, TopicsNoTextLinksAreNeverLearned) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("data"));
    Info greeting{"G", "", "I've got some work for you, and news of the mill."};
    dir.write("data/Base.esm", file(0, {dial("Greeting 1", '\2'), greeting.bytes(), dial("some work")}));
    Info work{"W", ""}, mill{"M", ""}, secret{"S", "", "Ask about the old mill."};
    secret.subs = {{"BNAM", "AddTopic \"hidden door\""}};
    std::string header =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "Base.esm").sub("DATA", std::string(8, '\0')).bytes();
    std::string plugin =
        dir.write("p.esp", header + dial("work") + work.bytes() + dial("mill") + mill.bytes() +
                               dial("secret") + secret.bytes() + dial("hidden door") + dial("never said"));
    CliRun r = cli({"check", plugin, "--only", "link", "--data", dir.file("data")});
    EXPECT_EQ(r.out, plugin +
                         ": link: DIAL \"work\": no text links it (its 1 mention(s) are swallowed by longer "
                         "topics) and no AddTopic adds it: the player never learns it\n" +
                         plugin +
                         ": link: DIAL \"secret\": no text mentions it and no AddTopic adds it: the player "
                         "never learns it\n" +
                         plugin +
                         ": link: DIAL \"never said\": no text mentions it and no AddTopic adds it: the "
                         "player never learns it\n")
        << r.err;
    // Without the master nothing is judged.
    EXPECT_EQ(cli({"check", plugin, "--only", "link"}).out.find("link:"), std::string::npos);

    CliRun links =
        cli({"links", plugin, "--topic", "Greeting 1", "--response", "G", "--data", dir.file("data")});
    EXPECT_EQ(links.status, 0) << links.err;
    EXPECT_EQ(links.out, "I've got @some work# for you, and news of the @mill#.\n  some work\n  mill\n");
    EXPECT_EQ(cli({"links", plugin, "--topic", "Greeting 1", "--response", "X"}).status, 1);
}

// A sex filter against the speaker the ID names can never hold; a topic refused on disposition
// alone is answered from Info Refusal.
TEST(GameDialogue, SexAgainstTheSpeakerAndInfoRefusal) {
    std::string stats(12, '\0');
    stats[2] = 30; // disposition
    std::string ann = Rec("NPC_").z("NAME", "ann").z("FNAM", "Ann").sub("NPDT", stats).i32("FLAG", 1).bytes();
    Info male{"1", ""}, fond{"2", "1", "Dear friend."}, refusal{"R", "", "Go away."};
    male.actor = "ann";
    male.data = data(0, -1, 0);
    fond.data = data(60);
    std::string bytes =
        file(0, {ann, dial("rumors")}) + male.bytes() + fond.bytes() + dial("Info Refusal") + refusal.bytes();
    RecordStore store = readStore(bytes);
    std::vector<std::string> never;
    for (const DialogueFault& f : dialogueFaults({{"p.esp", &store}}, true))
        never.push_back(std::string(f.kind) + ": " + f.detail);
    EXPECT_EQ(never, std::vector<std::string>{"never: never shown: ID ann is female and Sex Male"});

    TempDir dir;
    std::string path = dir.write("p.esp", bytes);
    CliRun r = cli({"who-says", path, "--topic", "rumors", "--actor", "ann"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "ann says \"Go away.\" (Info Refusal: p.esp INFO R)");
    EXPECT_NE(r.out.find("p.esp INFO 2: Disposition \u2265 60"), std::string::npos) << r.out;
}

// A localized master's link files: .mrk gives the keyword a topic is found by in plain text,
// .top the topic an explicit link's word form stands for.
TEST(GameDialogue, LinkFilesBesideAMasterChangeWhatLinks) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("data"));
    Info said{"S", "", "He was slain. @Killed# him, they say. Kill!"};
    dir.write("data/Base.esm", file(0, {dial("kill"), said.bytes()}));
    dir.write("data/Base.mrk", "kill\tslain\r\nbroken line\n\tempty key\nkill\tsecond\n");
    dir.write("data/Base.top", "killed\tkill\n");
    std::string header =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "Base.esm").sub("DATA", std::string(8, '\0')).bytes();
    std::string plugin = dir.write("p.esp", header);
    CliRun r = cli({"links", plugin, "--topic", "kill", "--response", "S", "--data", dir.file("data")});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "He was @slain#. @Killed# him, they say. Kill!\n  kill\n  kill (explicit)\n");
}

// An answer no Choice command of its topic offers is never shown; one offered is.
TEST(GameDialogue, AnswersNoChoiceOffersAreNeverShown) {
    Info ask{"A", "", "Well?"}, yes{"Y", "A", "Yes then."}, lost{"L", "Y", "Lost."};
    ask.actor = "ann";
    ask.subs = {{"BNAM", "Choice \"Yes\" 1 \"No\" 2"}};
    yes.subs = {{"SCVR", scvr('0', '1', "50", '0')}, {"INTV", le32(1)}};
    lost.subs = {{"SCVR", scvr('0', '1', "50", '0')}, {"INTV", le32(3)}};
    RecordStore store = readStore(topicFile({ask, yes, lost}));
    std::vector<std::string> found;
    for (const DialogueFault& f : dialogueFaults({{"p.esp", &store}}, true))
        found.push_back(f.info->INAM + ": " + f.detail);
    EXPECT_EQ(found, std::vector<std::string>{
                         "L: never shown: Choice = 3, but no response of the topic offers choice 3"});
}

// Writes the bundled sample plugin: a small, reviewable file that exercises every command.
//   make_sample OUT.esp
#include "tools/record_builder.h"

#include <cstdio>
#include <string>
#include <vector>

using namespace quillon::build;

namespace {

constexpr std::int32_t kDeleted = 0x20;

std::string infoData(std::int32_t type, std::int32_t disposition = 0) {
    return le32(type) + le32(disposition) + std::string{char(-1), char(-1), char(-1), 0};
}

struct Response {
    std::string id, previous, next, actor, text, script;
    bool choiceTwo = false; // shown only after the player picked choice 2
};

std::string info(std::int32_t type, const Response& r) {
    Rec rec("INFO");
    rec.z("INAM", r.id).z("PNAM", r.previous).z("NNAM", r.next).sub("DATA", infoData(type));
    if (!r.actor.empty()) rec.z("ONAM", r.actor);
    rec.text("NAME", r.text);
    if (type == 4 && r.previous.empty()) rec.sub("QSTN", std::string(1, '\1'));
    if (r.choiceTwo) rec.sub("SCVR", scvr('0', '1', "50", '0')).i32("INTV", 2);
    if (!r.script.empty()) rec.text("BNAM", r.script);
    return rec.bytes();
}

// A topic and its responses, chained in order.
std::vector<std::string> topic(const std::string& name, std::int32_t type, std::vector<Response> responses) {
    for (std::size_t i = 0; i < responses.size(); ++i) {
        if (i > 0) responses[i].previous = responses[i - 1].id;
        if (i + 1 < responses.size()) responses[i].next = responses[i + 1].id;
    }
    std::vector<std::string> out{Rec("DIAL").z("NAME", name).sub("DATA", std::string(1, char(type))).bytes()};
    for (const Response& r : responses)
        out.push_back(info(type, r));
    return out;
}

std::string npc(const std::string& id, const std::string& name, const std::string& race,
                const std::string& cls, const std::string& faction, bool female, bool autoCalculated,
                std::uint8_t rank) {
    Rec rec("NPC_");
    rec.z("NAME", id).z("MODL", "").z("FNAM", name).z("RNAM", race).z("CNAM", cls).z("ANAM", faction);
    rec.z("BNAM", "b_n_dark elf_m_head_01").z("KNAM", "b_n_dark elf_m_hair_01");
    if (autoCalculated) {
        rec.sub("NPDT", le16(5) + std::string{50, 0, char(rank), 0, 0, 0} + le32(100));
    } else {
        std::string full(52, '\0');
        full[0] = 10;
        full[46] = char(rank);
        rec.sub("NPDT", full);
    }
    std::int32_t flags = 0x8 | (female ? 0x1 : 0) | (autoCalculated ? 0x10 : 0);
    rec.i32("FLAG", flags);
    rec.sub("NPCO", le32(1) + fixed("common_shirt_01", 32));
    rec.sub("AIDT", std::string{30, 0, 30, 30, 0, 0, 0, 0} + le32(0));
    return rec.bytes();
}

std::string reference(std::int32_t index, const std::string& id, float x) {
    std::string position = f32(x) + f32(0) + f32(0) + f32(0) + f32(0) + f32(0);
    return "FRMR" + le32(4) + le32(index) + "NAME" + le32(std::int32_t(id.size() + 1)) + id +
           std::string(1, '\0') + "DATA" + le32(24) + position;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_sample OUT.esp\n");
        return 2;
    }
    std::vector<std::string> records;
    auto add = [&](const std::vector<std::string>& more) {
        records.insert(records.end(), more.begin(), more.end());
    };

    std::string ranks[] = {"Apprentice", "Journeyman", "Master Trader"};
    Rec guild("FACT");
    guild.z("NAME", "ks_traders").z("FNAM", "Kestrel Traders");
    for (const std::string& rank : ranks)
        guild.sub("RNAM", fixed(rank, 32));
    guild.sub("FADT", std::string(240, '\0'));
    records.push_back(guild.bytes());

    records.push_back(Rec("STAT").z("NAME", "ks_crate").z("MODL", "o\\contain_crate_01.nif").bytes());
    records.push_back(Rec("STAT", kDeleted).z("NAME", "ks_old_sign").sub("DELE", le32(0)).bytes());

    records.push_back(npc("ks_fenrick", "Fenrick Ulvo", "Wood Elf", "Trader", "ks_traders", false, false, 2));
    records.push_back(npc("ks_ilara", "Ilara Davel", "Dark Elf", "Pilgrim", "", true, true, 0));
    records.push_back(npc("ks_marco", "Marco Aurin", "Imperial", "Guard", "ks_traders", false, true, 1));
    records.push_back(npc("ks_guard", "Imperial Guard", "Imperial", "Guard", "", false, true, 0));
    records.push_back(npc("ks_dreamer", "Dreamer", "Dark Elf", "Commoner", "", false, true, 0));
    records.push_back(Rec("CREA")
                          .z("NAME", "ks_mudcrab")
                          .z("MODL", "r\\mudcrab.nif")
                          .z("FNAM", "Mudcrab Merchant")
                          .sub("NPDT", std::string(96, '\0'))
                          .i32("FLAG", 0x48)
                          .sub("AIDT", std::string(12, '\0'))
                          .bytes());

    records.push_back(Rec("CELL")
                          .z("NAME", "Kestrel, Tradehouse")
                          .sub("DATA", le32(1) + le32(0) + le32(0))
                          .raw(reference(1, "ks_fenrick", 10) + reference(2, "ks_ilara", 20) +
                               reference(3, "ks_guard", 30) + reference(4, "ks_guard", 40) +
                               reference(5, "ks_crate", 50))
                          .i32("NAM0", 1)
                          .raw(reference(6, "ks_dreamer", 60))
                          .bytes());
    records.push_back(Rec("CELL")
                          .z("NAME", "Kestrel Coast")
                          .sub("DATA", le32(2) + le32(-2) + le32(5))
                          .z("RGNN", "Bitter Coast Region")
                          .raw(reference(7, "ks_marco", 0) + reference(8, "ks_mudcrab", 5))
                          .bytes());

    std::string longText = "Kestrel was built on the old salt road, back when the caravans still came down "
                           "from the Ashlands every "
                           "spring. My grandfather kept the tradehouse then, and he used to say that a "
                           "trader who cannot tell a story "
                           "will never sell a single crate of kwama eggs. So I will tell you one, and you "
                           "can decide for yourself if "
                           "it was worth the time. There was a pilgrim once who walked all the way from "
                           "Vivec with nothing but a "
                           "walking staff and a sack of bread, and when she arrived she asked for a room, a "
                           "bath and a map of the "
                           "coast. We had no map. She stayed the whole summer drawing one, and it still "
                           "hangs upstairs by the stairs.";

    add(topic("Greeting 5", 2,
              {{"7315522011482527721", "", "", "ks_fenrick",
                "Welcome to the tradehouse, %Name. What can a humble %class do for you?", "", false},
               {"28611265512030213437", "", "", "ks_ilara",
                "Blessings of the Tribunal upon you. I am just a %race pilgrim resting here.", "", false},
               {"18733178293253715001", "", "", "ks_mudcrab", "Click. Click-click. The crab wants to trade.",
                "", false},
               {"21573164912614426520", "", "", "ks_marco",
                "Move along, citizen. The %Faction keep an eye on this road.", "", false},
               {"30542243702118232299", "", "", "", "You have nothing to say to this person.", "", false}}));
    add(topic(
        "little secret", 0,
        {{"194461299218313498", "", "", "ks_fenrick",
          "I shouldn't tell you this... but the \"old road\" is safer than the new one.\r\nAsk Ilara if you "
          "don't believe me.",
          "", false},
         {"2617628521109719305", "", "", "ks_ilara",
          "They say the \x93Lady of the Coast\x94 walks the shore at night. I'm gonna stay inside.", "",
          false},
         {"11093306851471414733", "", "", "ks_fenrick", "Do you want to hear the story again?",
          "Choice \"Yes, tell me again\" 2 \"No, thank you\" 3", true},
         {"32141306822751913985", "", "", "ks_fenrick", longText, "", false},
         {"5241293982319311043", "", "", "ks_marco",
          "i travelled from cyrodiil to vvardenfell.the colour of the armour here is odd ,isn't it?", "",
          false},
         {"1411912522314021829", "", "", "ks_ilara", "%PC, you should visit the temple of vivec -- truly.",
          "", false}}));
    add(topic(
        "kestrel", 0,
        {{"2294310752240621045", "", "", "ks_fenrick",
          "Kestrel is a small town on the Bitter Coast. We trade in salt, fish and rumours.", "", false},
         {"9128113226328510127", "", "", "ks_marco",
          "Kestrel? Quiet, mostly. Unless the smugglers come in from the sea of ghosts.", "", false},
         {"17423153481853621903", "", "", "ks_ilara",
          "I came here to pray at the shrine; the town is... restful.", "", false},
         {"2981415812310325863", "", "", "ks_fenrick",
          "Want the map? (It's upstairs.) I'll sell you a copy for fifty drakes.", "", false}}));
    add(topic(
        "KS_Sample_Quest", 4,
        {{"14211306423064925440", "", "", "", "Fenrick Ulvo asked me to find the pilgrim's map.", "", false},
         {"22617275193226319561", "", "", "", "Ilara Davel told me the map hangs upstairs.", "", false},
         {"31826122523102831117", "", "", "", "I brought the map back to Fenrick. He was pleased.", "",
          false},
         {"4130262741250020757", "", "", "", "Fenrick gave me a copy of the map to keep.", "", false}}));

    std::string out = file(std::int32_t(records.size()), {});
    for (const std::string& r : records)
        out += r;
    std::FILE* f = std::fopen(argv[1], "wb");
    if (!f || std::fwrite(out.data(), 1, out.size(), f) != out.size() || std::fclose(f) != 0) {
        std::fprintf(stderr, "make_sample: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}

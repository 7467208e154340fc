#include "bench/synthetic_master.h"

#include "tools/record_builder.h"

#include <random>
#include <vector>

namespace quillon::bench {

using namespace quillon::build;

namespace {

const char* const kWords[] = {"the",
                              "a",
                              "of",
                              "and",
                              "to",
                              "in",
                              "you",
                              "I",
                              "is",
                              "that",
                              "it",
                              "for",
                              "was",
                              "on",
                              "are",
                              "with",
                              "as",
                              "my",
                              "be",
                              "at",
                              "have",
                              "this",
                              "from",
                              "they",
                              "but",
                              "not",
                              "what",
                              "all",
                              "were",
                              "when",
                              "we",
                              "there",
                              "can",
                              "an",
                              "your",
                              "which",
                              "their",
                              "said",
                              "if",
                              "do",
                              "will",
                              "each",
                              "about",
                              "how",
                              "up",
                              "out",
                              "them",
                              "then",
                              "she",
                              "many",
                              "some",
                              "so",
                              "these",
                              "would",
                              "other",
                              "into",
                              "has",
                              "more",
                              "her",
                              "two",
                              "trader",
                              "guard",
                              "temple",
                              "house",
                              "ancestor",
                              "ashlands",
                              "netch",
                              "kwama",
                              "eggs",
                              "mine",
                              "vivec",
                              "balmora",
                              "ald'ruhn",
                              "sadrith mora",
                              "redoran",
                              "hlaalu",
                              "telvanni",
                              "tribunal",
                              "dunmer",
                              "outlander",
                              "n'wah",
                              "s'wit",
                              "blight",
                              "corprus",
                              "dagoth ur",
                              "red mountain",
                              "ghostfence",
                              "mages guild",
                              "fighters guild",
                              "imperial legion",
                              "daedra",
                              "ordinator",
                              "pilgrim",
                              "shrine",
                              "armour",
                              "colour",
                              "honour",
                              "gonna",
                              "travelled",
                              "rumour",
                              "favour",
                              "caldera",
                              "pelagiad",
                              "seyda neen",
                              "bitter coast"};
const char* const kTowns[] = {"Vivec", "Balmora", "Ald'ruhn", "Sadrith Mora", "Caldera",   "Pelagiad",
                              "Suran", "Gnisis",  "Maar Gan", "Molag Mar",    "Ebonheart", "Seyda Neen"};
const char* const kPlaces[] = {"Guild of Mages", "Tradehouse", "Temple",      "Council Club",
                               "Cornerclub",     "Manor",      "Guard Tower", "Shack",
                               "Hall",           "Arena",      "Canton",      "Plaza"};

class Generator {
public:
    Generator(const Profile& profile, double scale, unsigned seed)
        : profile_(profile), scale_(scale), random_(seed) {}

    std::string build() {
        std::vector<std::string> records;
        auto add = [&](int count, auto&& make) {
            for (int i = 0, n = scaled(count); i < n; ++i)
                records.push_back(make(i));
        };
        // The game's objects, fewer in the reference-dense profile.
        auto addObjects = [&](int count, auto&& make) { add(int(count * profile_.objectShare + 0.5), make); };
        addObjects(1428, [&](int i) {
            return Rec("GMST").text("NAME", "iSetting" + std::to_string(i)).i32("INTV", i).bytes();
        });
        addObjects(73, [&](int i) {
            return Rec("GLOB")
                .z("NAME", "global" + std::to_string(i))
                .sub("FNAM", "s")
                .f("FLTV", float(i))
                .bytes();
        });
        addObjects(77, [&](int i) {
            return named("CLAS", i)
                .z("FNAM", "Class")
                .sub("CLDT", blob(60))
                .text("DESC", prose(20, 200))
                .bytes();
        });
        addObjects(22, [&](int i) {
            Rec r = named("FACT", i);
            r.z("FNAM", "Faction " + std::to_string(i));
            for (int k = 0; k < 10; ++k)
                r.sub("RNAM", fixed("Rank " + std::to_string(k), 32));
            return r.sub("FADT", blob(240)).bytes();
        });
        addObjects(10, [&](int i) {
            return named("RACE", i)
                .z("FNAM", "Race")
                .sub("RADT", blob(140))
                .text("DESC", prose(10, 80))
                .bytes();
        });
        addObjects(
            430, [&](int i) { return named("SOUN", i).z("FNAM", "sound.wav").sub("DATA", blob(3)).bytes(); });
        addObjects(27, [&](int i) {
            return Rec("SKIL").i32("INDX", i).sub("SKDT", blob(24)).text("DESC", prose(10, 80)).bytes();
        });
        addObjects(137, [&](int i) {
            return Rec("MGEF")
                .i32("INDX", i)
                .sub("MEDT", blob(36))
                .z("ITEX", "icon.dds")
                .text("DESC", prose(5, 40))
                .bytes();
        });
        addObjects(631, [&](int i) {
            std::string source =
                "Begin script" + std::to_string(i) + "\r\n" + prose(50, 2000) + "\r\nEnd\r\n";
            int compiled = int(source.size() / 3);
            return Rec("SCPT")
                .sub("SCHD", fixed("script" + std::to_string(i), 32) + std::string(12, '\0') +
                                 le32(compiled) + le32(0))
                .sub("SCDT", noise(compiled))
                .text("SCTX", source)
                .bytes();
        });
        addObjects(9, [&](int i) {
            return named("REGN", i).z("FNAM", "Region").sub("WEAT", blob(10)).sub("CNAM", blob(4)).bytes();
        });
        addObjects(13, [&](int i) {
            return named("BSGN", i).z("FNAM", "Sign").text("DESC", prose(10, 60)).bytes();
        });
        addObjects(107,
                   [&](int i) { return named("LTEX", i).i32("INTV", i).z("DATA", "texture.dds").bytes(); });
        addObjects(2788, [&](int i) {
            return named("STAT", i).z("MODL", "x\\static_" + std::to_string(i) + ".nif").bytes();
        });
        addObjects(140, [&](int i) { return item("DOOR", i).bytes(); });
        addObjects(536, [&](int i) {
            return item("MISC", i).sub("MCDT", blob(12)).z("ITEX", "m\\misc.dds").bytes();
        });
        addObjects(485, [&](int i) {
            return item("WEAP", i).sub("WPDT", blob(32)).z("ITEX", "w\\weapon.dds").bytes();
        });
        addObjects(890, [&](int i) {
            Rec r = item("CONT", i);
            r.sub("CNDT", f32(100)).i32("FLAG", 8);
            for (int k = 0; k < 5; ++k)
                r.sub("NPCO", le32(1) + fixed("misc_" + std::to_string(k), 32));
            return r.bytes();
        });
        addObjects(982, [&](int i) {
            return named("SPEL", i).z("FNAM", "Spell").sub("SPDT", blob(12)).sub("ENAM", blob(24)).bytes();
        });
        addObjects(708, [&](int i) {
            return named("ENCH", i).sub("ENDT", blob(16)).sub("ENAM", blob(24)).sub("ENAM", blob(24)).bytes();
        });
        addObjects(1125, [&](int i) {
            return named("BODY", i).z("MODL", "b\\part.nif").z("FNAM", "Part").sub("BYDT", blob(4)).bytes();
        });
        addObjects(574, [&](int i) { return item("LIGH", i).sub("LHDT", blob(24)).bytes(); });
        addObjects(280, [&](int i) {
            return item("ARMO", i).sub("AODT", blob(24)).sub("INDX", "\x01").text("BNAM", "part").bytes();
        });
        addObjects(510, [&](int i) {
            return item("CLOT", i).sub("CTDT", blob(12)).sub("INDX", "\x02").text("BNAM", "part").bytes();
        });
        addObjects(6, [&](int i) { return item("REPA", i).sub("RIDT", blob(16)).bytes(); });
        addObjects(697, [&](int i) { return item("ACTI", i).bytes(); });
        addObjects(22, [&](int i) { return item("APPA", i).sub("AADT", blob(16)).bytes(); });
        addObjects(6, [&](int i) { return item("LOCK", i).sub("LKDT", blob(16)).bytes(); });
        addObjects(6, [&](int i) { return item("PROB", i).sub("PBDT", blob(16)).bytes(); });
        addObjects(95, [&](int i) { return item("INGR", i).sub("IRDT", blob(56)).bytes(); });
        addObjects(574, [&](int i) {
            return item("BOOK", i)
                .sub("BKDT", blob(20))
                .text("TEXT", prose(200, pick(500, profile_.bookMax)))
                .bytes();
        });
        addObjects(258, [&](int i) {
            return item("ALCH", i)
                .z("TEXT", "p\\potion.dds")
                .sub("ALDT", blob(12))
                .sub("ENAM", blob(24))
                .bytes();
        });
        addObjects(227, [&](int i) { return leveled("LEVI", "INAM", i); });
        addObjects(116, [&](int i) { return leveled("LEVC", "CNAM", i); });
        addObjects(168, [&](int i) {
            return named("SNDG", i).i32("DATA", i % 8).z("SNAM", "sound_" + std::to_string(i)).bytes();
        });
        npcs_ = scaled(int(2675 * profile_.objectShare + 0.5));
        addObjects(2675, [&](int i) { return npc(i); });
        addObjects(260, [&](int i) {
            return named("CREA", i)
                .z("MODL", "r\\creature.nif")
                .z("FNAM", "Creature")
                .sub("NPDT", blob(96))
                .i32("FLAG", 8)
                .sub("AIDT", blob(12))
                .bytes();
        });
        add(2538, [&](int i) { return cell(i); });
        add(1390, [&](int i) {
            return Rec("LAND")
                .sub("INTV", le32(i) + le32(-i))
                .sub("VHGT", noise(pick(profile_.landMin, profile_.landMax)))
                .bytes();
        });
        addObjects(1194, [&](int i) {
            // 60 points of two connections each: 120 edges.
            std::string point = blob(13) + "\x02" + blob(2), points;
            for (int k = 0; k < 60; ++k)
                points += point;
            return Rec("PGRD")
                .sub("DATA", blob(10) + le16(60))
                .z("NAME", cellName(i))
                .sub("PGRP", points)
                .sub("PGRC", blob(4 * 120))
                .bytes();
        });
        dialogue(records);
        std::string out =
            Rec("TES3")
                .sub("HEDR", hedr(std::int32_t(records.size()), 1, "Quillon", "Synthetic master"))
                .bytes();
        for (const std::string& r : records)
            out += r;
        return out;
    }

private:
    int scaled(int count) const { return std::max(1, int(count * scale_ + 0.5)); }
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    // Data blocks are zeros, which every reader of the format accepts (other engines check their
    // flags and enumerations); land heights and compiled scripts are noise.
    static std::string blob(int n) { return std::string(std::size_t(n), '\0'); }
    std::string noise(int n) {
        std::string s(std::size_t(n), '\0');
        for (char& c : s)
            c = char(random_());
        return s;
    }
    std::string word() { return kWords[pick(0, int(std::size(kWords)) - 1)]; }
    // Sentences of plain words with punctuation, at least min and about max characters long.
    std::string prose(int min, int max) {
        int target = pick(min, std::max(min, max));
        std::string s;
        bool start = true;
        while (int(s.size()) < target) {
            std::string w = word();
            if (start && w[0] >= 'a' && w[0] <= 'z') w[0] = char(w[0] - 32);
            s += w;
            int mark = pick(0, 20);
            start = mark < 2;
            s += mark == 0 ? ". " : mark == 1 ? "? " : mark == 2 ? ", " : mark == 3 ? "... " : " ";
        }
        s.resize(std::size_t(target));
        return s;
    }
    Rec named(const char* tag, int i) {
        return std::move(Rec(tag).z("NAME", std::string(tag) + "_" + std::to_string(i)));
    }
    Rec item(const char* tag, int i) {
        return std::move(named(tag, i)
                             .z("MODL", std::string(tag) + "\\model_" + std::to_string(i) + ".nif")
                             .z("FNAM", "Item " + std::to_string(i))
                             .z("SCRI", "script" + std::to_string(i % 50)));
    }
    std::string leveled(const char* tag, const char* entry, int i) {
        Rec r = named(tag, i);
        r.i32("DATA", 1).sub("NNAM", "\x05").i32("INDX", 6);
        for (int k = 0; k < 6; ++k)
            r.z(entry, "entry_" + std::to_string(k)).sub("INTV", le16(std::int16_t(k)));
        return r.bytes();
    }
    std::string npcId(int i) const { return "npc_" + std::to_string(i); }
    std::string npc(int i) {
        std::string stats = i % 3 ? std::string(12, '\x05') : blob(52);
        Rec r("NPC_");
        r.z("NAME", npcId(i))
            .z("MODL", "")
            .z("FNAM", i % 9 == 0 ? "Imperial Guard" : "Person " + std::to_string(i))
            .z("RNAM", "Dark Elf")
            .z("CNAM", "Commoner")
            .z("ANAM", i % 4 ? "FACT_" + std::to_string(i % 22) : "")
            .z("BNAM", "b_n_dark elf_m_head_01")
            .z("KNAM", "b_n_dark elf_m_hair_01")
            .sub("NPDT", stats)
            .i32("FLAG", 8 | (i % 2))
            .sub("AIDT", blob(12));
        for (int k = 0; k < 4; ++k)
            r.sub("NPCO", le32(1) + fixed("common_shirt_0" + std::to_string(k), 32));
        r.sub("AI_W", blob(14));
        return r.bytes();
    }
    std::string cellName(int i) const {
        return std::string(kTowns[i % std::size(kTowns)]) + ", " + kPlaces[(i / 12) % std::size(kPlaces)] +
               " " + std::to_string(i);
    }
    std::string cell(int i) {
        bool exterior = i % 3 == 0;
        Rec r("CELL");
        r.z("NAME", exterior ? std::string(kTowns[i % std::size(kTowns)]) : cellName(i));
        r.sub("DATA", le32(exterior ? 2 : 1) + le32(i % 40 - 20) + le32(i / 40 - 20));
        if (exterior)
            r.z("RGNN", "Region_" + std::to_string(i % 9));
        else
            r.sub("AMBI", blob(12) + f32(1));
        int references = pick(profile_.referencesMin, profile_.referencesMax);
        for (int k = 0; k < references; ++k) {
            std::string id = pick(1, 100) > profile_.staticPercent ? npcId(pick(0, npcs_ - 1))
                                                                   : "STAT_" + std::to_string(pick(0, 2000));
            std::string ref = "FRMR" + le32(4) + le32(k + 1) + "NAME" + le32(std::int32_t(id.size() + 1)) +
                              id + std::string(1, '\0');
            if (k % 4 == 0) ref += "XSCL" + le32(4) + f32(1.0f);
            ref += "DATA" + le32(24) + blob(24);
            r.raw(ref);
            if (k == references / 2) r.i32("NAM0", references - k - 1);
        }
        return r.bytes();
    }
    void dialogue(std::vector<std::string>& records) {
        int topics = scaled(3000), responses = scaled(profile_.responses), id = 1;
        for (int t = 0; t < topics; ++t) {
            int type = t % 10 == 0 ? 4 : t % 25 == 1 ? 2 : 0;
            std::string topic = (type == 2 ? "Greeting " : "topic ") + std::to_string(t);
            records.push_back(Rec("DIAL").z("NAME", topic).sub("DATA", std::string(1, char(type))).bytes());
            int count = responses / topics + (t < responses % topics ? 1 : 0);
            for (int k = 0; k < count; ++k, ++id) {
                Rec r("INFO");
                r.z("INAM", std::to_string(id * 7919LL + 104729))
                    .z("PNAM", k ? std::to_string((id - 1) * 7919LL + 104729) : "")
                    .z("NNAM", "")
                    .sub("DATA", le32(type) + le32(0) + std::string{char(-1), char(-1), char(-1), 0});
                if (type != 4) r.z("ONAM", npcId(pick(0, npcs_ - 1)));
                std::string text = prose(40, 512);
                if (k % 7 == 0) text = "\"" + text.substr(0, 300) + "\" said %Name.";
                if (k % 11 == 0) text += " The %race %class of the %Faction.";
                r.text("NAME", text);
                if (k % 5 == 0) r.sub("SCVR", scvr('0', '1', "50", '0')).i32("INTV", 1 + k % 3);
                if (k % 6 == 0)
                    r.text("BNAM", "; offer a choice\r\nChoice \"Yes\" " + std::to_string(1 + k % 3) +
                                       " \"No\" 9\r\nSetJournal \"q\" 10");
                records.push_back(r.bytes());
            }
        }
    }

    Profile profile_;
    double scale_;
    std::mt19937 random_;
    int npcs_ = 1;
};

} // namespace

const Profile& gameProfile() {
    static const Profile game{};
    return game;
}

const Profile& referenceDenseProfile() {
    static const Profile dense{.referencesMin = 40,
                               .referencesMax = 260,
                               .staticPercent = 93,
                               .landMin = 29000,
                               .landMax = 31000,
                               .responses = 24000,
                               .bookMax = 2000,
                               .objectShare = 0.66};
    return dense;
}

std::string syntheticMaster(const Profile& profile, double scale, unsigned seed) {
    return Generator(profile, scale, seed).build();
}

} // namespace quillon::bench

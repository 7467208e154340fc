#include "game/dialogue_faults.h"

#include "app/encoding.h"
#include "app/text.h"
#include "game/conditions.h"
#include "game/topic_links.h"
#include "script/script_reader.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <unordered_set>

namespace quillon {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The values a slot lets through: an interval with open or closed ends.
struct Interval {
    double lo = -kInfinity, hi = kInfinity;
    bool loOpen = false, hiOpen = false;
    bool empty() const { return lo > hi || (lo == hi && (loOpen || hiOpen)); }
    bool inside(const Interval& o) const {
        bool loOk = lo > o.lo || (lo == o.lo && (!o.loOpen || loOpen));
        bool hiOk = hi < o.hi || (hi == o.hi && (!o.hiOpen || hiOpen));
        return loOk && hiOk;
    }
    Interval meet(const Interval& o) const {
        Interval m = *this;
        if (o.lo > m.lo || (o.lo == m.lo && o.loOpen)) m.lo = o.lo, m.loOpen = o.loOpen;
        if (o.hi < m.hi || (o.hi == m.hi && o.hiOpen)) m.hi = o.hi, m.hiOpen = o.hiOpen;
        return m;
    }
};

// The interval a comparison allows; nothing for ≠, which is no interval.
std::optional<Interval> intervalOf(Comparison c, double v) {
    Interval i;
    switch (c) {
    case Comparison::Equal: i.lo = i.hi = v; break;
    case Comparison::NotEqual: return std::nullopt;
    case Comparison::Greater: i.lo = v, i.loOpen = true; break;
    case Comparison::GreaterOrEqual: i.lo = v; break;
    case Comparison::Less: i.hi = v, i.hiOpen = true; break;
    case Comparison::LessOrEqual: i.hi = v; break;
    }
    return i;
}

// The values a function can give, where the game bounds them.
Interval rangeOf(const Condition& c) {
    Interval r;
    if (c.type == SlotType::Item || c.type == SlotType::Dead) r.lo = 0;
    if (c.type != SlotType::Function) return r;
    switch (c.function) {
    case 38: r.lo = 0, r.hi = 1; break; // PC Sex
    case 39:
    case 40:
    case 41:
    case 44:
    case 45:
    case 46:
    case 48:
    case 49:
    case 58:
    case 60:
    case 62:
    case 63:
    case 71:
    case 72: r.lo = 0, r.hi = 1; break; // the booleans
    case 4:
    case 7: r.lo = 0, r.hi = 100; break; // health percents
    case 59: r.lo = 0, r.hi = 9; break;  // Weather
    case 66: r.lo = 0, r.hi = 4; break;  // Friend Hit
    case 2: r.lo = 0, r.hi = 3; break;   // Rank Requirement
    case 65: r.lo = 0, r.hi = 2; break;  // Creature Target
    case 47: r.lo = -9, r.hi = 9; break; // Faction Rank Difference
    case 6:
    case 61:
    case 42:
    case 43:
    case 73:
    case 50: r.lo = 0; break; // levels, counts, Choice
    default:
        if (c.function >= 10 && c.function <= 37) r.lo = 0; // attributes and skills
        if (c.function >= 51 && c.function <= 57) r.lo = 0;
    }
    return r;
}

// The same slot subject: type, and function or name.
std::string subjectOf(const Condition& c) {
    return std::string(1, char(c.type)) +
           (c.type == SlotType::Function ? std::to_string(c.function) : foldedKey(c.name));
}

struct Decoded {
    const InfoRecord* info;
    std::size_t file;
    std::vector<Condition> slots;
    bool hasLocal = false, hasChoice = false, hasRandom = false, creature = false;
};

Decoded decode(const MergedResponse& m, const std::unordered_set<std::string>& creatures) {
    Decoded d{m.info, m.file, {}};
    for (const InfoCondition& slot : m.info->Conditions)
        if (std::optional<Condition> c = decodeCondition(slot)) {
            d.hasLocal = d.hasLocal || c->type == SlotType::Local || c->type == SlotType::NotLocal;
            d.hasChoice = d.hasChoice || (c->type == SlotType::Function && c->function == 50);
            d.hasRandom =
                d.hasRandom || (c->type == SlotType::Global && equalsIgnoreCase(c->name, "random100"));
            d.slots.push_back(std::move(*c));
        }
    d.creature = !m.info->ONAM.empty() && creatures.count(foldedKey(m.info->ONAM));
    return d;
}

// True when e's slot holds whenever the slots of r all hold.
bool implied(const Condition& slot, const Decoded& r) {
    const InfoRecord& ri = *r.info;
    auto otherThan = [](const std::string& set, const std::string& name) {
        return !set.empty() && set != "FFFF" && !equalsIgnoreCase(set, name);
    };
    switch (slot.type) {
    case SlotType::NotId:
        if (otherThan(ri.ONAM, slot.name)) return true;
        break;
    case SlotType::NotFaction:
        if (otherThan(ri.FNAM, slot.name)) return true;
        break;
    case SlotType::NotClass:
        if (otherThan(ri.CNAM, slot.name)) return true;
        break;
    case SlotType::NotRace:
        if (otherThan(ri.RNAM, slot.name)) return true;
        break;
    default: break;
    }
    for (const Condition& own : r.slots) {
        if (subjectOf(own) != subjectOf(slot)) continue;
        if (isInverted(slot.type)) return true;
        std::optional<Interval> mine = intervalOf(own.comparison, own.value);
        if (slot.comparison == Comparison::NotEqual) {
            if (mine && (slot.value < mine->lo || slot.value > mine->hi)) return true;
            if (own.comparison == Comparison::NotEqual && own.value == slot.value) return true;
            continue;
        }
        if (mine && mine->meet(rangeOf(own)).inside(*intervalOf(slot.comparison, slot.value))) return true;
    }
    return false;
}

// True when e passes whenever r does (the conservative rule); false wherever unsure.
bool preEmpts(const Decoded& e, const Decoded& r) {
    const InfoRecord& ei = *e.info;
    const InfoRecord& ri = *r.info;
    if (e.hasLocal || e.hasChoice || e.hasRandom || e.creature || r.creature) return false;
    auto sameIfSet = [](const std::string& mine, const std::string& theirs) {
        return mine.empty() || equalsIgnoreCase(mine, theirs);
    };
    if (!sameIfSet(ei.ONAM, ri.ONAM) || !sameIfSet(ei.RNAM, ri.RNAM) || !sameIfSet(ei.CNAM, ri.CNAM) ||
        !sameIfSet(ei.FNAM, ri.FNAM) || !sameIfSet(ei.DNAM, ri.DNAM))
        return false;
    if (!ei.ANAM.empty() && (ri.ANAM.size() < ei.ANAM.size() ||
                             !equalsIgnoreCase(std::string_view(ri.ANAM).substr(0, ei.ANAM.size()), ei.ANAM)))
        return false;
    int eSex = signedByte(ei.Gender), rSex = signedByte(ri.Gender);
    if (eSex >= 0 && eSex != rSex) return false;
    int eRank = signedByte(ei.Rank), rRank = signedByte(ri.Rank);
    if (eRank >= 0 && (rRank < eRank || !equalsIgnoreCase(ei.FNAM, ri.FNAM))) return false;
    int ePc = signedByte(ei.PCRank), rPc = signedByte(ri.PCRank);
    if (ePc >= 0 && (rPc < ePc || !equalsIgnoreCase(ei.DNAM, ri.DNAM))) return false;
    if (ei.Disposition > ri.Disposition) return false;
    return std::all_of(e.slots.begin(), e.slots.end(),
                       [&](const Condition& slot) { return implied(slot, r); });
}

std::string name(const std::vector<DialogueSource>& sources, const Decoded& d) {
    return sources[d.file].name + " INFO " + toUtf8(d.info->INAM);
}

std::string inWords(const InfoRecord& r) {
    std::vector<std::string> all = speakerFilters(r, false), conditions = conditionsInWords(r);
    all.insert(all.end(), conditions.begin(), conditions.end());
    std::string out;
    for (const std::string& f : all)
        out += (out.empty() ? "" : "; ") + f;
    return out.empty() ? "no filter" : out;
}

// A slot that can never hold, or two that cannot hold together; empty when there is none.
// females holds the NPCs of the load order by ID, true for a female.
std::string contradiction(const Decoded& d, const std::unordered_map<std::string, bool>& females) {
    const InfoRecord& r = *d.info;
    if (int sex = signedByte(r.Gender); sex >= 0 && !r.ONAM.empty())
        if (auto npc = females.find(foldedKey(r.ONAM)); npc != females.end() && npc->second != bool(sex))
            return "ID " + toUtf8(r.ONAM) + " is " + (npc->second ? "female" : "male") + " and Sex " +
                   (sex ? "Female" : "Male");
    std::map<std::string, Interval> allowed;
    for (const Condition& c : d.slots) {
        auto clash = [&](const std::string& set, const char* what) {
            return !set.empty() && equalsIgnoreCase(set, c.name)
                       ? std::string(what) + " " + toUtf8(set) + " and " + describe(c)
                       : std::string();
        };
        std::string both = c.type == SlotType::NotId        ? clash(r.ONAM, "ID")
                           : c.type == SlotType::NotFaction ? clash(r.FNAM, "Faction")
                           : c.type == SlotType::NotClass   ? clash(r.CNAM, "Class")
                           : c.type == SlotType::NotRace    ? clash(r.RNAM, "Race")
                                                            : std::string();
        if (!both.empty()) return both;
        if (r.FNAM == "FFFF" && c.type == SlotType::Function) {
            // Without a faction these give 0: asking for more never holds.
            bool needsFaction = c.function == 46 || c.function == 39 || c.function == 2 || c.function == 47 ||
                                c.function == 0 || c.function == 1;
            if (needsFaction && !compares(0, c.comparison, c.value)) return "No Faction and " + describe(c);
        }
        std::optional<Interval> i = intervalOf(c.comparison, c.value);
        if (!i || isInverted(c.type) || c.type == SlotType::NotLocal) continue;
        Interval range = rangeOf(c);
        if (i->meet(range).empty()) return describe(c) + " can never hold";
        std::string subject = subjectOf(c);
        // A global the load order lacks lets its slots pass, so two of them never clash for sure.
        if (c.type == SlotType::Global) continue;
        auto at = allowed.try_emplace(subject, range).first;
        at->second = at->second.meet(*i);
        if (at->second.empty()) return describe(c) + " contradicts an earlier slot";
    }
    return {};
}

// The answers the Choice commands of a script offer.
void choicesOffered(std::string_view script, std::set<long>& out) {
    forEachStatement(script.substr(0, script.find('\0')), [&](const ScriptStatement& s) {
        if (s.head.kind != ScriptToken::Name || !sameName(s.head.text, "choice")) return;
        for (const ScriptToken& a : s.arguments)
            if (a.kind == ScriptToken::Number)
                out.insert(std::strtol(std::string(a.text).c_str(), nullptr, 10));
    });
}

// The topics AddTopic names in a script, folded.
void addedTopics(std::string_view script, std::unordered_set<std::string>& out) {
    forEachStatement(script.substr(0, script.find('\0')), [&](const ScriptStatement& s) {
        if (s.head.kind == ScriptToken::Name && sameName(s.head.text, "addtopic") && !s.arguments.empty())
            out.insert(foldedKey(s.arguments.front().text));
    });
}

// The last source's topics (of type Topic) that no text links and no script adds.
void unlearnable(const std::vector<DialogueSource>& sources, const std::vector<MergedTopic>& topics,
                 std::vector<DialogueFault>& out) {
    TopicLinks links = loadOrderLinks(sources, topics);
    std::unordered_set<std::string> learnt;
    std::vector<std::string_view> texts;
    for (const MergedTopic& t : topics)
        for (const MergedResponse& m : t.responses) {
            texts.push_back(m.info->NAME);
            for (const TopicLink& l : links.find(m.info->NAME))
                learnt.insert(foldedKey(l.topic));
            addedTopics(m.info->BNAM, learnt);
        }
    for (const DialogueSource& s : sources)
        for (const ScptRecord& r : s.store->SCPT)
            addedTopics(r.SCTX, learnt);
    const RecordStore& own = *sources.back().store;
    std::vector<std::string> never;
    for (const DialRecord& d : own.DIAL)
        if (d.DATA == 0 && !d.Dele && !learnt.count(foldedKey(d.NAME))) never.push_back(d.NAME);
    // Where a longer topic swallows the mentions of one, say so: they are its matches when it
    // is looked for among the unlearnt ones alone.
    std::unordered_map<std::string, std::size_t> mentions;
    TopicLinks alone(never);
    for (std::string_view text : never.empty() ? std::vector<std::string_view>{} : texts)
        for (const TopicLink& l : alone.find(text))
            ++mentions[foldedKey(l.topic)];
    for (const std::string& topic : never) {
        std::size_t swallowed = mentions[foldedKey(topic)];
        out.push_back(
            {"link", nullptr, topic,
             swallowed
                 ? "no text links it (its " + std::to_string(swallowed) +
                       " mention(s) are swallowed by longer topics) and no AddTopic adds it: the player "
                       "never learns it"
                 : "no text mentions it and no AddTopic adds it: the player never learns it"});
    }
}

} // namespace

std::vector<DialogueFault> dialogueFaults(const std::vector<DialogueSource>& sources, bool orderKnown) {
    std::vector<DialogueFault> out;
    if (sources.empty()) return out;
    std::size_t own = sources.size() - 1;
    std::unordered_set<std::string> creatures;
    std::unordered_map<std::string, bool> females;
    for (const DialogueSource& s : sources) {
        for (const CreaRecord& c : s.store->CREA)
            creatures.insert(foldedKey(c.NAME));
        for (const NpcRecord& n : s.store->NPC_)
            females[foldedKey(n.NAME)] = n.FLAG[0] & 1;
    }
    std::vector<OrderEvent> events;
    std::vector<MergedTopic> topics = mergeDialogue(sources, &events);
    for (const MergedTopic& t : topics) {
        std::vector<Decoded> decoded;
        decoded.reserve(t.responses.size());
        for (const MergedResponse& m : t.responses)
            decoded.push_back(decode(m, creatures));
        if (t.type == 4) {
            std::map<std::int32_t, const Decoded*> indexes;
            const Decoded* named = nullptr;
            for (const Decoded& d : decoded) {
                auto [at, first] = indexes.try_emplace(d.info->Disposition, &d);
                if (!first && d.file == own)
                    out.push_back({"journal", d.info, t.name,
                                   "index " + std::to_string(d.info->Disposition) + " is " +
                                       name(sources, *at->second) +
                                       "'s already; the game writes only the first"});
                if (d.info->QSTN && named && d.file == own)
                    out.push_back(
                        {"journal", d.info, t.name,
                         "a second entry naming the quest (the first: " + name(sources, *named) + ")"});
                if (d.info->QSTN && !named) named = &d;
            }
            continue;
        }
        // The answers the topic's own Choice commands offer: a response shown on another is
        // never shown, since picking an answer searches the same topic again.
        bool answered = (t.type == 0 || t.type == 2) && !equalsIgnoreCase(t.name, "Service Refusal");
        std::set<long> offered;
        if (answered)
            for (const Decoded& d : decoded)
                choicesOffered(d.info->BNAM, offered);
        for (std::size_t i = 0; i < decoded.size(); ++i) {
            const Decoded& r = decoded[i];
            if (r.file != own) continue;
            if (std::string why = contradiction(r, females); !why.empty())
                out.push_back({"never", r.info, t.name, "never shown: " + why});
            if (!orderKnown) continue;
            for (const Condition& c : r.slots)
                if (answered && c.type == SlotType::Function && c.function == 50 &&
                    c.comparison == Comparison::Equal && !offered.count(long(c.value)))
                    out.push_back({"never", r.info, t.name,
                                   "never shown: " + describe(c) +
                                       ", but no response of the topic offers choice " +
                                       std::to_string(long(c.value))});
            for (std::size_t e = 0; e < i; ++e)
                if (preEmpts(decoded[e], r)) {
                    out.push_back({"shadowed", r.info, t.name,
                                   "never shown: " + name(sources, decoded[e]) + " above it (" +
                                       inWords(*decoded[e].info) + ") is given whenever it would be"});
                    break;
                }
        }
    }
    if (orderKnown && sources.size() > 1) unlearnable(sources, topics, out);
    if (orderKnown)
        for (const OrderEvent& e : events) {
            if (e.file != own) continue;
            std::string detail =
                e.kind == OrderEvent::UnknownPrevious
                    ? "its previous response (PNAM " + toUtf8(e.info->PNAM) +
                          ") is in none of the files before it: it goes last"
                : e.kind == OrderEvent::AboveFirst
                    ? "its empty previous response (PNAM) puts it above the first response of " +
                          sources[e.otherFile].name
                    : "it has the ID of a response of " + sources[e.otherFile].name +
                          " with another previous response (PNAM " + toUtf8(e.info->PNAM) +
                          "): that response is moved";
            out.push_back({"order", e.info, e.topic, detail});
        }
    return out;
}

} // namespace quillon

// The game's view of dialogue on the command line: each topic's responses in the order the game
// tries them, and which one a speaker gives.
#include "app/encoding.h"
#include "app/file_commands.h"
#include "app/text.h"
#include "cli/context.h"
#include "game/conditions.h"
#include "game/dialogue_order.h"
#include "game/response_choice.h"
#include "game/topic_links.h"

#include <charconv>
#include <filesystem>

namespace quillon {

namespace {

// The file opened, after its masters that were found when asked for (or always, for who-says).
std::vector<DialogueSource> sourcesOf(Context& c, bool withMasters) {
    std::vector<DialogueSource> sources;
    if (withMasters)
        for (const auto& m : sessionMasters(c.session).masters)
            if (m->found()) sources.push_back({m->name, &m->store(), m->path});
    sources.push_back({std::filesystem::path(c.args.positional[0]).filename().string(), &c.session.store,
                       c.args.positional[0]});
    return sources;
}

// A UTF-8 text given on the command line as the code page's bytes, to compare with the files'.
std::string codePage(std::string text) {
    toCodePageBytes(text);
    return text;
}

// A text on one line, quoted, as UTF-8.
std::string quotedUtf8(const std::string& bytes) {
    return toUtf8(oneLine(bytes));
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
    std::string out;
    for (const std::string& p : parts)
        out += (out.empty() ? "" : separator) + p;
    return out;
}

std::string jsonList(const std::vector<std::string>& utf8) {
    std::string out = "[";
    for (std::size_t i = 0; i < utf8.size(); ++i)
        out += (i ? ", " : "") + jsonUtf8(utf8[i]);
    return out + "]";
}

std::string responseJson(const MergedTopic& topic, const MergedResponse& m,
                         const std::vector<DialogueSource>& sources) {
    const InfoRecord& r = *m.info;
    return "{\"file\": " + jsonFileName(sources[m.file].name) + ", \"id\": " + jsonString(r.INAM) +
           ", \"filters\": " + jsonList(speakerFilters(r, topic.type == 4)) +
           ", \"conditions\": " + jsonList(conditionsInWords(r)) + ", \"text\": " + jsonString(r.NAME) +
           ", \"script\": " + jsonString(r.BNAM) + "}";
}

std::string responseLine(const MergedTopic& topic, const MergedResponse& m,
                         const std::vector<DialogueSource>& sources) {
    const InfoRecord& r = *m.info;
    std::vector<std::string> filters = speakerFilters(r, topic.type == 4), conditions = conditionsInWords(r);
    filters.insert(filters.end(), conditions.begin(), conditions.end());
    return sources[m.file].name + " INFO " + toUtf8(r.INAM) +
           (filters.empty() ? "" : " [" + joined(filters, "; ") + "]");
}

bool topicWanted(const Context& c, const MergedTopic& t, const RecordStore& own) {
    if (!c.args.value("--topic").empty()) return equalsIgnoreCase(t.name, codePage(c.args.value("--topic")));
    for (const DialRecord& d : own.DIAL)
        if (equalsIgnoreCase(d.NAME, t.name)) return true;
    return false;
}

// NAME=VALUE; false when there is no = or the value is no number.
bool keyAndNumber(const std::string& given, std::string& key, double& value) {
    std::size_t eq = given.find('=');
    if (eq == std::string::npos || eq == 0) return false;
    key = given.substr(0, eq);
    const char* start = given.c_str() + eq + 1;
    const char* end = given.c_str() + given.size();
    auto [stop, ec] = std::from_chars(start, end, value);
    return ec == std::errc() && stop == end;
}

// The situation --pc, --var, --journal, --cell and --choice describe; false with a message for a
// value that is not one.
bool readSituation(Context& c, const std::vector<DialogueSource>& sources, Situation& s) {
    auto fail = [&](const std::string& what) {
        c.err << "quillon who-says: " << what << "\n";
        return false;
    };
    std::set<std::string> keys;
    for (int code = 0; code < 74; ++code)
        if (std::string key = playerKey(code); !key.empty()) keys.insert(key);
    for (const std::string& given : c.args.all("--pc")) {
        std::string key;
        double value = 0;
        if (given.rfind("faction=", 0) == 0) {
            std::size_t colon = given.rfind(':');
            int rank = 0;
            std::string_view digits =
                colon == std::string::npos ? "" : std::string_view(given).substr(colon + 1);
            if (colon == std::string::npos ||
                std::from_chars(digits.data(), digits.data() + digits.size(), rank).ec != std::errc())
                return fail("--pc faction= takes NAME:RANK (\"faction=Fighters Guild:3\")");
            s.playerRanks[foldedKey(codePage(given.substr(8, colon - 8)))] = rank;
            continue;
        }
        if (!keyAndNumber(given, key, value) || !keys.count(foldedKey(key))) {
            std::string list;
            for (const std::string& k : keys)
                list += (list.empty() ? "" : ", ") + k;
            return fail("--pc takes KEY=NUMBER with a KEY among " + list + ", or faction=NAME:RANK");
        }
        s.player[foldedKey(key)] = value;
    }
    for (const std::string& given : c.args.all("--var")) {
        std::string key;
        double value = 0;
        if (!keyAndNumber(given, key, value)) return fail("--var takes NAME=NUMBER");
        s.variables[foldedKey(codePage(key))] = value;
    }
    for (const std::string& given : c.args.all("--journal")) {
        std::string key;
        double value = 0;
        if (!keyAndNumber(given, key, value)) return fail("--journal takes ID=INDEX");
        s.journals[foldedKey(codePage(key))] = int(value);
    }
    if (!c.args.value("--cell").empty()) s.cell = codePage(c.args.value("--cell"));
    if (!c.args.value("--choice").empty()) {
        std::string v = c.args.value("--choice");
        int n = 0;
        if (std::from_chars(v.data(), v.data() + v.size(), n).ec != std::errc())
            return fail("--choice takes a number");
        s.choice = n;
    }
    for (const DialogueSource& source : sources)
        for (const GlobRecord& g : source.store->GLOB)
            s.globals.insert(foldedKey(g.NAME));
    return true;
}

} // namespace

int dialogueCommand(Context& c) {
    if (!openPath(c.session, c.dialogs, c.args.positional[0]).isDone()) return 1;
    std::vector<DialogueSource> sources = sourcesOf(c, c.args.has("--with-masters"));
    bool json = c.args.has("--json");
    std::vector<std::string> items;
    for (const MergedTopic& t : mergeDialogue(sources)) {
        if (!topicWanted(c, t, c.session.store)) continue;
        if (json) {
            std::string responses;
            for (const MergedResponse& m : t.responses)
                responses += (responses.empty() ? "" : ", ") + responseJson(t, m, sources);
            items.push_back("{\"topic\": " + jsonString(t.name) + ", \"type\": \"" + topicTypeName(t.type) +
                            "\", \"responses\": [" + responses + "]}");
            continue;
        }
        std::string block = terminalLine(std::string(topicTypeName(t.type)) + " " + quotedUtf8(t.name) +
                                         ": " + std::to_string(t.responses.size()) + " response(s)");
        for (std::size_t i = 0; i < t.responses.size(); ++i) {
            const InfoRecord& r = *t.responses[i].info;
            block += "\n  " + std::to_string(i + 1) + ". " +
                     terminalLine(responseLine(t, t.responses[i], sources));
            block += "\n     " + terminalLine(quotedUtf8(r.NAME));
            if (!r.BNAM.empty()) block += "\n     script: " + terminalLine(quotedUtf8(r.BNAM));
        }
        items.push_back(block);
    }
    if (items.empty() && !c.args.value("--topic").empty()) {
        c.err << "quillon dialogue: no topic \"" << forTerminal(c.args.value("--topic"))
              << "\" in the files read\n";
        return 1;
    }
    if (json)
        printJson(c.out, items);
    else
        for (const std::string& item : items)
            c.out << item << "\n";
    return 0;
}

int linksCommand(Context& c) {
    if (!openPath(c.session, c.dialogs, c.args.positional[0]).isDone()) return 1;
    std::vector<DialogueSource> sources = sourcesOf(c, true);
    std::vector<MergedTopic> topics = mergeDialogue(sources);
    TopicLinks links = loadOrderLinks(sources, topics);
    std::string topicName = codePage(c.args.value("--topic")), id = codePage(c.args.value("--response"));
    for (const MergedTopic& t : topics) {
        if (!equalsIgnoreCase(t.name, topicName)) continue;
        for (const MergedResponse& m : t.responses) {
            if (m.info->INAM != id) continue;
            std::vector<TopicLink> found = links.find(m.info->NAME);
            c.out << terminalLine(toUtf8(markedLinks(m.info->NAME, found))) << "\n";
            for (const TopicLink& l : found)
                c.out << "  " << terminalLine(toUtf8(l.topic)) << (l.explicitLink ? " (explicit)" : "")
                      << "\n";
            return 0;
        }
    }
    c.err << "quillon links: no response " << forTerminal(c.args.value("--response")) << " of the topic \""
          << forTerminal(c.args.value("--topic")) << "\" in the files read\n";
    return 1;
}

int whoSaysCommand(Context& c) {
    if (!openPath(c.session, c.dialogs, c.args.positional[0]).isDone()) return 1;
    std::vector<DialogueSource> sources = sourcesOf(c, true);
    Situation situation;
    if (!readSituation(c, sources, situation)) return 2;
    std::string topicName = codePage(c.args.value("--topic")), actor = codePage(c.args.value("--actor"));
    std::vector<MergedTopic> topics = mergeDialogue(sources);
    auto topic = std::find_if(topics.begin(), topics.end(),
                              [&](const MergedTopic& t) { return equalsIgnoreCase(t.name, topicName); });
    if (topic == topics.end()) {
        c.err << "quillon who-says: no topic \"" << forTerminal(c.args.value("--topic"))
              << "\" in the files read\n";
        return 1;
    }
    Speaker speaker = findSpeaker(sources, actor);
    ResponseChoice choice = chooseResponse(*topic, speaker, situation);
    // Refused on disposition alone: the game answers from "Info Refusal" instead.
    const MergedTopic* answered = &*topic;
    if (choice.refusedOnDisposition) {
        auto refusal = std::find_if(topics.begin(), topics.end(), [](const MergedTopic& t) {
            return equalsIgnoreCase(t.name, "Info Refusal");
        });
        if (refusal != topics.end()) {
            ResponseChoice refused = chooseResponse(*refusal, speaker, situation);
            if (refused.given) {
                choice.given = refused.given;
                choice.assumed.insert(choice.assumed.end(), refused.assumed.begin(), refused.assumed.end());
                answered = &*refusal;
            }
        }
    }
    if (!speaker.found)
        choice.assumed.insert(choice.assumed.begin(), "the actor is defined by none of the files read");
    if (c.args.has("--json")) {
        std::string rejected;
        for (const auto& [i, why] : choice.rejected)
            rejected += std::string(rejected.empty() ? "" : ", ") +
                        "{\"file\": " + jsonFileName(sources[topic->responses[i].file].name) +
                        ", \"id\": " + jsonString(topic->responses[i].info->INAM) +
                        ", \"rejectedBy\": " + jsonUtf8(why) + "}";
        c.out << "{\"response\": "
              << (choice.given ? responseJson(*answered, answered->responses[*choice.given], sources)
                               : std::string("null"))
              << ", \"refusal\": " << (answered != &*topic ? "true" : "false") << ",\n \"rejected\": ["
              << rejected << "],\n \"assumed\": " << jsonList(choice.assumed) << "}\n";
        return choice.given ? 0 : 1;
    }
    if (choice.given) {
        const MergedResponse& m = answered->responses[*choice.given];
        c.out << terminalLine(toUtf8(speaker.id) + " says " + quotedUtf8(m.info->NAME) + " (" +
                              (answered != &*topic ? "Info Refusal: " : "") +
                              responseLine(*answered, m, sources) + ")")
              << "\n";
    } else {
        c.out << terminalLine(toUtf8(actor) + " says nothing on " + quotedUtf8(topic->name)) << "\n";
    }
    if (!choice.rejected.empty()) c.out << "Passed over, from the top:\n";
    for (const auto& [i, why] : choice.rejected)
        c.out << "  "
              << terminalLine(sources[topic->responses[i].file].name + " INFO " +
                              toUtf8(topic->responses[i].info->INAM) + ": " + why)
              << "\n";
    if (!choice.assumed.empty()) c.out << "Assumed: " << terminalLine(joined(choice.assumed, "; ")) << "\n";
    return choice.given ? 0 : 1;
}

} // namespace quillon

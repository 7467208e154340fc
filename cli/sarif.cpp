#include "cli/sarif.h"

#include "app/encoding.h"
#include "workbench/check.h"

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

struct Rule {
    const char* kind;
    const char* level; // error, warning or note, as SARIF ranks them
    const char* description;
};

// In the order of the check's kinds, so that a result's rule index is its kind's place.
constexpr Rule kRules[] = {
    {"master", "warning", "A master of the file was not found, or has changed since the file was saved"},
    {"unknown", "warning", "A record of a type the game does not know"},
    {"damage", "error", "A record whose bytes disagree with its sizes: saving would write it damaged"},
    {"loop", "warning", "A response whose result script offers again the choice that shows it"},
    {"choice", "warning", "A choice offered that no response of the topic is shown on"},
    {"topic", "warning", "AddTopic of a topic neither the file nor its masters define"},
    {"script", "error", "A result script or script text the game's compiler rejects"},
    {"reference", "error", "A script names an ID the load order does not define"},
    {"shadowed", "warning", "A response an earlier response of its topic always pre-empts"},
    {"never", "warning", "A response whose filters contradict each other"},
    {"order", "warning", "A response the load order's merge puts last, first, or moves"},
    {"journal", "warning", "A journal index its quest already has, or a second entry naming the quest"},
    {"link", "warning", "A topic no text links and no AddTopic adds: the player never learns it"},
    {"long", "warning", "A response longer than the game shows"},
    {"style", "note", "A response the clean-up would change"},
    {"spelling", "note", "A word neither the dictionary nor the load order's names know"},
};
static_assert(std::size(kRules) == std::size(kFindingKinds));

std::size_t ruleIndex(const std::string& kind) {
    for (std::size_t i = 0; i < std::size(kRules); ++i)
        if (kind == kRules[i].kind) return i;
    return 0;
}

// A JSON string of the file's bytes.
std::string text(const std::string& bytes) {
    return jsonString(bytes);
}

// A file name as a URI reference: its bytes, with those a URI may not hold percent-encoded.
std::string uriOf(const std::string& path) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : path) {
        bool plain =
            std::isalnum(c) || std::string_view("-._~/!$&'()*+,;=:@").find(char(c)) != std::string_view::npos;
        if (plain) {
            out += char(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

} // namespace

std::string sarifResult(const std::string& file, const Finding& f) {
    std::size_t rule = ruleIndex(f.kind);
    std::string name = f.record + (f.id.empty() ? "" : " " + f.id);
    std::string qualified = f.record == "INFO" && f.kind != "master" ? f.topic + "/" + name : name;
    std::string region;
    if (f.line > 0)
        region = ", \"region\": {\"startLine\": " + std::to_string(f.line) +
                 ", \"startColumn\": " + std::to_string(std::max<std::size_t>(f.column, 1)) + "}";
    return "{\"ruleId\": \"" + f.kind + "\", \"ruleIndex\": " + std::to_string(rule) + ", \"level\": \"" +
           kRules[rule].level + "\", \"message\": {\"text\": " + text(f.detail) +
           "}, \"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": " +
           jsonString(uriOf(file)) + "}" + region + "}, \"logicalLocations\": [{\"name\": " + text(name) +
           ", \"fullyQualifiedName\": " + text(qualified) + ", \"kind\": \"object\"}]}]}";
}

void printSarif(std::ostream& out, const std::vector<std::string>& results) {
    out << "{\"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\", \"version\": \"2.1.0\", "
           "\"runs\": "
           "[{\"tool\": {\"driver\": {\"name\": \"Quillon\", \"version\": \""
        << QUILLON_VERSION << "\", \"rules\": [";
    for (std::size_t i = 0; i < std::size(kRules); ++i)
        out << (i ? ",\n  " : "\n  ") << "{\"id\": \"" << kRules[i].kind
            << "\", \"shortDescription\": {\"text\": \"" << kRules[i].description
            << "\"}, \"defaultConfiguration\": {\"level\": \"" << kRules[i].level << "\"}}";
    out << "]}}, \"results\": [";
    for (std::size_t i = 0; i < results.size(); ++i)
        out << (i ? ",\n  " : "\n  ") << results[i];
    out << "]}]}\n";
}

} // namespace quillon

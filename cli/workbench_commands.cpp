// The commands a writing team's nightly build runs: check, diff-dialogue, and the loop list.
#include "app/encoding.h"
#include "app/file_commands.h"
#include "app/parallel.h"
#include "app/replace_target.h"
#include "cli/context.h"
#include "cli/sarif.h"
#include "dialogue/dialogue_commands.h"
#include "records/source_bytes.h"
#include "workbench/check.h"
#include "workbench/diff.h"
#include "workbench/personal_words.h"
#include "workbench/spelling.h"
#include "writer/byte_sink.h"
#include "writer/es_write.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <sstream>

namespace quillon {

std::string responseName(const std::string& id, const std::string& topic, const std::string& actor) {
    // Appended piece by piece: a check of a large master names 100,000 responses.
    std::string name;
    name.reserve(id.size() + topic.size() + actor.size() + 28);
    name.append("INFO ").append(id).append(" (topic \"").append(topic).append("\", actor \"").append(actor);
    return name.append("\")");
}

void printJson(std::ostream& out, const std::vector<std::string>& items) {
    out << "[";
    for (std::size_t i = 0; i < items.size(); ++i)
        out << (i ? ",\n " : "\n ") << items[i];
    out << (items.empty() ? "]\n" : "\n]\n");
}

std::string oneLine(const std::string& text) {
    std::string out = "\"";
    for (char ch : text) {
        if (ch == '\r')
            out += "\\r";
        else if (ch == '\n')
            out += "\\n";
        else
            out += ch;
    }
    return out + "\"";
}

namespace {

// The kinds --only names; empty with a message when one is not a kind.
bool parseKinds(const std::string& list, std::set<std::string>& kinds, std::ostream& err) {
    std::istringstream in(list);
    for (std::string kind; std::getline(in, kind, ',');) {
        if (std::find(std::begin(kFindingKinds), std::end(kFindingKinds), kind) == std::end(kFindingKinds)) {
            err << "quillon check: --only takes kinds among master, unknown, damage, loop, choice, topic, "
                   "script, reference, shadowed, never, order, journal, link, long, style and spelling\n";
            return false;
        }
        kinds.insert(kind);
    }
    return true;
}

std::string findingLine(const std::string& file, const Finding& f) {
    std::string subject = f.record == "INFO" && f.kind != "master" ? responseName(f.id, f.topic, f.actor)
                          : f.id.empty()                           ? f.record
                                                                   : f.record + " \"" + f.id + "\"";
    // Appended piece by piece to one text (a byte's UTF-8 does not depend on its neighbours): a
    // check of a large master says this 100,000 times.
    std::string line;
    line.reserve(file.size() + f.kind.size() + subject.size() + f.detail.size() + 8);
    line.append(file).append(": ").append(f.kind).append(": ");
    appendUtf8(line, subject);
    line.append(": ");
    appendUtf8(line, f.detail);
    if (f.kind == "style") {
        line.append(": ");
        appendUtf8(line, oneLine(f.before) + " -> " + oneLine(f.after));
    }
    return terminalLine(line);
}

std::string findingJson(const std::string& file, const Finding& f) {
    std::string json = "{\"file\": " + jsonFileName(file) + ", \"kind\": " + jsonString(f.kind) +
                       ", \"record\": " + jsonString(f.record) + ", \"id\": " + jsonString(f.id) +
                       ", \"topic\": " + jsonString(f.topic) + ", \"actor\": " + jsonString(f.actor) +
                       ", \"detail\": " + jsonString(f.detail);
    if (f.kind == "style")
        json += ", \"before\": " + jsonString(f.before) + ", \"after\": " + jsonString(f.after);
    if (f.kind == "script" || f.kind == "reference") json += ", \"line\": " + std::to_string(f.line);
    if (f.kind == "spelling") {
        json += ", \"word\": " + jsonString(f.word) + ", \"suggestions\": [";
        for (std::size_t i = 0; i < f.suggestions.size(); ++i)
            json += (i ? ", " : "") + jsonString(f.suggestions[i]);
        json += "]";
    }
    return json + "}";
}

// Items formatted on all cores, in consecutive parts, each part the items joined by separator;
// empty parts left out.
std::vector<std::string> joinedInParts(std::size_t count, const char* separator,
                                       const std::function<std::string(std::size_t)>& item) {
    std::vector<std::string> parts(partsFor(count, 2000));
    forEachPart(count, 2000, [&](std::size_t from, std::size_t to, std::size_t part) {
        for (std::size_t i = from; i < to; ++i) {
            std::string text = item(i);
            // Items are alike in length: the first says about how long the part will be.
            if (i == from) parts[part].reserve((text.size() + 4) * (to - from) * 5 / 4);
            parts[part].append(i > from ? separator : "").append(text);
        }
    });
    std::erase_if(parts, [](const std::string& part) { return part.empty(); });
    return parts;
}

// Opens path into the session; false (with the reader's messages said) when it was not read whole.
bool open(Context& c, const std::string& path) {
    return openPath(c.session, c.dialogs, path).isDone();
}

} // namespace

// The dictionary the spelling check asks for, with the words of --words accepted; null with a
// message when it cannot be had.
std::unique_ptr<SpellChecker> openDictionary(Context& c) {
    std::string error;
    std::unique_ptr<SpellChecker> checker = SpellChecker::open(c.args.value("--dictionary", "en_US"), error);
    if (!checker) {
        c.err << "quillon check: " << forTerminal(error) << "\n";
        return nullptr;
    }
    if (std::string list = c.args.value("--words"); !list.empty()) {
        // Each word accepted takes many times its bytes; a list of names to accept is far smaller
        // than this, and a dictionary belongs in --dictionary.
        constexpr std::uintmax_t kLargestList = 4 << 20;
        std::error_code tooLarge;
        if (std::filesystem::file_size(list, tooLarge) > kLargestList && !tooLarge) {
            c.err << "quillon check: the word list \"" << forTerminal(list)
                  << "\" is larger than 4 MB; give a list of the words to accept, or a Hunspell dictionary "
                     "with "
                     "--dictionary\n";
            return nullptr;
        }
        std::string words = loadFile(list, error);
        if (!error.empty()) {
            c.err << "quillon check: the word list \"" << forTerminal(list) << "\" cannot be read: " << error
                  << "\n";
            return nullptr;
        }
        acceptWordList(*checker, words);
    }
    if (std::string error = acceptPersonalWords(*checker); !error.empty())
        c.err << "quillon: your word list " << forTerminal(personalWordsPath())
              << " cannot be read: " << error << "\n";
    acceptLoreNames(*checker);
    return checker;
}

// The summaries of --master-summary, read into the session; false with a message for one that
// cannot be used.
bool readMasterSummaries(Context& c) {
    for (const std::string& path : c.args.all("--master-summary")) {
        std::string error;
        std::string text = loadFile(path, error);
        MasterSummary summary;
        if (error.empty()) readMasterSummary(text, summary, error);
        if (!error.empty()) {
            c.err << "quillon check: the master summary \"" << forTerminal(path)
                  << "\" cannot be used: " << forTerminal(error) << "\n";
            return false;
        }
        c.session.masterSummaries.emplace_back(path, std::move(summary));
    }
    return true;
}

// The files to check: those given, or with --all-content the content= files of openmw.cfg in
// load order. Empty, with a message, when there are none.
std::vector<std::string> filesToCheck(Context& c, bool& missing) {
    if (!c.args.has("--all-content")) {
        if (c.args.positional.empty()) c.err << "quillon check: give the files to check, or --all-content\n";
        return c.args.positional;
    }
    if (!c.args.positional.empty()) {
        c.err << "quillon check: --all-content checks the content= files of openmw.cfg; give no files with "
                 "it\n";
        return {};
    }
    std::vector<std::string> absent;
    std::string config;
    std::vector<std::string> files = contentFiles(c.session.masterSearch, absent, config);
    if (config.empty()) {
        c.err << "quillon check: no openmw.cfg was found to read content= from (give it with --openmw-cfg "
                 "FILE)\n";
        return {};
    }
    for (const std::string& name : absent)
        c.err << "quillon: " << forTerminal(name) << ": named by content= in " << forTerminal(config)
              << " but in none of its data folders\n";
    missing = !absent.empty();
    if (files.empty() && absent.empty())
        c.err << "quillon check: " << forTerminal(config) << " names no content= files\n";
    return files;
}

enum class FindingFormat { Text, Json, Sarif };

int checkCommand(Context& c) {
    CheckOptions options;
    options.style = cleanupSettings(c.args);
    if (!parseKinds(c.args.value("--only"), options.only, c.err)) return 2;
    std::string formatName = c.args.value("--format", c.args.has("--json") ? "json" : "text");
    if (formatName != "text" && formatName != "json" && formatName != "sarif") {
        c.err << "quillon check: --format takes text, json or sarif\n";
        return 2;
    }
    FindingFormat format = formatName == "json"    ? FindingFormat::Json
                           : formatName == "sarif" ? FindingFormat::Sarif
                                                   : FindingFormat::Text;
    if (!readMasterSummaries(c)) return 2;
    bool unreadable = false;
    std::vector<std::string> files = filesToCheck(c, unreadable);
    if (files.empty()) return unreadable ? 1 : 2;
    // Spelling is checked only when asked for: it needs a dictionary, a plain check does not.
    if (c.args.has("--spelling") || options.only.count("spelling")) {
        c.spelling = openDictionary(c);
        if (!c.spelling) return 2;
        options.spelling = c.spelling.get();
    }
    // The findings formatted, in order: text lines, or JSON items joined as printJson joins them.
    std::vector<std::string> parts;
    for (const std::string& path : files) {
        if (!open(c, path)) {
            unreadable = true;
            continue;
        }
        CheckOptions forFile = options;
        forFile.fileType = fileTypeFor(path);
        forFile.masters = &sessionMasters(c.session);
        std::vector<std::string> notes;
        forFile.notes = &notes;
        auto count = std::int32_t(c.session.counts.number(CountLabel::Total));
        const std::vector<Finding>& found =
            c.findings.emplace_back(checkDialogue(c.session.store, count, forFile));
        const char* separator = format == FindingFormat::Json    ? ",\n "
                                : format == FindingFormat::Sarif ? ",\n  "
                                                                 : "\n";
        for (std::string& part : joinedInParts(found.size(), separator, [&](std::size_t i) {
                 return format == FindingFormat::Json    ? findingJson(path, found[i])
                        : format == FindingFormat::Sarif ? sarifResult(path, found[i])
                                                         : findingLine(path, found[i]);
             }))
            parts.push_back(std::move(part));
        for (const std::string& note : notes)
            c.err << "quillon: " << terminalLine(path + ": " + note) << "\n";
    }
    if (format == FindingFormat::Json)
        printJson(c.out, parts);
    else if (format == FindingFormat::Sarif)
        printSarif(c.out, parts);
    else
        for (const std::string& part : parts)
            c.out << part << '\n';
    return unreadable || !parts.empty() ? 1 : 0;
}

int masterSummaryCommand(Context& c) {
    LoadOrder order;
    for (const std::string& path : c.args.positional) {
        if (!open(c, path)) return 1;
        if (!c.session.readWhole) {
            c.err << "quillon master-summary: \"" << forTerminal(path)
                  << "\" was read only in part; a summary would leave the rest out, so none is written\n";
            return 1;
        }
        auto master = std::make_unique<MasterFile>();
        master->name = std::filesystem::path(path).filename().string();
        master->path = path;
        master->records = std::make_shared<RecordStore>(std::move(c.session.store));
        c.session.store = RecordStore();
        order.masters.push_back(std::move(master));
    }
    // A master's own masters left out leave their IDs out: a check with the summary would judge
    // them as missing.
    for (const auto& m : order.masters)
        for (const MasterEntry& named :
             m->store().TES3.empty() ? std::vector<MasterEntry>{} : m->store().TES3.front().Masters)
            if (order.position(named.MAST) < 0)
                c.err << "quillon: " << forTerminal(m->name) << " names the master "
                      << forTerminal(named.MAST)
                      << ", which is not summarised with it; give it too, before it\n";
    std::string target = c.args.value("-o");
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(c.session, c.dialogs, target);
    if (!readOnly) return 1;
    std::string summary = masterSummary(order);
    if (std::string error = replaceFileSafely(target, summary, *readOnly); !error.empty()) {
        c.err << "quillon master-summary: \"" << forTerminal(target) << "\" could not be written: " << error
              << "\n";
        return 1;
    }
    c.session.log.LogLine("-Wrote the summary of " + std::to_string(order.masters.size()) +
                          " master(s) to \"" + bareName(target) + "\" (" +
                          groupedNumber(std::int64_t(summary.size())) + " bytes).");
    return 0;
}

int diffDialogueCommand(Context& c) {
    Session older;
    older.log.onLine = c.session.log.onLine;
    older.given = c.session.given;
    if (!openPath(older, c.dialogs, c.args.positional[0]).isDone() || !open(c, c.args.positional[1]))
        return 1;
    std::vector<DialogueChange> changes = diffDialogue(older.store, c.session.store);
    bool json = c.args.has("--json");
    std::vector<std::string> items;
    for (const DialogueChange& d : changes) {
        if (json) {
            items.push_back("{\"change\": " + jsonString(d.change) + ", \"field\": " + jsonString(d.field) +
                            ", \"id\": " + jsonString(d.id) + ", \"topic\": " + jsonString(d.topic) +
                            ", \"actor\": " + jsonString(d.actor) + ", \"before\": " + jsonString(d.before) +
                            ", \"after\": " + jsonString(d.after) + "}");
            continue;
        }
        std::string line = (d.change == "changed" ? "changed " + d.field : d.change) + ": " +
                           responseName(d.id, d.topic, d.actor) + ": ";
        if (d.change == "added") line += oneLine(d.after);
        if (d.change == "removed") line += oneLine(d.before);
        if (d.change == "changed") line += oneLine(d.before) + " -> " + oneLine(d.after);
        items.push_back(terminalLine(toUtf8(line)));
    }
    if (json)
        printJson(c.out, items);
    else
        for (const std::string& line : items)
            c.out << line << '\n';
    return changes.empty() ? 0 : 1;
}

int loopsCommand(Context& c) {
    bool several = c.args.positional.size() > 1, failed = false;
    std::size_t found = 0;
    // Findings are listed from the check's loop rule; the loop check itself only logs, since the
    // command line skips every fix.
    CheckOptions loopsOnly;
    loopsOnly.only = {"loop"};
    for (const std::string& path : c.args.positional) {
        if (!open(c, path) || DetectLoops(c.session, c.dialogs).isFailed()) {
            failed = true;
            continue;
        }
        for (const Finding& f : checkDialogue(c.session.store, 0, loopsOnly)) {
            ++found;
            c.out << terminalLine((several ? path + ": " : std::string()) +
                                  toUtf8(responseName(f.id, f.topic, f.actor) + ": " + f.detail))
                  << '\n';
        }
    }
    if (failed) return 1;
    return found > 0 && c.args.has("--fail-on-loop") ? 1 : 0;
}

} // namespace quillon

#include "workbench/check.h"

#include "app/damage_report.h"
#include "app/record_counts.h"
#include "app/session.h"
#include "app/text.h"
#include "cleanup/text_rules.h"
#include "dialogue/result_scripts.h"
#include "game/dialogue_faults.h"
#include "records/es_read.h"
#include "records/response_text.h"
#include "workbench/script_findings.h"
#include "workbench/spelling.h"
#include "writer/byte_sink.h"
#include "writer/es_write.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <numeric>

namespace quillon {

const char* const kFindingKinds[16] = {"master", "unknown",   "damage",   "loop",    "choice", "topic",
                                       "script", "reference", "shadowed", "never",   "order",  "journal",
                                       "link",   "long",      "style",    "spelling"};

namespace {

// The longest part of a script line a finding quotes.
constexpr std::size_t kLineExcerpt = 200;

bool wants(const CheckOptions& options, const char* kind) {
    return options.only.empty() || options.only.count(kind);
}

// Prompts that ask nothing: the check never writes, and a Save's question is not its business.
class Silent : public Prompts {
public:
    void tell(const std::string&) override {}
    Answer ask(const Question&, const std::string&, bool) override { return Answer::No; }
    DamageChoice damagedOutput(const DamageReport&) override { return DamageChoice::WriteNothing; }
};

// The topics and the choices each topic's responses are shown on (by topic as the writer matches
// them): a master's response answers the choice too.
struct TopicChoices {
    std::set<std::string> topics;
    std::map<std::string, std::set<std::int32_t>> shownOn;

    void learn(const RecordStore& from) {
        for (const DialRecord& d : from.DIAL)
            topics.insert(foldedKey(d.NAME));
        for (const InfoRecord& r : from.INFO)
            for (const InfoCondition& c : r.Conditions)
                if (isChoiceCondition(c)) shownOn[r.Topic].insert(c.INTV);
    }
    bool shows(const std::string& topic, std::int32_t choice) const {
        auto found = shownOn.find(topic);
        return found != shownOn.end() && found->second.count(choice);
    }
};

// Those of the masters, learnt once for every file naming them.
struct MasterTopicChoices {
    TopicChoices learnt;
};

void checkResultScripts(const RecordStore& store, const CheckOptions& options, std::vector<Finding>& out) {
    if (!wants(options, "loop") && !wants(options, "choice") && !wants(options, "topic")) return;
    const std::vector<InfoRecord>& infos = store.INFO;
    TopicChoices own;
    own.learn(store);
    static const MasterTopicChoices none;
    const TopicChoices& masters = !options.masters
                                      ? none.learnt
                                      : options.masters->derived
                                            ->get<MasterTopicChoices>([&] {
                                                MasterTopicChoices m;
                                                for (const auto& master : options.masters->masters)
                                                    m.learnt.learn(master->store());
                                                return m;
                                            })
                                            .learnt;
    // A master that was not found may hold the responses that answer a choice and the topics
    // added: nothing it could settle is judged without it.
    bool hasMasters = !store.TES3.empty() && !store.TES3.front().Masters.empty();
    bool settled = !hasMasters || (options.masters && options.masters->allFound());
    bool loops = wants(options, "loop"), choices = settled && wants(options, "choice"),
         added = settled && wants(options, "topic");
    for (std::size_t i = 0; i < infos.size(); ++i) {
        const InfoRecord& r = infos[i];
        if (r.BNAM.empty()) continue;
        std::vector<std::string> lines = scriptLines(r.BNAM), written = writtenLines(r.BNAM);
        // The game's compiler reads a script up to its first NUL byte, as many end.
        std::size_t compiled = lines.size();
        if (std::size_t nul = r.BNAM.find('\0'); nul != std::string::npos)
            compiled =
                std::size_t(std::count(r.BNAM.begin(), r.BNAM.begin() + std::ptrdiff_t(nul), '\n')) + 1;
        for (std::size_t n = 0; n < lines.size(); ++n) {
            // A finding names its line by an excerpt: a line of thousands of choices makes as
            // many findings, and each holding the whole line would grow the output with its square.
            std::string line = readableExcerpt(written[n], kLineExcerpt);
            for (const InfoCondition& c : r.Conditions)
                if (loops && isChoiceCondition(c) && r.BNAM.size() > 5 && offersChoice(lines[n], c.INTV))
                    out.push_back(aboutResponse(
                        infos, i, "loop", "choice " + std::to_string(c.INTV) + " offered again: " + line));
            if (choices && n < compiled)
                for (std::int32_t choice : choicesOn(lines[n]))
                    if (!own.shows(r.Topic, choice) && !masters.shows(r.Topic, choice))
                        out.push_back(aboutResponse(
                            infos, i, "choice",
                            "choice " + std::to_string(choice) +
                                " is offered but no response of the topic is shown on it: " + line));
            if (added && n < compiled)
                for (const std::string& topic : topicsAddedOn(lines[n]))
                    if (std::string key = foldedKey(topic);
                        !own.topics.count(key) && !masters.topics.count(key))
                        out.push_back(aboutResponse(infos, i, "topic",
                                                    "AddTopic \"" + readableExcerpt(topic, kLineExcerpt) +
                                                        "\" names no topic: " + line));
        }
    }
}

// The check's details are the file's bytes; the game's rules speak UTF-8 with signs no code
// page has.
std::string inCodePage(std::string utf8) {
    for (auto [sign, plain] : {std::pair{"\u2265", ">="}, {"\u2264", "<="}, {"\u2260", "!="}})
        for (std::size_t at; (at = utf8.find(sign)) != std::string::npos;)
            utf8.replace(at, std::string_view(sign).size(), plain);
    std::string bytes;
    char32_t missing = 0;
    fromUtf8(utf8, bytes, missing);
    return bytes;
}

void checkGameRules(const RecordStore& store, const CheckOptions& options, std::vector<Finding>& out) {
    if (!wants(options, "shadowed") && !wants(options, "never") && !wants(options, "order") &&
        !wants(options, "journal") && !wants(options, "link"))
        return;
    std::vector<DialogueSource> sources;
    bool hasMasters = !store.TES3.empty() && !store.TES3.front().Masters.empty();
    bool known = !hasMasters || options.masters;
    if (options.masters)
        for (const auto& m : options.masters->masters) {
            if (m->found() && !m->summarised) sources.push_back({m->name, &m->store(), m->path});
            known = known && m->found() && !m->summarised;
        }
    sources.push_back({"this file", &store});
    for (const DialogueFault& fault : dialogueFaults(sources, known)) {
        if (!wants(options, fault.kind)) continue;
        if (fault.info) {
            out.push_back(aboutResponse(store.INFO, std::size_t(fault.info - store.INFO.data()), fault.kind,
                                        inCodePage(fault.detail)));
            continue;
        }
        Finding f;
        f.kind = fault.kind;
        f.record = "DIAL";
        f.id = fault.topic;
        f.detail = inCodePage(fault.detail);
        out.push_back(std::move(f));
    }
}

void checkTexts(const std::vector<InfoRecord>& infos, const CheckOptions& options,
                std::vector<Finding>& out) {
    bool quoteParity = false; // carried from response to response, as the clean-up does
    for (std::size_t i = 0; i < infos.size(); ++i) {
        const InfoRecord& r = infos[i];
        if (wants(options, "long") && r.NAME.size() > kMaxResponse)
            out.push_back(aboutResponse(infos, i, "long",
                                        std::to_string(r.NAME.size()) + " characters, over " +
                                            std::to_string(kMaxResponse)));
        if (!wants(options, "style")) continue;
        std::string cleaned = cleanResponse(r.NAME, options.style, quoteParity);
        if (cleaned == r.NAME) continue;
        Finding f = aboutResponse(infos, i, "style",
                                  equalsIgnoreCase(cleaned, r.NAME) ? "the clean-up changes letter case only"
                                                                    : "the clean-up changes the text");
        f.before = r.NAME;
        f.after = std::move(cleaned);
        out.push_back(std::move(f));
    }
}

void checkRecords(RecordStore& store, std::int32_t recordCount, const CheckOptions& options,
                  std::vector<Finding>& out) {
    static const LoadOrder none;
    for (const auto& m : (options.masters ? *options.masters : none).masters) {
        Finding f;
        f.kind = "master";
        f.record = "TES3";
        f.id = m->name;
        if (!m->found())
            f.detail =
                "not found (beside the file, in the --data folders, OpenMW's data folders or the game's "
                "Data Files); choice, topic, reference, shadowed, order and link findings, undeclared "
                "variables and capitalised words of the spelling check are left out, since its records could "
                "settle them (give it with --data DIR or --openmw-cfg FILE, or its summary with "
                "--master-summary FILE, which stands in for all but shadowed, order and link)";
        else if (m->changed())
            f.detail = "has changed since " + m->namedBy + " was saved: " + groupedNumber(m->recordedSize) +
                       " bytes then, " + groupedNumber(m->size) + " now (" + m->path + ")";
        else
            continue;
        out.push_back(std::move(f));
    }
    for (const RawRecord& r : store.Unknown) {
        Finding f;
        f.kind = "unknown";
        f.record = r.Tag;
        f.detail = "record of unknown type at byte " + groupedNumber(r.Offset);
        out.push_back(std::move(f));
    }
    if (!wants(options, "damage")) return;
    Silent prompts;
    std::string topic = store.CurrentTopic;
    for (const DamagedRecord& d :
         serialiseChecked(store, recordCount, options.fileType, prompts, false).damaged) {
        Finding f;
        f.kind = "damage";
        f.record = d.tag;
        f.id = d.id;
        f.detail = describeDamage(d);
        out.push_back(std::move(f));
    }
    store.CurrentTopic = topic; // writing moves it; the check changes nothing
}

} // namespace

std::vector<Finding> checkDialogue(RecordStore& store, std::int32_t recordCount,
                                   const CheckOptions& options) {
    std::vector<Finding> all;
    checkRecords(store, recordCount, options, all);
    checkResultScripts(store, options, all);
    std::vector<std::string> notes;
    checkScripts(store, options.masters, options.only, all, options.notes ? *options.notes : notes);
    checkGameRules(store, options, all);
    checkTexts(store.INFO, options, all);
    if (options.spelling && wants(options, "spelling")) {
        acceptNames(*options.spelling, store);
        if (options.masters)
            for (const auto& m : options.masters->masters) {
                acceptNames(*options.spelling, m->store());
                for (const std::string& name : m->names)
                    acceptName(*options.spelling, name);
            }
        bool hasMasters = !store.TES3.empty() && !store.TES3.front().Masters.empty();
        checkSpelling(store, *options.spelling, all,
                      !hasMasters || (options.masters && options.masters->allFound()));
    }
    // Kind by kind, in the order of the list of kinds; each kind in the order found.
    constexpr std::size_t kinds = std::size(kFindingKinds);
    std::vector<std::size_t> rank(all.size());
    for (std::size_t i = 0; i < all.size(); ++i)
        rank[i] = std::size_t(std::find(kFindingKinds, kFindingKinds + kinds, all[i].kind) - kFindingKinds);
    auto kept = [&](std::size_t r) { return r < kinds && wants(options, kFindingKinds[r]); };
    // The usual case, one kind or kinds found in order, moves nothing: a large master's findings
    // are many.
    if (std::all_of(rank.begin(), rank.end(), kept) && std::is_sorted(rank.begin(), rank.end())) return all;
    std::vector<std::size_t> order(all.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return rank[a] < rank[b]; });
    std::vector<Finding> wanted;
    wanted.reserve(all.size());
    for (std::size_t i : order)
        if (kept(rank[i])) wanted.push_back(std::move(all[i]));
    return wanted;
}

Outcome CheckDialogue(Session& session, Dialogs& dialogs, SpellChecker* spelling) {
    CheckOptions options;
    options.spelling = spelling;
    options.style = session.settings;
    options.fileType = fileTypeFor(session.currentPath);
    options.masters = &sessionMasters(session);
    auto count = std::int32_t(session.counts.number(CountLabel::Total));
    std::vector<Finding> findings = checkDialogue(session.store, count, options);
    session.log.LogLine("-Checked " + std::to_string(session.store.INFO.size()) + " responses from \"" +
                        bareName(session.currentPath) + "\": " + std::to_string(findings.size()) +
                        " findings.");
    dialogs.refreshLog();
    dialogs.showFindings(findings, [&](std::size_t i) {
        InfoRecord& r = session.store.INFO.at(findings.at(i).info);
        std::string text =
            dialogs.editResponse(r.DialogueType == 4 ? "Journal Entry" : r.ONAM, r.Topic, r.NAME);
        if (text != r.NAME) session.modified = true;
        setResponseText(r, std::move(text));
        return r.NAME;
    });
    return Outcome::done();
}

} // namespace quillon

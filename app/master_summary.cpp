#include "app/master_summary.h"

#include "app/encoding.h"
#include "app/proper_names.h"
#include "app/text.h"
#include "records/record_types.h"

#include <charconv>
#include <cstring>
#include <map>
#include <set>

namespace quillon {

namespace {

constexpr std::string_view kFirstLine = "Quillon master summary 1";

// A field of the file: the code page's bytes as UTF-8, a tab, a line break and a backslash
// escaped as C writes them.
void appendField(std::string& out, std::string_view bytes) {
    out += '\t';
    for (char c : toUtf8(bytes)) {
        const char* escape = c == '\\' || c == '\t' || c == '\n' || c == '\r' ? backslashEscape(c) : nullptr;
        if (escape)
            out += escape;
        else
            out += c;
    }
}

std::string line(std::string_view kind, std::initializer_list<std::string_view> fields) {
    std::string out(kind);
    for (std::string_view f : fields)
        appendField(out, f);
    return out + '\n';
}

// What the summary holds, each kind by its folded ID, later masters replacing earlier ones.
struct Gathered {
    std::vector<std::string> masters;
    std::map<std::string, std::pair<std::string, int>> topics; // name, type
    std::map<std::string, std::set<std::int32_t>> choices;     // by the topic as responses name it
    std::map<std::string, std::set<std::int32_t>> journals;    // by the topic's name
    std::map<std::string, std::pair<std::string, char>> globals;
    std::map<std::string, std::pair<std::string, std::vector<std::string>>> scripts, factions;
    std::map<std::pair<std::string, std::string>, std::pair<std::string, std::string>> objects; // tag, ID
    std::map<std::string, std::string> cells;
    std::set<std::string> names;

    // The IDs of a type with its own lines (topics, globals, cells, factions) or none (responses)
    // are not objects.
    template <class R> void gatherObjects(std::string_view tag, const std::vector<R>& records) {
        if constexpr (requires(const R& r) { std::string_view(r.NAME); })
            if (tag != "INFO" && tag != "DIAL" && tag != "GLOB" && tag != "CELL" && tag != "FACT")
                for (const R& r : records) {
                    std::string script;
                    if constexpr (requires { std::string_view(r.SCRI); }) script = r.SCRI;
                    objects[{std::string(tag), foldedKey(r.NAME)}] = {r.NAME, script};
                }
    }

    void add(const MasterFile& m) {
        masters.push_back(m.name);
        const RecordStore& s = m.store();
        for (const DialRecord& d : s.DIAL)
            topics[foldedKey(d.NAME)] = {d.NAME, d.DATA};
        for (const InfoRecord& r : s.INFO) {
            for (const InfoCondition& c : r.Conditions)
                if (c.Type == '1' && c.Function[0] == '5' && c.Function[1] == '0' && c.Comparison != '1')
                    choices[r.Topic].insert(c.INTV);
            if (auto t = topics.find(foldedKey(r.Topic)); t != topics.end() && t->second.second == 4)
                journals[t->second.first].insert(r.Disposition);
        }
        for (const GlobRecord& g : s.GLOB)
            globals[foldedKey(g.NAME)] = {g.NAME, g.FNAM};
        for (const ScptRecord& r : s.SCPT) {
            std::vector<std::string> variables;
            for (const auto* list : {&r.ShortNames, &r.LongNames, &r.FloatNames})
                variables.insert(variables.end(), list->begin(), list->end());
            scripts[foldedKey(fixedText(r.ScriptName))] = {fixedText(r.ScriptName), std::move(variables)};
        }
        for (const FactRecord& f : s.FACT) {
            std::vector<std::string> ranks;
            for (const FactionRank& rank : f.Ranks)
                ranks.push_back(fixedText(rank.RNAM));
            while (!ranks.empty() && ranks.back().empty())
                ranks.pop_back();
            factions[foldedKey(f.NAME)] = {f.NAME, std::move(ranks)};
        }
        for (const CellRecord& c : s.CELL)
            cells[foldedKey(c.NAME)] = c.NAME;
#define QUILLON_SUMMARY_OBJECTS(tag, Structure, reader, writer, label, family) gatherObjects(#tag, s.tag);
        QUILLON_RECORD_TYPES(QUILLON_SUMMARY_OBJECTS)
#undef QUILLON_SUMMARY_OBJECTS
        forEachProperName(s, [&](std::string_view name) {
            if (!name.empty()) names.emplace(name);
        });
    }
};

std::string joined(const std::set<std::int32_t>& numbers) {
    std::string out;
    for (std::int32_t n : numbers)
        out += (out.empty() ? "" : " ") + std::to_string(n);
    return out;
}

} // namespace

std::string masterSummary(const LoadOrder& order) {
    Gathered g;
    for (const auto& m : order.masters)
        if (m->found()) g.add(*m);
    std::string out = std::string(kFirstLine) + '\n';
    for (const std::string& m : g.masters)
        out += line("master", {m});
    for (const auto& [key, topic] : g.topics)
        out += line("topic", {std::to_string(topic.second), topic.first});
    for (const auto& [topic, numbers] : g.choices)
        out += line("choice", {topic, joined(numbers)});
    for (const auto& [journal, indexes] : g.journals)
        out += line("journal", {journal, joined(indexes)});
    for (const auto& [key, global] : g.globals)
        out += line("global", {std::string(1, global.second), global.first});
    for (const auto& [key, script] : g.scripts) {
        std::string l = "script";
        appendField(l, script.first);
        for (const std::string& v : script.second)
            appendField(l, v);
        out += l + '\n';
    }
    for (const auto& [key, object] : g.objects)
        out += line("object", {key.first, object.first, object.second});
    for (const auto& [key, cell] : g.cells)
        out += line("cell", {cell});
    for (const auto& [key, faction] : g.factions) {
        std::string l = "faction";
        appendField(l, faction.first);
        for (const std::string& rank : faction.second)
            appendField(l, rank);
        out += l + '\n';
    }
    for (const std::string& name : g.names)
        out += line("name", {name});
    return out;
}

namespace {

// The fields of one line after its kind, unescaped and in the code page; false for a field
// that is not.
bool fieldsOf(std::string_view l, std::vector<std::string>& fields, std::string& why) {
    fields.clear();
    for (std::size_t at = l.find('\t'); at != std::string_view::npos;) {
        std::size_t end = l.find('\t', at + 1);
        std::string_view raw =
            l.substr(at + 1, end == std::string_view::npos ? std::string_view::npos : end - at - 1);
        std::string utf8;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] != '\\') {
                utf8 += raw[i];
                continue;
            }
            char next = i + 1 < raw.size() ? raw[++i] : '\0';
            if (next != '\\' && next != 't' && next != 'n' && next != 'r') {
                why = "an escape other than \\\\, \\t, \\n or \\r";
                return false;
            }
            utf8 += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : '\\';
        }
        std::string bytes;
        char32_t missing = 0;
        if (!fromUtf8(utf8, bytes, missing)) {
            why = "a character " + std::string(codePageName(activeCodePage())) + " cannot store";
            return false;
        }
        fields.push_back(std::move(bytes));
        at = end;
    }
    return true;
}

bool numbersOf(const std::string& field, std::vector<std::int32_t>& out) {
    out.clear();
    for (std::size_t at = 0; at < field.size();) {
        std::int32_t n = 0;
        auto [end, ec] = std::from_chars(field.data() + at, field.data() + field.size(), n);
        if (ec != std::errc()) return false;
        out.push_back(n);
        at = std::size_t(end - field.data());
        if (at < field.size() && field[at++] != ' ') return false;
    }
    return true;
}

template <class R> bool addNamed(std::vector<R>& records, const std::string& id, const std::string& script) {
    if constexpr (requires(R r) { std::string_view(r.NAME); }) {
        R r{};
        r.NAME = id;
        if constexpr (requires { std::string_view(r.SCRI); }) r.SCRI = script;
        records.push_back(std::move(r));
        return true;
    }
    return false;
}

// A record of that tag with that NAME (and script) in the store; false for a tag no record type
// with an ID has.
bool addObject(RecordStore& store, std::string_view tag, const std::string& id, const std::string& script) {
#define QUILLON_SUMMARY_OBJECT(recordTag, Structure, reader, writer, label, family)                          \
    if (tag == #recordTag) return addNamed(store.recordTag, id, script);
    QUILLON_RECORD_TYPES(QUILLON_SUMMARY_OBJECT)
#undef QUILLON_SUMMARY_OBJECT
    return false;
}

} // namespace

bool readMasterSummary(std::string_view text, MasterSummary& out, std::string& error) {
    if (text.substr(0, kFirstLine.size()) != kFirstLine ||
        (text.size() > kFirstLine.size() && text[kFirstLine.size()] != '\n' &&
         text[kFirstLine.size()] != '\r')) {
        error = "it is no master summary (its first line is not \"" + std::string(kFirstLine) + "\")";
        return false;
    }
    auto store = std::make_shared<RecordStore>();
    out = {};
    std::vector<std::string> f;
    std::vector<std::int32_t> numbers;
    std::size_t number = 1;
    for (std::size_t start = text.find('\n'); start != std::string_view::npos && start + 1 < text.size();) {
        ++number;
        std::size_t end = text.find('\n', start + 1);
        std::string_view l =
            text.substr(start + 1, end == std::string_view::npos ? std::string_view::npos : end - start - 1);
        start = end;
        if (!l.empty() && l.back() == '\r') l.remove_suffix(1);
        if (l.empty()) continue;
        std::string_view kind = l.substr(0, l.find('\t'));
        std::string why;
        bool ok = fieldsOf(l, f, why);
        if (ok && kind == "master" && f.size() == 1) {
            out.masters.push_back(f[0]);
        } else if (ok && kind == "topic" && f.size() == 2 && numbersOf(f[0], numbers) &&
                   numbers.size() == 1 && numbers[0] >= 0 && numbers[0] <= 255) {
            DialRecord d;
            d.NAME = f[1];
            d.DATA = u8(numbers[0]);
            store->DIAL.push_back(std::move(d));
        } else if (ok && (kind == "choice" || kind == "journal") && f.size() == 2 &&
                   numbersOf(f[1], numbers)) {
            for (std::int32_t n : numbers) {
                InfoRecord r;
                r.Topic = f[0];
                if (kind == "journal") {
                    r.Disposition = n;
                } else {
                    InfoCondition c;
                    c.Type = '1';
                    c.Function = {'5', '0'};
                    c.Comparison = '0';
                    c.INTV = n;
                    r.Conditions.push_back(std::move(c));
                }
                store->INFO.push_back(std::move(r));
            }
        } else if (ok && kind == "global" && f.size() == 2 && f[0].size() == 1) {
            GlobRecord g;
            g.FNAM = f[0][0];
            g.NAME = f[1];
            store->GLOB.push_back(std::move(g));
        } else if (ok && kind == "script" && !f.empty() && f[0].size() < 32) {
            ScptRecord r;
            std::memcpy(r.ScriptName.data(), f[0].data(), f[0].size());
            r.ShortNames.assign(f.begin() + 1, f.end());
            store->SCPT.push_back(std::move(r));
        } else if (ok && kind == "object" && f.size() == 3 && addObject(*store, f[0], f[1], f[2])) {
        } else if (ok && kind == "cell" && f.size() == 1) {
            CellRecord c;
            c.NAME = f[0];
            store->CELL.push_back(std::move(c));
        } else if (ok && kind == "faction" && !f.empty() && f.size() <= 11) {
            FactRecord r;
            r.NAME = f[0];
            for (std::size_t i = 1; i < f.size(); ++i)
                std::memcpy(r.Ranks[i - 1].RNAM.data(), f[i].data(), std::min<std::size_t>(f[i].size(), 32));
            store->FACT.push_back(std::move(r));
        } else if (ok && kind == "name" && f.size() == 1) {
            out.names.push_back(f[0]);
        } else {
            error =
                "line " + std::to_string(number) + ": " +
                (ok ? "\"" + std::string(kind.substr(0, 40)) + "\" with these fields is no entry of a summary"
                    : "it holds " + why);
            return false;
        }
    }
    if (out.masters.empty()) {
        error = "it names no master";
        return false;
    }
    out.records = std::move(store);
    return true;
}

std::vector<std::string> useMasterSummary(LoadOrder& order, const MasterSummary& summary,
                                          const std::string& path) {
    std::vector<std::string> given;
    for (auto& m : order.masters) {
        if (m->found()) continue;
        bool summarised = false;
        for (const std::string& name : summary.masters)
            summarised = summarised || foldedKey(name) == foldedKey(m->name);
        if (!summarised) continue;
        m->path = path;
        m->summarised = true;
        m->size = m->recordedSize; // a summary holds no size to compare
        // The records go with the first master given; the others stand found, with nothing of their own.
        if (given.empty()) {
            m->records = summary.records;
            m->names = summary.names;
        }
        given.push_back(m->name);
    }
    return given;
}

} // namespace quillon

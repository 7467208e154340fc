#include "translation/translation.h"

#include "app/encoding.h"
#include "app/session.h"
#include "app/text.h"
#include "game/topic_links.h"
#include "records/record_types.h"
#include "records/response_text.h"
#include "script/script_reader.h"

#include <cctype>
#include <functional>
#include <set>
#include <unordered_map>

namespace quillon {

namespace {

std::string infoContext(const InfoRecord& r) {
    return "INFO " + toUtf8(r.INAM);
}
std::string topicContext(const std::string& name) {
    return "DIAL " + toUtf8(name);
}

// The text as the code page's bytes; false when a character has no byte there.
bool codePageBytes(const std::string& utf8, std::string& out) {
    char32_t missing = 0;
    out.clear();
    return fromUtf8(utf8, out, missing);
}

// The sizes of a record follow one of its texts growing or shrinking by growth bytes.
template <class R> void grow(R& r, i32& size, std::int64_t growth) {
    r.Size += std::int32_t(growth);
    size += std::int32_t(growth);
}

// The placeholders of a text (%PCName, %Name, ...), in order.
std::multiset<std::string> placeholders(std::string_view text) {
    std::multiset<std::string> out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') continue;
        std::size_t end = i + 1;
        while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])))
            ++end;
        if (end > i + 1) out.insert(foldedKey(text.substr(i, end - i)));
    }
    return out;
}

// The translated names of topics, by the folded name in the code page.
using Renames = std::unordered_map<std::string, std::string>;

// The script with every AddTopic of a renamed topic naming the new name, in quotes; count grows by
// the calls renamed.
std::string renamedCalls(std::string_view script, const Renames& renames, int& count) {
    std::string out;
    std::size_t copied = 0;
    for (const ScriptStatement& s : readScript(script)) {
        if (s.head.kind != ScriptToken::Name || !sameName(s.head.text, "addtopic") || s.arguments.empty())
            continue;
        const ScriptToken& name = s.arguments[0];
        auto found = renames.find(foldedKey(name.text));
        if (name.kind == ScriptToken::Symbol || found == renames.end()) continue;
        std::size_t at = std::size_t(name.text.data() - script.data()), end = at + name.text.size();
        bool quoted = name.kind == ScriptToken::Text;
        out.append(script.substr(copied, at - copied));
        out += quoted ? found->second : "\"" + found->second + "\"";
        copied = end;
        ++count;
    }
    if (copied == 0) return std::string(script);
    out.append(script.substr(copied));
    return out;
}

// The records whose FNAM is a name the player reads (a sound's is a file, a body part's a race,
// a response's a faction).
bool showsItsName(std::string_view tag) {
    return tag != "INFO" && tag != "SOUN" && tag != "BODY";
}

std::string nameContext(std::string_view tag, const std::string& id) {
    return std::string(tag) + " " + toUtf8(id) + " FNAM";
}

std::string bookContext(const std::string& id) {
    return "BOOK " + toUtf8(id) + " TEXT";
}

// A book's text as the reader sees it: without the NULs the editor ends it with.
std::string_view shownText(std::string_view text) {
    return text.substr(0, text.find_last_not_of('\0') + 1);
}

template <class R, class Add>
void offerNames(std::string_view tag, const std::vector<R>& records, const Add& add,
                const std::string& file) {
    if constexpr (requires(const R& r) {
                      std::string_view(r.FNAM);
                      std::string_view(r.NAME);
                  }) {
        if (!showsItsName(tag)) return;
        for (const R& r : records)
            if (!r.FNAM.empty() && !r.Dele)
                add({{"name, " + file}, nameContext(tag, r.NAME), toUtf8(r.FNAM), {}, false});
    }
}

template <class R>
void translateNames(std::string_view tag, std::vector<R>& records,
                    const std::unordered_map<std::string, const PoEntry*>& byContext,
                    TranslationReport& report, std::vector<std::function<void()>>& changes) {
    if constexpr (requires(R & r) {
                      std::string_view(r.FNAM);
                      std::string_view(r.NAME);
                      r.FNAMSize;
                  }) {
        if (!showsItsName(tag)) return;
        for (R& r : records) {
            if (r.FNAM.empty()) continue;
            auto found = byContext.find(nameContext(tag, r.NAME));
            if (found == byContext.end()) continue;
            if (found->second->id != toUtf8(r.FNAM)) {
                report.stale.push_back(found->second->context);
                continue;
            }
            std::string bytes;
            if (!codePageBytes(found->second->translation, bytes)) {
                report.refused.push_back(found->second->context);
                continue;
            }
            if (bytes == r.FNAM) continue;
            changes.push_back([&r, bytes, &report] {
                grow(r, r.FNAMSize, std::int64_t(bytes.size()) - std::int64_t(r.FNAM.size()));
                r.FNAM = bytes;
                ++report.applied;
            });
        }
    }
}

} // namespace

void addTemplateEntries(const RecordStore& store, const std::string& file, std::vector<PoEntry>& entries) {
    std::set<std::pair<std::string, std::string>> present;
    for (const PoEntry& e : entries)
        present.emplace(e.context, e.id);
    auto add = [&](PoEntry e) {
        if (present.emplace(e.context, e.id).second) entries.push_back(std::move(e));
    };
    std::unordered_map<std::string, const NpcRecord*> npcs;
    for (const NpcRecord& n : store.NPC_)
        npcs.emplace(foldedKey(n.NAME), &n);
    std::set<std::string> journals; // as the writer matches responses to their topic
    for (const DialRecord& d : store.DIAL)
        if (d.DATA == 4) journals.insert(d.NAME);
    for (const DialRecord& d : store.DIAL)
        if (d.DATA == 0 && !d.NAME.empty())
            add({{"topic name, " + file}, topicContext(d.NAME), toUtf8(d.NAME), {}, false});
#define QUILLON_OFFER_NAMES(tag, Structure, reader, writer, label, family)                                   \
    offerNames(#tag, store.tag, add, file);
    QUILLON_RECORD_TYPES(QUILLON_OFFER_NAMES)
#undef QUILLON_OFFER_NAMES
    for (const BookRecord& b : store.BOOK)
        if (!shownText(b.TEXT).empty() && !b.Dele)
            add({{"book text, " + file}, bookContext(b.NAME), toUtf8(shownText(b.TEXT)), {}, false});
    for (const InfoRecord& r : store.INFO) {
        if (r.NAME.empty()) continue;
        PoEntry e;
        e.context = infoContext(r);
        e.id = toUtf8(r.NAME);
        e.comments.push_back("topic: " + toUtf8(r.Topic));
        if (!r.ONAM.empty()) {
            auto npc = npcs.find(foldedKey(r.ONAM));
            e.comments.push_back("speaker: " + toUtf8(r.ONAM) +
                                 (npc != npcs.end() && !npc->second->FNAM.empty()
                                      ? " (" + toUtf8(npc->second->FNAM) + ")"
                                      : ""));
        }
        if (r.DialogueType == 4 || journals.count(r.Topic))
            e.comments.push_back(r.QSTN ? "journal: the quest's name" : "journal entry");
        e.comments.push_back("file: " + file);
        add(std::move(e));
    }
}

void applyTranslation(RecordStore& store, const std::vector<PoEntry>& po, TranslationReport& report) {
    std::unordered_map<std::string, const PoEntry*> byContext;
    for (const PoEntry& e : po)
        if (!e.fuzzy && !e.translation.empty()) byContext.emplace(e.context, &e);
    // Every change is worked out first: a translation the code page cannot hold changes nothing.
    std::vector<std::pair<InfoRecord*, std::string>> texts;
    for (InfoRecord& r : store.INFO) {
        auto found = byContext.find(infoContext(r));
        if (found == byContext.end()) continue;
        if (found->second->id != toUtf8(r.NAME)) {
            report.stale.push_back(found->second->context);
            continue;
        }
        std::string bytes;
        if (!codePageBytes(found->second->translation, bytes))
            report.refused.push_back(found->second->context);
        else if (bytes != r.NAME)
            texts.emplace_back(&r, std::move(bytes));
    }
    Renames renames; // every topic the PO translates, the file's own or a master's
    for (const PoEntry& e : po) {
        if (e.fuzzy || e.translation.empty() || e.context.rfind("DIAL ", 0) != 0 ||
            e.id != e.context.substr(5))
            continue;
        std::string from, to;
        if (!codePageBytes(e.id, from) || !codePageBytes(e.translation, to)) {
            report.refused.push_back(e.context);
            continue;
        }
        if (from != to) renames.emplace(foldedKey(from), to);
    }
    // Two topics of one name would be two DIALs the game takes for one: refused, naming both.
    std::unordered_map<std::string, std::string> nameOf; // folded name after translation -> topic
    for (const DialRecord& d : store.DIAL) {
        auto renamed = renames.find(foldedKey(d.NAME));
        std::string after = renamed == renames.end() ? d.NAME : renamed->second;
        auto [at, fresh] = nameOf.try_emplace(foldedKey(after), d.NAME);
        if (!fresh && foldedKey(at->second) != foldedKey(d.NAME))
            report.clashes.push_back("\"" + toUtf8(at->second) + "\" and \"" + toUtf8(d.NAME) +
                                     "\" would both be named \"" + toUtf8(after) + "\" (msgctxt \"" +
                                     topicContext(at->second) + "\" and \"" + topicContext(d.NAME) + "\")");
    }
    // Names and books, worked out as the texts are.
    std::vector<std::function<void()>> changes;
#define QUILLON_TRANSLATE_NAMES(tag, Structure, reader, writer, label, family)                               \
    translateNames(#tag, store.tag, byContext, report, changes);
    QUILLON_RECORD_TYPES(QUILLON_TRANSLATE_NAMES)
#undef QUILLON_TRANSLATE_NAMES
    for (BookRecord& b : store.BOOK) {
        auto found = byContext.find(bookContext(b.NAME));
        if (found == byContext.end() || b.TEXT.empty()) continue;
        std::string bytes;
        std::string_view shown = shownText(b.TEXT);
        if (found->second->id != toUtf8(shown))
            report.stale.push_back(found->second->context);
        else if (!codePageBytes(found->second->translation, bytes))
            report.refused.push_back(found->second->context);
        else if ((bytes += b.TEXT.substr(shown.size())) != b.TEXT) // the ending NULs kept
            changes.push_back([&b, bytes, &store, &report] {
                grow(b, b.TEXTSize, std::int64_t(bytes.size()) - std::int64_t(b.TEXT.size()));
                b.TEXT = store.editedTexts.emplace_back(bytes);
                ++report.applied;
            });
    }
    if (!report.refused.empty() || !report.clashes.empty()) return;
    for (const auto& change : changes)
        change();

    for (auto& [r, bytes] : texts) {
        setResponseText(*r, std::move(bytes));
        ++report.applied;
    }
    for (DialRecord& d : store.DIAL) {
        auto found = renames.find(foldedKey(d.NAME));
        if (found == renames.end()) continue;
        grow(d, d.NAMESize, std::int64_t(found->second.size()) - std::int64_t(d.NAME.size()));
        d.NAME = found->second;
        ++report.topicsRenamed;
    }
    for (InfoRecord& r : store.INFO) {
        if (auto found = renames.find(foldedKey(r.Topic)); found != renames.end()) r.Topic = found->second;
        if (r.BNAM.empty()) continue;
        std::string script = renamedCalls(r.BNAM, renames, report.callsRenamed);
        grow(r, r.BNAMSize, std::int64_t(script.size()) - std::int64_t(r.BNAM.size()));
        r.BNAM = std::move(script);
    }
    for (ScptRecord& s : store.SCPT) {
        int before = report.callsRenamed;
        std::string script = renamedCalls(s.SCTX, renames, report.callsRenamed);
        if (report.callsRenamed == before) continue;
        grow(s, s.SCTXSize, std::int64_t(script.size()) - std::int64_t(s.SCTX.size()));
        s.SCTX = store.editedTexts.emplace_back(std::move(script));
        // The compiled data still names the old topic: the editor must compile the script again.
        report.recompile.push_back(fixedText(s.ScriptName));
    }
}

std::vector<Finding> checkTranslation(const RecordStore& store, const std::vector<PoEntry>& po) {
    std::vector<Finding> out;
    std::unordered_map<std::string, const PoEntry*> byContext;
    for (const PoEntry& e : po)
        byContext.emplace(e.context, &e);
    // The topics a response's text can link to, with the name each has in the translation.
    std::vector<std::pair<std::string, std::string>> topics;
    for (const DialRecord& d : store.DIAL) {
        if (d.DATA != 0 || d.NAME.empty()) continue;
        auto found = byContext.find(topicContext(d.NAME));
        std::string translated;
        if (found == byContext.end() || found->second->translation.empty() ||
            !codePageBytes(found->second->translation, translated))
            translated = d.NAME;
        topics.emplace_back(d.NAME, translated);
    }
    // The links the game finds in a text and in its translation, by the same rule.
    std::vector<std::string> names, translatedNames;
    std::unordered_map<std::string, std::size_t> byName;
    for (std::size_t t = 0; t < topics.size(); ++t) {
        names.push_back(topics[t].first);
        translatedNames.push_back(topics[t].second);
        byName.emplace(foldedKey(topics[t].first), t);
    }
    TopicLinks sourceLinks(names), translatedLinks(translatedNames);
    for (std::size_t i = 0; i < store.INFO.size(); ++i) {
        const InfoRecord& r = store.INFO[i];
        auto found = byContext.find(infoContext(r));
        if (found == byContext.end()) {
            // A text added since the template was made: the translator has not seen it.
            if (!r.NAME.empty() && !r.Dele)
                out.push_back(aboutResponse(store.INFO, i, "untranslated", "the PO has no entry for it"));
            continue;
        }
        const PoEntry& e = *found->second;
        auto finding = [&](const char* kind, std::string detail) {
            out.push_back(aboutResponse(store.INFO, i, kind, std::move(detail)));
        };
        if (e.id != toUtf8(r.NAME)) finding("stale", "the text changed since the PO was made");
        if (e.translation.empty() || e.fuzzy) {
            finding("untranslated", e.fuzzy ? "the translation is marked fuzzy" : "no translation yet");
            continue;
        }
        std::string bytes;
        if (!codePageBytes(e.translation, bytes)) {
            finding("charset", std::string("the translation holds a character ") +
                                   codePageName(activeCodePage()) + " cannot store");
            continue;
        }
        if (placeholders(e.id) != placeholders(e.translation))
            finding("placeholder", "the placeholders (%PCName and the like) differ from the text's");
        if (bytes.size() > kMaxResponse)
            finding("long",
                    std::to_string(bytes.size()) + " characters, over " + std::to_string(kMaxResponse));
        std::set<std::string> linkedThere;
        for (const TopicLink& l : translatedLinks.find(bytes))
            linkedThere.insert(foldedKey(l.topic));
        std::set<std::size_t> reported;
        for (const TopicLink& l : sourceLinks.find(r.NAME)) {
            auto t = byName.find(foldedKey(l.topic));
            if (t == byName.end() || !reported.insert(t->second).second) continue;
            const auto& [name, translated] = topics[t->second];
            if (!linkedThere.count(foldedKey(translated)))
                finding("hyperlink", "the topic \"" + name + "\" is linked in the text but \"" + translated +
                                         "\" is not in the translation: the game shows no link");
        }
    }
    return out;
}

} // namespace quillon

#include "app/replace_target.h"
#include "app/text.h"
#include "dialogue/dialogue_commands.h"
#include "writer/safe_file.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

namespace quillon {

namespace {

const char* const kCityPrompt = "Please, enter the name of the city to export from:";

// What the placeholders of one response are filled with.
struct Speaker {
    std::string name, race, cls, faction;
};

// Actors by ID ignoring case; the first record of an ID wins. With a load order, an actor the
// file does not define is looked for in its masters, from the last to the first.
class ActorIndex {
public:
    ActorIndex(const RecordStore& store, const LoadOrder* masters) : store_(store), masters_(masters) {
        for (std::size_t i = 0; i < store.NPC_.size(); ++i)
            npcs_.emplace(foldedKey(store.NPC_[i].NAME), i);
        for (std::size_t i = 0; i < store.CREA.size(); ++i)
            creatures_.emplace(foldedKey(store.CREA[i].NAME), i);
    }
    // The NPC's name, race, class and faction; a creature of that ID then sets the name only.
    Speaker find(const std::string& actor) const {
        Speaker s;
        std::string key = foldedKey(actor);
        const NpcRecord* npc = nullptr;
        if (auto n = npcs_.find(key); n != npcs_.end())
            npc = &store_.NPC_[n->second];
        else if (masters_)
            npc = masters_->findInMasters(&RecordStore::NPC_, actor);
        if (npc) s = {npc->FNAM, npc->RNAM, npc->CNAM, npc->ANAM};
        if (auto c = creatures_.find(key); c != creatures_.end())
            s.name = store_.CREA[c->second].FNAM;
        else if (const CreaRecord* creature =
                     masters_ ? masters_->findInMasters(&RecordStore::CREA, actor) : nullptr)
            s.name = creature->FNAM;
        return s;
    }

private:
    const RecordStore& store_;
    const LoadOrder* masters_;
    std::unordered_map<std::string, std::size_t> npcs_, creatures_;
};

std::string fillPlaceholders(std::string text, const Speaker& s) {
    replaceAllIgnoreCase(text, "%class", s.cls);
    replaceAllIgnoreCase(text, "%race", s.race);
    replaceAllIgnoreCase(text, "%Faction", s.faction);
    replaceAllIgnoreCase(text, "%Name", s.name);
    return text;
}

// One placeholder's replacement as a stream of bytes drawn from the stage before it, matching as
// replaceAllIgnoreCase does: leftmost first, never inside what was inserted.
class Replacing {
public:
    Replacing(std::function<int()> source, std::string_view search, std::string_view replacement)
        : source_(std::move(source)), search_(search), replacement_(replacement) {}

    // The next byte, or -1 at the end.
    int next() {
        for (;;) {
            if (inserted_ < insertion_.size()) return static_cast<unsigned char>(insertion_[inserted_++]);
            while (ahead_.size() < search_.size()) {
                int c = source_();
                if (c < 0) break;
                ahead_ += char(c);
            }
            if (ahead_.empty()) return -1;
            if (ahead_.size() == search_.size() && equalsIgnoreCase(ahead_, search_)) {
                ahead_.clear();
                insertion_ = replacement_;
                inserted_ = 0;
                continue;
            }
            int c = static_cast<unsigned char>(ahead_.front());
            ahead_.erase(0, 1);
            return c;
        }
    }

private:
    std::function<int()> source_;
    std::string_view search_, replacement_, insertion_;
    std::size_t inserted_ = 0;
    std::string ahead_;
};

// The first limit bytes of fillPlaceholders(text, s), expanding no further than they need: a
// text of many placeholders and long names would otherwise grow a thousandfold before the cut.
std::string fillPlaceholdersUpTo(std::string_view text, const Speaker& s, std::size_t limit) {
    // Most texts hold no placeholder, or one whose filling stays small: those are filled whole and
    // cut, and only the few that could grow out of bounds go through the byte stream below.
    if (text.find('%') == std::string_view::npos) return std::string(text.substr(0, limit));
    std::size_t bound = text.size();
    for (auto [search, replacement] : {std::pair<std::string_view, std::size_t>{"%class", s.cls.size()},
                                       {"%race", s.race.size()},
                                       {"%Faction", s.faction.size()},
                                       {"%Name", s.name.size()}})
        bound += bound / search.size() * replacement;
    if (bound <= (std::size_t(64) << 10)) {
        std::string filled = fillPlaceholders(std::string(text), s);
        filled.resize(std::min(filled.size(), limit));
        return filled;
    }
    std::size_t at = 0;
    Replacing cls([&] { return at < text.size() ? static_cast<unsigned char>(text[at++]) : -1; }, "%class",
                  s.cls);
    Replacing race([&] { return cls.next(); }, "%race", s.race);
    Replacing faction([&] { return race.next(); }, "%Faction", s.faction);
    Replacing name([&] { return faction.next(); }, "%Name", s.name);
    std::string out;
    for (int c; out.size() < limit && (c = name.next()) >= 0;)
        out += char(c);
    return out;
}

// The export file chosen, and whether it may be replaced though read-only.
struct Target {
    std::string path; // empty when cancelled or kept
    ReadOnlyTarget readOnly = ReadOnlyTarget::Refuse;
};

Target askForFile(Session& session, Dialogs& dialogs, const char* filter, const char* extension) {
    FileRequest request;
    request.flags = PromptOverwrite;
    request.filter = filter;
    request.defaultExtension = extension;
    request.initialFolder = session.openFolder;
    std::string path = dialogs.saveFile(request);
    if (path.empty()) return {};
    session.openFolder = folderOf(path);
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(session, dialogs, path);
    if (!readOnly) return {};
    return {path, *readOnly};
}

bool hasNoResponses(const Session& session) {
    return session.store.INFO.empty() || session.store.INFO.front().INAMSize == 0;
}

// Writes the finished file and logs the outcome; the count is of all responses.
// Hands the export to its file once it has grown, so that a large one is never held whole.
void drainIfLarge(SafeFileWriter& file, std::string& out) {
    if (out.size() < (1 << 20)) return;
    file.write(out);
    out.clear();
}

// Writes the rest of the export, puts the file in place and logs the outcome; the count is of all
// responses.
Outcome finish(Session& session, Dialogs& dialogs, const std::string& path, SafeFileWriter& file,
               const std::string& rest) {
    file.write(rest);
    std::string error = file.commit();
    if (!error.empty()) {
        dialogs.tell("\"" + bareName(path) + "\" could not be written: " + error + ".", Icon::Critical);
        session.log.LogLine("-An error occured during dialogue exporting.");
        return Outcome::failed(error);
    }
    session.log.LogLine("-Exported " + std::to_string(session.store.INFO.size()) + " responses from \"" +
                        bareName(session.currentPath) + "\" successfully.");
    return Outcome::done();
}

// A fixed-width field of the quote file: the text cut or padded with zero bytes to width.
void field(std::string& out, const std::string& text, std::size_t width) {
    out.append(text, 0, std::min(text.size(), width));
    out.append(width - std::min(text.size(), width), '\0');
}

} // namespace

Outcome ExportQuotesXml(Session& session, Dialogs& dialogs) {
    auto [path, readOnly] =
        askForFile(session, dialogs, "XML files (*.xml)|*.xml| All Files (*.*)| *.*", ".xml");
    if (path.empty()) return Outcome::declined("no file was chosen");
    std::string city = dialogs.input({QuestionId::CityName}, kCityPrompt, "", "");
    return writeQuotesXml(session, dialogs, {path, readOnly, city});
}

Outcome ExportQuotesKst(Session& session, Dialogs& dialogs) {
    auto [path, readOnly] =
        askForFile(session, dialogs, "Kestrel Quote Files (*.kst)|*.kst| All Files (*.*)| *.*", ".kst");
    if (path.empty()) return Outcome::declined("no file was chosen");
    std::string city = dialogs.input({QuestionId::CityName}, kCityPrompt, "", "");
    return writeQuotesKst(session, dialogs, {path, readOnly, city});
}

Outcome writeQuotesXml(Session& session, Dialogs& dialogs, const QuoteExport& request) {
    const std::string &path = request.path, &city = request.city;
    ReadOnlyTarget readOnly = request.readOnly;
    std::string out = "<quotes>";
    if (hasNoResponses(session)) {
        replaceFileSafely(path, out, readOnly);
        return reportExportError(session, dialogs);
    }
    ActorIndex actors(session.store, session.useMasters ? &sessionMasters(session) : nullptr);
    SafeFileWriter file(path, readOnly);
    for (const InfoRecord& r : session.store.INFO) {
        // Every response with an actor goes out, those holding "%PC" or "%rank" included: the
        // test that looks for them cannot come out false once an actor is present.
        if (r.ONAM.empty()) continue;
        Speaker s = actors.find(r.ONAM);
        std::string speaker = s.name.empty() ? trimBlanks(properCase(r.ONAM)) : s.name;
        // Filled no further than a few times the text: a response of thousands of placeholders
        // and a long name would otherwise grow the file without bound.
        out += "<quote><text>" + fillPlaceholdersUpTo(r.NAME, s, 4 * r.NAME.size() + 4096) + "</text><npc>" +
               speaker + "</npc><city>" + city + "</city></quote>";
        drainIfLarge(file, out);
    }
    out += "</quotes>";
    return finish(session, dialogs, path, file, out);
}

Outcome writeQuotesKst(Session& session, Dialogs& dialogs, const QuoteExport& request) {
    const std::string &path = request.path, &city = request.city;
    ReadOnlyTarget readOnly = request.readOnly;
    bool retypeNames = request.retypeNames;
    if (hasNoResponses(session)) {
        replaceFileSafely(path, "", readOnly);
        return reportExportError(session, dialogs);
    }
    ActorIndex actors(session.store, session.useMasters ? &sessionMasters(session) : nullptr);
    SafeFileWriter file(path, readOnly);
    std::string out;
    for (const InfoRecord& r : session.store.INFO) {
        if (r.ONAM.empty() || containsIgnoreCase(r.NAME, "%PC") || containsIgnoreCase(r.NAME, "%rank"))
            continue;
        Speaker s = actors.find(r.ONAM);
        // A name holding "_" is offered for retyping, the typed text replacing it; when that leaves
        // no name, the actor ID stands in and is offered the same way.
        auto retyped = [&](const std::string& name) {
            return retypeNames && name.find('_') != std::string::npos
                       ? dialogs.input({QuestionId::SpeakerName, name}, name, "", "")
                       : name;
        };
        std::string speaker = s.name.empty() ? std::string() : retyped(s.name);
        if (speaker.empty()) speaker = retyped(trimBlanks(properCase(r.ONAM)));
        // Values longer than their field are cut: the reader of the file relies on the widths.
        field(out, speaker, 32);
        field(out, city, 32);
        field(out, fillPlaceholdersUpTo(r.NAME, s, 512), 512);
        drainIfLarge(file, out);
    }
    return finish(session, dialogs, path, file, out);
}

} // namespace quillon

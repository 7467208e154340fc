#include "game/topic_links.h"

#include "records/source_bytes.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace quillon {

namespace {

// ASCII letters only, as the game lowers each byte.
char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

std::string lowered(std::string_view s) {
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(), [](char c) { return lowered(c); });
    return out;
}

bool startsAWord(std::string_view text, std::size_t at) {
    if (at == 0) return true;
    char before = text[at - 1];
    return before == '\n' || before == '\r' || before == ' ' || before == '\t' || before == '\'' ||
           before == '"' || before == '(' || before == '[';
}

} // namespace

LinkTables readLinkTables(const std::vector<std::string>& contentPaths) {
    LinkTables tables;
    for (const std::string& content : contentPaths)
        for (auto [extension, table] : {std::pair{".mrk", &tables.keywordOf}, {".top", &tables.topicOf}}) {
            if (content.empty()) break;
            std::string error;
            std::filesystem::path path = std::filesystem::path(content).replace_extension(extension);
            std::error_code ec;
            if (!std::filesystem::is_regular_file(path, ec)) continue;
            std::string text = loadFile(path.string(), error);
            std::istringstream lines(text);
            for (std::string line; std::getline(lines, line);) {
                if (!line.empty() && line.back() == '\r') line.pop_back();
                std::size_t tab = line.find('\t');
                if (tab == std::string::npos || tab == 0 || tab + 1 == line.size()) continue;
                table->try_emplace(lowered(std::string_view(line).substr(0, tab)), line.substr(tab + 1));
            }
        }
    return tables;
}

TopicLinks::TopicLinks(std::vector<std::string> topics, LinkTables tables)
    : tables_(std::move(tables)), topics_(std::move(topics)) {
    for (std::size_t i = 0; i < topics_.size(); ++i) {
        std::string keyword = topics_[i];
        if (auto mark = tables_.keywordOf.find(lowered(keyword)); mark != tables_.keywordOf.end())
            keyword = mark->second;
        lowered_.push_back(lowered(keyword));
        if (!lowered_.back().empty()) byStart_[lowered_.back().substr(0, 3)].push_back(i);
    }
}

std::vector<TopicLink> TopicLinks::find(std::string_view text) const {
    std::vector<TopicLink> out;
    // Explicit links, and the stretches between them where implicit ones are looked for.
    std::vector<std::pair<std::size_t, std::size_t>> plain;
    std::size_t from = 0;
    for (std::size_t at = text.find('@'); at != std::string_view::npos; at = text.find('@', at + 1)) {
        std::size_t close = text.find('#', at + 1);
        if (close == std::string_view::npos) break; // an @ without a later # is plain text
        plain.emplace_back(from, at);
        // Trailing 0x7F bytes are not shown; in the .top lookup each stands for *.
        std::string form = lowered(text.substr(at + 1, close - at - 1));
        std::replace(form.begin(), form.end(), '\x7f', '*');
        std::string topic = form;
        if (auto entry = tables_.topicOf.find(form); entry != tables_.topicOf.end()) topic = entry->second;
        out.push_back({at, close + 1 - at, topic, true});
        from = close + 1;
        at = close;
    }
    plain.emplace_back(from, text.size());
    std::string low = lowered(text);
    for (auto [begin, end] : plain) {
        std::vector<TopicLink> found;
        for (std::size_t at = begin; at < end; ++at) {
            if (!startsAWord(text, at)) continue;
            for (std::size_t n = 1; n <= 3 && at + n <= end; ++n) {
                auto bucket = byStart_.find(low.substr(at, n));
                if (bucket == byStart_.end()) continue;
                for (std::size_t i : bucket->second) {
                    const std::string& name = lowered_[i];
                    if (std::min<std::size_t>(name.size(), 3) != n || at + name.size() > end) continue;
                    if (low.compare(at, name.size(), name) == 0)
                        found.push_back({at, name.size(), topics_[i], false});
                }
            }
        }
        // Run by run of overlapping matches: the longest (the earliest of equal ones) wins, and
        // every match it overlaps goes.
        std::size_t runStart = 0;
        while (runStart < found.size()) {
            std::size_t runEnd = runStart + 1, reach = found[runStart].at + found[runStart].length;
            while (runEnd < found.size() && found[runEnd].at < reach) {
                reach = std::max(reach, found[runEnd].at + found[runEnd].length);
                ++runEnd;
            }
            std::vector<TopicLink> run(found.begin() + std::ptrdiff_t(runStart),
                                       found.begin() + std::ptrdiff_t(runEnd));
            while (!run.empty()) {
                auto best =
                    std::max_element(run.begin(), run.end(), [](const TopicLink& a, const TopicLink& b) {
                        return a.length < b.length || (a.length == b.length && a.at > b.at);
                    });
                TopicLink kept = *best;
                out.push_back(kept);
                std::erase_if(run, [&](const TopicLink& l) {
                    return l.at < kept.at + kept.length && kept.at < l.at + l.length;
                });
            }
            runStart = runEnd;
        }
    }
    std::sort(out.begin(), out.end(), [](const TopicLink& a, const TopicLink& b) { return a.at < b.at; });
    return out;
}

TopicLinks loadOrderLinks(const std::vector<DialogueSource>& sources,
                          const std::vector<MergedTopic>& topics) {
    std::vector<std::string> names, paths;
    for (const MergedTopic& t : topics)
        names.push_back(t.name);
    for (const DialogueSource& s : sources)
        paths.push_back(s.path);
    return TopicLinks(std::move(names), readLinkTables(paths));
}

std::string markedLinks(std::string_view text, const std::vector<TopicLink>& links) {
    std::string out;
    std::size_t from = 0;
    for (const TopicLink& l : links) {
        out.append(text.substr(from, l.at - from));
        out += l.explicitLink ? std::string(text.substr(l.at, l.length))
                              : "@" + std::string(text.substr(l.at, l.length)) + "#";
        from = l.at + l.length;
    }
    out.append(text.substr(from));
    return out;
}

} // namespace quillon

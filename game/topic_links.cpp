#include "game/topic_links.h"

#include <algorithm>

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

TopicLinks::TopicLinks(std::vector<std::string> topics) : topics_(std::move(topics)) {
    for (std::size_t i = 0; i < topics_.size(); ++i) {
        lowered_.push_back(lowered(topics_[i]));
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
        out.push_back({at, close + 1 - at, lowered(text.substr(at + 1, close - at - 1)), true});
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

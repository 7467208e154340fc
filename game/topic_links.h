#pragma once
// Topic hyperlinks as the game finds them in a text: explicit @…# links first, then implicit ones,
// each topic name matched without regard to ASCII letter case at the start of the text or after
// a line break, a blank, a tab, ' " ( or [, its end not checked ("Orcs" links "orc"); where
// matches overlap, the longest wins (the earliest of equal ones) and those it overlaps are
// dropped, run by run.
#include "game/dialogue_order.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillon {

struct TopicLink {
    std::size_t at = 0, length = 0; // in the text, markers included for an explicit link
    std::string topic;              // the topic's name as the list gives it (lower case for @…#)
    bool explicitLink = false;
};

// A localized edition's link files beside a content file (name.top, name.mrk): one entry a line,
// key TAB value, in the code page; a line without a tab or with an empty key or value is passed
// over; the first entry of a key wins.
struct LinkTables {
    std::unordered_map<std::string, std::string>
        keywordOf; // .mrk: topic (lowered) -> the keyword looked for instead
    std::unordered_map<std::string, std::string> topicOf; // .top: a word form (lowered) -> its topic
};
// The tables beside each of these content files, in load order; files that are not there add nothing.
LinkTables readLinkTables(const std::vector<std::string>& contentPaths);

class TopicLinks {
public:
    // The topic names to look for (every DIAL of the load order, of every type), each by its
    // .mrk keyword where tables give one.
    explicit TopicLinks(std::vector<std::string> topics, LinkTables tables = {});
    std::vector<TopicLink> find(std::string_view text) const;

private:
    LinkTables tables_;
    std::vector<std::string> topics_, lowered_; // lowered_: the keyword looked for
    // The topics by their first three lowered bytes (fewer for shorter names).
    std::unordered_map<std::string, std::vector<std::size_t>> byStart_;
};

// The links of a load order: the names of its merged topics, with the link files beside its files.
TopicLinks loadOrderLinks(const std::vector<DialogueSource>& sources, const std::vector<MergedTopic>& topics);

// The text with each link marked as the game's editor marks them: @topic words#.
std::string markedLinks(std::string_view text, const std::vector<TopicLink>& links);

} // namespace quillon

#include "game/dialogue_order.h"

#include "app/text.h"

#include <algorithm>
#include <list>
#include <map>
#include <unordered_map>

namespace quillon {

const char* topicTypeName(std::uint8_t type) {
    switch (type) {
    case 0: return "Topic";
    case 1: return "Voice";
    case 2: return "Greeting";
    case 3: return "Persuasion";
    case 4: return "Journal";
    }
    return "Unknown";
}

namespace {

// One topic's list while files are merged.
class TopicOrder {
public:
    void insert(const InfoRecord& r, std::size_t file, const std::string& topic,
                std::vector<OrderEvent>* events) {
        auto found = byId_.find(r.INAM);
        if (found != byId_.end() && found->second->info->PNAM == r.PNAM) {
            *found->second = {&r, file};
            return;
        }
        auto note = [&](OrderEvent::Kind kind, std::size_t other) {
            if (events && file > 0 && !r.Dele) events->push_back({kind, &r, file, topic, other});
        };
        bool isNew = found == byId_.end();
        if (!isNew) {
            if (found->second->file < file) note(OrderEvent::Moved, found->second->file);
            list_.erase(found->second);
            byId_.erase(found);
        }
        auto at = list_.end();
        if (r.PNAM.empty()) {
            if (isNew && !list_.empty() && list_.front().file < file)
                note(OrderEvent::AboveFirst, list_.front().file);
            at = list_.begin();
        } else if (auto previous = byId_.find(r.PNAM); previous != byId_.end()) {
            at = std::next(previous->second);
        } else {
            note(OrderEvent::UnknownPrevious, file);
        }
        byId_[r.INAM] = list_.insert(at, {&r, file});
    }

    std::vector<MergedResponse> merged() const {
        std::vector<MergedResponse> out;
        for (const MergedResponse& m : list_)
            if (!m.info->Dele) out.push_back(m);
        return out;
    }

private:
    std::list<MergedResponse> list_;
    std::unordered_map<std::string, std::list<MergedResponse>::iterator> byId_;
};

int typeRank(std::uint8_t type) {
    switch (type) {
    case 0: return 0;
    case 2: return 1;
    case 3: return 2;
    case 1: return 3;
    case 4: return 4;
    }
    return 5;
}

} // namespace

std::vector<MergedTopic> mergeDialogue(const std::vector<DialogueSource>& sources,
                                       std::vector<OrderEvent>* events) {
    struct Topic {
        MergedTopic topic;
        TopicOrder order;
    };
    std::map<std::string, Topic> topics; // by folded ID
    for (std::size_t file = 0; file < sources.size(); ++file) {
        const RecordStore& store = *sources[file].store;
        for (const DialRecord& d : store.DIAL) {
            std::string key = foldedKey(d.NAME);
            // A deleted topic is gone with every response merged into it so far.
            if (d.Dele) {
                topics.erase(key);
                continue;
            }
            auto [at, added] = topics.try_emplace(key);
            if (added) at->second.topic.name = d.NAME;
            at->second.topic.type = d.DATA;
        }
        for (const InfoRecord& r : store.INFO)
            if (auto at = topics.find(foldedKey(r.Topic)); at != topics.end())
                at->second.order.insert(r, file, at->second.topic.name, events);
    }
    std::vector<MergedTopic> out;
    out.reserve(topics.size());
    for (auto& [key, t] : topics) {
        t.topic.responses = t.order.merged();
        out.push_back(std::move(t.topic));
    }
    std::stable_sort(out.begin(), out.end(), [](const MergedTopic& a, const MergedTopic& b) {
        return typeRank(a.type) < typeRank(b.type);
    });
    return out;
}

} // namespace quillon

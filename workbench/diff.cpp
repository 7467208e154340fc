#include "workbench/diff.h"

#include <cstdio>
#include <map>

namespace quillon {

namespace {

// The conditions as one line: each SCVR's body, then its value.
std::string conditionsText(const InfoRecord& r) {
    std::string out;
    for (const InfoCondition& c : r.Conditions) {
        if (!out.empty()) out += "; ";
        out += std::string{c.Index, c.Type, c.Function[0], c.Function[1], c.Comparison} + c.Name;
        if (c.INTVSize != 0) {
            out += " = " + std::to_string(c.INTV);
        } else if (c.FLTVSize != 0) {
            char value[32];
            std::snprintf(value, sizeof value, "%g", double(c.FLTV));
            out += " = " + std::string(value);
        }
    }
    return out;
}

// Responses by ID; the second response of one ID is keyed apart from the first.
std::map<std::string, const InfoRecord*> byId(const std::vector<InfoRecord>& infos) {
    std::map<std::string, const InfoRecord*> index;
    std::map<std::string, int> seen;
    for (const InfoRecord& r : infos) {
        int n = seen[r.INAM]++;
        index[n == 0 ? r.INAM : r.INAM + "#" + std::to_string(n)] = &r;
    }
    return index;
}

DialogueChange change(const char* kind, const InfoRecord& r) {
    return {kind, "text", r.INAM, r.Topic, r.ONAM, {}, {}};
}

} // namespace

std::vector<DialogueChange> diffDialogue(const RecordStore& older, const RecordStore& newer) {
    std::map<std::string, const InfoRecord*> before = byId(older.INFO), after = byId(newer.INFO);
    std::vector<DialogueChange> changes;
    std::map<std::string, int> seen;
    for (const InfoRecord& r : older.INFO) {
        int n = seen[r.INAM]++;
        if (after.count(n == 0 ? r.INAM : r.INAM + "#" + std::to_string(n))) continue;
        DialogueChange c = change("removed", r);
        c.before = r.NAME;
        changes.push_back(std::move(c));
    }
    seen.clear();
    for (const InfoRecord& r : newer.INFO) {
        int n = seen[r.INAM]++;
        auto found = before.find(n == 0 ? r.INAM : r.INAM + "#" + std::to_string(n));
        if (found == before.end()) {
            DialogueChange c = change("added", r);
            c.after = r.NAME;
            changes.push_back(std::move(c));
            continue;
        }
        const InfoRecord& old = *found->second;
        std::pair<const char*, std::pair<std::string, std::string>> fields[] = {
            {"text", {old.NAME, r.NAME}},
            {"topic", {old.Topic, r.Topic}},
            {"actor", {old.ONAM, r.ONAM}},
            {"result", {old.BNAM, r.BNAM}},
            {"conditions", {conditionsText(old), conditionsText(r)}},
        };
        for (auto& [field, values] : fields) {
            if (values.first == values.second) continue;
            DialogueChange c = change("changed", r);
            c.field = field;
            c.before = std::move(values.first);
            c.after = std::move(values.second);
            changes.push_back(std::move(c));
        }
    }
    return changes;
}

} // namespace quillon

#include "app/dialogs.h"

#include "app/session.h"
#include "app/text.h"

namespace quillon {

namespace {

// The pattern lists of a "description|pattern|..." filter, each split at ";".
std::vector<std::vector<std::string>> filterPatterns(const std::string& filter) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t bar; (bar = filter.find('|', start)) != std::string::npos; start = bar + 1)
        parts.push_back(filter.substr(start, bar - start));
    parts.push_back(filter.substr(start));
    std::vector<std::vector<std::string>> lists;
    for (std::size_t i = 1; i < parts.size(); i += 2) {
        std::vector<std::string> patterns;
        std::size_t from = 0;
        for (std::size_t semi;; from = semi + 1) {
            semi = parts[i].find(';', from);
            std::string pattern = trimBlanks(parts[i].substr(from, semi - from));
            if (!pattern.empty()) patterns.push_back(pattern);
            if (semi == std::string::npos) break;
        }
        lists.push_back(patterns);
    }
    return lists;
}

} // namespace

std::string filterExtension(const std::string& filter, int index, const std::string& fallback) {
    auto lists = filterPatterns(filter);
    if (index < 1 || std::size_t(index) > lists.size() || lists[index - 1].empty()) return fallback;
    const std::string& pattern = lists[index - 1].front();
    if (pattern.size() < 3 || pattern.compare(0, 2, "*.") != 0 || pattern.find('*', 1) != std::string::npos)
        return fallback;
    return foldedKey(pattern.substr(1));
}

int filterIndexOf(const std::string& filter, const std::string& extension) {
    auto lists = filterPatterns(filter);
    for (std::size_t i = 0; i < lists.size(); ++i)
        for (const std::string& pattern : lists[i])
            if (pattern.size() > 1 && foldedKey(pattern.substr(1)) == foldedKey(extension)) return int(i) + 1;
    return 0;
}

} // namespace quillon

#include "app/log.h"

#include <vector>

namespace quillon {

void Log::LogLine(const std::string& text) {
    if (onLine) onLine(text);
    setCaption(caption_ + text + "\r\n");
}

void Log::setCaption(const std::string& caption) {
    caption_ = caption;
    trim();
}

void Log::trim() {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t at; (at = caption_.find("\r\n", start)) != std::string::npos; start = at + 2)
        pieces.push_back(caption_.substr(start, at - start));
    pieces.push_back(caption_.substr(start));
    if (pieces.size() < 8) return;
    // Only the oldest piece goes per change, and pieces beyond the eighth go with it; the caption
    // then has seven pieces, so the trim that this change would run again does nothing.
    std::string kept;
    for (std::size_t i = 1; i <= 7; ++i) {
        if (i > 1) kept += "\r\n";
        kept += pieces[i];
    }
    caption_ = kept;
}

} // namespace quillon

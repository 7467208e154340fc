#pragma once
#include <functional>
#include <string>

namespace quillon {

// The main window's short log: a caption of CR LF-ended lines that keeps only the newest six.
class Log {
public:
    // Appends text and a line break, then trims.
    void LogLine(const std::string& text);
    // Replaces the whole caption (the start-up warning does this), then trims.
    void setCaption(const std::string& caption);
    const std::string& caption() const { return caption_; }
    void clear() { caption_.clear(); }
    // Called with each appended text, before trimming; the command line prints them.
    std::function<void(const std::string&)> onLine;

private:
    void trim();
    std::string caption_;
};

} // namespace quillon

#pragma once
// gettext's PO files, written and read here: what Poedit, Lokalize, Weblate and msgfmt read. Texts
// are UTF-8. Reading takes a mangled file apart as far as it goes and says where it stopped,
// rather than trusting it.
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct PoEntry {
    std::vector<std::string> comments; // extracted comments (#.), one a line
    std::string context, id, translation;
    bool fuzzy = false;
};

// A whole file: the header entry (for project), then the entries in order.
std::string poText(const std::vector<PoEntry>& entries, const std::string& project);

// The entries of a PO file's text, the header and obsolete entries left out; error says what and on
// which line when the text is not a PO file.
std::vector<PoEntry> readPo(std::string_view text, std::string& error);

} // namespace quillon

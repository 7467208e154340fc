#include "translation/po_file.h"

#include "app/encoding.h"
#include "app/text.h"

#include <sstream>

namespace quillon {

namespace {

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (const char* escaped = backslashEscape(c))
            out += escaped;
        else
            out += c;
    }
    return out + "\"";
}

// A keyword and its text; a text holding line breaks continues on one line a break, as gettext's
// own tools write it.
void field(std::string& out, const char* keyword, std::string_view text) {
    out += keyword;
    std::size_t lf = text.find('\n');
    if (lf == std::string_view::npos || lf + 1 == text.size()) {
        out += " " + quoted(text) + "\n";
        return;
    }
    out += " \"\"\n";
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        end = end == std::string_view::npos ? text.size() : end + 1;
        out += quoted(text.substr(start, end - start)) + "\n";
        start = end;
    }
}

// The text of a quoted string at the start of s; false when s is not one.
bool unquote(std::string_view s, std::string& out) {
    if (s.size() < 2 || s.front() != '"' || s.back() != '"') return false;
    for (std::size_t i = 1; i + 1 < s.size(); ++i) {
        if (s[i] != '\\') {
            if (s[i] == '"') return false;
            out += s[i];
            continue;
        }
        if (++i + 1 >= s.size()) return false;
        switch (s[i]) {
        case 'n': out += '\n'; break;
        case 'r': out += '\r'; break;
        case 't': out += '\t'; break;
        case '"': out += '"'; break;
        case '\\': out += '\\'; break;
        default: return false;
        }
    }
    return true;
}

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.back() == '\r' || s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    return s;
}

// The charset= of a PO header's Content-Type line; empty when it gives none.
std::string charsetOf(std::string_view header) {
    std::size_t at = header.find("charset=");
    if (at == std::string_view::npos) return {};
    at += 8;
    std::size_t end = header.find_first_of(" \t\n;", at);
    return std::string(header.substr(at, end == std::string_view::npos ? std::string_view::npos : end - at));
}

} // namespace

std::string poText(const std::vector<PoEntry>& entries, const std::string& project) {
    std::string out = "# Translation of " + project + ".\n";
    field(out, "msgid", "");
    field(out, "msgstr",
          "Project-Id-Version: " + project +
              "\nReport-Msgid-Bugs-To: \nPOT-Creation-Date: \nPO-Revision-Date: \nLast-Translator: \n"
              "Language-Team: \nLanguage: \nMIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"
              "Content-Transfer-Encoding: 8bit\nX-Generator: Quillon\n");
    for (const PoEntry& e : entries) {
        out += "\n";
        for (const std::string& comment : e.comments)
            out += "#. " + comment + "\n";
        if (e.fuzzy) out += "#, fuzzy\n";
        field(out, "msgctxt", e.context);
        field(out, "msgid", e.id);
        field(out, "msgstr", e.translation);
    }
    return out;
}

std::vector<PoEntry> readPo(std::string_view text, std::string& error) {
    std::vector<PoEntry> entries;
    PoEntry entry;
    std::string* into = nullptr; // the field continuation lines add to
    std::string ignored;
    bool started = false, obsolete = false, plural = false;
    std::string charset;
    auto finish = [&] {
        if (started && !obsolete && !plural && !(entry.id.empty() && entry.context.empty()))
            entries.push_back(std::move(entry));
        else if (started && !obsolete && entry.id.empty() && entry.context.empty())
            charset = charsetOf(entry.translation);
        entry = PoEntry();
        into = nullptr;
        started = obsolete = plural = false;
    };
    std::size_t number = 0;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = trimmed(text.substr(start, end - start));
        start = end + 1;
        ++number;
        auto fail = [&](const std::string& what) {
            error = "line " + std::to_string(number) + ": " + what;
            return std::vector<PoEntry>();
        };
        if (line.empty()) continue;
        if (line[0] == '#') {
            if (line.rfind("#~", 0) == 0) {
                if (into) finish();
                obsolete = started = true;
            } else if (line.rfind("#,", 0) == 0) {
                if (into) finish();
                started = true;
                entry.fuzzy = entry.fuzzy || line.find("fuzzy") != std::string_view::npos;
            } else if (line.rfind("#.", 0) == 0) {
                if (into) finish();
                started = true;
                entry.comments.emplace_back(trimmed(line.substr(2)));
            }
            continue;
        }
        if (line[0] == '"') {
            if (!into) return fail("a text that continues no msgid or msgstr");
            if (!unquote(line, *into))
                return fail("a text that is not closed or not escaped as PO files escape");
            continue;
        }
        std::size_t blank = line.find_first_of(" \t");
        std::string_view keyword = line.substr(0, blank);
        std::string_view value =
            blank == std::string_view::npos ? std::string_view() : trimmed(line.substr(blank));
        // An entry begins at its msgctxt, or at its msgid when no msgctxt came just before.
        bool begins = keyword == "msgctxt" || (keyword == "msgid" && into != &entry.context);
        if (begins && into) finish();
        started = true;
        if (keyword == "msgctxt")
            into = &entry.context;
        else if (keyword == "msgid")
            into = &entry.id;
        else if (keyword == "msgstr" || keyword == "msgstr[0]")
            into = &entry.translation;
        else if (keyword == "msgid_plural" || keyword.rfind("msgstr[", 0) == 0) {
            plural = true; // plural forms are not the game's: the entry is passed over
            ignored.clear();
            into = &ignored;
        } else
            return fail("\"" + std::string(keyword.substr(0, 40)) + "\" is not a keyword of PO files");
        if (!unquote(value, *into))
            return fail("the text after " + std::string(keyword) + " is not a quoted string");
    }
    finish();
    // Texts are taken as UTF-8: a PO in another character set would be applied as mojibake.
    if (!charset.empty() && !equalsIgnoreCase(charset, "UTF-8") && !equalsIgnoreCase(charset, "UTF8") &&
        !equalsIgnoreCase(charset, "ASCII") && !equalsIgnoreCase(charset, "CHARSET")) {
        error = "its header gives the character set " + charset.substr(0, 40) +
                "; only UTF-8 is read (convert it first: msgconv -t UTF-8 IN.po -o OUT.po)";
        return {};
    }
    return entries;
}

} // namespace quillon

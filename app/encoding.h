#pragma once
// The code page a data file's texts are in (Windows-1252, 1250 or 1251), held for the whole run:
// every conversion to and from Unicode and every comparison that ignores letter case follows it.
// Also the quoting of texts for Unicode outputs (JSON, CSV).
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

enum class CodePage { Windows1252, Windows1250, Windows1251 };

CodePage activeCodePage();
// Makes page the one texts are read in; letter case is folded by its letters from then on.
void setActiveCodePage(CodePage page);
// "windows-1252", as HTML's charset names it.
const char* codePageName(CodePage page);
// "1250", "1251" or "1252" (the command line), "win1250"... (OpenMW's encoding= setting).
std::optional<CodePage> codePageNamed(std::string_view name);

// The file's bytes as UTF-8; a byte the code page leaves undefined stands for the control
// character of the same value.
std::string toUtf8(std::string_view bytes);
// The same, added to the end of out.
void appendUtf8(std::string& out, std::string_view bytes);
// UTF-8 as the code page's bytes; false, with the first character it cannot hold in missing, when
// one has no byte there. Invalid UTF-8 bytes are kept as they are.
bool fromUtf8(std::string_view utf8, std::string& out, char32_t& missing);
// True when the text is valid UTF-8 holding at least one character beyond ASCII: text no code
// page of the game would plausibly give.
bool looksLikeUtf8(std::string_view text);
// A character as UTF-8.
std::string utf8Of(char32_t c);

// The escape of a quote, a backslash, a line feed, a carriage return or a tab as C, JSON and PO
// files write it; null for any other character.
const char* backslashEscape(char c);
// A JSON string, quotes included, of the file's bytes.
std::string jsonString(std::string_view bytes);
// A file name as a JSON string: the system's names are UTF-8 and kept as they are; a byte that is
// not UTF-8 becomes \udcXX, so that the name can be recovered byte for byte.
std::string jsonFileName(std::string_view name);
// The same for any UTF-8 text this program composed (a filter in words).
inline std::string jsonUtf8(std::string_view utf8) {
    return jsonFileName(utf8);
}
// A CSV field (RFC 4180) of UTF-8 text: quoted when it holds a comma, a quote or a line break.
std::string csvField(std::string_view utf8);

} // namespace quillon

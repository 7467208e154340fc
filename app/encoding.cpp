#include "app/encoding.h"

#include "app/text.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillon {

namespace detail {
std::array<unsigned char, 256> activeLower = kLower1252;
std::array<unsigned char, 256> activeUpper = kUpper1252;
} // namespace detail

namespace {

// Bytes 0x80-0xFF of each code page as Unicode; 0 marks a byte the page leaves undefined.
using HighHalf = std::array<char16_t, 128>;
constexpr HighHalf kWindows1252 = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152,
    0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122,
    0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178, 0x00A0, 0x00A1, 0x00A2, 0x00A3, 0x00A4, 0x00A5, 0x00A6,
    0x00A7, 0x00A8, 0x00A9, 0x00AA, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x00AF, 0x00B0, 0x00B1, 0x00B2, 0x00B3,
    0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x00B9, 0x00BA, 0x00BB, 0x00BC, 0x00BD, 0x00BE, 0x00BF, 0x00C0,
    0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C6, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD,
    0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D7, 0x00D8, 0x00D9, 0x00DA,
    0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00DF, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5, 0x00E6, 0x00E7,
    0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00ED, 0x00EE, 0x00EF, 0x00F0, 0x00F1, 0x00F2, 0x00F3, 0x00F4,
    0x00F5, 0x00F6, 0x00F7, 0x00F8, 0x00F9, 0x00FA, 0x00FB, 0x00FC, 0x00FD, 0x00FE, 0x00FF};
constexpr HighHalf kWindows1250 = {
    0x20AC, 0,      0x201A, 0,      0x201E, 0x2026, 0x2020, 0x2021, 0,      0x2030, 0x0160, 0x2039, 0x015A,
    0x0164, 0x017D, 0x0179, 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0,      0x2122,
    0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6,
    0x00A7, 0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B, 0x00B0, 0x00B1, 0x02DB, 0x0142,
    0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C, 0x0154,
    0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD,
    0x00CE, 0x010E, 0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA,
    0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4,
    0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9};
constexpr HighHalf kWindows1251 = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
    0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0,      0x2122,
    0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6,
    0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456,
    0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457, 0x0410,
    0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417, 0x0418, 0x0419, 0x041A, 0x041B, 0x041C, 0x041D,
    0x041E, 0x041F, 0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427, 0x0428, 0x0429, 0x042A,
    0x042B, 0x042C, 0x042D, 0x042E, 0x042F, 0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437,
    0x0438, 0x0439, 0x043A, 0x043B, 0x043C, 0x043D, 0x043E, 0x043F, 0x0440, 0x0441, 0x0442, 0x0443, 0x0444,
    0x0445, 0x0446, 0x0447, 0x0448, 0x0449, 0x044A, 0x044B, 0x044C, 0x044D, 0x044E, 0x044F};

// The letter pairs beyond ASCII (upper, lower) of 1250 and 1251; 1252's are in text.h.
constexpr std::pair<unsigned char, unsigned char> kPairs1250[] = {
    {0x8A, 0x9A}, {0x8C, 0x9C}, {0x8D, 0x9D}, {0x8E, 0x9E}, {0x8F, 0x9F},
    {0xA3, 0xB3}, {0xA5, 0xB9}, {0xAA, 0xBA}, {0xAF, 0xBF}, {0xBC, 0xBE}};
constexpr std::pair<unsigned char, unsigned char> kPairs1251[] = {
    {0x80, 0x90}, {0x81, 0x83}, {0x8A, 0x9A}, {0x8C, 0x9C}, {0x8D, 0x9D},
    {0x8E, 0x9E}, {0x8F, 0x9F}, {0xA1, 0xA2}, {0xA3, 0xBC}, {0xA5, 0xB4},
    {0xA8, 0xB8}, {0xAA, 0xBA}, {0xAF, 0xBF}, {0xB2, 0xB3}, {0xBD, 0xBE}};

CodePage active = CodePage::Windows1252;

const HighHalf& highHalf(CodePage page) {
    switch (page) {
    case CodePage::Windows1250: return kWindows1250;
    case CodePage::Windows1251: return kWindows1251;
    default: return kWindows1252;
    }
}

char32_t unicodeOf(unsigned char b, const HighHalf& high) {
    return b >= 0x80 && high[b - 0x80] != 0 ? high[b - 0x80] : b;
}

// The byte of c in the page, or -1.
int byteOf(char32_t c, const HighHalf& high) {
    if (c < 0x80) return int(c);
    for (int i = 0; i < 128; ++i)
        if (high[std::size_t(i)] == c) return 0x80 + i;
    // An undefined byte stands for the control character of its value.
    if (c < 0x100 && high[c - 0x80] == 0) return int(c);
    return -1;
}

// The code point of the UTF-8 sequence at p, and its length; 0 length when it is not valid.
std::pair<char32_t, std::size_t> decodeAt(std::string_view s, std::size_t p) {
    auto b = static_cast<unsigned char>(s[p]);
    std::size_t n = b < 0x80 ? 1 : (b >> 5) == 6 ? 2 : (b >> 4) == 14 ? 3 : (b >> 3) == 30 ? 4 : 0;
    if (n == 0 || p + n > s.size()) return {0, 0};
    char32_t c = n == 1 ? b : b & (0x7F >> n);
    for (std::size_t i = 1; i < n; ++i) {
        auto next = static_cast<unsigned char>(s[p + i]);
        if ((next & 0xC0) != 0x80) return {0, 0};
        c = (c << 6) | (next & 0x3F);
    }
    bool overlong = (n == 2 && c < 0x80) || (n == 3 && c < 0x800) || (n == 4 && c < 0x10000);
    if (overlong || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return {0, 0};
    return {c, n};
}

} // namespace

CodePage activeCodePage() {
    return active;
}

void setActiveCodePage(CodePage page) {
    active = page;
    detail::activeLower = detail::kLower1252;
    detail::activeUpper = detail::kUpper1252;
    if (page == CodePage::Windows1252) return;
    // Beyond ASCII, 1250 pairs 0xC0-0xDE like 1252 (but for the multiplication sign), 1251 pairs
    // the whole Cyrillic block 0xC0-0xDF; the rows below 0xC0 have pairs of their own.
    for (int c = 0x80; c < 0x100; ++c)
        detail::activeLower[c] = detail::activeUpper[c] = static_cast<unsigned char>(c);
    auto pair = [](int up, int low) {
        detail::activeLower[up] = static_cast<unsigned char>(low);
        detail::activeUpper[low] = static_cast<unsigned char>(up);
    };
    for (int c = 0xC0; c <= 0xDF; ++c)
        if (page == CodePage::Windows1251 || (c != 0xD7 && c != 0xDF)) pair(c, c + 32);
    if (page == CodePage::Windows1250)
        for (auto [up, low] : kPairs1250)
            pair(up, low);
    else
        for (auto [up, low] : kPairs1251)
            pair(up, low);
}

const char* codePageName(CodePage page) {
    switch (page) {
    case CodePage::Windows1250: return "windows-1250";
    case CodePage::Windows1251: return "windows-1251";
    default: return "windows-1252";
    }
}

std::optional<CodePage> codePageNamed(std::string_view name) {
    if (name.rfind("win", 0) == 0) name.remove_prefix(3);
    if (name == "1252") return CodePage::Windows1252;
    if (name == "1250") return CodePage::Windows1250;
    if (name == "1251") return CodePage::Windows1251;
    return std::nullopt;
}

std::string utf8Of(char32_t c) {
    std::string out;
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
    return out;
}

std::string toUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    appendUtf8(out, bytes);
    return out;
}

void appendUtf8(std::string& out, std::string_view bytes) {
    const HighHalf& high = highHalf(active);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::size_t ascii = i;
        while (ascii < bytes.size() && static_cast<unsigned char>(bytes[ascii]) < 0x80)
            ++ascii;
        out.append(bytes.data() + i, ascii - i);
        if (ascii == bytes.size()) break;
        out += utf8Of(unicodeOf(static_cast<unsigned char>(bytes[ascii]), high));
        i = ascii;
    }
}

bool fromUtf8(std::string_view utf8, std::string& out, char32_t& missing) {
    const HighHalf& high = highHalf(active);
    out.clear();
    out.reserve(utf8.size());
    for (std::size_t p = 0; p < utf8.size();) {
        auto [c, n] = decodeAt(utf8, p);
        if (n == 0) {
            out += utf8[p++];
            continue;
        }
        int b = byteOf(c, high);
        if (b < 0) {
            missing = c;
            return false;
        }
        out += char(b);
        p += n;
    }
    return true;
}

bool looksLikeUtf8(std::string_view text) {
    bool multibyte = false;
    for (std::size_t p = 0; p < text.size();) {
        auto [c, n] = decodeAt(text, p);
        if (n == 0) return false;
        multibyte = multibyte || n > 1;
        p += n;
    }
    return multibyte;
}

const char* backslashEscape(char c) {
    switch (c) {
    case '"': return "\\\"";
    case '\\': return "\\\\";
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\t': return "\\t";
    default: return nullptr;
    }
}

std::string jsonString(std::string_view bytes) {
    static const char* const kHex = "0123456789abcdef";
    std::string out = "\"";
    for (char c : toUtf8(bytes)) {
        if (const char* escaped = backslashEscape(c)) {
            out += escaped;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            out += "\\u00";
            out += kHex[(c >> 4) & 0xF];
            out += kHex[c & 0xF];
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::string jsonFileName(std::string_view name) {
    static const char* const kHex = "0123456789abcdef";
    std::string out = "\"";
    for (std::size_t p = 0; p < name.size();) {
        auto [c, n] = decodeAt(name, p);
        if (n == 0) {
            // Not UTF-8: the byte as a lone low surrogate, the escape that gives it back whole
            // (Python's "surrogateescape"), rather than a replacement character.
            auto b = static_cast<unsigned char>(name[p++]);
            out += "\\udc";
            out += kHex[b >> 4];
            out += kHex[b & 0xF];
        } else if (const char* escaped = n == 1 ? backslashEscape(name[p]) : nullptr) {
            out += escaped;
        } else if (c < 0x20 || (c >= 0x7F && c <= 0x9F)) {
            out += "\\u00";
            out += kHex[(c >> 4) & 0xF];
            out += kHex[c & 0xF];
        } else {
            out.append(name, p, n);
        }
        p += n;
    }
    return out + "\"";
}

std::string csvField(std::string_view utf8) {
    if (utf8.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(utf8);
    std::string out = "\"";
    for (char c : utf8) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

} // namespace quillon

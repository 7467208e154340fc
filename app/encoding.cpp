#include "app/encoding.h"

namespace quillon {

namespace {

// Bytes 0x80-0x9F of Windows-1252; 0 marks the five the code page leaves undefined.
constexpr char16_t kHigh[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

} // namespace

std::string toUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char ch : bytes) {
        auto b = static_cast<unsigned char>(ch);
        char32_t c = b >= 0x80 && b < 0xA0 && kHigh[b - 0x80] != 0 ? kHigh[b - 0x80] : b;
        appendUtf8(out, c);
    }
    return out;
}

std::string jsonString(std::string_view bytes) {
    static const char* const kHex = "0123456789abcdef";
    std::string out = "\"";
    for (char c : toUtf8(bytes)) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                out += "\\u00";
                out += kHex[(c >> 4) & 0xF];
                out += kHex[c & 0xF];
            } else {
                out += c;
            }
        }
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

#include "qt_text/code_page.h"

namespace quillon {

namespace {

// Bytes 0x80-0x9F of Windows-1252; 0 marks the five bytes the code page leaves undefined, which
// are kept as the control characters of the same value.
constexpr char16_t kHigh[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char16_t decode(unsigned char b) {
    if (b >= 0x80 && b < 0xA0 && kHigh[b - 0x80] != 0) return kHigh[b - 0x80];
    return b;
}

} // namespace

QString fromCodePage(const std::string& bytes) {
    QString out;
    out.reserve(qsizetype(bytes.size()));
    for (char c : bytes)
        out.append(QChar(decode(static_cast<unsigned char>(c))));
    return out;
}

std::optional<std::string> toCodePage(const QString& text) {
    std::string out;
    out.reserve(std::size_t(text.size()));
    for (QChar ch : text) {
        char16_t u = ch.unicode();
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF) || (u >= 0x80 && u < 0xA0 && kHigh[u - 0x80] == 0)) {
            out += char(u);
            continue;
        }
        int found = -1;
        for (int i = 0; i < 32; ++i)
            if (kHigh[i] == u) found = i;
        if (found < 0) return std::nullopt;
        out += char(0x80 + found);
    }
    return out;
}

} // namespace quillon

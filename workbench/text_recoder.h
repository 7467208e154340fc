#pragma once
// Text carried from one encoding to another by the system's iconv, the conversion opened once and
// used for many texts (a dictionary's words).
#include <string>

namespace quillon {

class TextRecoder {
public:
    TextRecoder(const std::string& from, const std::string& to);
    ~TextRecoder();
    TextRecoder(const TextRecoder&) = delete;
    TextRecoder& operator=(const TextRecoder&) = delete;

    // False when iconv knows no conversion between the two character sets.
    bool works() const { return cd_ != nullptr; }
    // The text in the target encoding; empty when a character has no place there or the system
    // knows one of the encodings not.
    std::string operator()(const std::string& text) const;

private:
    void* cd_; // iconv_t, or null
};

} // namespace quillon

#include "workbench/text_recoder.h"

#include <iconv.h>

namespace quillon {

TextRecoder::TextRecoder(const std::string& from, const std::string& to) {
    iconv_t cd = ::iconv_open(to.c_str(), from.c_str());
    cd_ = cd == iconv_t(-1) ? nullptr : cd;
}

TextRecoder::~TextRecoder() {
    if (cd_) ::iconv_close(iconv_t(cd_));
}

std::string TextRecoder::operator()(const std::string& text) const {
    if (!cd_) return {};
    ::iconv(iconv_t(cd_), nullptr, nullptr, nullptr, nullptr); // a fresh start for every text
    std::string out(text.size() * 4 + 4, '\0');
    char* in = const_cast<char*>(text.data());
    char* at = out.data();
    std::size_t inLeft = text.size(), outLeft = out.size();
    if (::iconv(iconv_t(cd_), &in, &inLeft, &at, &outLeft) == std::size_t(-1)) return {};
    if (::iconv(iconv_t(cd_), nullptr, nullptr, &at, &outLeft) == std::size_t(-1)) return {};
    out.resize(out.size() - outLeft);
    return out;
}

} // namespace quillon

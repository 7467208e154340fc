#pragma once
// The file's bytes as UTF-8 for outputs that must be Unicode (JSON, CSV), and quoting for them.
#include <string>
#include <string_view>

namespace quillon {

// Windows-1252 bytes as UTF-8; the five bytes the code page leaves undefined stand for the
// control characters of the same value.
std::string toUtf8(std::string_view bytes);
// A JSON string, quotes included, of the file's bytes.
std::string jsonString(std::string_view bytes);
// A CSV field (RFC 4180) of UTF-8 text: quoted when it holds a comma, a quote or a line break.
std::string csvField(std::string_view utf8);

} // namespace quillon

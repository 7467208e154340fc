#pragma once
// Assembles TES3 records byte by byte so that a test or a generator states its data plainly:
//   Rec("INFO").z("INAM", "1234").text("NAME", "Hello.").bytes()
// Sub-record sizes and the record's Size are computed from what was added.
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

namespace quillon::build {

inline std::string le32(std::int32_t v) {
    std::string s(4, '\0');
    std::memcpy(s.data(), &v, 4);
    return s;
}
inline std::string le16(std::int16_t v) {
    std::string s(2, '\0');
    std::memcpy(s.data(), &v, 2);
    return s;
}
inline std::string f32(float v) {
    std::string s(4, '\0');
    std::memcpy(s.data(), &v, 4);
    return s;
}
// A fixed-width field: text padded with NULs.
inline std::string fixed(const std::string& text, std::size_t width) {
    std::string s = text.substr(0, width);
    s.resize(width, '\0');
    return s;
}

class Rec {
public:
    explicit Rec(const char* tag, std::int32_t flags = 0) : tag_(tag, 4), flags_(flags) {}

    // A sub-record holding data, its size word the data's length.
    Rec& sub(const char* tag, const std::string& data) {
        body_.append(tag, 4);
        body_ += le32(std::int32_t(data.size()));
        body_ += data;
        return *this;
    }
    // A sub-record with a size word that need not match its data (for malformed input).
    Rec& subSized(const char* tag, std::int32_t size, const std::string& data) {
        body_.append(tag, 4);
        body_ += le32(size);
        body_ += data;
        return *this;
    }
    // A zero-terminated text.
    Rec& z(const char* tag, const std::string& text) { return sub(tag, text + std::string(1, '\0')); }
    // A text without terminator.
    Rec& text(const char* tag, const std::string& text) { return sub(tag, text); }
    Rec& i32(const char* tag, std::int32_t v) { return sub(tag, le32(v)); }
    Rec& f(const char* tag, float v) { return sub(tag, f32(v)); }
    Rec& raw(const std::string& bytes) {
        body_ += bytes;
        return *this;
    }
    std::string bytes() const {
        return tag_ + le32(std::int32_t(body_.size())) + le32(0) + le32(flags_) + body_;
    }

private:
    std::string tag_;
    std::int32_t flags_;
    std::string body_;
};

// The HEDR block: version 1.3, file type, author, description, record count.
inline std::string hedr(std::int32_t numRecords, std::int32_t fileType = 0, const std::string& company = "",
                        const std::string& description = "") {
    return f32(1.3f) + le32(fileType) + fixed(company, 32) + fixed(description, 256) + le32(numRecords);
}

// A whole file: a header saying numRecords, then the records.
inline std::string file(std::int32_t numRecords, std::initializer_list<std::string> records) {
    std::string out = Rec("TES3").sub("HEDR", hedr(numRecords)).bytes();
    for (const std::string& r : records)
        out += r;
    return out;
}

// An INFO condition: slot, type, function, comparison, name; then its INTV value.
inline std::string scvr(char slot, char type, const char* function, char comparison,
                        const std::string& name = "") {
    return std::string{slot, type, function[0], function[1], comparison} + name;
}

} // namespace quillon::build

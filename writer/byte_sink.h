#pragma once
#include "records/es_types.h"
#include "records/tags.h"

#include <cstring>
#include <string>
#include <string_view>

namespace quillon {

// Serialises records into memory, little-endian, exactly as stored: sizes are written as the
// records hold them, never recomputed.
class ByteSink {
public:
    std::string& bytes() { return out_; }

    void raw(const void* p, std::size_t n) { out_.append(static_cast<const char*>(p), n); }
    template <class T> void value(T v) { raw(&v, sizeof v); }
    void int32(std::int32_t v) { value(v); }
    void byte(std::uint8_t v) { out_.push_back(char(v)); }
    void tag(Tag t) { value(t); }
    void text(std::string_view s) { out_.append(s); }
    template <std::size_t N> void bytes(const std::array<std::uint8_t, N>& b) { raw(b.data(), N); }
    template <std::size_t N> void bytes(const std::array<char, N>& b) { raw(b.data(), N); }

    // The record tag and the three stored header words.
    void header(Tag t, const RecordHeader& r) {
        tag(t);
        int32(r.Size);
        int32(r.Header1);
        int32(r.Flags);
    }
    // A sub-record's tag and stored size word.
    void sub(Tag t, std::int32_t size) {
        tag(t);
        int32(size);
    }
    // A zero-terminated text sub-record. One the record does not carry (size 0, no text) is not
    // invented: its terminator would be a byte that the record's stored Size does not count.
    void z(Tag t, std::int32_t size, std::string_view s) {
        if (size == 0 && s.empty()) return;
        sub(t, size);
        text(s);
        byte(0);
    }
    // A text sub-record written without terminator.
    void u(Tag t, std::int32_t size, std::string_view s) {
        sub(t, size);
        text(s);
    }
    template <class T> void v(Tag t, std::int32_t size, T value_) {
        sub(t, size);
        value(value_);
    }
    template <std::size_t N> void block(Tag t, std::int32_t size, const Bytes<N>& b) {
        sub(t, size);
        bytes(b);
    }
    // Optional sub-records are written when their size word is non-zero.
    void zOpt(Tag t, std::int32_t size, std::string_view s) {
        if (size != 0) z(t, size, s);
    }
    void uOpt(Tag t, std::int32_t size, std::string_view s) {
        if (size != 0) u(t, size, s);
    }
    // The deleted marker every writer emits the same way.
    void dele() {
        sub(quillon::tag("DELE"), 4);
        int32(0);
    }

private:
    std::string out_;
};

} // namespace quillon

#pragma once
#include "records/tags.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace quillon {

// Reads little-endian values from a buffer it does not own. Every read passes one bounds check:
// a read past the end yields zeros and sets the sticky end-of-file state, so a reader can take a
// whole structure and check once.
class ByteCursor {
public:
    ByteCursor(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::size_t pos() const { return pos_; }
    std::size_t size() const { return size_; }
    std::size_t remaining() const { return size_ - pos_; }
    // True once a read ran past the end, or when nothing is left to read.
    bool atEnd() const { return failed_ || pos_ >= size_; }
    // True once a read ran past the end.
    bool failed() const { return failed_; }

    void raw(void* out, std::size_t n) {
        if (n > remaining()) {
            std::memset(out, 0, n);
            pos_ = size_;
            failed_ = true;
            return;
        }
        std::memcpy(out, data_ + pos_, n);
        pos_ += n;
    }
    template <class T> T value() {
        T v{};
        raw(&v, sizeof v);
        return v;
    }
    std::int32_t i32() { return value<std::int32_t>(); }
    std::int16_t i16() { return value<std::int16_t>(); }
    std::uint8_t u8() { return value<std::uint8_t>(); }
    std::int64_t i64() { return value<std::int64_t>(); }
    float f32() { return value<float>(); }
    Tag tag() { return value<Tag>(); }
    template <std::size_t N> void bytes(std::array<std::uint8_t, N>& out) { raw(out.data(), N); }
    template <std::size_t N> void bytes(std::array<char, N>& out) { raw(out.data(), N); }

    // Passes over n bytes; a negative count moves nowhere, a count beyond the end stops there.
    void skip(std::int64_t n) {
        if (n <= 0) return;
        if (std::uint64_t(n) > remaining()) {
            pos_ = size_;
            failed_ = true;
            return;
        }
        pos_ += std::size_t(n);
    }
    // n bytes where they stand in the buffer, clamped to what is left.
    std::string_view view(std::int64_t n) {
        if (n <= 0) return {};
        std::size_t take = std::uint64_t(n) > remaining() ? remaining() : std::size_t(n);
        std::string_view v(reinterpret_cast<const char*>(data_ + pos_), take);
        pos_ += take;
        if (take < std::uint64_t(n)) failed_ = true;
        return v;
    }
    // n bytes taken whole, clamped to what is left.
    std::string text(std::int64_t n) { return std::string(view(n)); }
    // A zero-terminated text whose sub-record size counts the terminator: size - 1 bytes, then
    // one byte passed over.
    std::string ztext(std::int32_t size) {
        if (size <= 0) return {};
        std::string s = text(size - 1);
        skip(1);
        return s;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t pos_ = 0;
    bool failed_ = false;
};

} // namespace quillon

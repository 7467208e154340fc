#pragma once
#include "records/record_parts.h"
#include "records/tags.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace quillon {

// Reads little-endian values from a buffer it does not own. Every read passes the one bounds
// check in take(): a read past the end yields zeros, moves to the end and sets the sticky failed
// state, so that a reader can take a whole structure and check once. The next tag can be looked
// at without being taken.
class ByteCursor {
public:
    ByteCursor(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::size_t pos() const { return pos_; }
    std::size_t size() const { return size_; }
    std::size_t remaining() const { return size_ - pos_; }
    // True once a read ran past the end.
    bool failed() const { return failed_; }

    // The tag at the read position, not taken; 0 when fewer than four bytes are left.
    Tag peekTag() const {
        Tag t = 0;
        if (remaining() >= 4) std::memcpy(&t, data_ + pos_, 4);
        return t;
    }
    // Up to n bytes from the read position, not taken.
    std::string_view ahead(std::size_t n) const {
        return {reinterpret_cast<const char*>(data_ + pos_), n < remaining() ? n : remaining()};
    }
    // True when the next tag is t; nothing is taken.
    bool nextIs(Tag t) const { return peekTag() == t; }

    // The record whose tag stands at start says its data are size bytes long. The file ends
    // inside that record when they are not all there; the last record read decides.
    void expectRecord(std::size_t start, std::int64_t size) {
        recordStart_ = start;
        recordEnd_ = start + 16 + std::size_t(size > 0 ? size : 0);
    }
    // True when the last record's size word reaches past the end of the buffer.
    bool endsInsideRecord() const { return recordEnd_ > size_; }
    // Where that record's tag stands.
    std::size_t lastRecordStart() const { return recordStart_; }

    void raw(void* out, std::size_t n) {
        if (const std::uint8_t* p = take(n))
            std::memcpy(out, p, n);
        else
            std::memset(out, 0, n);
    }
    template <class T> T value() {
        T v{};
        raw(&v, sizeof v);
        return v;
    }
    std::int32_t i32() { return value<std::int32_t>(); }
    std::uint8_t u8() { return value<std::uint8_t>(); }
    Tag tag() { return value<Tag>(); }

    // Reads each field in turn: numbers, and arrays of numbers or bytes.
    template <class... T> void fields(T&... f) { (field(f), ...); }

    // Passes over n bytes; a negative count moves nowhere, a count beyond the end stops there.
    void skip(std::int64_t n) {
        if (n > 0) take(std::uint64_t(n));
    }
    // n bytes where they stand in the buffer, clamped to what is left.
    std::string_view view(std::int64_t n) {
        if (n <= 0) return {};
        std::size_t have = std::uint64_t(n) > remaining() ? remaining() : std::size_t(n);
        std::string_view v(reinterpret_cast<const char*>(data_ + pos_), have);
        take(std::uint64_t(n));
        return v;
    }
    // n bytes taken whole, clamped to what is left.
    std::string text(std::int64_t n) { return std::string(view(n)); }
    // A zero-terminated text whose sub-record size counts the terminator: size - 1 bytes, then
    // one byte passed over.
    std::string ztext(std::int32_t size) { return std::string(zview(size)); }
    // The same text where it stands in the buffer.
    std::string_view zview(std::int32_t size) {
        if (size <= 0) return {};
        std::string_view s = view(size - 1);
        skip(1);
        return s;
    }

private:
    // The single bounds check: n bytes at the read position, or null with the cursor at the end
    // and failed when fewer are left.
    const std::uint8_t* take(std::uint64_t n) {
        if (n > remaining()) {
            pos_ = size_;
            failed_ = true;
            return nullptr;
        }
        const std::uint8_t* p = data_ + pos_;
        pos_ += std::size_t(n);
        return p;
    }
    template <std::size_t N> void field(Padding<N>&) { skip(N); }
    template <class T> void field(T& f) {
        if constexpr (std::is_arithmetic_v<T>)
            f = value<T>();
        else if constexpr (sizeof f[0] == 1)
            raw(f.data(), sizeof f); // bytes or text: all of them, or zeros past the end
        else if (sizeof f <= remaining())
            raw(f.data(), sizeof f); // numbers, all there: at once
        else
            for (auto& e : f)
                field(e); // numbers at the end of the file: each one that is there is read
    }

    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t pos_ = 0;
    bool failed_ = false;
    std::size_t recordStart_ = 0;
    std::size_t recordEnd_ = 0;
};

} // namespace quillon

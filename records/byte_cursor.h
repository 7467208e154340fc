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
#include <unordered_map>

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
    // Whether sub-records that a record's reader does not know are kept with the record (savegames
    // and OpenMW's files, read whole) or end it.
    void keepForeignSubRecords(bool on) { keepsForeign_ = on; }
    // The record being read, which keeps what its fields cannot hold.
    void keepInto(RecordHeader& r) { record_ = &r; }

    // The data of a fixed-layout sub-record whose size word was just taken, read by that size:
    // read gets a cursor over at most width bytes (fields the data lack read as zeros), bytes
    // beyond the layout and an empty sub-record are kept with the record, so that the sub-record
    // is written back as it was read. The cursor then stands after the data.
    template <class Read> void fixed(std::int32_t size, std::size_t width, Read&& read) {
        if (size > 0 && std::size_t(size) == width) {
            read(*this);
            return;
        }
        std::size_t have = size > 0 ? (std::size_t(size) < remaining() ? std::size_t(size) : remaining()) : 0;
        ByteCursor data(data_ + pos_, have < width ? have : width);
        read(data);
        if (size == 0) keep(KeptSubRecord::Kind::Empty, pos_ - 8, {});
        if (have > width)
            keep(KeptSubRecord::Kind::Tail, pos_ - 8,
                 {reinterpret_cast<const char*>(data_ + pos_ + width), have - width});
        skip(size);
    }
    // Notes an empty sub-record whose size word was just taken.
    void keepEmpty(std::int32_t size) {
        if (size == 0) keep(KeptSubRecord::Kind::Empty, pos_ - 8, {});
    }
    // Keeps the whole sub-record at the read position, one its record's reader does not know,
    // and passes over it; false when it does not lie whole within the record's claimed data.
    bool keepForeign() {
        std::int32_t size = 0;
        if (!keepsForeign_ || pos_ + 8 > recordEnd_ || remaining() < 8) return false;
        std::memcpy(&size, data_ + pos_ + 4, 4);
        if (size < 0 || std::size_t(size) > recordEnd_ - pos_ - 8 || std::size_t(size) > remaining() - 8)
            return false;
        std::size_t at = pos_;
        keep(KeptSubRecord::Kind::Foreign, at, view(8 + std::int64_t(size)));
        return true;
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
    // Keeps bytes of the sub-record whose tag stands at at, named by its tag and its place among
    // the record's sub-records of that tag (a foreign one by the sub-record it follows). The places
    // come from one walk of the record's sub-records, carried forward from keep to keep.
    void keep(KeptSubRecord::Kind kind, std::size_t at, std::string_view bytes) {
        if (!record_ || at < recordStart_ + 16 || at + 4 > size_) return;
        if (walkRecord_ != recordStart_) {
            walkRecord_ = recordStart_;
            walkPos_ = recordStart_ + 16;
            seen_.clear();
            lastTag_ = 0;
            lastPlace_ = 0;
        }
        while (walkPos_ < at && walkPos_ + 8 <= size_) {
            Tag t;
            std::int32_t n;
            std::memcpy(&t, data_ + walkPos_, 4);
            std::memcpy(&n, data_ + walkPos_ + 4, 4);
            lastTag_ = t;
            lastPlace_ = seen_[t]++;
            if (n < 0) break;
            walkPos_ += 8 + std::size_t(n);
        }
        Tag own;
        std::memcpy(&own, data_ + at, 4);
        bool foreign = kind == KeptSubRecord::Kind::Foreign;
        auto found = seen_.find(own);
        KeptSubRecord& k = record_->Kept.get().emplace_back();
        k.kind = kind;
        k.tag = foreign ? lastTag_ : own;
        k.occurrence = foreign ? lastPlace_ : (found == seen_.end() ? 0 : found->second);
        k.bytes = std::string(bytes);
    }

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
        else if constexpr (sizeof f[0] == 1) {
            // Bytes or text: those that are there, zeros past the end.
            std::size_t have = sizeof f < remaining() ? sizeof f : remaining();
            std::memset(f.data(), 0, sizeof f);
            if (have != 0) // the data may be null when nothing is left
                std::memcpy(f.data(), data_ + pos_, have);
            take(sizeof f);
        } else if (sizeof f <= remaining())
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
    RecordHeader* record_ = nullptr;
    bool keepsForeign_ = false;
    // The walk that names kept sub-records: the record it is in, how far it went, the sub-records
    // of each tag passed, and the last one passed with its place.
    std::size_t walkRecord_ = SIZE_MAX, walkPos_ = 0;
    std::unordered_map<Tag, std::uint32_t> seen_;
    Tag lastTag_ = 0;
    std::uint32_t lastPlace_ = 0;
};

} // namespace quillon

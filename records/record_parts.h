#pragma once
// What the record structures are built from: the header every record keeps, fixed fields, and
// the parts several record types share.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

using i8 = std::int8_t;
using u8 = std::uint8_t;
using i16 = std::int16_t;
using i32 = std::int32_t;
using i64 = std::int64_t;
template <std::size_t N> using Bytes = std::array<u8, N>;
// A fixed-width text field, padding (and whatever follows the first NUL) included.
template <std::size_t N> using Fixed = std::array<char, N>;

// The text of a fixed field up to its first NUL.
template <std::size_t N> std::string fixedText(const Fixed<N>& f) {
    std::size_t n = 0;
    while (n < N && f[n] != '\0')
        ++n;
    return std::string(f.data(), n);
}
// Bytes a data block carries but the record does not keep: passed over when read, written as
// zeros.
template <std::size_t N> struct Padding {};

// The bytes a block of fields takes in the file.
template <std::size_t N> constexpr std::size_t fieldWidth(const Padding<N>&) {
    return N;
}
template <class T> constexpr std::size_t fieldWidth(const T&) {
    return sizeof(T);
}
template <class T, class Layout> constexpr std::size_t layoutWidth(const T& block, Layout layout) {
    std::size_t width = 0;
    layout(block, [&](const auto&... f) { ((width += fieldWidth(f)), ...); });
    return width;
}

// An optional part of a record, made only when one of its fields is read; copied deeply.
template <class T> class Boxed {
public:
    Boxed() = default;
    Boxed(const Boxed& o) : p_(o.p_ ? std::make_unique<T>(*o.p_) : nullptr) {}
    Boxed& operator=(const Boxed& o) {
        p_ = o.p_ ? std::make_unique<T>(*o.p_) : nullptr;
        return *this;
    }
    Boxed(Boxed&&) noexcept = default;
    Boxed& operator=(Boxed&&) noexcept = default;
    // The part, made empty if it is not there yet.
    T& get() {
        if (!p_) p_ = std::make_unique<T>();
        return *p_;
    }
    // True when the part was made.
    explicit operator bool() const { return p_ != nullptr; }
    // The part, or an empty one.
    const T& view() const {
        static const T empty{};
        return p_ ? *p_ : empty;
    }

private:
    std::unique_ptr<T> p_;
};

// What a record read holds beyond the fields of its structure, so that it is written back as read.
// A sub-record is named by its tag and its place among the record's sub-records of that tag.
struct KeptSubRecord {
    enum class Kind : std::uint8_t {
        Tail,    // the bytes of a fixed-layout sub-record beyond the layout's fields
        Empty,   // a sub-record of size 0
        Foreign, // a whole sub-record the record's reader does not know, kept after the one named
    };
    Kind kind = Kind::Tail;
    std::uint32_t tag = 0; // for Foreign, the sub-record it follows (0: it comes first)
    std::uint32_t occurrence = 0;
    std::string bytes; // Foreign: tag, size word and data
};
using KeptSubRecords = std::vector<KeptSubRecord>;

struct RecordHeader {
    i32 Size = 0, Header1 = 0, Flags = 0;
    // Where the record's tag stands in the file read, to name it in messages.
    std::uint32_t Offset = 0;
    // The record carried a DELE sub-record: the editors delete records so, whatever the Flags say.
    bool Dele = false;
    // Sub-records kept as bytes; made only for the records that have any.
    Boxed<KeptSubRecords> Kept;
};

// ---- Parts several record types share ----

struct InventoryItem {
    i32 NPCOSize = 0;
    i32 Count = 0;
    Fixed<32> Item{};
};

struct SpellEntry {
    i32 NPCSSize = 0;
    Fixed<32> Spell{};
};

struct Effect {
    i32 ENAMSize = 0;
    Bytes<24> ENAM{};
};

// In file order; the game's own records hold at most eight, but every one read is kept.
using EffectSlots = std::vector<Effect>;

struct BodyPartSlot {
    i32 INDXSize = 0;
    u8 INDX = 0;
    i32 BNAMSize = 0;
    std::string BNAM;
    i32 CNAMSize = 0;
    std::string CNAM;
};

// In file order; the game's own records hold at most seven groups, but every one read is kept.
using BodyPartSlots = std::vector<BodyPartSlot>;

// The texts most object records carry: ID, model, display name, script, icon.
struct ObjectTexts {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SCRISize = 0;
    std::string SCRI;
    i32 ITEXSize = 0;
    std::string ITEX;
};

// True when the low byte of a record's flags marks it deleted. The threshold is decimal 20 on
// purpose: every low byte from 20 upwards counts, the 0x20 bit included.
inline bool isDeleted(const RecordHeader& r) {
    return (r.Flags & 0xFF) >= 20 || r.Dele;
}

} // namespace quillon

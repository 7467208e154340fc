#pragma once
#include "records/es_types.h"
#include "records/prompts.h"
#include "records/record_store.h"
#include "records/tags.h"
#include "writer/safe_file.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// A count with thousands separated by commas ("4,096").
std::string groupedNumber(std::int64_t n);

// Serialises records into memory, little-endian, exactly as stored: sizes are written as the
// records hold them, never recomputed, except in a record written in its deleted form. It also
// frames every record as it is written, as the game will read it: a record whose bytes disagree
// with its Size, or a sub-record whose data disagree with its size word, is noted as damaged; when
// repairing, their size words are set to what was written instead.
class ByteSink {
public:
    ByteSink() = default;
    // With a drain, finished records are handed on in chunks rather than kept: memory stays
    // bounded however large the output.
    explicit ByteSink(bool repairing, const EditNotes* notes = nullptr, SafeFileWriter* drain = nullptr)
        : repairing_(repairing), notes_(notes), drain_(drain) {}

    std::string& bytes() { return out_; }
    // True when damaged records are written so that they frame.
    bool repairing() const { return repairing_; }
    // Ends the last record; call once everything is written.
    void finish() {
        closeRecord();
        drain(0);
    }
    // The records that would be written damaged, in file order.
    const std::vector<DamagedRecord>& damaged() const { return damaged_; }
    // False when a repair could not make every damaged record frame (one longer than a size word
    // can say).
    bool repairable() const { return repairable_; }
    // Why the record being written will not frame, when the writer knows better than its sizes.
    void explain(std::string cause) { cause_ = std::move(cause); }
    // The record's ID when its written bytes do not show it.
    void identify(std::string id) { id_ = std::move(id); }

    void raw(const void* p, std::size_t n) { out_.append(static_cast<const char*>(p), n); }
    template <class T> void value(const T& v) { raw(&v, sizeof v); }
    void int32(std::int32_t v) { value(v); }
    void byte(std::uint8_t v) { out_.push_back(char(v)); }
    void tag(Tag t) { value(t); }
    void text(std::string_view s) { out_.append(s); }
    // Writes each field in turn: numbers, arrays of numbers or bytes, and padding as zeros.
    template <class... T> void fields(const T&... f) { (field(f), ...); }

    // The record tag and the three stored header words; the previous record ends here.
    void header(Tag t, const RecordHeader& r) {
        closeRecord();
        drain(kDrainAt);
        open_ = Open{out_.size(), t, r.Size, r.Offset, &r};
        isOpen_ = true;
        foreignWritten_.clear();
        hasForeign_ = false;
        if (r.Kept)
            for (const KeptSubRecord& k : r.Kept.view())
                hasForeign_ = hasForeign_ || k.kind == KeptSubRecord::Kind::Foreign;
        if (hasForeign_) foreignWritten_.assign(r.Kept.view().size(), false);
        tag(t);
        int32(r.Size);
        int32(r.Header1);
        int32(r.Flags);
    }
    // A sub-record's tag and stored size word; its data run to the next sub-record. Sub-records
    // the record kept from its reader's view, due before this one, come first.
    void sub(Tag t, std::int32_t size) {
        if (hasForeign_) writeForeign(false);
        subs_.push_back(out_.size());
        tag(t);
        int32(size);
    }
    // A zero-terminated text sub-record. One the record does not carry (size 0, no text) is not
    // invented: its terminator would be a byte that the record's stored Size does not count.
    void writeZ(Tag t, std::int32_t size, std::string_view s) {
        if (size == 0 && s.empty()) return writeEmptyIfRead(t);
        sub(t, size);
        text(s);
        byte(0);
    }
    // A text sub-record written without terminator.
    void writeU(Tag t, std::int32_t size, std::string_view s) {
        if (size == 0 && s.empty()) return writeEmptyIfRead(t);
        sub(t, size);
        text(s);
    }
    // A sub-record of a fixed layout width bytes wide, written as it was read: of another size,
    // the fields write() writes are cut to that size or followed by the bytes read beyond them;
    // an empty one is written only where the record had it.
    template <class Write> void fixed(Tag t, std::int32_t size, std::size_t width, Write&& write) {
        if (size > 0 && std::size_t(size) == width) {
            sub(t, size);
            write();
            return;
        }
        if (size == 0) return writeEmptyIfRead(t);
        std::uint32_t place = placeOf(t);
        sub(t, size);
        std::size_t start = out_.size();
        write();
        if (size > 0 && std::size_t(size) < width)
            out_.resize(start + std::size_t(size));
        else if (const KeptSubRecord* tail = kept(KeptSubRecord::Kind::Tail, t, place))
            text(tail->bytes);
    }
    // A sub-record of a fixed head width bytes wide and a text filling the rest; a size below the
    // head's cuts the head there, as it was read.
    template <class Write>
    void headed(Tag t, std::int32_t size, std::size_t width, Write&& writeHead, std::string_view rest) {
        if (size == 0 && rest.empty()) return writeEmptyIfRead(t);
        sub(t, size);
        std::size_t start = out_.size();
        writeHead();
        if (size >= 0 && std::size_t(size) < width) out_.resize(start + std::size_t(size));
        text(rest);
    }
    // A sub-record holding one value or a data block of fixed width.
    template <class T> void writeV(Tag t, std::int32_t size, const T& v) {
        fixed(t, size, sizeof v, [&] { value(v); });
    }
    // A sub-record holding the fields a layout lists.
    template <class T, class Layout>
    void writeFields(Tag t, std::int32_t size, const T& block, Layout layout) {
        fixed(t, size, layoutWidth(block, layout),
              [&] { layout(block, [&](const auto&... f) { this->fields(f...); }); });
    }
    // Optional sub-records are written when their size word is non-zero, or empty where the
    // record had them so.
    void writeZOpt(Tag t, std::int32_t size, std::string_view s) {
        if (size != 0) return writeZ(t, size, s);
        writeEmptyIfRead(t);
    }
    void writeUOpt(Tag t, std::int32_t size, std::string_view s) {
        if (size != 0) return writeU(t, size, s);
        writeEmptyIfRead(t);
    }
    template <class T> void writeVOpt(Tag t, std::int32_t size, const T& v) { writeV(t, size, v); }
    // The deleted marker every writer emits the same way.
    void writeDele() {
        sub(quillon::tag("DELE"), 4);
        int32(0);
    }
    // The marker of a record written in its deleted form, which leaves out most of what the record
    // holds: the record's size words follow what is written, since under its old sizes the game
    // could not read past it.
    void writeDeletedForm() {
        writeDele();
        deletedForm_ = true;
    }

private:
    struct Open {
        std::size_t start = 0;
        Tag tag = 0;
        std::int32_t size = 0;
        std::uint32_t offset = 0;
        const RecordHeader* record = nullptr;
    };
    static constexpr std::size_t kDrainAt = 4 << 20;
    template <std::size_t N> void field(const Padding<N>&) { out_.append(N, '\0'); }
    // The empty sub-record of that tag at the place it is next written, where the record read one.
    void writeEmptyIfRead(Tag t) {
        if (kept(KeptSubRecord::Kind::Empty, t, placeOf(t))) sub(t, 0);
    }
    // How many sub-records of that tag the open record has written so far.
    std::uint32_t placeOf(Tag t) const;
    // What the open record kept of that kind for the sub-record of that tag and place, or null.
    const KeptSubRecord* kept(KeptSubRecord::Kind kind, Tag t, std::uint32_t place) const;
    // Writes the kept foreign sub-records that follow the last one written (all that are left
    // when the record ends), each where it stood.
    void writeForeign(bool atEnd);
    template <class T> void field(const T& f) { value(f); }
    void closeRecord();
    // Hands the finished bytes to the drain once at least atLeast of them are waiting.
    void drain(std::size_t atLeast) {
        if (!drain_ || out_.size() < atLeast || out_.empty()) return;
        drain_->write(out_);
        out_.clear();
    }
    std::string damageCause(std::size_t length, std::size_t badSub) const;
    std::string writtenId() const;

    std::string out_;
    bool repairing_ = false;
    const EditNotes* notes_ = nullptr;
    SafeFileWriter* drain_ = nullptr;
    bool repairable_ = true;
    Open open_;
    bool isOpen_ = false;
    bool deletedForm_ = false;         // the open record is written in its deleted form
    std::vector<std::size_t> subs_;    // where each sub-record of the open record starts
    bool hasForeign_ = false;          // the open record kept sub-records its reader did not know
    std::vector<bool> foreignWritten_; // which of its kept sub-records are written
    std::string cause_, id_;
    std::vector<DamagedRecord> damaged_;
};

} // namespace quillon

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
        tag(t);
        int32(r.Size);
        int32(r.Header1);
        int32(r.Flags);
    }
    // A sub-record's tag and stored size word; its data run to the next sub-record.
    void sub(Tag t, std::int32_t size) {
        subs_.push_back(out_.size());
        tag(t);
        int32(size);
    }
    // A zero-terminated text sub-record. One the record does not carry (size 0, no text) is not
    // invented: its terminator would be a byte that the record's stored Size does not count.
    void writeZ(Tag t, std::int32_t size, std::string_view s) {
        if (size == 0 && s.empty()) return;
        sub(t, size);
        text(s);
        byte(0);
    }
    // A text sub-record written without terminator.
    void writeU(Tag t, std::int32_t size, std::string_view s) {
        sub(t, size);
        text(s);
    }
    // A sub-record holding one value or a data block of fixed width.
    template <class T> void writeV(Tag t, std::int32_t size, const T& v) {
        sub(t, size);
        value(v);
    }
    // A sub-record holding the fields a layout lists.
    template <class T, class Layout>
    void writeFields(Tag t, std::int32_t size, const T& block, Layout layout) {
        sub(t, size);
        layout(block, [&](const auto&... f) { this->fields(f...); });
    }
    // Optional sub-records are written when their size word is non-zero.
    void writeZOpt(Tag t, std::int32_t size, std::string_view s) {
        if (size != 0) writeZ(t, size, s);
    }
    void writeUOpt(Tag t, std::int32_t size, std::string_view s) {
        if (size != 0) writeU(t, size, s);
    }
    template <class T> void writeVOpt(Tag t, std::int32_t size, const T& v) {
        if (size != 0) writeV(t, size, v);
    }
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
    bool deletedForm_ = false;      // the open record is written in its deleted form
    std::vector<std::size_t> subs_; // where each sub-record of the open record starts
    std::string cause_, id_;
    std::vector<DamagedRecord> damaged_;
};

} // namespace quillon

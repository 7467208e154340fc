#include "writer/byte_sink.h"

#include <climits>

namespace quillon {

namespace {

constexpr std::size_t kNone = std::size_t(-1);

std::int32_t int32At(const std::string& bytes, std::size_t at) {
    std::int32_t v;
    std::memcpy(&v, bytes.data() + at, 4);
    return v;
}

} // namespace

std::string groupedNumber(std::int64_t n) {
    std::string digits = std::to_string(n < 0 ? -n : n), out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return n < 0 ? "-" + out : out;
}

std::uint32_t ByteSink::placeOf(Tag t) const {
    std::uint32_t n = 0;
    for (std::size_t at : subs_)
        if (std::memcmp(out_.data() + at, &t, 4) == 0) ++n;
    return n;
}

const KeptSubRecord* ByteSink::kept(KeptSubRecord::Kind kind, Tag t, std::uint32_t place) const {
    if (!isOpen_ || !open_.record || !open_.record->Kept) return nullptr;
    for (const KeptSubRecord& k : open_.record->Kept.view())
        if (k.kind == kind && k.tag == t && k.occurrence == place) return &k;
    return nullptr;
}

void ByteSink::writeForeign(bool atEnd) {
    const KeptSubRecords& kept = open_.record->Kept.view();
    for (bool wrote = true; wrote;) {
        wrote = false;
        Tag last = 0;
        std::uint32_t lastPlace = 0;
        if (!subs_.empty()) {
            std::memcpy(&last, out_.data() + subs_.back(), 4);
            lastPlace = placeOf(last) - 1;
        }
        for (std::size_t i = 0; i < kept.size(); ++i) {
            const KeptSubRecord& k = kept[i];
            if (foreignWritten_[i] || k.kind != KeptSubRecord::Kind::Foreign) continue;
            if (!atEnd && (k.tag != last || k.occurrence != lastPlace)) continue;
            foreignWritten_[i] = true;
            subs_.push_back(out_.size());
            text(k.bytes);
            wrote = true;
            break;
        }
    }
}

void ByteSink::closeRecord() {
    if (!isOpen_) return;
    if (hasForeign_) writeForeign(true);
    isOpen_ = false;
    std::size_t end = out_.size(), length = end - open_.start, badSub = kNone;
    bool followWritten = repairing_ || (deletedForm_ && length - 16 <= std::size_t(INT32_MAX));
    deletedForm_ = false;
    for (std::size_t i = 0; i < subs_.size(); ++i) {
        std::size_t data = (i + 1 < subs_.size() ? subs_[i + 1] : end) - subs_[i] - 8;
        if (std::int64_t(data) == int32At(out_, subs_[i] + 4)) continue;
        if (badSub == kNone) badSub = i;
        if (followWritten) {
            auto fixed = std::int32_t(data);
            std::memcpy(out_.data() + subs_[i] + 4, &fixed, 4);
        }
    }
    bool recordBad = std::int64_t(length) != 16 + std::int64_t(open_.size);
    if (recordBad || badSub != kNone) {
        if (followWritten) {
            auto fixed = std::int32_t(length - 16);
            std::memcpy(out_.data() + open_.start + 4, &fixed, 4);
        } else {
            if (length - 16 > std::size_t(INT32_MAX)) repairable_ = false;
            damaged_.push_back({tagText(open_.tag), id_.empty() ? writtenId() : id_, open_.offset,
                                damageCause(length, recordBad ? kNone : badSub)});
        }
    }
    subs_.clear();
    cause_.clear();
    id_.clear();
}

std::string ByteSink::damageCause(std::size_t length, std::size_t badSub) const {
    if (!cause_.empty()) return cause_;
    if (notes_) {
        auto note = notes_->find(open_.record);
        if (note != notes_->end()) return note->second;
    }
    if (badSub == kNone)
        return "written with " + groupedNumber(std::int64_t(length) - 16) + " bytes, its size says " +
               groupedNumber(open_.size);
    std::size_t at = subs_[badSub];
    std::size_t data = (badSub + 1 < subs_.size() ? subs_[badSub + 1] : out_.size()) - at - 8;
    return "its " + out_.substr(at, 4) + " sub-record holds " + groupedNumber(std::int64_t(data)) +
           " bytes, its size says " + groupedNumber(int32At(out_, at + 4));
}

std::string ByteSink::writtenId() const {
    for (std::size_t i = 0; i < subs_.size(); ++i) {
        std::size_t at = subs_[i], end = i + 1 < subs_.size() ? subs_[i + 1] : out_.size();
        std::string_view data(out_.data() + at + 8, end - at - 8);
        Tag t;
        std::memcpy(&t, out_.data() + at, 4);
        switch (t) {
        case quillon::tag("NAME"):
        case quillon::tag("INAM"): return std::string(data.substr(0, data.find('\0')));
        case quillon::tag("SCHD"):
            data = data.substr(0, 32);
            return std::string(data.substr(0, data.find('\0')));
        case quillon::tag("INDX"):
            if (data.size() >= 4) return std::to_string(int32At(out_, at + 8));
            break;
        default: break;
        }
    }
    return {};
}

} // namespace quillon

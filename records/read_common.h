#pragma once
// Building blocks shared by the record readers.
#include "records/byte_cursor.h"
#include "records/es_types.h"

namespace quillon {

// What a reader did with the tag in hand: took it and wants the next tag, took it and put the
// next tag in its place (after a run of repeated sub-records), or refused it (end of record).
enum class Step { Next, InHand, End };

// The common loop: header words, then sub-records until one is refused; the refused tag is
// handed back to the driver as the next record's tag. A record's end is found by that tag,
// never by its Size.
template <class R, class F> Tag readRecord(ByteCursor& in, R& r, F&& sub) {
    r.Offset = std::uint32_t(in.pos() - 4);
    r.Size = in.i32();
    r.Header1 = in.i32();
    r.Flags = in.i32();
    Tag t = in.tag();
    for (;;) {
        switch (sub(t)) {
        case Step::Next: t = in.tag(); break;
        case Step::InHand: break;
        case Step::End: return t;
        }
    }
}

// A zero-terminated text sub-record.
inline void zsub(ByteCursor& in, i32& size, std::string& text) {
    size = in.i32();
    text = in.ztext(size);
}
// A text sub-record taken whole, terminator (if any) included.
inline void wsub(ByteCursor& in, i32& size, std::string& text) {
    size = in.i32();
    text = in.text(size);
}
// A text sub-record taken whole where it stands in the file's bytes.
inline void viewsub(ByteCursor& in, i32& size, std::string_view& text) {
    size = in.i32();
    text = in.view(size);
}
// A sub-record holding one value.
template <class T> void vsub(ByteCursor& in, i32& size, T& v) {
    size = in.i32();
    v = in.value<T>();
}
// A data block of fixed width, read at its published width whatever the size says.
template <std::size_t N> void bsub(ByteCursor& in, i32& size, Bytes<N>& b) {
    size = in.i32();
    in.bytes(b);
}
// DELE's value is never stored: the record only notes that it carried one.
inline void skipDele(ByteCursor& in, RecordHeader& r) {
    in.skip(8);
    r.Dele = true;
}

// NAME, MODL, FNAM, SCRI and ITEX, shared by most object records.
inline bool objectText(ByteCursor& in, Tag t, ObjectTexts& o) {
    switch (t) {
    case tag("NAME"): zsub(in, o.NAMESize, o.NAME); return true;
    case tag("MODL"): zsub(in, o.MODLSize, o.MODL); return true;
    case tag("FNAM"): zsub(in, o.FNAMSize, o.FNAM); return true;
    case tag("SCRI"): zsub(in, o.SCRISize, o.SCRI); return true;
    case tag("ITEX"): zsub(in, o.ITEXSize, o.ITEX); return true;
    default: return false;
    }
}

// Reads one record into a fresh element and appends it to its array; returns the next tag.
template <class R, class F> Tag appendTo(std::vector<R>& array, F&& read) {
    R scratch;
    Tag next = read(scratch);
    array.push_back(std::move(scratch));
    return next;
}

struct RecordStore;

Tag readTes3(ByteCursor& in, Tes3Record& r);
// A raw record, its data kept where they stand in the file (for records of unknown type too, so
// that a repair can write them).
Tag readRaw(ByteCursor& in, Tag t, RawRecord& r);
Tag readDial(ByteCursor& in, DialRecord& r, std::string& currentTopic);
Tag readInfo(ByteCursor& in, InfoRecord& r, const std::string& currentTopic);
Tag readNpc(ByteCursor& in, NpcRecord& r);
Tag readCrea(ByteCursor& in, CreaRecord& r);
Tag readCell(ByteCursor& in, CellRecord& r);
// Reads one object or game-data record into its array; false when the tag is not of that family.
bool readObjectRecord(ByteCursor& in, Tag t, RecordStore& store, Tag& next);

} // namespace quillon

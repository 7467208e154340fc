#pragma once
// Building blocks shared by the record readers. Every reader starts at its record's tag and
// every sub-record helper at its sub-record's tag; a reader stops at the first tag that is not
// its own and leaves it for the next record. A record's end is found so, never by its Size.
#include "records/byte_cursor.h"
#include "records/layouts.h"
#include "records/record_store.h"

namespace quillon {

// The record's tag and header words, then its sub-records while take(tag) accepts them.
template <class R, class F> void readRecord(ByteCursor& in, R& r, F&& take) {
    r.Offset = std::uint32_t(in.pos());
    in.skip(4);
    r.Size = in.i32();
    r.Header1 = in.i32();
    r.Flags = in.i32();
    in.expectRecord(r.Offset, r.Size);
    in.keepInto(r);
    while (take(in.peekTag()) || in.keepForeign()) {
    }
}

// A zero-terminated text sub-record.
inline void readZ(ByteCursor& in, i32& size, std::string& text) {
    in.skip(4);
    size = in.i32();
    in.keepEmpty(size);
    text = in.ztext(size);
}
// A zero-terminated text sub-record where it stands in the file's bytes.
inline void readZ(ByteCursor& in, i32& size, std::string_view& text) {
    in.skip(4);
    size = in.i32();
    in.keepEmpty(size);
    text = in.zview(size);
}
// A text sub-record taken whole, terminator (if any) included.
inline void readU(ByteCursor& in, i32& size, std::string& text) {
    in.skip(4);
    size = in.i32();
    in.keepEmpty(size);
    text = in.text(size);
}
// A text sub-record taken whole where it stands in the file's bytes.
inline void readU(ByteCursor& in, i32& size, std::string_view& text) {
    in.skip(4);
    size = in.i32();
    in.keepEmpty(size);
    text = in.view(size);
}
// A sub-record holding one value or a data block of fixed width, read by the size it declares
// (see ByteCursor::fixed).
template <class T> void readV(ByteCursor& in, i32& size, T& v) {
    in.skip(4);
    size = in.i32();
    in.fixed(size, sizeof v, [&](ByteCursor& data) { data.fields(v); });
}
// A sub-record holding the fields a layout lists, read by the size it declares.
template <class T, class Layout> void readFields(ByteCursor& in, i32& size, T& block, Layout layout) {
    in.skip(4);
    size = in.i32();
    in.fixed(size, layoutWidth(block, layout),
             [&](ByteCursor& data) { layout(block, [&](auto&&... f) { data.fields(f...); }); });
}
// DELE's value is never stored: the record only notes that it carried one.
inline bool readDele(ByteCursor& in, RecordHeader& r) {
    in.skip(12);
    r.Dele = true;
    return true;
}

// A run of one repeated sub-record. Every run is kept, in file order: a file the game writes has
// one run per list, and a later run (which the editors can leave) is appended rather than
// overwriting the first, so that nothing its record's Size counts is lost.
template <class Entry, class ReadEntry>
bool readRun(ByteCursor& in, std::vector<Entry>& list, ReadEntry&& readEntry) {
    Tag run = in.peekTag();
    while (in.nextIs(run))
        readEntry(list.emplace_back());
    return true;
}
// NPCO and NPCS, shared by actors, containers, races and birthsigns.
inline void readInventoryItem(ByteCursor& in, InventoryItem& e) {
    readFields(in, e.NPCOSize, e, layout::inventoryItem);
}
inline void readSpell(ByteCursor& in, SpellEntry& e) {
    readFields(in, e.NPCSSize, e, layout::spell);
}
inline void readEffect(ByteCursor& in, Effect& e) {
    readV(in, e.ENAMSize, e.ENAM);
}

// NAME, MODL, FNAM, SCRI and (for records that carry one) ITEX, shared by most object records;
// false for any other tag.
enum class WithIcon { Yes, No };
inline bool readObjectText(ByteCursor& in, Tag t, ObjectTexts& o, WithIcon icon = WithIcon::Yes) {
    if (t == tag("ITEX") && icon == WithIcon::No) return false;
    switch (t) {
    case tag("NAME"): readZ(in, o.NAMESize, o.NAME); return true;
    case tag("MODL"): readZ(in, o.MODLSize, o.MODL); return true;
    case tag("FNAM"): readZ(in, o.FNAMSize, o.FNAM); return true;
    case tag("SCRI"): readZ(in, o.SCRISize, o.SCRI); return true;
    case tag("ITEX"): readZ(in, o.ITEXSize, o.ITEX); return true;
    default: return false;
    }
}

// Every record type's reader, named in the record-type list; the store carries what reading
// passes from record to record (the current topic).
#define QUILLON_DECLARE_READER(T, Record, read, ...) void read(ByteCursor& in, Record& r, RecordStore& store);
QUILLON_RECORD_TYPES(QUILLON_DECLARE_READER)
#undef QUILLON_DECLARE_READER

} // namespace quillon

#pragma once
// What the record writers share. Each record type's writer is named in the record-type list and
// writes one record exactly as stored: sizes are never recomputed.
#include "records/layouts.h"
#include "records/prompts.h"
#include "records/record_store.h"
#include "writer/byte_sink.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace quillon {

// The responses of each topic, by the exact NAME they carry, in INFO array order.
using TopicIndex = std::unordered_map<std::string, std::vector<std::size_t>>;
TopicIndex indexResponses(const std::vector<InfoRecord>& infos);

// What writing passes from record to record.
struct WriteState {
    RecordStore& store; // a topic writes its responses and becomes the current topic
    Prompts& prompts;
    std::int32_t recordCount = 0; // the header's count, the header included
    std::int32_t fileType = 0;    // by the target's extension
    TopicIndex topics = {};
};

#define QUILLON_DECLARE_WRITER(T, Record, read, write, ...)                                                  \
    void write(ByteSink& out, const Record& r, WriteState& state);
QUILLON_RECORD_TYPES(QUILLON_DECLARE_WRITER)
#undef QUILLON_DECLARE_WRITER

// A record of unknown type: its header alone, or with its data when repairing.
void writeUnknown(ByteSink& out, const RawRecord& r);
// One response; a topic writes those whose Topic equals its NAME.
void writeInfo(ByteSink& out, const InfoRecord& r);

// The pattern most records follow: header, the identifying NAME, then DELE alone for a deleted
// record or the record's own sub-records.
template <class R, class Body> void writeNamed(ByteSink& out, Tag t, const R& r, Body&& body) {
    out.header(t, r);
    out.writeZ(tag("NAME"), r.NAMESize, r.NAME);
    if (isDeleted(r)) {
        out.writeDeletedForm();
        return;
    }
    body();
}

// NPCO and NPCS, shared by actors, containers, races and birthsigns.
inline void writeInventoryItem(ByteSink& out, const InventoryItem& e) {
    out.writeFields(tag("NPCO"), e.NPCOSize, e, layout::inventoryItem);
}
inline void writeSpell(ByteSink& out, const SpellEntry& e) {
    out.writeFields(tag("NPCS"), e.NPCSSize, e, layout::spell);
}
// Effects whose size word is zero were never read and are not written.
inline void writeEffect(ByteSink& out, const Effect& e) {
    out.writeVOpt(tag("ENAM"), e.ENAMSize, e.ENAM);
}

} // namespace quillon

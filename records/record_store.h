#pragma once
#include "records/es_types.h"
#include "records/record_types.h"
#include "records/source_bytes.h"

#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillon {

// Why records were edited in ways that leave their sizes behind, by record address: the write
// check names the cause when such a record would be written damaged.
using EditNotes = std::unordered_map<const void*, std::string>;

// The whole data file in memory: one array per record type, each holding exactly the records of
// that type in file order. A type the file lacks is an empty array.
struct RecordStore {
#define QUILLON_ARRAY(T, Record, ...) std::vector<Record> T;
    QUILLON_RECORD_TYPES(QUILLON_ARRAY)
#undef QUILLON_ARRAY
    std::vector<RawRecord> Unknown;

    // The bytes of the file read, which the raw records point into.
    std::shared_ptr<const SourceBytes> source;

    // NAME of the last DIAL read or written; stamps each INFO read after it.
    std::string CurrentTopic;
    // The user answered the unknown-record question with "Yes To All".
    bool SkipUnknownPrompt = false;
    EditNotes editNotes;
    // Texts edited where a record kept a view into the file's bytes (a script's source text): the
    // record's view points here instead, where it stays put however many are added.
    std::deque<std::string> editedTexts;

    // Calls f(array) for each of the 56 arrays in the order they are written, the unknown records last.
    template <class F> void forEachArray(F&& f);
    template <class F> void forEachArray(F&& f) const;
};

// Empties every array and the current topic; done before a read and by Close.
void ClearRecords(RecordStore& store);
// Drops the reading spare slots. The arrays hold exactly their records already, so only the
// current topic is reset.
void TrimRecords(RecordStore& store);

template <class F> void RecordStore::forEachArray(F&& f) {
#define QUILLON_EACH(T, ...) f(T);
    QUILLON_RECORD_TYPES(QUILLON_EACH)
#undef QUILLON_EACH
    f(Unknown);
}

template <class F> void RecordStore::forEachArray(F&& f) const {
#define QUILLON_EACH(T, ...) f(T);
    QUILLON_RECORD_TYPES(QUILLON_EACH)
#undef QUILLON_EACH
    f(Unknown);
}

} // namespace quillon

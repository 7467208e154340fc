#include "records/record_store.h"

namespace quillon {

void ClearRecords(RecordStore& store) {
    store.forEachArray([](auto& array) {
        array.clear();
        array.shrink_to_fit();
    });
    store.CurrentTopic.clear();
    store.editNotes.clear();
    store.editedTexts.clear();
    store.source.reset();
}

void TrimRecords(RecordStore& store) {
    store.CurrentTopic.clear();
}

} // namespace quillon

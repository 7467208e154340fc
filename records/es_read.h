#pragma once
#include "records/prompts.h"
#include "records/record_store.h"
#include "records/source_bytes.h"

#include <cstdint>
#include <string>

namespace quillon {

// What a read noticed beyond its result: the file could not be loaded, or it ends inside a record.
struct ReadDiagnostics {
    std::string loadError;
    bool truncated = false;
    std::size_t truncatedRecordAt = 0; // where the record the file ends inside begins
    // The records a walk of the file's size words finds: a read that derails at a damaged record
    // reads fewer.
    std::size_t recordsInFile = 0;
    // Where a read stopped, keeping what it had read, because the unknown-record question was
    // answered Ok (a context read at bytes that are not a record); 0 when it did not.
    std::size_t stoppedAt = 0;
};

// Reads the whole data file at path into store. Returns the milliseconds spent (less the time the
// last unknown-record question stayed open), -1 when the file was refused or could not be read,
// 0 when the user stopped at an unknown record. recordCount grows by one per record kept.
double ReadESFile(RecordStore& store, const std::string& path, std::int32_t& recordCount, bool trimAtEnd,
                  Prompts& prompts, ReadDiagnostics* diagnostics = nullptr);

// Reads a data file already in memory; the same rules as ReadESFile after the file is loaded.
// The store keeps the bytes: its raw records point into them.
double ReadESBuffer(RecordStore& store, std::string bytes, std::int32_t& recordCount, bool trimAtEnd,
                    Prompts& prompts, ReadDiagnostics* diagnostics = nullptr);

// Reads a data file already loaded; the store keeps the bytes.
// An OpenMW file (openmwFile) keeps records of types the format does not know with their data,
// without a question, and sub-records its readers do not know with their records, as a savegame
// does.
double readSource(RecordStore& store, std::shared_ptr<const SourceBytes> source, std::int32_t& recordCount,
                  bool trimAtEnd, Prompts& prompts, ReadDiagnostics* diagnostics = nullptr,
                  bool openmwFile = false);

// True when the path's extension begins with "ES", as data files' extensions do, or is one of
// OpenMW's (.omwaddon, .omwgame).
bool hasDataFileName(const std::string& path);
// True for OpenMW's own names of data files, .omwaddon and .omwgame, in any letter case.
bool hasOpenMWFileName(const std::string& path);

} // namespace quillon

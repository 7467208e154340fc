#pragma once
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

void WriteTes3Record(ByteSink& out, const Tes3Record& r, std::int32_t recordCount, std::int32_t fileType);
void WriteRawRecord(ByteSink& out, const RawRecord& r);
// A record of unknown type: its header alone, or with its data when repairing.
void WriteUnknownRecord(ByteSink& out, const RawRecord& r);
// Writes the topic and every response whose Topic equals its NAME; counts the responses written.
void WriteDialRecord(ByteSink& out, const DialRecord& r, const std::vector<InfoRecord>& infos,
                     const TopicIndex& index, std::int32_t& writtenCount);
void WriteInfoRecord(ByteSink& out, const InfoRecord& r);
void WriteNpcRecord(ByteSink& out, const NpcRecord& r);
void WriteCreaRecord(ByteSink& out, const CreaRecord& r);
void WriteCellRecord(ByteSink& out, const CellRecord& r, Prompts& prompts);
void WriteScptRecord(ByteSink& out, const ScptRecord& r, bool alwaysWriteText);
// The writers of the remaining object and game-data types, in the file's type order up to LEVC
// (after CONT: SPEL before ENCH), then SNDG and SSCR; PGRD is written after the cells.
void WriteObjectsBeforeActors(ByteSink& out, const RecordStore& store, bool alwaysWriteText,
                              std::int32_t& writtenCount);
void WritePgrdRecords(ByteSink& out, const RecordStore& store, std::int32_t& writtenCount);

} // namespace quillon

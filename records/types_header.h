#pragma once
// The file header and the records kept as bytes.
#include "records/record_parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct MasterEntry {
    i32 MASTSize = 0;
    std::string MAST;
    i32 DATASize = 0;
    i64 MasterSize = 0;
};

struct Tes3Record : RecordHeader {
    i32 HEDRSize = 0;
    Bytes<4> Version{};
    i32 FileType = 0;
    Fixed<32> Company{};
    Fixed<256> Description{};
    i32 NumRecords = 0;
    std::vector<MasterEntry> Masters;
    i32 GMDTSize = 0;
    std::array<i32, 6> GMDTValues{};
    Fixed<64> CellName{};
    i32 GMDTValue7 = 0;
    Fixed<32> PlayerName{};
    i32 SCRDSize = 0;
    Bytes<20> SCRD{};
    i32 SCRSSize = 0;
    std::string SCRS; // always 65536 bytes once read
};

// LAND, the save-game records and records of unknown type.
struct RawRecord : RecordHeader {
    std::string Tag; // four characters
    // The record's bytes in the file the store was read from. Records of unknown type keep them
    // only for a repair: the format writes them as a bare header.
    std::string_view Data;
    // A record of one of OpenMW's own types, read from its file: written with its data.
    bool Whole = false;
};

} // namespace quillon

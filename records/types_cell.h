#pragma once
// Cells and the references placed in them.
#include "records/record_parts.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// The sub-records most references lack, kept apart so that a cell's many plain references stay small.
struct ReferenceDetails {
    i32 XCHGSize = 0;
    i32 XCHG = 0;
    i32 DODTSize = 0;
    std::array<float, 6> DODT{};
    i32 DNAMSize = 0;
    std::string DNAM;
    i32 FLTVSize = 0;
    i32 FLTV = 0;
    i32 KNAMSize = 0;
    std::string KNAM;
    i32 TNAMSize = 0;
    std::string TNAM;
    i32 UNAMSize = 0;
    u8 UNAM = 0;
    i32 ANAMSize = 0;
    std::string ANAM;
    i32 CNAMSize = 0;
    std::string CNAM;
    i32 BNAMSize = 0;
    std::string BNAM;
    i32 INTVSize = 0;
    i32 INTV = 0;
    i32 INDXSize = 0;
    i32 INDX = 0;
    i32 NAM9Size = 0;
    i32 NAM9 = 0;
    i32 XSOLSize = 0;
    std::string XSOL;
    i32 MVRFSize = 0;
    std::array<u8, 3> MVRF{};
    u8 MVRFByte = 0;
    i32 CNDTSize = 0;
    std::array<i32, 2> CNDT{};
    i32 MovedCellSize = 0;
    std::string MovedCell;
    i32 DATA2Size = 0;
    std::array<float, 6> DATA2{};
    std::vector<std::string> SaveData; // each: the four-character tag, then the data
    // The tags of the sub-records after FRMR, in the order read, where it is not the order they
    // are written in otherwise (savegames): they are written back in this order.
    std::vector<std::uint32_t> Order;
    // The value of a DELE that is not the one the original editor writes (savegames).
    std::optional<Bytes<4>> DELEValue;
};

// A large master holds hundreds of thousands of references: the fields every one has are kept
// small, the ID where it stands in the file's bytes (it is never edited).
struct CellReference {
    i32 FRMRSize = 0;
    std::array<u8, 3> FRMR{};
    u8 FRMRByte = 0;
    i32 NAMESize = 0;
    i32 XSCLSize = 0;
    float XSCL = 0;
    i32 DATASize = 0;
    std::array<float, 6> DATA{};
    u8 Disabled = 0;
    u8 Deleted = 0;
    u8 Persistent = 0;
    std::string_view NAME;
    Boxed<ReferenceDetails> more;
};

struct CellRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 DATASize = 0;
    i32 CellFlags = 0, GridX = 0, GridY = 0;
    i32 RGNNSize = 0;
    std::string RGNN;
    i32 NAM0Size = 0;
    i32 NAM0 = 0;
    i32 NAM5Size = 0;
    Bytes<3> NAM5{};
    i32 WHGTSize = 0;
    float WHGT = 0;
    i32 INTVSize = 0;
    i32 INTV = 0;
    i32 AMBISize = 0;
    Bytes<3> Ambient{}, Sunlight{}, Fog{};
    float FogDensity = 0;
    std::array<i32, 4> MPCD{}; // the size word, then three values
    i32 NAM8Size = 0;
    std::string NAM8;
    std::vector<CellReference> References;
    i32 Deleted = 0;
};

} // namespace quillon

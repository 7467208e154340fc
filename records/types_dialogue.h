#pragma once
// Topics and their responses.
#include "records/record_parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct DialRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 DATASize = 0;
    u8 DATA = 0;
    i32 XIDXSize = 0;
    i32 XIDX = 0;
};

struct InfoCondition {
    i32 SCVRSize = 0;
    char Index = 0;
    char Type = 0;
    std::array<char, 2> Function{};
    char Comparison = 0;
    std::string Name;
    i32 INTVSize = 0;
    i32 INTV = 0;
    i32 FLTVSize = 0;
    float FLTV = 0;
};

struct InfoRecord : RecordHeader {
    std::string Topic;
    i32 INAMSize = 0;
    std::string INAM;
    i32 PNAMSize = 0;
    std::string PNAM;
    i32 NNAMSize = 0;
    std::string NNAM;
    i32 DATASize = 0;
    i32 DialogueType = 0;
    i32 Disposition = 0;
    u8 Rank = 0, Gender = 0, PCRank = 0, Spare = 0;
    i32 ONAMSize = 0;
    std::string ONAM;
    i32 RNAMSize = 0;
    std::string RNAM;
    i32 CNAMSize = 0;
    std::string CNAM;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 ANAMSize = 0;
    std::string ANAM;
    i32 DNAMSize = 0;
    std::string DNAM;
    i32 NAMESize = 0;
    std::string NAME;
    i32 SNAMSize = 0;
    std::string SNAM;
    i32 QSTNSize = 0;
    u8 QSTN = 0;
    i32 QSTFSize = 0;
    u8 QSTF = 0;
    i32 QSTRSize = 0;
    u8 QSTR = 0;
    i32 ACDTSize = 0;
    std::string ACDT;
    // In file order; the game's own files hold at most six, but every one read is kept.
    std::vector<InfoCondition> Conditions;
    i32 BNAMSize = 0;
    std::string BNAM;
    i32 XIDXSize = 0;
    i32 XIDX = 0;
};

} // namespace quillon

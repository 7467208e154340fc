#pragma once
// Game settings, classes, factions, races, magic, scripts, regions and the like.
#include "records/record_parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct GmstRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 STRVSize = 0;
    std::string STRV;
    i32 INTVSize = 0;
    i32 INTV = 0;
    i32 FLTVSize = 0;
    float FLTV = 0;
};

struct GlobRecord;
// The game's own rules for a global's stored value.
float globalValue(const GlobRecord& r, float stored);

struct GlobRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    char FNAM = 0;
    i32 FLTVSize = 0;
    float FLTV = 0;
    // The value as the file holds it, before the game's rules: a short global of a savegame
    // often holds stray bytes, written back as they were unless the value changed.
    float FLTVStored = 0;
};

struct ClasRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 CLDTSize = 0;
    Bytes<60> CLDT{};
    i32 DESCSize = 0;
    std::string DESC;
};

struct FactionRank {
    i32 RNAMSize = 0;
    Fixed<32> RNAM{};
};

struct FactionReaction {
    i32 ANAMSize = 0;
    std::string ANAM; // read whole, terminator included
    i32 INTVSize = 0;
    i32 INTV = 0;
};

struct FactRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    std::array<FactionRank, 10> Ranks{};
    i32 FADTSize = 0;
    Bytes<240> FADT{};
    std::vector<FactionReaction> Reactions;
};

struct RaceRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 RADTSize = 0;
    Bytes<140> RADT{};
    std::vector<SpellEntry> Powers;
    i32 DESCSize = 0;
    std::string DESC;
};

struct SounRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 DATASize = 0;
    Bytes<3> DATA{}; // volume, minimum and maximum range
};

struct SkilRecord : RecordHeader {
    i32 INDXSize = 0;
    i32 INDX = 0;
    i32 SKDTSize = 0;
    Bytes<24> SKDT{};
    i32 DESCSize = 0;
    std::string DESC;
};

struct MgefRecord : RecordHeader {
    i32 INDXSize = 0;
    i32 INDX = 0;
    i32 MEDTSize = 0;
    Bytes<36> MEDT{};
    i32 ITEXSize = 0, PTEXSize = 0, BSNDSize = 0, CSNDSize = 0, HSNDSize = 0, ASNDSize = 0;
    std::string ITEX, PTEX, BSND, CSND, HSND, ASND;
    i32 BVFXSize = 0, CVFXSize = 0, HVFXSize = 0, AVFXSize = 0;
    std::string BVFX, CVFX, HVFX, AVFX;
    i32 DESCSize = 0;
    std::string DESC;
};

struct ScptRecord : RecordHeader {
    i32 SCHDSize = 0;
    Fixed<32> ScriptName{};
    i32 NumShorts = 0, NumLongs = 0, NumFloats = 0, ScriptDataSize = 0, LocalVarSize = 0;
    i32 SCVRSize = 0;
    std::vector<std::string> ShortNames, LongNames, FloatNames;
    // Compiled code and source are never edited: they point into the file's bytes.
    i32 SCDTSize = 0;
    std::string_view SCDT;
    i32 SCTXSize = 0;
    std::string_view SCTX;
    i32 SLCSSize = 0;
    std::string SLCS;
    i32 SLSDSize = 0;
    std::string SLSD;
    i32 SLFDSize = 0;
    std::string SLFD;
    i32 RNAMSize = 0;
    std::string RNAM;
};

struct WeatherSound {
    i32 SNAMSize = 0;
    Fixed<32> Sound{};
    u8 Chance = 0;
};

struct RegnRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 WEATSize = 0;
    std::string WEAT; // 8 or 10 chances, as many as the file holds
    i32 BNAMSize = 0;
    std::string BNAM;
    i32 CNAMSize = 0;
    Bytes<4> CNAM{};
    std::vector<WeatherSound> Sounds;
    i32 WNAMSize = 0;
    std::string WNAM;
};

struct BsgnRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 TNAMSize = 0;
    std::string TNAM;
    i32 DESCSize = 0;
    std::string DESC;
    std::vector<SpellEntry> Spells;
};

struct LtexRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 INTVSize = 0;
    i32 INTV = 0;
    i32 DATASize = 0;
    std::string DATA;
};

struct StatRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
};

// A start script: both texts are kept whole.
struct SscrRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 DATASize = 0;
    std::string DATA;
};

struct SndgRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 DATASize = 0;
    i32 DATA = 0;
    i32 CNAMSize = 0;
    std::string CNAM;
    i32 SNAMSize = 0;
    std::string SNAM;
};

struct PgrdRecord : RecordHeader {
    i32 DATASize = 0;
    Bytes<12> DATA{};
    i32 NAMESize = 0;
    std::string NAME;
    // Never edited: both point into the file's bytes.
    i32 PGRPSize = 0;
    std::string_view PGRP; // all points
    i32 PGRCSize = 0;
    std::string_view PGRC; // all connections
};

} // namespace quillon

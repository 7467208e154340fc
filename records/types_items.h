#pragma once
// Doors, containers and the items a player can carry, and their leveled lists.
#include "records/record_parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// The icon of the shared texts stays empty: doors, containers, activators and potions carry none.
struct DoorRecord : RecordHeader, ObjectTexts {
    i32 SNAMSize = 0;
    std::string SNAM;
    i32 ANAMSize = 0;
    std::string ANAM;
};

struct MiscRecord : RecordHeader, ObjectTexts {
    i32 MCDTSize = 0;
    Bytes<12> MCDT{};
};

struct WeapRecord : RecordHeader, ObjectTexts {
    i32 ENAMSize = 0;
    std::string ENAM;
    i32 WPDTSize = 0;
    Bytes<32> WPDT{};
};

struct ContRecord : RecordHeader, ObjectTexts {
    i32 INDXSize = 0;
    i32 INDX = 0;
    i32 CNDTSize = 0;
    Bytes<4> CNDT{};
    i32 FLAGSize = 0;
    Bytes<4> FLAG{};
    std::vector<InventoryItem> Inventory;
};

struct SpelRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SPDTSize = 0;
    Bytes<12> SPDT{};
    EffectSlots Effects{};
};

struct EnchRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 ENDTSize = 0;
    Bytes<16> ENDT{};
    EffectSlots Effects{};
};

struct BodyRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 BYDTSize = 0;
    Bytes<4> BYDT{};
};

struct LighRecord : RecordHeader, ObjectTexts {
    i32 SNAMSize = 0;
    std::string SNAM;
    i32 LHDTSize = 0;
    Bytes<24> LHDT{};
};

struct ArmoRecord : RecordHeader, ObjectTexts {
    i32 ENAMSize = 0;
    std::string ENAM;
    i32 AODTSize = 0;
    Bytes<24> AODT{};
    BodyPartSlots Parts{};
};

struct ClotRecord : RecordHeader, ObjectTexts {
    i32 ENAMSize = 0;
    std::string ENAM;
    i32 CTDTSize = 0;
    Bytes<12> CTDT{};
    BodyPartSlots Parts{};
};

// REPA, LOCK and PROB: a data block of four 32-bit values under RIDT, LKDT or PBDT.
struct RepaRecord : RecordHeader, ObjectTexts {
    i32 DataSize = 0;
    Bytes<16> Data{};
};

using LockRecord = RepaRecord;

using ProbRecord = RepaRecord;

struct ActiRecord : RecordHeader, ObjectTexts {};

struct AppaRecord : RecordHeader, ObjectTexts {
    i32 AADTSize = 0;
    Bytes<16> AADT{};
};

struct IngrRecord : RecordHeader, ObjectTexts {
    i32 IRDTSize = 0;
    Bytes<56> IRDT{};
};

struct BookRecord : RecordHeader, ObjectTexts {
    i32 BKDTSize = 0;
    float Weight = 0;
    i32 Value = 0, Scroll = 0, Skill = 0, EnchantPoints = 0;
    i32 TEXTSize = 0;
    std::string_view TEXT; // never edited: points into the file's bytes
    i32 ENAMSize = 0;
    std::string ENAM;
};

struct AlchRecord : RecordHeader, ObjectTexts {
    i32 TEXTSize = 0;
    std::string TEXT; // the icon path
    i32 ALDTSize = 0;
    Bytes<12> ALDT{};
    EffectSlots Effects{};
};

struct LeveledEntry {
    i32 NameSize = 0; // INAM (items) or CNAM (creatures)
    std::string Name;
    i32 INTVSize = 0;
    i16 Level = 0;
};

// LEVI and LEVC.
struct LeviRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 DATASize = 0;
    i32 DATA = 0;
    i32 NNAMSize = 0;
    u8 NNAM = 0;
    i32 INDXSize = 0;
    i32 INDX = 0;
    std::vector<LeveledEntry> Entries;
};

using LevcRecord = LeviRecord;

} // namespace quillon

#pragma once
// The record structures of a TES3 data file. Each keeps its record header words and, for every
// sub-record the program knows, the sub-record's size word beside its value, so that a record is
// written back exactly as it was read. Texts are the file's bytes, never decoded.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

using i8 = std::int8_t;
using u8 = std::uint8_t;
using i16 = std::int16_t;
using i32 = std::int32_t;
using i64 = std::int64_t;
template <std::size_t N> using Bytes = std::array<u8, N>;
// A fixed-width text field, padding (and whatever follows the first NUL) included.
template <std::size_t N> using Fixed = std::array<char, N>;

// The text of a fixed field up to its first NUL.
template <std::size_t N> std::string fixedText(const Fixed<N>& f) {
    std::size_t n = 0;
    while (n < N && f[n] != '\0') ++n;
    return std::string(f.data(), n);
}
// A fixed field holding s, cut or padded with NULs to its width.
template <std::size_t N> Fixed<N> toFixed(const std::string& s) {
    Fixed<N> f{};
    for (std::size_t i = 0; i < N && i < s.size(); ++i) f[i] = s[i];
    return f;
}

// An optional part of a record, made only when one of its fields is read; copied deeply.
template <class T> class Boxed {
public:
    Boxed() = default;
    Boxed(const Boxed& o) : p_(o.p_ ? std::make_unique<T>(*o.p_) : nullptr) {}
    Boxed& operator=(const Boxed& o) {
        p_ = o.p_ ? std::make_unique<T>(*o.p_) : nullptr;
        return *this;
    }
    Boxed(Boxed&&) noexcept = default;
    Boxed& operator=(Boxed&&) noexcept = default;
    // The part, made empty if it is not there yet.
    T& get() {
        if (!p_) p_ = std::make_unique<T>();
        return *p_;
    }
    // The part, or an empty one.
    const T& view() const {
        static const T empty{};
        return p_ ? *p_ : empty;
    }

private:
    std::unique_ptr<T> p_;
};

struct RecordHeader {
    i32 Size = 0, Header1 = 0, Flags = 0;
    // Where the record's tag stands in the file read, to name it in messages.
    std::uint32_t Offset = 0;
    // The record carried a DELE sub-record: the editors delete records so, whatever the Flags say.
    bool Dele = false;
};

// ---- Header and raw records ----

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
};

// ---- Dialogue ----

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

// ---- Actors ----

struct InventoryItem {
    i32 NPCOSize = 0;
    i32 Count = 0;
    Fixed<32> Item{};
};
struct SpellEntry {
    i32 NPCSSize = 0;
    Fixed<32> Spell{};
};
struct WanderPackage {
    i32 AI_WSize = 0;
    i16 Distance = 0, Duration = 0;
    u8 TimeOfDay = 0;
    Bytes<8> Idles{};
    u8 Reset = 0;
};
struct TravelPackage {
    i32 AI_TSize = 0;
    float X = 0, Y = 0, Z = 0;
    i32 Reset = 0;
};
struct ActivatePackage {
    i32 AI_ASize = 0;
    Fixed<32> Target{};
    u8 Reset = 0;
};
struct FollowPackage { // also the escort package
    i32 Size = 0;
    float X = 0, Y = 0, Z = 0;
    i16 Duration = 0;
    Fixed<32> Target{};
    i16 Reset = 0;
    i32 CNDTSize = 0;
    std::string CNDT;
};
struct TravelDestination {
    i32 DODTSize = 0;
    std::array<float, 6> Position{}; // X, Y, Z, rotation X, Y, Z
    i32 DNAMSize = 0;
    std::string DNAM;
};

// The parts that NPC_ and CREA records share after their texts and statistics.
struct ActorLists {
    i32 FLAGSize = 0;
    Bytes<2> FLAG{}; // the upper two bytes of the flag word are not kept
    std::vector<InventoryItem> Inventory;
    std::vector<SpellEntry> Spells;
    i32 AIDTSize = 0;
    Bytes<8> AIDT{};
    i32 AIDTFlags = 0;
    std::vector<WanderPackage> Wander;
    std::vector<TravelPackage> Travel;
    std::vector<FollowPackage> Follow;
    std::vector<FollowPackage> Escort;
    std::vector<ActivatePackage> Activate;
    // Every run in file order; the game's own actors hold at most four.
    std::vector<TravelDestination> Destinations;
    i32 INDXSize = 0;
    i32 INDX = 0;
};

struct NpcRecord : RecordHeader, ActorLists {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 RNAMSize = 0;
    std::string RNAM;
    i32 CNAMSize = 0;
    std::string CNAM;
    i32 ANAMSize = 0;
    std::string ANAM;
    i32 BNAMSize = 0;
    std::string BNAM;
    i32 KNAMSize = 0;
    std::string KNAM;
    i32 SCRISize = 0;
    std::string SCRI;
    i32 NPDTSize = 0;
    Bytes<52> NPDT{};
    Bytes<12> NPDTShort{};
};

struct CreaRecord : RecordHeader, ActorLists {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 CNAMSize = 0;
    std::string CNAM;
    i32 SCRISize = 0;
    std::string SCRI;
    i32 NPDTSize = 0;
    Bytes<96> NPDT{};
    i32 XSCLSize = 0;
    float XSCL = 0;
};

// ---- Cells ----

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
};

struct CellReference {
    i32 FRMRSize = 0;
    std::array<u8, 3> FRMR{};
    u8 FRMRByte = 0;
    i32 NAMESize = 0;
    std::string NAME;
    i32 XSCLSize = 0;
    float XSCL = 0;
    i32 DATASize = 0;
    std::array<float, 6> DATA{};
    u8 Disabled = 0;
    u8 Deleted = 0;
    u8 Persistent = 0;
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

// ---- Objects and game data ----

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

struct GlobRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 FNAMSize = 0;
    char FNAM = 0;
    i32 FLTVSize = 0;
    float FLTV = 0;
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

// The texts most object records carry: ID, model, display name, script, icon.
struct ObjectTexts {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SCRISize = 0;
    std::string SCRI;
    i32 ITEXSize = 0;
    std::string ITEX;
};

struct DoorRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SCRISize = 0;
    std::string SCRI;
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

struct ContRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 INDXSize = 0;
    i32 INDX = 0;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SCRISize = 0;
    std::string SCRI;
    i32 CNDTSize = 0;
    Bytes<4> CNDT{};
    i32 FLAGSize = 0;
    Bytes<4> FLAG{};
    std::vector<InventoryItem> Inventory;
};

struct Effect {
    i32 ENAMSize = 0;
    Bytes<24> ENAM{};
};
// In file order; the game's own records hold at most eight, but every one read is kept.
using EffectSlots = std::vector<Effect>;

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

struct BodyPartSlot {
    i32 INDXSize = 0;
    u8 INDX = 0;
    i32 BNAMSize = 0;
    std::string BNAM;
    i32 CNAMSize = 0;
    std::string CNAM;
};
// In file order; the game's own records hold at most seven groups, but every one read is kept.
using BodyPartSlots = std::vector<BodyPartSlot>;

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

struct ActiRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SCRISize = 0;
    std::string SCRI;
};

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

struct AlchRecord : RecordHeader {
    i32 NAMESize = 0;
    std::string NAME;
    i32 MODLSize = 0;
    std::string MODL;
    i32 FNAMSize = 0;
    std::string FNAM;
    i32 SCRISize = 0;
    std::string SCRI;
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

// True when the low byte of a record's flags marks it deleted. The threshold is decimal 20 on
// purpose: every low byte from 20 upwards counts, the 0x20 bit included.
inline bool isDeleted(const RecordHeader& r) { return (r.Flags & 0xFF) >= 20 || r.Dele; }

} // namespace quillon

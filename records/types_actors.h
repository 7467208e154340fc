#pragma once
// NPCs and creatures.
#include "records/record_parts.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

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

// The kinds of AI package, to keep the order an actor's packages were read in: the game runs them
// in that order.
enum class PackageKind : u8 { Wander, Travel, Escort, Follow, Activate };

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
    // The kind of each package above, in file order.
    std::vector<PackageKind> PackageOrder;
    // Every run in file order; the game's own actors hold at most four.
    std::vector<TravelDestination> Destinations;
    i32 INDXSize = 0;
    i32 INDX = 0;
};

// The icon of the shared texts stays empty: actors carry none.
struct NpcRecord : RecordHeader, ObjectTexts, ActorLists {
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
    i32 NPDTSize = 0;
    Bytes<52> NPDT{};
    Bytes<12> NPDTShort{};
};

struct CreaRecord : RecordHeader, ObjectTexts, ActorLists {
    i32 CNAMSize = 0;
    std::string CNAM;
    i32 NPDTSize = 0;
    Bytes<96> NPDT{};
    i32 XSCLSize = 0;
    float XSCL = 0;
};

} // namespace quillon

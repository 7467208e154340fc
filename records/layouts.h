#pragma once
// The fixed data blocks of the format, each listed once. A layout calls f with the block's fields
// in file order; the reader hands them to the cursor and the writer to the sink, so that both
// directions share one description.
#include "records/es_types.h"

namespace quillon::layout {

inline constexpr auto fileHeader = [](auto& r, auto&& f) {
    f(r.Version, r.FileType, r.Company, r.Description, r.NumRecords);
};
inline constexpr auto savedGame = [](auto& r, auto&& f) {
    f(r.GMDTValues, r.CellName, r.GMDTValue7, r.PlayerName);
};

inline constexpr auto responseData = [](auto& r, auto&& f) {
    f(r.DialogueType, r.Disposition, r.Rank, r.Gender, r.PCRank, r.Spare);
};
// The head of an SCVR; the variable or object name fills the rest of the sub-record.
inline constexpr auto conditionHead = [](auto& c, auto&& f) { f(c.Index, c.Type, c.Function, c.Comparison); };

inline constexpr auto inventoryItem = [](auto& e, auto&& f) { f(e.Count, e.Item); };
inline constexpr auto spell = [](auto& e, auto&& f) { f(e.Spell); };
// Only the lower two bytes of an actor's flag word are kept.
inline constexpr auto actorFlags = [](auto& a, auto&& f) { f(a.FLAG, Padding<2>{}); };
inline constexpr auto aiData = [](auto& a, auto&& f) { f(a.AIDT, a.AIDTFlags); };
inline constexpr auto wander = [](auto& p, auto&& f) {
    f(p.Distance, p.Duration, p.TimeOfDay, p.Idles, p.Reset);
};
inline constexpr auto travel = [](auto& p, auto&& f) { f(p.X, p.Y, p.Z, p.Reset); };
inline constexpr auto activate = [](auto& p, auto&& f) { f(p.Target, p.Reset); };
// The follow and the escort package.
inline constexpr auto follow = [](auto& p, auto&& f) { f(p.X, p.Y, p.Z, p.Duration, p.Target, p.Reset); };
inline constexpr auto destination = [](auto& d, auto&& f) { f(d.Position); };

inline constexpr auto cellData = [](auto& r, auto&& f) { f(r.CellFlags, r.GridX, r.GridY); };
// Three colours of three bytes and a spare byte each, then the fog's density.
inline constexpr auto ambientLight = [](auto& r, auto&& f) {
    f(r.Ambient, Padding<1>{}, r.Sunlight, Padding<1>{}, r.Fog, Padding<1>{}, r.FogDensity);
};
inline constexpr auto mapColour = [](auto& r, auto&& f) { f(r.NAM5, Padding<1>{}); };
inline constexpr auto reference = [](auto& ref, auto&& f) { f(ref.FRMR, ref.FRMRByte); };
inline constexpr auto movedReference = [](auto& m, auto&& f) { f(m.MVRF, m.MVRFByte); };

inline constexpr auto scriptHeader = [](auto& r, auto&& f) {
    f(r.ScriptName, r.NumShorts, r.NumLongs, r.NumFloats, r.ScriptDataSize, r.LocalVarSize);
};
inline constexpr auto weatherSound = [](auto& s, auto&& f) { f(s.Sound, s.Chance); };
inline constexpr auto bookData = [](auto& r, auto&& f) {
    f(r.Weight, r.Value, r.Scroll, r.Skill, r.EnchantPoints);
};

} // namespace quillon::layout

#include "app/record_counts.h"

#include <cstdlib>

namespace quillon {

namespace {

struct Label {
    const char* caption;
    std::size_t (*count)(const RecordStore&);
};

#define QUILLON_COUNT(array) [](const RecordStore& s) { return s.array.size(); }
constexpr Label kLabels[kCountLabels] = {
    {"ACTI:", QUILLON_COUNT(ACTI)}, {"ALCH:", QUILLON_COUNT(ALCH)}, {"APPA:", QUILLON_COUNT(APPA)},
    {"ARMO:", QUILLON_COUNT(ARMO)}, {"BODY:", QUILLON_COUNT(BODY)}, {"BOOK:", QUILLON_COUNT(BOOK)},
    {"BSGN:", QUILLON_COUNT(BSGN)}, {"CELL:", QUILLON_COUNT(CELL)}, {"CLAS:", QUILLON_COUNT(CLAS)},
    {"CLOT:", QUILLON_COUNT(CLOT)}, {"CONT:", QUILLON_COUNT(CONT)}, {"CREA:", QUILLON_COUNT(CREA)},
    {"DIAL:", QUILLON_COUNT(DIAL)}, {"DOOR:", QUILLON_COUNT(DOOR)}, {"ENCH:", QUILLON_COUNT(ENCH)},
    {"FACT:", QUILLON_COUNT(FACT)}, {"GLOB:", QUILLON_COUNT(GLOB)}, {"GMST:", QUILLON_COUNT(GMST)},
    {"INFO:", QUILLON_COUNT(INFO)}, {"INGR:", QUILLON_COUNT(INGR)}, {"LAND:", QUILLON_COUNT(LAND)},
    {"LEVC:", QUILLON_COUNT(LEVC)}, {"LEVI:", QUILLON_COUNT(LEVI)}, {"LIGH:", QUILLON_COUNT(LIGH)},
    {"LOCK:", QUILLON_COUNT(LOCK)}, {"LTEX:", QUILLON_COUNT(LTEX)}, {"MISC:", QUILLON_COUNT(MISC)},
    {"MGEF:", QUILLON_COUNT(MGEF)}, {"PGRD:", QUILLON_COUNT(PGRD)}, {"NPC_:", QUILLON_COUNT(NPC_)},
    {"PROB:", QUILLON_COUNT(PROB)}, {"RACE:", QUILLON_COUNT(RACE)}, {"REGN:", QUILLON_COUNT(REGN)},
    {"REPA:", QUILLON_COUNT(REPA)}, {"SCPT:", QUILLON_COUNT(SCPT)}, {"SKIL:", QUILLON_COUNT(SKIL)},
    {"SNDG:", QUILLON_COUNT(SNDG)}, {"SOUN:", QUILLON_COUNT(SOUN)}, {"SPEL:", QUILLON_COUNT(SPEL)},
    {"STAT:", QUILLON_COUNT(STAT)}, {"SSCR:", QUILLON_COUNT(SSCR)}, {"TES3:", QUILLON_COUNT(TES3)},
    {"Unknown:", QUILLON_COUNT(Unknown)}, {"CNTC:", QUILLON_COUNT(CNTC)},
    {"Total:", [](const RecordStore&) { return std::size_t(0); }},
    {"WEAP:", QUILLON_COUNT(WEAP)}, {"CREC:", QUILLON_COUNT(CREC)}, {"FMAP:", QUILLON_COUNT(FMAP)},
    {"GAME:", QUILLON_COUNT(GAME)}, {"JOUR:", QUILLON_COUNT(JOUR)}, {"KLST:", QUILLON_COUNT(KLST)},
    {"NPCC:", QUILLON_COUNT(NPCC)}, {"PCDT:", QUILLON_COUNT(PCDT)}, {"QUES:", QUILLON_COUNT(QUES)},
    {"REFR:", QUILLON_COUNT(REFR)}, {"SPLM:", QUILLON_COUNT(SPLM)}, {"STLN:", QUILLON_COUNT(STLN)},
};
#undef QUILLON_COUNT

} // namespace

const char* countCaption(std::size_t i) { return kLabels[i].caption; }
std::size_t storedCount(const RecordStore& store, std::size_t i) { return kLabels[i].count(store); }
bool isSavegameLabel(std::size_t i) { return i == 43 || i >= 46; }

void RecordCounts::ShowRecordCounts(const RecordStore& store, std::int32_t total) {
    for (std::size_t i = 0; i < kCountLabels; ++i)
        if (i != kTotalLabel) shown[i] = std::to_string(storedCount(store, i));
    shown[kTotalLabel] = std::to_string(total);
}

std::int64_t RecordCounts::number(std::size_t i) const { return std::strtoll(shown[i].c_str(), nullptr, 10); }

} // namespace quillon

#pragma once
#include "records/es_types.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillon {

// Why records were edited in ways that leave their sizes behind, by record address: the write
// check names the cause when such a record would be written damaged.
using EditNotes = std::unordered_map<const void*, std::string>;

// The whole data file in memory: one array per record type, each holding exactly the records of
// that type in file order. A type the file lacks is an empty array.
struct RecordStore {
    std::vector<Tes3Record> TES3;
    std::vector<GmstRecord> GMST;
    std::vector<GlobRecord> GLOB;
    std::vector<ClasRecord> CLAS;
    std::vector<FactRecord> FACT;
    std::vector<RaceRecord> RACE;
    std::vector<SounRecord> SOUN;
    std::vector<SkilRecord> SKIL;
    std::vector<MgefRecord> MGEF;
    std::vector<ScptRecord> SCPT;
    std::vector<RegnRecord> REGN;
    std::vector<BsgnRecord> BSGN;
    std::vector<LtexRecord> LTEX;
    std::vector<StatRecord> STAT;
    std::vector<DoorRecord> DOOR;
    std::vector<MiscRecord> MISC;
    std::vector<WeapRecord> WEAP;
    std::vector<ContRecord> CONT;
    std::vector<EnchRecord> ENCH;
    std::vector<SpelRecord> SPEL;
    std::vector<BodyRecord> BODY;
    std::vector<LighRecord> LIGH;
    std::vector<ArmoRecord> ARMO;
    std::vector<ClotRecord> CLOT;
    std::vector<RepaRecord> REPA;
    std::vector<ActiRecord> ACTI;
    std::vector<AppaRecord> APPA;
    std::vector<LockRecord> LOCK;
    std::vector<ProbRecord> PROB;
    std::vector<IngrRecord> INGR;
    std::vector<BookRecord> BOOK;
    std::vector<AlchRecord> ALCH;
    std::vector<LeviRecord> LEVI;
    std::vector<LevcRecord> LEVC;
    std::vector<RawRecord> LAND;
    std::vector<PgrdRecord> PGRD;
    std::vector<SndgRecord> SNDG;
    std::vector<SscrRecord> SSCR;
    std::vector<NpcRecord> NPC_;
    std::vector<CreaRecord> CREA;
    std::vector<CellRecord> CELL;
    std::vector<DialRecord> DIAL;
    std::vector<InfoRecord> INFO;
    std::vector<RawRecord> Unknown;
    std::vector<RawRecord> CNTC, CREC, FMAP, GAME, JOUR, KLST, NPCC, PCDT, QUES, REFR, SPLM, STLN;

    // The bytes of the file read, which the raw records point into.
    std::shared_ptr<const std::string> source;

    // NAME of the last DIAL read or written; stamps each INFO read after it.
    std::string CurrentTopic;
    // The user answered the unknown-record question with "Yes To All".
    bool SkipUnknownPrompt = false;
    EditNotes editNotes;

    // Calls f(array) for each of the 56 arrays in the store's fixed order, the unknown records last.
    template <class F> void forEachArray(F&& f);
};

// Empties every array and the current topic; done before a read and by Close.
void ClearRecords(RecordStore& store);
// Drops the reading spare slots. The arrays hold exactly their records already, so only the
// current topic is reset.
void TrimRecords(RecordStore& store);

template <class F> void RecordStore::forEachArray(F&& f) {
    f(TES3), f(GMST), f(GLOB), f(CLAS), f(FACT), f(RACE), f(SOUN), f(SKIL), f(MGEF), f(SCPT), f(REGN);
    f(BSGN), f(LTEX), f(STAT), f(DOOR), f(MISC), f(WEAP), f(CONT), f(ENCH), f(SPEL), f(BODY), f(LIGH);
    f(ARMO), f(CLOT), f(REPA), f(ACTI), f(APPA), f(LOCK), f(PROB), f(INGR), f(BOOK), f(ALCH), f(LEVI);
    f(LEVC), f(LAND), f(PGRD), f(SNDG), f(SSCR), f(NPC_), f(CREA), f(CELL), f(DIAL), f(INFO), f(CNTC);
    f(CREC), f(FMAP), f(GAME), f(JOUR), f(KLST), f(NPCC), f(PCDT), f(QUES), f(REFR), f(SPLM), f(STLN);
    f(Unknown);
}

} // namespace quillon

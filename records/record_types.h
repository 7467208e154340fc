#pragma once
// Every record type the store keeps, listed once, in the order the types are written:
//   X(tag, structure, reader, writer, count label, family)
// The store's arrays, the read dispatch, the write order and the window's count labels all come
// from this list. The count label is the type's place among the window's 57 counts; the family
// tells game data from what only savegames hold. Records of an unknown type are kept apart.
#define QUILLON_RECORD_TYPES(X)                                                                              \
    X(TES3, Tes3Record, readTes3, writeTes3, 41, Data)                                                       \
    X(GMST, GmstRecord, readGmst, writeGmst, 17, Data)                                                       \
    X(GLOB, GlobRecord, readGlob, writeGlob, 16, Data)                                                       \
    X(CLAS, ClasRecord, readClas, writeClas, 8, Data)                                                        \
    X(FACT, FactRecord, readFact, writeFact, 15, Data)                                                       \
    X(RACE, RaceRecord, readRace, writeRace, 31, Data)                                                       \
    X(SOUN, SounRecord, readSoun, writeSoun, 37, Data)                                                       \
    X(SKIL, SkilRecord, readSkil, writeSkil, 35, Data)                                                       \
    X(MGEF, MgefRecord, readMgef, writeMgef, 27, Data)                                                       \
    X(SCPT, ScptRecord, readScpt, writeScpt, 34, Data)                                                       \
    X(REGN, RegnRecord, readRegn, writeRegn, 32, Data)                                                       \
    X(BSGN, BsgnRecord, readBsgn, writeBsgn, 6, Data)                                                        \
    X(LTEX, LtexRecord, readLtex, writeLtex, 25, Data)                                                       \
    X(STAT, StatRecord, readStat, writeStat, 39, Data)                                                       \
    X(DOOR, DoorRecord, readDoor, writeDoor, 13, Data)                                                       \
    X(MISC, MiscRecord, readMisc, writeMisc, 26, Data)                                                       \
    X(WEAP, WeapRecord, readWeap, writeWeap, 45, Data)                                                       \
    X(CONT, ContRecord, readCont, writeCont, 10, Data)                                                       \
    X(SPEL, SpelRecord, readSpel, writeSpel, 38, Data)                                                       \
    X(ENCH, EnchRecord, readEnch, writeEnch, 14, Data)                                                       \
    X(BODY, BodyRecord, readBody, writeBody, 4, Data)                                                        \
    X(LIGH, LighRecord, readLigh, writeLigh, 23, Data)                                                       \
    X(ARMO, ArmoRecord, readArmo, writeArmo, 3, Data)                                                        \
    X(CLOT, ClotRecord, readClot, writeClot, 9, Data)                                                        \
    X(REPA, RepaRecord, readRepa, writeRepa, 33, Data)                                                       \
    X(ACTI, ActiRecord, readActi, writeActi, 0, Data)                                                        \
    X(APPA, AppaRecord, readAppa, writeAppa, 2, Data)                                                        \
    X(LOCK, LockRecord, readLock, writeLock, 24, Data)                                                       \
    X(PROB, ProbRecord, readProb, writeProb, 30, Data)                                                       \
    X(INGR, IngrRecord, readIngr, writeIngr, 19, Data)                                                       \
    X(BOOK, BookRecord, readBook, writeBook, 5, Data)                                                        \
    X(ALCH, AlchRecord, readAlch, writeAlch, 1, Data)                                                        \
    X(LEVI, LeviRecord, readLevi, writeLevi, 22, Data)                                                       \
    X(LEVC, LevcRecord, readLevc, writeLevc, 21, Data)                                                       \
    X(SNDG, SndgRecord, readSndg, writeSndg, 36, Data)                                                       \
    X(SSCR, SscrRecord, readSscr, writeSscr, 40, Data)                                                       \
    X(NPC_, NpcRecord, readNpc, writeNpc, 29, Data)                                                          \
    X(CREA, CreaRecord, readCrea, writeCrea, 11, Data)                                                       \
    X(CELL, CellRecord, readCell, writeCell, 7, Data)                                                        \
    X(LAND, RawRecord, readRaw, writeRaw, 20, Data)                                                          \
    X(PGRD, PgrdRecord, readPgrd, writePgrd, 28, Data)                                                       \
    X(DIAL, DialRecord, readDial, writeDial, 12, Data)                                                       \
    X(INFO, InfoRecord, readInfo, writtenWithItsTopic, 18, Data)                                             \
    X(CNTC, RawRecord, readRaw, writeRaw, 43, Save)                                                          \
    X(CREC, RawRecord, readRaw, writeRaw, 46, Save)                                                          \
    X(FMAP, RawRecord, readRaw, writeRaw, 47, Save)                                                          \
    X(GAME, RawRecord, readRaw, writeRaw, 48, Save)                                                          \
    X(JOUR, RawRecord, readRaw, writeRaw, 49, Save)                                                          \
    X(KLST, RawRecord, readRaw, writeRaw, 50, Save)                                                          \
    X(NPCC, RawRecord, readRaw, writeRaw, 51, Save)                                                          \
    X(PCDT, RawRecord, readRaw, writeRaw, 52, Save)                                                          \
    X(QUES, RawRecord, readRaw, writeRaw, 53, Save)                                                          \
    X(REFR, RawRecord, readRaw, writeRaw, 54, Save)                                                          \
    X(SPLM, RawRecord, readRaw, writeRaw, 55, Save)                                                          \
    X(STLN, RawRecord, readRaw, writeRaw, 56, Save)

// The count labels that are not a record type of the list.
#define QUILLON_UNKNOWN_LABEL 42
#define QUILLON_TOTAL_LABEL 44

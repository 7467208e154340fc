#include "writer/write_common.h"

namespace quillon {

namespace {

// The family's pattern: header, the identifying NAME, then DELE alone for a deleted record or
// the record's own sub-records.
template <class R, class Body> void writeNamed(ByteSink& out, Tag t, const R& r, Body&& body) {
    out.header(t, r);
    out.z(tag("NAME"), r.NAMESize, r.NAME);
    if (isDeleted(r)) {
        out.dele();
        return;
    }
    body();
}

void writeSpells(ByteSink& out, const std::vector<SpellEntry>& spells) {
    for (const SpellEntry& e : spells) {
        out.sub(tag("NPCS"), e.NPCSSize);
        out.bytes(e.Spell);
    }
}

void writeEffects(ByteSink& out, const EffectSlots& effects) {
    for (const Effect& e : effects)
        if (e.ENAMSize != 0) out.block(tag("ENAM"), e.ENAMSize, e.ENAM);
}

void writeBodyParts(ByteSink& out, const BodyPartSlots& parts) {
    for (const BodyPartSlot& p : parts) {
        if (p.INDXSize == 0) continue;
        out.v(tag("INDX"), p.INDXSize, p.INDX);
        out.uOpt(tag("BNAM"), p.BNAMSize, p.BNAM);
        out.uOpt(tag("CNAM"), p.CNAMSize, p.CNAM);
    }
}

// NAME, MODL and the optional FNAM that open most item records.
void writeItemStart(ByteSink& out, const ObjectTexts& o) {
    out.z(tag("MODL"), o.MODLSize, o.MODL);
    out.zOpt(tag("FNAM"), o.FNAMSize, o.FNAM);
}
void writeScriptAndIcon(ByteSink& out, const ObjectTexts& o) {
    out.zOpt(tag("SCRI"), o.SCRISize, o.SCRI);
    out.zOpt(tag("ITEX"), o.ITEXSize, o.ITEX);
}

void writeGmst(ByteSink& out, const GmstRecord& r) {
    out.header(tag("GMST"), r);
    out.u(tag("NAME"), r.NAMESize, r.NAME);
    if (isDeleted(r)) {
        out.dele();
        return;
    }
    // One value only: STRV before INTV before FLTV.
    if (r.STRVSize != 0)
        out.u(tag("STRV"), r.STRVSize, r.STRV);
    else if (r.INTVSize != 0)
        out.v(tag("INTV"), r.INTVSize, r.INTV);
    else if (r.FLTVSize != 0)
        out.v(tag("FLTV"), r.FLTVSize, r.FLTV);
}

void writeGlob(ByteSink& out, const GlobRecord& r) {
    writeNamed(out, tag("GLOB"), r, [&] {
        out.v(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.v(tag("FLTV"), r.FLTVSize, r.FLTV);
    });
}

void writeClas(ByteSink& out, const ClasRecord& r) {
    writeNamed(out, tag("CLAS"), r, [&] {
        out.z(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("CLDT"), r.CLDTSize, r.CLDT);
        out.uOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeFact(ByteSink& out, const FactRecord& r) {
    writeNamed(out, tag("FACT"), r, [&] {
        out.z(tag("FNAM"), r.FNAMSize, r.FNAM);
        for (const FactionRank& rank : r.Ranks) {
            if (rank.RNAMSize == 0 && rank.RNAM[0] == '\0') continue;
            out.sub(tag("RNAM"), rank.RNAMSize);
            out.bytes(rank.RNAM);
        }
        out.block(tag("FADT"), r.FADTSize, r.FADT);
        for (const FactionReaction& reaction : r.Reactions) {
            out.u(tag("ANAM"), reaction.ANAMSize, reaction.ANAM);
            out.v(tag("INTV"), reaction.INTVSize, reaction.INTV);
        }
    });
}

void writeRace(ByteSink& out, const RaceRecord& r) {
    writeNamed(out, tag("RACE"), r, [&] {
        out.z(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("RADT"), r.RADTSize, r.RADT);
        writeSpells(out, r.Powers);
        out.uOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeSoun(ByteSink& out, const SounRecord& r) {
    writeNamed(out, tag("SOUN"), r, [&] {
        out.z(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("DATA"), r.DATASize, r.DATA);
    });
}

// SKIL and MGEF are identified by INDX instead of NAME.
template <class R, class Body> void writeIndexed(ByteSink& out, Tag t, const R& r, Body&& body) {
    out.header(t, r);
    out.v(tag("INDX"), r.INDXSize, r.INDX);
    if (isDeleted(r)) {
        out.dele();
        return;
    }
    body();
}

void writeSkil(ByteSink& out, const SkilRecord& r) {
    writeIndexed(out, tag("SKIL"), r, [&] {
        out.block(tag("SKDT"), r.SKDTSize, r.SKDT);
        out.uOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeMgef(ByteSink& out, const MgefRecord& r) {
    writeIndexed(out, tag("MGEF"), r, [&] {
        out.block(tag("MEDT"), r.MEDTSize, r.MEDT);
        out.z(tag("ITEX"), r.ITEXSize, r.ITEX);
        out.zOpt(tag("PTEX"), r.PTEXSize, r.PTEX);
        out.zOpt(tag("BSND"), r.BSNDSize, r.BSND);
        out.zOpt(tag("CSND"), r.CSNDSize, r.CSND);
        out.zOpt(tag("HSND"), r.HSNDSize, r.HSND);
        out.zOpt(tag("ASND"), r.ASNDSize, r.ASND);
        out.zOpt(tag("BVFX"), r.BVFXSize, r.BVFX);
        out.zOpt(tag("CVFX"), r.CVFXSize, r.CVFX);
        out.zOpt(tag("HVFX"), r.HVFXSize, r.HVFX);
        out.zOpt(tag("AVFX"), r.AVFXSize, r.AVFX);
        out.uOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeRegn(ByteSink& out, const RegnRecord& r) {
    writeNamed(out, tag("REGN"), r, [&] {
        out.z(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.u(tag("WEAT"), r.WEATSize, r.WEAT);
        out.zOpt(tag("BNAM"), r.BNAMSize, r.BNAM);
        out.block(tag("CNAM"), r.CNAMSize, r.CNAM);
        for (const WeatherSound& s : r.Sounds) {
            out.sub(tag("SNAM"), s.SNAMSize);
            out.bytes(s.Sound);
            out.byte(s.Chance);
        }
        out.uOpt(tag("WNAM"), r.WNAMSize, r.WNAM);
    });
}

void writeBsgn(ByteSink& out, const BsgnRecord& r) {
    writeNamed(out, tag("BSGN"), r, [&] {
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.zOpt(tag("TNAM"), r.TNAMSize, r.TNAM);
        out.uOpt(tag("DESC"), r.DESCSize, r.DESC);
        writeSpells(out, r.Spells);
    });
}

void writeLtex(ByteSink& out, const LtexRecord& r) {
    writeNamed(out, tag("LTEX"), r, [&] {
        out.v(tag("INTV"), r.INTVSize, r.INTV);
        out.z(tag("DATA"), r.DATASize, r.DATA);
    });
}

void writeStat(ByteSink& out, const StatRecord& r) {
    writeNamed(out, tag("STAT"), r, [&] { out.z(tag("MODL"), r.MODLSize, r.MODL); });
}

void writeDoor(ByteSink& out, const DoorRecord& r) {
    writeNamed(out, tag("DOOR"), r, [&] {
        out.z(tag("MODL"), r.MODLSize, r.MODL);
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.zOpt(tag("SNAM"), r.SNAMSize, r.SNAM);
        out.zOpt(tag("ANAM"), r.ANAMSize, r.ANAM);
    });
}

// Items whose data block sits between FNAM and SCRI/ITEX: MISC, REPA, LOCK, PROB, INGR.
template <class R, std::size_t N>
void writeSimpleItem(ByteSink& out, Tag t, const R& r, Tag dataTag, std::int32_t size, const Bytes<N>& data) {
    writeNamed(out, t, r, [&] {
        writeItemStart(out, r);
        out.block(dataTag, size, data);
        writeScriptAndIcon(out, r);
    });
}

void writeWeap(ByteSink& out, const WeapRecord& r) {
    writeNamed(out, tag("WEAP"), r, [&] {
        writeItemStart(out, r);
        out.block(tag("WPDT"), r.WPDTSize, r.WPDT);
        writeScriptAndIcon(out, r);
        out.zOpt(tag("ENAM"), r.ENAMSize, r.ENAM);
    });
}

void writeCont(ByteSink& out, const ContRecord& r) {
    writeNamed(out, tag("CONT"), r, [&] {
        out.z(tag("MODL"), r.MODLSize, r.MODL);
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("CNDT"), r.CNDTSize, r.CNDT);
        out.block(tag("FLAG"), r.FLAGSize, r.FLAG);
        if (r.INDXSize != 0) out.v(tag("INDX"), r.INDXSize, r.INDX);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        for (const InventoryItem& e : r.Inventory) {
            out.sub(tag("NPCO"), e.NPCOSize);
            out.int32(e.Count);
            out.bytes(e.Item);
        }
    });
}

void writeSpel(ByteSink& out, const SpelRecord& r) {
    writeNamed(out, tag("SPEL"), r, [&] {
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("SPDT"), r.SPDTSize, r.SPDT);
        writeEffects(out, r.Effects);
    });
}

void writeEnch(ByteSink& out, const EnchRecord& r) {
    writeNamed(out, tag("ENCH"), r, [&] {
        out.block(tag("ENDT"), r.ENDTSize, r.ENDT);
        writeEffects(out, r.Effects);
    });
}

void writeBody(ByteSink& out, const BodyRecord& r) {
    writeNamed(out, tag("BODY"), r, [&] {
        out.z(tag("MODL"), r.MODLSize, r.MODL);
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("BYDT"), r.BYDTSize, r.BYDT);
    });
}

void writeLigh(ByteSink& out, const LighRecord& r) {
    writeNamed(out, tag("LIGH"), r, [&] {
        writeItemStart(out, r);
        out.zOpt(tag("ITEX"), r.ITEXSize, r.ITEX);
        out.block(tag("LHDT"), r.LHDTSize, r.LHDT);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.zOpt(tag("SNAM"), r.SNAMSize, r.SNAM);
    });
}

// ARMO and CLOT.
template <class R, std::size_t N>
void writeWearable(ByteSink& out, Tag t, const R& r, Tag dataTag, std::int32_t size, const Bytes<N>& data) {
    writeNamed(out, t, r, [&] {
        writeItemStart(out, r);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.block(dataTag, size, data);
        out.zOpt(tag("ITEX"), r.ITEXSize, r.ITEX);
        writeBodyParts(out, r.Parts);
        out.zOpt(tag("ENAM"), r.ENAMSize, r.ENAM);
    });
}

void writeActi(ByteSink& out, const ActiRecord& r) {
    writeNamed(out, tag("ACTI"), r, [&] {
        out.z(tag("MODL"), r.MODLSize, r.MODL);
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
    });
}

void writeAppa(ByteSink& out, const AppaRecord& r) {
    writeNamed(out, tag("APPA"), r, [&] {
        writeItemStart(out, r);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.block(tag("AADT"), r.AADTSize, r.AADT);
        out.zOpt(tag("ITEX"), r.ITEXSize, r.ITEX);
    });
}

void writeBook(ByteSink& out, const BookRecord& r) {
    writeNamed(out, tag("BOOK"), r, [&] {
        writeItemStart(out, r);
        out.sub(tag("BKDT"), r.BKDTSize);
        out.value(r.Weight);
        out.int32(r.Value);
        out.int32(r.Scroll);
        out.int32(r.Skill);
        out.int32(r.EnchantPoints);
        writeScriptAndIcon(out, r);
        out.uOpt(tag("TEXT"), r.TEXTSize, r.TEXT); // book text has no terminator
        out.zOpt(tag("ENAM"), r.ENAMSize, r.ENAM);
    });
}

void writeAlch(ByteSink& out, const AlchRecord& r) {
    writeNamed(out, tag("ALCH"), r, [&] {
        out.z(tag("MODL"), r.MODLSize, r.MODL);
        out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.block(tag("ALDT"), r.ALDTSize, r.ALDT);
        out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.zOpt(tag("TEXT"), r.TEXTSize, r.TEXT); // here TEXT is the icon, zero-terminated
        writeEffects(out, r.Effects);
    });
}

void writeLeveled(ByteSink& out, Tag t, const LeviRecord& r, Tag entryTag) {
    writeNamed(out, t, r, [&] {
        out.v(tag("DATA"), r.DATASize, r.DATA);
        out.v(tag("NNAM"), r.NNAMSize, r.NNAM);
        if (r.INDXSize != 0) out.v(tag("INDX"), r.INDXSize, r.INDX);
        for (const LeveledEntry& e : r.Entries) {
            if (e.NameSize == 0 && e.Name.empty()) continue;
            out.z(entryTag, e.NameSize, e.Name);
            out.v(tag("INTV"), e.INTVSize, e.Level);
        }
    });
}

void writeSndg(ByteSink& out, const SndgRecord& r) {
    writeNamed(out, tag("SNDG"), r, [&] {
        out.v(tag("DATA"), r.DATASize, r.DATA);
        out.z(tag("SNAM"), r.SNAMSize, r.SNAM);
        out.zOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    });
}

void writeSscr(ByteSink& out, const SscrRecord& r) {
    out.header(tag("SSCR"), r);
    if (isDeleted(r)) out.dele(); // the one type whose DELE comes first and keeps the rest
    out.u(tag("NAME"), r.NAMESize, r.NAME);
    out.u(tag("DATA"), r.DATASize, r.DATA);
}

template <class R, class F> void writeAll(const std::vector<R>& array, std::int32_t& count, F&& write) {
    for (const R& r : array) {
        write(r);
        ++count;
    }
}

} // namespace

void WriteScptRecord(ByteSink& out, const ScptRecord& r, bool alwaysWriteText) {
    out.header(tag("SCPT"), r);
    out.sub(tag("SCHD"), r.SCHDSize);
    out.bytes(r.ScriptName);
    for (std::int32_t v : {r.NumShorts, r.NumLongs, r.NumFloats, r.ScriptDataSize, r.LocalVarSize}) out.int32(v);
    // Only a script that carried DELE has a deleted form, the one OpenMW-CS writes; the flags
    // alone never delete a script.
    if (r.Dele) {
        out.dele();
        return;
    }
    if (r.SCVRSize != 0) {
        out.sub(tag("SCVR"), r.SCVRSize);
        for (const auto* names : {&r.ShortNames, &r.LongNames, &r.FloatNames}) {
            if (names->empty() || names->front().empty()) continue;
            for (const std::string& name : *names) {
                out.text(name);
                out.byte(0);
            }
        }
    }
    out.uOpt(tag("SCDT"), r.SCDTSize, r.SCDT);
    if (alwaysWriteText || r.SCTXSize != 0) out.u(tag("SCTX"), r.SCTXSize, r.SCTX);
    out.uOpt(tag("SLCS"), r.SLCSSize, r.SLCS);
    out.uOpt(tag("SLSD"), r.SLSDSize, r.SLSD);
    out.uOpt(tag("SLFD"), r.SLFDSize, r.SLFD);
    out.uOpt(tag("RNAM"), r.RNAMSize, r.RNAM);
}

void WriteObjectsBeforeActors(ByteSink& out, const RecordStore& s, bool alwaysWriteText, std::int32_t& n) {
    writeAll(s.GMST, n, [&](auto& r) { writeGmst(out, r); });
    writeAll(s.GLOB, n, [&](auto& r) { writeGlob(out, r); });
    writeAll(s.CLAS, n, [&](auto& r) { writeClas(out, r); });
    writeAll(s.FACT, n, [&](auto& r) { writeFact(out, r); });
    writeAll(s.RACE, n, [&](auto& r) { writeRace(out, r); });
    writeAll(s.SOUN, n, [&](auto& r) { writeSoun(out, r); });
    writeAll(s.SKIL, n, [&](auto& r) { writeSkil(out, r); });
    writeAll(s.MGEF, n, [&](auto& r) { writeMgef(out, r); });
    writeAll(s.SCPT, n, [&](auto& r) { WriteScptRecord(out, r, alwaysWriteText); });
    writeAll(s.REGN, n, [&](auto& r) { writeRegn(out, r); });
    writeAll(s.BSGN, n, [&](auto& r) { writeBsgn(out, r); });
    writeAll(s.LTEX, n, [&](auto& r) { writeLtex(out, r); });
    writeAll(s.STAT, n, [&](auto& r) { writeStat(out, r); });
    writeAll(s.DOOR, n, [&](auto& r) { writeDoor(out, r); });
    writeAll(s.MISC, n, [&](auto& r) { writeSimpleItem(out, tag("MISC"), r, tag("MCDT"), r.MCDTSize, r.MCDT); });
    writeAll(s.WEAP, n, [&](auto& r) { writeWeap(out, r); });
    writeAll(s.CONT, n, [&](auto& r) { writeCont(out, r); });
    // SPEL is written before ENCH although the store holds ENCH first.
    writeAll(s.SPEL, n, [&](auto& r) { writeSpel(out, r); });
    writeAll(s.ENCH, n, [&](auto& r) { writeEnch(out, r); });
    writeAll(s.BODY, n, [&](auto& r) { writeBody(out, r); });
    writeAll(s.LIGH, n, [&](auto& r) { writeLigh(out, r); });
    writeAll(s.ARMO, n, [&](auto& r) { writeWearable(out, tag("ARMO"), r, tag("AODT"), r.AODTSize, r.AODT); });
    writeAll(s.CLOT, n, [&](auto& r) { writeWearable(out, tag("CLOT"), r, tag("CTDT"), r.CTDTSize, r.CTDT); });
    writeAll(s.REPA, n, [&](auto& r) { writeSimpleItem(out, tag("REPA"), r, tag("RIDT"), r.DataSize, r.Data); });
    writeAll(s.ACTI, n, [&](auto& r) { writeActi(out, r); });
    writeAll(s.APPA, n, [&](auto& r) { writeAppa(out, r); });
    writeAll(s.LOCK, n, [&](auto& r) { writeSimpleItem(out, tag("LOCK"), r, tag("LKDT"), r.DataSize, r.Data); });
    writeAll(s.PROB, n, [&](auto& r) { writeSimpleItem(out, tag("PROB"), r, tag("PBDT"), r.DataSize, r.Data); });
    writeAll(s.INGR, n, [&](auto& r) { writeSimpleItem(out, tag("INGR"), r, tag("IRDT"), r.IRDTSize, r.IRDT); });
    writeAll(s.BOOK, n, [&](auto& r) { writeBook(out, r); });
    writeAll(s.ALCH, n, [&](auto& r) { writeAlch(out, r); });
    writeAll(s.LEVI, n, [&](auto& r) { writeLeveled(out, tag("LEVI"), r, tag("INAM")); });
    writeAll(s.LEVC, n, [&](auto& r) { writeLeveled(out, tag("LEVC"), r, tag("CNAM")); });
    writeAll(s.SNDG, n, [&](auto& r) { writeSndg(out, r); });
    writeAll(s.SSCR, n, [&](auto& r) { writeSscr(out, r); });
}

void WritePgrdRecords(ByteSink& out, const RecordStore& s, std::int32_t& n) {
    // Path grids deleted by their flags are written like any other; one that carried DELE gets
    // the deleted form OpenMW-CS writes.
    writeAll(s.PGRD, n, [&](const PgrdRecord& r) {
        out.header(tag("PGRD"), r);
        out.block(tag("DATA"), r.DATASize, r.DATA);
        out.z(tag("NAME"), r.NAMESize, r.NAME);
        if (r.Dele) {
            out.dele();
            return;
        }
        out.uOpt(tag("PGRP"), r.PGRPSize, r.PGRP);
        out.uOpt(tag("PGRC"), r.PGRCSize, r.PGRC);
    });
}

} // namespace quillon

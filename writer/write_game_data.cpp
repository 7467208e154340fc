#include "writer/write_common.h"

#include <cstring>

namespace quillon {

namespace {

// SKIL and MGEF are identified by INDX instead of NAME.
template <class R, class Body> void writeIndexed(ByteSink& out, Tag t, const R& r, Body&& body) {
    out.header(t, r);
    out.writeV(tag("INDX"), r.INDXSize, r.INDX);
    if (isDeleted(r)) {
        out.writeDeletedForm();
        return;
    }
    body();
}

} // namespace

void writeGmst(ByteSink& out, const GmstRecord& r, WriteState&) {
    out.header(tag("GMST"), r);
    out.writeU(tag("NAME"), r.NAMESize, r.NAME);
    if (isDeleted(r)) {
        out.writeDeletedForm();
        return;
    }
    // One value only: STRV before INTV before FLTV.
    if (r.STRVSize != 0)
        out.writeU(tag("STRV"), r.STRVSize, r.STRV);
    else if (r.INTVSize != 0)
        out.writeV(tag("INTV"), r.INTVSize, r.INTV);
    else
        out.writeVOpt(tag("FLTV"), r.FLTVSize, r.FLTV);
}

void writeGlob(ByteSink& out, const GlobRecord& r, WriteState&) {
    writeNamed(out, tag("GLOB"), r, [&] {
        out.writeV(tag("FNAM"), r.FNAMSize, r.FNAM);
        // The stored bytes stand while they still give the value; "ratskilled" is written as 0.
        float stored = r.FLTVStored, value = r.FLTV, taken = globalValue(r, stored);
        bool unchanged = std::memcmp(&taken, &value, sizeof value) == 0 && r.NAME != "ratskilled";
        out.writeV(tag("FLTV"), r.FLTVSize, unchanged ? stored : value);
    });
}

void writeClas(ByteSink& out, const ClasRecord& r, WriteState&) {
    writeNamed(out, tag("CLAS"), r, [&] {
        out.writeZ(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeV(tag("CLDT"), r.CLDTSize, r.CLDT);
        out.writeUOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeFact(ByteSink& out, const FactRecord& r, WriteState&) {
    writeNamed(out, tag("FACT"), r, [&] {
        out.writeZ(tag("FNAM"), r.FNAMSize, r.FNAM);
        for (const FactionRank& rank : r.Ranks)
            if (rank.RNAMSize != 0 || rank.RNAM[0] != '\0') out.writeV(tag("RNAM"), rank.RNAMSize, rank.RNAM);
        out.writeV(tag("FADT"), r.FADTSize, r.FADT);
        for (const FactionReaction& reaction : r.Reactions) {
            out.writeU(tag("ANAM"), reaction.ANAMSize, reaction.ANAM);
            out.writeV(tag("INTV"), reaction.INTVSize, reaction.INTV);
        }
    });
}

void writeRace(ByteSink& out, const RaceRecord& r, WriteState&) {
    writeNamed(out, tag("RACE"), r, [&] {
        out.writeZ(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeV(tag("RADT"), r.RADTSize, r.RADT);
        for (const SpellEntry& e : r.Powers)
            writeSpell(out, e);
        out.writeUOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeSoun(ByteSink& out, const SounRecord& r, WriteState&) {
    writeNamed(out, tag("SOUN"), r, [&] {
        out.writeZ(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeV(tag("DATA"), r.DATASize, r.DATA);
    });
}

void writeSkil(ByteSink& out, const SkilRecord& r, WriteState&) {
    writeIndexed(out, tag("SKIL"), r, [&] {
        out.writeV(tag("SKDT"), r.SKDTSize, r.SKDT);
        out.writeUOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeMgef(ByteSink& out, const MgefRecord& r, WriteState&) {
    writeIndexed(out, tag("MGEF"), r, [&] {
        out.writeV(tag("MEDT"), r.MEDTSize, r.MEDT);
        out.writeZ(tag("ITEX"), r.ITEXSize, r.ITEX);
        out.writeZOpt(tag("PTEX"), r.PTEXSize, r.PTEX);
        out.writeZOpt(tag("BSND"), r.BSNDSize, r.BSND);
        out.writeZOpt(tag("CSND"), r.CSNDSize, r.CSND);
        out.writeZOpt(tag("HSND"), r.HSNDSize, r.HSND);
        out.writeZOpt(tag("ASND"), r.ASNDSize, r.ASND);
        out.writeZOpt(tag("BVFX"), r.BVFXSize, r.BVFX);
        out.writeZOpt(tag("CVFX"), r.CVFXSize, r.CVFX);
        out.writeZOpt(tag("HVFX"), r.HVFXSize, r.HVFX);
        out.writeZOpt(tag("AVFX"), r.AVFXSize, r.AVFX);
        out.writeUOpt(tag("DESC"), r.DESCSize, r.DESC);
    });
}

void writeScpt(ByteSink& out, const ScptRecord& r, WriteState&) {
    out.header(tag("SCPT"), r);
    out.writeFields(tag("SCHD"), r.SCHDSize, r, layout::scriptHeader);
    // Only a script that carried DELE has a deleted form, the one OpenMW-CS writes; the flags
    // alone never delete a script.
    if (r.Dele) {
        out.writeDeletedForm();
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
    out.writeUOpt(tag("SCDT"), r.SCDTSize, r.SCDT);
    out.writeUOpt(tag("SCTX"), r.SCTXSize, r.SCTX);
    out.writeUOpt(tag("SLCS"), r.SLCSSize, r.SLCS);
    out.writeUOpt(tag("SLSD"), r.SLSDSize, r.SLSD);
    out.writeUOpt(tag("SLFD"), r.SLFDSize, r.SLFD);
    out.writeUOpt(tag("RNAM"), r.RNAMSize, r.RNAM);
}

void writeRegn(ByteSink& out, const RegnRecord& r, WriteState&) {
    writeNamed(out, tag("REGN"), r, [&] {
        out.writeZ(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeU(tag("WEAT"), r.WEATSize, r.WEAT);
        out.writeZOpt(tag("BNAM"), r.BNAMSize, r.BNAM);
        out.writeV(tag("CNAM"), r.CNAMSize, r.CNAM);
        for (const WeatherSound& s : r.Sounds)
            out.writeFields(tag("SNAM"), s.SNAMSize, s, layout::weatherSound);
        out.writeUOpt(tag("WNAM"), r.WNAMSize, r.WNAM);
    });
}

void writeBsgn(ByteSink& out, const BsgnRecord& r, WriteState&) {
    writeNamed(out, tag("BSGN"), r, [&] {
        out.writeZOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeZOpt(tag("TNAM"), r.TNAMSize, r.TNAM);
        out.writeUOpt(tag("DESC"), r.DESCSize, r.DESC);
        for (const SpellEntry& e : r.Spells)
            writeSpell(out, e);
    });
}

void writeLtex(ByteSink& out, const LtexRecord& r, WriteState&) {
    writeNamed(out, tag("LTEX"), r, [&] {
        out.writeV(tag("INTV"), r.INTVSize, r.INTV);
        out.writeZ(tag("DATA"), r.DATASize, r.DATA);
    });
}

void writeStat(ByteSink& out, const StatRecord& r, WriteState&) {
    writeNamed(out, tag("STAT"), r, [&] { out.writeZ(tag("MODL"), r.MODLSize, r.MODL); });
}

void writeSndg(ByteSink& out, const SndgRecord& r, WriteState&) {
    writeNamed(out, tag("SNDG"), r, [&] {
        out.writeV(tag("DATA"), r.DATASize, r.DATA);
        out.writeZ(tag("SNAM"), r.SNAMSize, r.SNAM);
        out.writeZOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    });
}

void writeSscr(ByteSink& out, const SscrRecord& r, WriteState&) {
    out.header(tag("SSCR"), r);
    if (isDeleted(r)) out.writeDeletedForm(); // the one type whose DELE comes first and keeps the rest
    out.writeU(tag("NAME"), r.NAMESize, r.NAME);
    out.writeU(tag("DATA"), r.DATASize, r.DATA);
}

// Path grids deleted by their flags are written like any other; one that carried DELE gets the
// deleted form OpenMW-CS writes.
void writePgrd(ByteSink& out, const PgrdRecord& r, WriteState&) {
    out.header(tag("PGRD"), r);
    out.writeV(tag("DATA"), r.DATASize, r.DATA);
    out.writeZ(tag("NAME"), r.NAMESize, r.NAME);
    if (r.Dele) {
        out.writeDeletedForm();
        return;
    }
    out.writeUOpt(tag("PGRP"), r.PGRPSize, r.PGRP);
    out.writeUOpt(tag("PGRC"), r.PGRCSize, r.PGRC);
}

} // namespace quillon

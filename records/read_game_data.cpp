#include "records/read_common.h"

#include <cmath>

namespace quillon {

void readGmst(ByteCursor& in, GmstRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readU(in, r.NAMESize, r.NAME); return true;
        case tag("STRV"): readU(in, r.STRVSize, r.STRV); return true;
        case tag("INTV"): readV(in, r.INTVSize, r.INTV); return true;
        case tag("FLTV"): readV(in, r.FLTVSize, r.FLTV); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

float globalValue(const GlobRecord& r, float v) {
    if (r.NAME == "ratskilled") return 0;
    if (r.FNAM == 's') {
        // The lower bound is -32767, not -32768; halves go to the even neighbour.
        if (v >= -32767.0f && v <= 32767.0f) return std::nearbyint(v);
        return 0;
    }
    return v;
}

void readGlob(ByteCursor& in, GlobRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readV(in, r.FNAMSize, r.FNAM); return true;
        case tag("FLTV"):
            readV(in, r.FLTVSize, r.FLTVStored);
            r.FLTV = globalValue(r, r.FLTVStored);
            return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readClas(ByteCursor& in, ClasRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("CLDT"): readV(in, r.CLDTSize, r.CLDT); return true;
        case tag("DESC"): readU(in, r.DESCSize, r.DESC); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readFact(ByteCursor& in, FactRecord& r, RecordStore&) {
    std::size_t ranks = 0;
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("RNAM"): {
            FactionRank extra; // ten ranks; an eleventh has no slot
            FactionRank& rank = ranks < r.Ranks.size() ? r.Ranks[ranks] : extra;
            readV(in, rank.RNAMSize, rank.RNAM);
            ++ranks;
            return true;
        }
        case tag("FADT"): readV(in, r.FADTSize, r.FADT); return true;
        case tag("ANAM"): {
            FactionReaction& reaction = r.Reactions.emplace_back();
            readU(in, reaction.ANAMSize, reaction.ANAM);
            readV(in, reaction.INTVSize, reaction.INTV); // the INTV tag is passed over, not tested
            return true;
        }
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readRace(ByteCursor& in, RaceRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("RADT"): readV(in, r.RADTSize, r.RADT); return true;
        case tag("DESC"): readU(in, r.DESCSize, r.DESC); return true;
        case tag("NPCS"): readSpell(in, r.Powers.emplace_back()); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readSoun(ByteCursor& in, SounRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("DATA"): readV(in, r.DATASize, r.DATA); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readSkil(ByteCursor& in, SkilRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("INDX"): readV(in, r.INDXSize, r.INDX); return true;
        case tag("SKDT"): readV(in, r.SKDTSize, r.SKDT); return true;
        case tag("DESC"): readU(in, r.DESCSize, r.DESC); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readMgef(ByteCursor& in, MgefRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("INDX"): readV(in, r.INDXSize, r.INDX); return true;
        case tag("MEDT"): readV(in, r.MEDTSize, r.MEDT); return true;
        case tag("DESC"): readU(in, r.DESCSize, r.DESC); return true;
        case tag("ITEX"): readZ(in, r.ITEXSize, r.ITEX); return true;
        case tag("PTEX"): readZ(in, r.PTEXSize, r.PTEX); return true;
        case tag("BSND"): readZ(in, r.BSNDSize, r.BSND); return true;
        case tag("CSND"): readZ(in, r.CSNDSize, r.CSND); return true;
        case tag("HSND"): readZ(in, r.HSNDSize, r.HSND); return true;
        case tag("ASND"): readZ(in, r.ASNDSize, r.ASND); return true;
        case tag("BVFX"): readZ(in, r.BVFXSize, r.BVFX); return true;
        case tag("CVFX"): readZ(in, r.CVFXSize, r.CVFX); return true;
        case tag("HVFX"): readZ(in, r.HVFXSize, r.HVFX); return true;
        case tag("AVFX"): readZ(in, r.AVFXSize, r.AVFX); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

namespace {

// The local variable names: NUL-separated, shorts first, then longs, then floats.
void splitVariableNames(ScptRecord& r, const std::string& data) {
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start < data.size()) {
        std::size_t end = data.find('\0', start);
        if (end == std::string::npos) end = data.size();
        names.push_back(data.substr(start, end - start));
        start = end + 1;
    }
    std::size_t i = 0;
    auto take = [&](std::vector<std::string>& list, i32 count) {
        list.clear();
        for (i32 k = 0; k < count && i < names.size(); ++k)
            list.push_back(names[i++]);
    };
    take(r.ShortNames, r.NumShorts);
    take(r.LongNames, r.NumLongs);
    take(r.FloatNames, r.NumFloats);
}

} // namespace

void readScpt(ByteCursor& in, ScptRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("SCHD"): readFields(in, r.SCHDSize, r, layout::scriptHeader); return true;
        case tag("SCVR"): {
            std::string names;
            readU(in, r.SCVRSize, names);
            splitVariableNames(r, names);
            return true;
        }
        case tag("SCDT"): readU(in, r.SCDTSize, r.SCDT); return true;
        case tag("SCTX"): readU(in, r.SCTXSize, r.SCTX); return true;
        case tag("RNAM"): readU(in, r.RNAMSize, r.RNAM); return true;
        case tag("SLSD"): readU(in, r.SLSDSize, r.SLSD); return true;
        case tag("SLCS"): readU(in, r.SLCSSize, r.SLCS); return true;
        case tag("SLFD"): readU(in, r.SLFDSize, r.SLFD); return true;
        case tag("DELE"): return readDele(in, r); // as OpenMW-CS deletes a script
        default: return false;
        }
    });
}

void readRegn(ByteCursor& in, RegnRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("WEAT"): readU(in, r.WEATSize, r.WEAT); return true;
        case tag("BNAM"): readZ(in, r.BNAMSize, r.BNAM); return true;
        case tag("CNAM"): readV(in, r.CNAMSize, r.CNAM); return true;
        case tag("SNAM"): {
            WeatherSound& s = r.Sounds.emplace_back();
            readFields(in, s.SNAMSize, s, layout::weatherSound);
            return true;
        }
        case tag("WNAM"): readU(in, r.WNAMSize, r.WNAM); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readBsgn(ByteCursor& in, BsgnRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("TNAM"): readZ(in, r.TNAMSize, r.TNAM); return true;
        case tag("DESC"): readU(in, r.DESCSize, r.DESC); return true;
        case tag("NPCS"): readSpell(in, r.Spells.emplace_back()); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readLtex(ByteCursor& in, LtexRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("INTV"): readV(in, r.INTVSize, r.INTV); return true;
        case tag("DATA"): readZ(in, r.DATASize, r.DATA); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readStat(ByteCursor& in, StatRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("MODL"): readZ(in, r.MODLSize, r.MODL); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readSndg(ByteCursor& in, SndgRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("DATA"): readV(in, r.DATASize, r.DATA); return true;
        case tag("CNAM"): readZ(in, r.CNAMSize, r.CNAM); return true;
        case tag("SNAM"): readZ(in, r.SNAMSize, r.SNAM); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readSscr(ByteCursor& in, SscrRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readU(in, r.NAMESize, r.NAME); return true;
        case tag("DATA"): readU(in, r.DATASize, r.DATA); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readPgrd(ByteCursor& in, PgrdRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("DATA"): readV(in, r.DATASize, r.DATA); return true;
        case tag("PGRP"): readU(in, r.PGRPSize, r.PGRP); return true;
        case tag("PGRC"): readU(in, r.PGRCSize, r.PGRC); return true;
        case tag("DELE"): return readDele(in, r); // as OpenMW-CS deletes a path grid
        default: return false;
        }
    });
}

} // namespace quillon

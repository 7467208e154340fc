#include "records/read_common.h"
#include "records/record_store.h"

#include <cmath>

namespace quillon {

namespace {

Step dele(ByteCursor& in, RecordHeader& r) {
    skipDele(in, r);
    return Step::Next;
}

Tag readGmst(ByteCursor& in, GmstRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("STRV"): wsub(in, r.STRVSize, r.STRV); return Step::Next;
        case tag("INTV"): vsub(in, r.INTVSize, r.INTV); return Step::Next;
        case tag("FLTV"): vsub(in, r.FLTVSize, r.FLTV); return Step::Next;
        case tag("NAME"): wsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

// The game's own rules for a global's stored value.
float globalValue(const GlobRecord& r, float v) {
    if (r.NAME == "ratskilled") return 0;
    if (r.FNAM == 's') {
        // The lower bound is -32767, not -32768; halves go to the even neighbour.
        if (v >= -32767.0f && v <= 32767.0f) return std::nearbyint(v);
        return 0;
    }
    return v;
}

Tag readGlob(ByteCursor& in, GlobRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"):
            r.FNAMSize = in.i32();
            r.FNAM = char(in.u8());
            return Step::Next;
        case tag("FLTV"):
            vsub(in, r.FLTVSize, r.FLTV);
            r.FLTV = globalValue(r, r.FLTV);
            return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readClas(ByteCursor& in, ClasRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("CLDT"): bsub(in, r.CLDTSize, r.CLDT); return Step::Next;
        case tag("DESC"): wsub(in, r.DESCSize, r.DESC); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readFact(ByteCursor& in, FactRecord& r) {
    std::size_t ranks = 0;
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("RNAM"): {
            FactionRank extra; // ten ranks; an eleventh has no slot
            FactionRank& rank = ranks < r.Ranks.size() ? r.Ranks[ranks] : extra;
            rank.RNAMSize = in.i32();
            in.bytes(rank.RNAM);
            ++ranks;
            return Step::Next;
        }
        case tag("FADT"): bsub(in, r.FADTSize, r.FADT); return Step::Next;
        case tag("ANAM"): {
            FactionReaction& reaction = r.Reactions.emplace_back();
            wsub(in, reaction.ANAMSize, reaction.ANAM);
            in.skip(4); // the INTV tag is passed over, not tested
            vsub(in, reaction.INTVSize, reaction.INTV);
            return Step::Next;
        }
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

void readSpell(ByteCursor& in, std::vector<SpellEntry>& list) {
    SpellEntry& e = list.emplace_back();
    e.NPCSSize = in.i32();
    in.bytes(e.Spell);
}

Tag readRace(ByteCursor& in, RaceRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("RADT"): bsub(in, r.RADTSize, r.RADT); return Step::Next;
        case tag("DESC"): wsub(in, r.DESCSize, r.DESC); return Step::Next;
        case tag("NPCS"): readSpell(in, r.Powers); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readSoun(ByteCursor& in, SounRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("DATA"): bsub(in, r.DATASize, r.DATA); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readSkil(ByteCursor& in, SkilRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("INDX"): vsub(in, r.INDXSize, r.INDX); return Step::Next;
        case tag("SKDT"): bsub(in, r.SKDTSize, r.SKDT); return Step::Next;
        case tag("DESC"): wsub(in, r.DESCSize, r.DESC); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readMgef(ByteCursor& in, MgefRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("INDX"): vsub(in, r.INDXSize, r.INDX); return Step::Next;
        case tag("MEDT"): bsub(in, r.MEDTSize, r.MEDT); return Step::Next;
        case tag("DESC"): wsub(in, r.DESCSize, r.DESC); return Step::Next;
        case tag("ITEX"): zsub(in, r.ITEXSize, r.ITEX); return Step::Next;
        case tag("PTEX"): zsub(in, r.PTEXSize, r.PTEX); return Step::Next;
        case tag("BSND"): zsub(in, r.BSNDSize, r.BSND); return Step::Next;
        case tag("CSND"): zsub(in, r.CSNDSize, r.CSND); return Step::Next;
        case tag("HSND"): zsub(in, r.HSNDSize, r.HSND); return Step::Next;
        case tag("ASND"): zsub(in, r.ASNDSize, r.ASND); return Step::Next;
        case tag("BVFX"): zsub(in, r.BVFXSize, r.BVFX); return Step::Next;
        case tag("CVFX"): zsub(in, r.CVFXSize, r.CVFX); return Step::Next;
        case tag("HVFX"): zsub(in, r.HVFXSize, r.HVFX); return Step::Next;
        case tag("AVFX"): zsub(in, r.AVFXSize, r.AVFX); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

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
        for (i32 k = 0; k < count && i < names.size(); ++k) list.push_back(names[i++]);
    };
    take(r.ShortNames, r.NumShorts);
    take(r.LongNames, r.NumLongs);
    take(r.FloatNames, r.NumFloats);
}

Tag readScpt(ByteCursor& in, ScptRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("SCHD"):
            r.SCHDSize = in.i32();
            in.bytes(r.ScriptName);
            r.NumShorts = in.i32();
            r.NumLongs = in.i32();
            r.NumFloats = in.i32();
            r.ScriptDataSize = in.i32();
            r.LocalVarSize = in.i32();
            return Step::Next;
        case tag("SCVR"):
            r.SCVRSize = in.i32();
            splitVariableNames(r, in.text(r.SCVRSize));
            return Step::Next;
        case tag("SCDT"): viewsub(in, r.SCDTSize, r.SCDT); return Step::Next;
        case tag("SCTX"): viewsub(in, r.SCTXSize, r.SCTX); return Step::Next;
        case tag("RNAM"): wsub(in, r.RNAMSize, r.RNAM); return Step::Next;
        case tag("SLSD"): wsub(in, r.SLSDSize, r.SLSD); return Step::Next;
        case tag("SLCS"): wsub(in, r.SLCSSize, r.SLCS); return Step::Next;
        case tag("SLFD"): wsub(in, r.SLFDSize, r.SLFD); return Step::Next;
        case tag("DELE"): return dele(in, r); // as OpenMW-CS deletes a script
        default: return Step::End;
        }
    });
}

Tag readRegn(ByteCursor& in, RegnRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("WEAT"): wsub(in, r.WEATSize, r.WEAT); return Step::Next;
        case tag("BNAM"): zsub(in, r.BNAMSize, r.BNAM); return Step::Next;
        case tag("CNAM"): bsub(in, r.CNAMSize, r.CNAM); return Step::Next;
        case tag("SNAM"): {
            WeatherSound& s = r.Sounds.emplace_back();
            s.SNAMSize = in.i32();
            in.bytes(s.Sound);
            s.Chance = in.u8();
            return Step::Next;
        }
        case tag("WNAM"): wsub(in, r.WNAMSize, r.WNAM); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readBsgn(ByteCursor& in, BsgnRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("TNAM"): zsub(in, r.TNAMSize, r.TNAM); return Step::Next;
        case tag("DESC"): wsub(in, r.DESCSize, r.DESC); return Step::Next;
        case tag("NPCS"): readSpell(in, r.Spells); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readLtex(ByteCursor& in, LtexRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("INTV"): vsub(in, r.INTVSize, r.INTV); return Step::Next;
        case tag("DATA"): zsub(in, r.DATASize, r.DATA); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readStat(ByteCursor& in, StatRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readSscr(ByteCursor& in, SscrRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): wsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("DATA"): wsub(in, r.DATASize, r.DATA); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readDoor(ByteCursor& in, DoorRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("SCRI"): zsub(in, r.SCRISize, r.SCRI); return Step::Next;
        case tag("SNAM"): zsub(in, r.SNAMSize, r.SNAM); return Step::Next;
        case tag("ANAM"): zsub(in, r.ANAMSize, r.ANAM); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

// Object records made of the shared texts, one fixed data block and possibly more.
template <class R, std::size_t N, class More>
Tag readItem(ByteCursor& in, R& r, Tag dataTag, i32& dataSize, Bytes<N>& data, More&& more) {
    return readRecord(in, r, [&](Tag& t) {
        if (objectText(in, t, r)) return Step::Next;
        if (t == dataTag) {
            bsub(in, dataSize, data);
            return Step::Next;
        }
        if (t == tag("DELE")) return dele(in, r);
        return more(t);
    });
}
constexpr auto nothingMore = [](Tag&) { return Step::End; };

Tag readCont(ByteCursor& in, ContRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("INDX"): vsub(in, r.INDXSize, r.INDX); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("SCRI"): zsub(in, r.SCRISize, r.SCRI); return Step::Next;
        case tag("CNDT"): bsub(in, r.CNDTSize, r.CNDT); return Step::Next;
        case tag("FLAG"): bsub(in, r.FLAGSize, r.FLAG); return Step::Next;
        case tag("NPCO"): {
            InventoryItem& e = r.Inventory.emplace_back();
            e.NPCOSize = in.i32();
            e.Count = in.i32();
            in.bytes(e.Item);
            return Step::Next;
        }
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

// Effects in file order, a ninth and later kept as well.
void readEffect(ByteCursor& in, EffectSlots& effects) {
    Effect& e = effects.emplace_back();
    bsub(in, e.ENAMSize, e.ENAM);
}

Tag readSpel(ByteCursor& in, SpelRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("SPDT"): bsub(in, r.SPDTSize, r.SPDT); return Step::Next;
        case tag("ENAM"): readEffect(in, r.Effects); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readEnch(ByteCursor& in, EnchRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("ENDT"): bsub(in, r.ENDTSize, r.ENDT); return Step::Next;
        case tag("ENAM"): readEffect(in, r.Effects); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readBody(ByteCursor& in, BodyRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("BYDT"): bsub(in, r.BYDTSize, r.BYDT); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

// ARMO and CLOT body parts: each INDX opens a new group, an eighth and later ones included; a
// CNAM, then a BNAM, then a CNAM may follow it. BNAM and CNAM are taken whole; one met before any
// INDX has no group and is passed over.
struct BodyParts {
    BodyPartSlots& groups;
    BodyPartSlot unplaced;

    BodyPartSlot& current() { return groups.empty() ? unplaced : groups.back(); }

    Step read(ByteCursor& in, Tag& t) {
        switch (t) {
        case tag("INDX"): {
            BodyPartSlot& group = groups.emplace_back();
            vsub(in, group.INDXSize, group.INDX);
            t = in.tag();
            for (Tag optional : {tag("CNAM"), tag("BNAM"), tag("CNAM")}) {
                if (t != optional) continue;
                readName(in, t, group);
                t = in.tag();
            }
            return Step::InHand;
        }
        case tag("BNAM"):
        case tag("CNAM"): readName(in, t, current()); return Step::Next;
        default: return Step::End;
        }
    }
    static void readName(ByteCursor& in, Tag t, BodyPartSlot& group) {
        if (t == tag("BNAM"))
            wsub(in, group.BNAMSize, group.BNAM);
        else
            wsub(in, group.CNAMSize, group.CNAM);
    }
};

template <class R> Step readEnchantment(ByteCursor& in, Tag t, R& r) {
    if (t != tag("ENAM")) return Step::End;
    zsub(in, r.ENAMSize, r.ENAM);
    return Step::Next;
}

Tag readArmo(ByteCursor& in, ArmoRecord& r) {
    BodyParts parts{r.Parts, {}};
    return readItem(in, r, tag("AODT"), r.AODTSize, r.AODT, [&](Tag& t) {
        Step s = readEnchantment(in, t, r);
        return s != Step::End ? s : parts.read(in, t);
    });
}

Tag readClot(ByteCursor& in, ClotRecord& r) {
    BodyParts parts{r.Parts, {}};
    return readItem(in, r, tag("CTDT"), r.CTDTSize, r.CTDT, [&](Tag& t) {
        Step s = readEnchantment(in, t, r);
        return s != Step::End ? s : parts.read(in, t);
    });
}

Tag readActi(ByteCursor& in, ActiRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("SCRI"): zsub(in, r.SCRISize, r.SCRI); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readBook(ByteCursor& in, BookRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        if (objectText(in, t, r)) return Step::Next;
        switch (t) {
        case tag("ENAM"): zsub(in, r.ENAMSize, r.ENAM); return Step::Next;
        case tag("TEXT"): viewsub(in, r.TEXTSize, r.TEXT); return Step::Next;
        case tag("BKDT"):
            r.BKDTSize = in.i32();
            r.Weight = in.f32();
            r.Value = in.i32();
            r.Scroll = in.i32();
            r.Skill = in.i32();
            r.EnchantPoints = in.i32();
            return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readAlch(ByteCursor& in, AlchRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("SCRI"): zsub(in, r.SCRISize, r.SCRI); return Step::Next;
        case tag("TEXT"): zsub(in, r.TEXTSize, r.TEXT); return Step::Next;
        case tag("ALDT"): bsub(in, r.ALDTSize, r.ALDT); return Step::Next;
        case tag("ENAM"): readEffect(in, r.Effects); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

// LEVI and LEVC; entryTag is INAM for items, CNAM for creatures, each with its level after it.
Tag readLeveled(ByteCursor& in, LeviRecord& r, Tag entryTag) {
    return readRecord(in, r, [&](Tag& t) {
        if (t == entryTag) {
            LeveledEntry& e = r.Entries.emplace_back();
            zsub(in, e.NameSize, e.Name);
            t = in.tag();
            if (t == tag("INTV")) {
                vsub(in, e.INTVSize, e.Level);
                t = in.tag();
            }
            return Step::InHand;
        }
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("DATA"): vsub(in, r.DATASize, r.DATA); return Step::Next;
        case tag("NNAM"): vsub(in, r.NNAMSize, r.NNAM); return Step::Next;
        case tag("INDX"): vsub(in, r.INDXSize, r.INDX); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readSndg(ByteCursor& in, SndgRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("DATA"): vsub(in, r.DATASize, r.DATA); return Step::Next;
        case tag("CNAM"): zsub(in, r.CNAMSize, r.CNAM); return Step::Next;
        case tag("SNAM"): zsub(in, r.SNAMSize, r.SNAM); return Step::Next;
        case tag("DELE"): return dele(in, r);
        default: return Step::End;
        }
    });
}

Tag readPgrd(ByteCursor& in, PgrdRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("DATA"): bsub(in, r.DATASize, r.DATA); return Step::Next;
        case tag("PGRP"): viewsub(in, r.PGRPSize, r.PGRP); return Step::Next;
        case tag("PGRC"): viewsub(in, r.PGRCSize, r.PGRC); return Step::Next;
        case tag("DELE"): return dele(in, r); // as OpenMW-CS deletes a path grid
        default: return Step::End;
        }
    });
}

} // namespace

bool readObjectRecord(ByteCursor& in, Tag t, RecordStore& s, Tag& next) {
    auto item = [&](auto& array, auto dataTag, auto member) {
        return appendTo(array, [&](auto& r) {
            return readItem(in, r, dataTag, r.*member.first, r.*member.second, nothingMore);
        });
    };
    switch (t) {
    case tag("GMST"): next = appendTo(s.GMST, [&](auto& r) { return readGmst(in, r); }); return true;
    case tag("GLOB"): next = appendTo(s.GLOB, [&](auto& r) { return readGlob(in, r); }); return true;
    case tag("CLAS"): next = appendTo(s.CLAS, [&](auto& r) { return readClas(in, r); }); return true;
    case tag("FACT"): next = appendTo(s.FACT, [&](auto& r) { return readFact(in, r); }); return true;
    case tag("RACE"): next = appendTo(s.RACE, [&](auto& r) { return readRace(in, r); }); return true;
    case tag("SOUN"): next = appendTo(s.SOUN, [&](auto& r) { return readSoun(in, r); }); return true;
    case tag("SKIL"): next = appendTo(s.SKIL, [&](auto& r) { return readSkil(in, r); }); return true;
    case tag("MGEF"): next = appendTo(s.MGEF, [&](auto& r) { return readMgef(in, r); }); return true;
    case tag("SCPT"): next = appendTo(s.SCPT, [&](auto& r) { return readScpt(in, r); }); return true;
    case tag("REGN"): next = appendTo(s.REGN, [&](auto& r) { return readRegn(in, r); }); return true;
    case tag("BSGN"): next = appendTo(s.BSGN, [&](auto& r) { return readBsgn(in, r); }); return true;
    case tag("LTEX"): next = appendTo(s.LTEX, [&](auto& r) { return readLtex(in, r); }); return true;
    case tag("STAT"): next = appendTo(s.STAT, [&](auto& r) { return readStat(in, r); }); return true;
    case tag("DOOR"): next = appendTo(s.DOOR, [&](auto& r) { return readDoor(in, r); }); return true;
    case tag("MISC"):
        next = item(s.MISC, tag("MCDT"), std::pair{&MiscRecord::MCDTSize, &MiscRecord::MCDT});
        return true;
    case tag("WEAP"):
        next = appendTo(s.WEAP, [&](WeapRecord& r) {
            return readItem(in, r, tag("WPDT"), r.WPDTSize, r.WPDT,
                            [&](Tag& t2) { return readEnchantment(in, t2, r); });
        });
        return true;
    case tag("CONT"): next = appendTo(s.CONT, [&](auto& r) { return readCont(in, r); }); return true;
    case tag("SPEL"): next = appendTo(s.SPEL, [&](auto& r) { return readSpel(in, r); }); return true;
    case tag("ENCH"): next = appendTo(s.ENCH, [&](auto& r) { return readEnch(in, r); }); return true;
    case tag("BODY"): next = appendTo(s.BODY, [&](auto& r) { return readBody(in, r); }); return true;
    case tag("LIGH"):
        next = appendTo(s.LIGH, [&](LighRecord& r) {
            return readItem(in, r, tag("LHDT"), r.LHDTSize, r.LHDT, [&](Tag& t2) {
                if (t2 != tag("SNAM")) return Step::End;
                zsub(in, r.SNAMSize, r.SNAM);
                return Step::Next;
            });
        });
        return true;
    case tag("ARMO"): next = appendTo(s.ARMO, [&](auto& r) { return readArmo(in, r); }); return true;
    case tag("CLOT"): next = appendTo(s.CLOT, [&](auto& r) { return readClot(in, r); }); return true;
    case tag("REPA"):
        next = item(s.REPA, tag("RIDT"), std::pair{&RepaRecord::DataSize, &RepaRecord::Data});
        return true;
    case tag("LOCK"):
        next = item(s.LOCK, tag("LKDT"), std::pair{&RepaRecord::DataSize, &RepaRecord::Data});
        return true;
    case tag("PROB"):
        next = item(s.PROB, tag("PBDT"), std::pair{&RepaRecord::DataSize, &RepaRecord::Data});
        return true;
    case tag("ACTI"): next = appendTo(s.ACTI, [&](auto& r) { return readActi(in, r); }); return true;
    case tag("APPA"):
        next = item(s.APPA, tag("AADT"), std::pair{&AppaRecord::AADTSize, &AppaRecord::AADT});
        return true;
    case tag("INGR"):
        next = item(s.INGR, tag("IRDT"), std::pair{&IngrRecord::IRDTSize, &IngrRecord::IRDT});
        return true;
    case tag("BOOK"): next = appendTo(s.BOOK, [&](auto& r) { return readBook(in, r); }); return true;
    case tag("ALCH"): next = appendTo(s.ALCH, [&](auto& r) { return readAlch(in, r); }); return true;
    case tag("LEVI"):
        next = appendTo(s.LEVI, [&](auto& r) { return readLeveled(in, r, tag("INAM")); });
        return true;
    case tag("LEVC"):
        next = appendTo(s.LEVC, [&](auto& r) { return readLeveled(in, r, tag("CNAM")); });
        return true;
    case tag("SNDG"): next = appendTo(s.SNDG, [&](auto& r) { return readSndg(in, r); }); return true;
    case tag("SSCR"): next = appendTo(s.SSCR, [&](auto& r) { return readSscr(in, r); }); return true;
    case tag("PGRD"): next = appendTo(s.PGRD, [&](auto& r) { return readPgrd(in, r); }); return true;
    default: return false;
    }
}

} // namespace quillon

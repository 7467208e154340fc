#include "records/read_common.h"

namespace quillon {

namespace {

// Object records made of the shared texts, one fixed data block and possibly more (more(t) takes
// the record's other sub-records and returns false for a tag that is not its own).
template <class R, class Data, class More>
void readItem(ByteCursor& in, R& r, Tag dataTag, i32& dataSize, Data& data, More&& more) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r)) return true;
        if (t == dataTag) {
            readV(in, dataSize, data);
            return true;
        }
        if (t == tag("DELE")) return readDele(in, r);
        return more(t);
    });
}
constexpr auto nothingMore = [](Tag) { return false; };

// The enchantment of a weapon or something worn; false for any other tag.
template <class R> bool readEnchantment(ByteCursor& in, Tag t, R& r) {
    if (t != tag("ENAM")) return false;
    readZ(in, r.ENAMSize, r.ENAM);
    return true;
}

// ARMO and CLOT body parts: each INDX opens a new group, an eighth and later ones included; a
// CNAM, then a BNAM, then a CNAM may follow it. BNAM and CNAM are taken whole; one met before any
// INDX has no group and is passed over.
struct BodyParts {
    BodyPartSlots& groups;
    BodyPartSlot unplaced;

    BodyPartSlot& current() { return groups.empty() ? unplaced : groups.back(); }

    bool read(ByteCursor& in, Tag t) {
        switch (t) {
        case tag("INDX"): {
            BodyPartSlot& group = groups.emplace_back();
            readV(in, group.INDXSize, group.INDX);
            for (Tag optional : {tag("CNAM"), tag("BNAM"), tag("CNAM")})
                if (in.nextIs(optional)) readName(in, optional, group);
            return true;
        }
        case tag("BNAM"):
        case tag("CNAM"): readName(in, t, current()); return true;
        default: return false;
        }
    }
    static void readName(ByteCursor& in, Tag t, BodyPartSlot& group) {
        if (t == tag("BNAM"))
            readU(in, group.BNAMSize, group.BNAM);
        else
            readU(in, group.CNAMSize, group.CNAM);
    }
};

// ARMO and CLOT.
template <class R, class Data>
void readWearable(ByteCursor& in, R& r, Tag dataTag, i32& dataSize, Data& data) {
    BodyParts parts{r.Parts, {}};
    readItem(in, r, dataTag, dataSize, data,
             [&](Tag t) { return readEnchantment(in, t, r) || parts.read(in, t); });
}

// LEVI and LEVC; entryTag is INAM for items, CNAM for creatures, each with its level after it.
void readLeveled(ByteCursor& in, LeviRecord& r, Tag entryTag) {
    readRecord(in, r, [&](Tag t) {
        if (t == entryTag) {
            LeveledEntry& e = r.Entries.emplace_back();
            readZ(in, e.NameSize, e.Name);
            if (in.nextIs(tag("INTV"))) readV(in, e.INTVSize, e.Level);
            return true;
        }
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("DATA"): readV(in, r.DATASize, r.DATA); return true;
        case tag("NNAM"): readV(in, r.NNAMSize, r.NNAM); return true;
        case tag("INDX"): readV(in, r.INDXSize, r.INDX); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

} // namespace

void readDoor(ByteCursor& in, DoorRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r, WithIcon::No)) return true;
        switch (t) {
        case tag("SNAM"): readZ(in, r.SNAMSize, r.SNAM); return true;
        case tag("ANAM"): readZ(in, r.ANAMSize, r.ANAM); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readMisc(ByteCursor& in, MiscRecord& r, RecordStore&) {
    readItem(in, r, tag("MCDT"), r.MCDTSize, r.MCDT, nothingMore);
}

void readWeap(ByteCursor& in, WeapRecord& r, RecordStore&) {
    readItem(in, r, tag("WPDT"), r.WPDTSize, r.WPDT, [&](Tag t) { return readEnchantment(in, t, r); });
}

void readCont(ByteCursor& in, ContRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r, WithIcon::No)) return true;
        switch (t) {
        case tag("INDX"): readV(in, r.INDXSize, r.INDX); return true;
        case tag("CNDT"): readV(in, r.CNDTSize, r.CNDT); return true;
        case tag("FLAG"): readV(in, r.FLAGSize, r.FLAG); return true;
        case tag("NPCO"): readInventoryItem(in, r.Inventory.emplace_back()); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readSpel(ByteCursor& in, SpelRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("SPDT"): readV(in, r.SPDTSize, r.SPDT); return true;
        case tag("ENAM"): readEffect(in, r.Effects.emplace_back()); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readEnch(ByteCursor& in, EnchRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("ENDT"): readV(in, r.ENDTSize, r.ENDT); return true;
        case tag("ENAM"): readEffect(in, r.Effects.emplace_back()); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readBody(ByteCursor& in, BodyRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        switch (t) {
        case tag("NAME"): readZ(in, r.NAMESize, r.NAME); return true;
        case tag("MODL"): readZ(in, r.MODLSize, r.MODL); return true;
        case tag("FNAM"): readZ(in, r.FNAMSize, r.FNAM); return true;
        case tag("BYDT"): readV(in, r.BYDTSize, r.BYDT); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readLigh(ByteCursor& in, LighRecord& r, RecordStore&) {
    readItem(in, r, tag("LHDT"), r.LHDTSize, r.LHDT, [&](Tag t) {
        if (t != tag("SNAM")) return false;
        readZ(in, r.SNAMSize, r.SNAM);
        return true;
    });
}

void readArmo(ByteCursor& in, ArmoRecord& r, RecordStore&) {
    readWearable(in, r, tag("AODT"), r.AODTSize, r.AODT);
}
void readClot(ByteCursor& in, ClotRecord& r, RecordStore&) {
    readWearable(in, r, tag("CTDT"), r.CTDTSize, r.CTDT);
}
void readRepa(ByteCursor& in, RepaRecord& r, RecordStore&) {
    readItem(in, r, tag("RIDT"), r.DataSize, r.Data, nothingMore);
}

void readActi(ByteCursor& in, ActiRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r, WithIcon::No)) return true;
        switch (t) {
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readAppa(ByteCursor& in, AppaRecord& r, RecordStore&) {
    readItem(in, r, tag("AADT"), r.AADTSize, r.AADT, nothingMore);
}
void readLock(ByteCursor& in, LockRecord& r, RecordStore&) {
    readItem(in, r, tag("LKDT"), r.DataSize, r.Data, nothingMore);
}
void readProb(ByteCursor& in, ProbRecord& r, RecordStore&) {
    readItem(in, r, tag("PBDT"), r.DataSize, r.Data, nothingMore);
}
void readIngr(ByteCursor& in, IngrRecord& r, RecordStore&) {
    readItem(in, r, tag("IRDT"), r.IRDTSize, r.IRDT, nothingMore);
}

void readBook(ByteCursor& in, BookRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r)) return true;
        switch (t) {
        case tag("ENAM"): readZ(in, r.ENAMSize, r.ENAM); return true;
        case tag("TEXT"): readU(in, r.TEXTSize, r.TEXT); return true;
        case tag("BKDT"): readFields(in, r.BKDTSize, r, layout::bookData); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readAlch(ByteCursor& in, AlchRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r, WithIcon::No)) return true;
        switch (t) {
        case tag("TEXT"): readZ(in, r.TEXTSize, r.TEXT); return true;
        case tag("ALDT"): readV(in, r.ALDTSize, r.ALDT); return true;
        case tag("ENAM"): readEffect(in, r.Effects.emplace_back()); return true;
        case tag("DELE"): return readDele(in, r);
        default: return false;
        }
    });
}

void readLevi(ByteCursor& in, LeviRecord& r, RecordStore&) {
    readLeveled(in, r, tag("INAM"));
}
void readLevc(ByteCursor& in, LevcRecord& r, RecordStore&) {
    readLeveled(in, r, tag("CNAM"));
}

} // namespace quillon

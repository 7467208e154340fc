#include "records/read_common.h"

namespace quillon {

namespace {

// A run of one repeated sub-record. Every run is kept, in file order: a file the game writes
// has one run per list, and a later run (which the editors can leave) is appended rather than
// overwriting the first, so that nothing its record's Size counts is lost. Returns the first tag
// after the run.
template <class Entry, class ReadEntry>
Tag readRun(ByteCursor& in, Tag runTag, std::vector<Entry>& list, ReadEntry&& readEntry) {
    Tag t = runTag;
    while (t == runTag) {
        readEntry(list.emplace_back());
        t = in.tag();
    }
    return t;
}

// A follow or escort package and the CNDT cell name that may come right after it.
Tag readFollow(ByteCursor& in, FollowPackage& p) {
    p.Size = in.i32();
    p.X = in.f32();
    p.Y = in.f32();
    p.Z = in.f32();
    p.Duration = in.i16();
    in.bytes(p.Target);
    p.Reset = in.i16();
    Tag t = in.tag();
    if (t == tag("CNDT")) {
        zsub(in, p.CNDTSize, p.CNDT);
        t = in.tag();
    }
    return t;
}

// A run of travel destinations, each with the DNAM cell name that may follow it.
Tag readDestination(ByteCursor& in, TravelDestination& d) {
    d.DODTSize = in.i32();
    for (float& f : d.Position) f = in.f32();
    Tag t = in.tag();
    if (t == tag("DNAM")) {
        zsub(in, d.DNAMSize, d.DNAM);
        t = in.tag();
    }
    return t;
}

// The sub-records NPC_ and CREA records share after their texts.
Step readActorPart(ByteCursor& in, Tag& t, RecordHeader& r, ActorLists& a) {
    switch (t) {
    case tag("FLAG"):
        a.FLAGSize = in.i32();
        a.FLAG[0] = in.u8();
        a.FLAG[1] = in.u8();
        in.skip(2); // the upper two bytes of the flag word are not kept
        return Step::Next;
    case tag("INDX"): vsub(in, a.INDXSize, a.INDX); return Step::Next;
    case tag("NPCO"):
        t = readRun(in, t, a.Inventory, [&](InventoryItem& e) {
            e.NPCOSize = in.i32();
            e.Count = in.i32();
            in.bytes(e.Item);
        });
        return Step::InHand;
    case tag("NPCS"):
        t = readRun(in, t, a.Spells, [&](SpellEntry& e) {
            e.NPCSSize = in.i32();
            in.bytes(e.Spell);
        });
        return Step::InHand;
    case tag("AIDT"):
        bsub(in, a.AIDTSize, a.AIDT);
        a.AIDTFlags = in.i32();
        return Step::Next;
    case tag("AI_W"): {
        // The package lists count across runs: every package lands in its list in file order.
        WanderPackage& p = a.Wander.emplace_back();
        p.AI_WSize = in.i32();
        p.Distance = in.i16();
        p.Duration = in.i16();
        p.TimeOfDay = in.u8();
        in.bytes(p.Idles);
        p.Reset = in.u8();
        return Step::Next;
    }
    case tag("AI_T"): {
        TravelPackage& p = a.Travel.emplace_back();
        p.AI_TSize = in.i32();
        p.X = in.f32();
        p.Y = in.f32();
        p.Z = in.f32();
        p.Reset = in.i32();
        return Step::Next;
    }
    case tag("AI_A"): {
        ActivatePackage& p = a.Activate.emplace_back();
        p.AI_ASize = in.i32();
        in.bytes(p.Target);
        p.Reset = in.u8();
        return Step::Next;
    }
    case tag("AI_F"): t = readFollow(in, a.Follow.emplace_back()); return Step::InHand;
    case tag("AI_E"): t = readFollow(in, a.Escort.emplace_back()); return Step::InHand;
    case tag("DODT"): t = readDestination(in, a.Destinations.emplace_back()); return Step::InHand;
    case tag("DELE"): skipDele(in, r); return Step::Next;
    default: return Step::End;
    }
}

} // namespace

Tag readNpc(ByteCursor& in, NpcRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("RNAM"): zsub(in, r.RNAMSize, r.RNAM); return Step::Next;
        case tag("CNAM"): zsub(in, r.CNAMSize, r.CNAM); return Step::Next;
        case tag("ANAM"): zsub(in, r.ANAMSize, r.ANAM); return Step::Next;
        case tag("BNAM"): zsub(in, r.BNAMSize, r.BNAM); return Step::Next;
        case tag("KNAM"): zsub(in, r.KNAMSize, r.KNAM); return Step::Next;
        case tag("SCRI"): zsub(in, r.SCRISize, r.SCRI); return Step::Next;
        case tag("NPDT"):
            // 12 bytes for an auto-calculated NPC; any other size is taken as the full 52.
            r.NPDTSize = in.i32();
            if (r.NPDTSize == 12)
                in.bytes(r.NPDTShort);
            else
                in.bytes(r.NPDT);
            return Step::Next;
        default: return readActorPart(in, t, r, r);
        }
    });
}

Tag readCrea(ByteCursor& in, CreaRecord& r) {
    return readRecord(in, r, [&](Tag& t) {
        switch (t) {
        case tag("NAME"): zsub(in, r.NAMESize, r.NAME); return Step::Next;
        case tag("MODL"): zsub(in, r.MODLSize, r.MODL); return Step::Next;
        case tag("FNAM"): zsub(in, r.FNAMSize, r.FNAM); return Step::Next;
        case tag("CNAM"): zsub(in, r.CNAMSize, r.CNAM); return Step::Next;
        case tag("SCRI"): zsub(in, r.SCRISize, r.SCRI); return Step::Next;
        case tag("NPDT"): bsub(in, r.NPDTSize, r.NPDT); return Step::Next;
        case tag("XSCL"): vsub(in, r.XSCLSize, r.XSCL); return Step::Next;
        default: return readActorPart(in, t, r, r);
        }
    });
}

} // namespace quillon

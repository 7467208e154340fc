#include "records/read_common.h"

namespace quillon {

namespace {

// One AI package of a fixed layout, appended to its list.
template <class Package, class Layout>
bool readPackage(ByteCursor& in, std::vector<Package>& list, i32 Package::*size, Layout layout) {
    Package& p = list.emplace_back();
    readFields(in, p.*size, p, layout);
    return true;
}

// A follow or escort package and the CNDT cell name that may come right after it.
void readFollow(ByteCursor& in, FollowPackage& p) {
    readFields(in, p.Size, p, layout::follow);
    if (in.nextIs(tag("CNDT"))) readZ(in, p.CNDTSize, p.CNDT);
}

// A travel destination and the DNAM cell name that may come right after it.
void readDestination(ByteCursor& in, TravelDestination& d) {
    readFields(in, d.DODTSize, d, layout::destination);
    if (in.nextIs(tag("DNAM"))) readZ(in, d.DNAMSize, d.DNAM);
}

// The sub-records NPC_ and CREA records share after their texts; false for any other tag.
bool readActorPart(ByteCursor& in, Tag t, RecordHeader& r, ActorLists& a) {
    switch (t) {
    case tag("FLAG"): readFields(in, a.FLAGSize, a, layout::actorFlags); return true;
    case tag("INDX"): readV(in, a.INDXSize, a.INDX); return true;
    case tag("NPCO"): return readRun(in, a.Inventory, [&](InventoryItem& e) { readInventoryItem(in, e); });
    case tag("NPCS"): return readRun(in, a.Spells, [&](SpellEntry& e) { readSpell(in, e); });
    case tag("AIDT"): readFields(in, a.AIDTSize, a, layout::aiData); return true;
    // Every package lands in the list of its kind, and the order of kinds is noted.
    case tag("AI_W"):
        a.PackageOrder.push_back(PackageKind::Wander);
        return readPackage(in, a.Wander, &WanderPackage::AI_WSize, layout::wander);
    case tag("AI_T"):
        a.PackageOrder.push_back(PackageKind::Travel);
        return readPackage(in, a.Travel, &TravelPackage::AI_TSize, layout::travel);
    case tag("AI_A"):
        a.PackageOrder.push_back(PackageKind::Activate);
        return readPackage(in, a.Activate, &ActivatePackage::AI_ASize, layout::activate);
    case tag("AI_F"):
        a.PackageOrder.push_back(PackageKind::Follow);
        readFollow(in, a.Follow.emplace_back());
        return true;
    case tag("AI_E"):
        a.PackageOrder.push_back(PackageKind::Escort);
        readFollow(in, a.Escort.emplace_back());
        return true;
    case tag("DODT"): readDestination(in, a.Destinations.emplace_back()); return true;
    case tag("DELE"): return readDele(in, r);
    default: return false;
    }
}

} // namespace

void readNpc(ByteCursor& in, NpcRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r, WithIcon::No)) return true;
        switch (t) {
        case tag("RNAM"): readZ(in, r.RNAMSize, r.RNAM); return true;
        case tag("CNAM"): readZ(in, r.CNAMSize, r.CNAM); return true;
        case tag("ANAM"): readZ(in, r.ANAMSize, r.ANAM); return true;
        case tag("BNAM"): readZ(in, r.BNAMSize, r.BNAM); return true;
        case tag("KNAM"): readZ(in, r.KNAMSize, r.KNAM); return true;
        case tag("NPDT"):
            // 12 bytes for an auto-calculated NPC; any other size is read into the full 52.
            in.skip(4);
            r.NPDTSize = in.i32();
            if (r.NPDTSize == 12)
                in.fields(r.NPDTShort);
            else
                in.fixed(r.NPDTSize, sizeof r.NPDT, [&](ByteCursor& data) { data.fields(r.NPDT); });
            return true;
        default: return readActorPart(in, t, r, r);
        }
    });
}

void readCrea(ByteCursor& in, CreaRecord& r, RecordStore&) {
    readRecord(in, r, [&](Tag t) {
        if (readObjectText(in, t, r, WithIcon::No)) return true;
        switch (t) {
        case tag("CNAM"): readZ(in, r.CNAMSize, r.CNAM); return true;
        case tag("NPDT"): readV(in, r.NPDTSize, r.NPDT); return true;
        case tag("XSCL"): readV(in, r.XSCLSize, r.XSCL); return true;
        default: return readActorPart(in, t, r, r);
        }
    });
}

} // namespace quillon

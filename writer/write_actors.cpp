#include "writer/write_common.h"

namespace quillon {

namespace {

void writeFollow(ByteSink& out, Tag t, const FollowPackage& p) {
    out.writeFields(t, p.Size, p, layout::follow);
    out.writeZOpt(tag("CNDT"), p.CNDTSize, p.CNDT);
}

void writeDestination(ByteSink& out, const TravelDestination& d) {
    if (d.DODTSize == 0) return;
    out.writeFields(tag("DODT"), d.DODTSize, d, layout::destination);
    out.writeZOpt(tag("DNAM"), d.DNAMSize, d.DNAM);
}

void writeInventoryAndSpells(ByteSink& out, const ActorLists& a) {
    for (const InventoryItem& e : a.Inventory)
        writeInventoryItem(out, e);
    for (const SpellEntry& e : a.Spells)
        writeSpell(out, e);
}

// Destinations, then the packages in the order they were read (the game runs them in that order);
// packages beyond that order, of an actor made or grown here, follow by kind.
void writeTravelAndPackages(ByteSink& out, const ActorLists& a) {
    for (const TravelDestination& d : a.Destinations)
        writeDestination(out, d);
    std::size_t wander = 0, travel = 0, escort = 0, follow = 0, activate = 0;
    // The next package of one list, if it has one left.
    auto next = [](const auto& list, std::size_t& at, auto&& write) {
        if (at < list.size()) write(list[at++]);
    };
    auto writeNext = [&](PackageKind kind) {
        switch (kind) {
        case PackageKind::Wander:
            next(a.Wander, wander,
                 [&](const auto& p) { out.writeFields(tag("AI_W"), p.AI_WSize, p, layout::wander); });
            break;
        case PackageKind::Travel:
            next(a.Travel, travel,
                 [&](const auto& p) { out.writeFields(tag("AI_T"), p.AI_TSize, p, layout::travel); });
            break;
        case PackageKind::Escort:
            next(a.Escort, escort, [&](const auto& p) { writeFollow(out, tag("AI_E"), p); });
            break;
        case PackageKind::Follow:
            next(a.Follow, follow, [&](const auto& p) { writeFollow(out, tag("AI_F"), p); });
            break;
        case PackageKind::Activate:
            next(a.Activate, activate,
                 [&](const auto& p) { out.writeFields(tag("AI_A"), p.AI_ASize, p, layout::activate); });
            break;
        }
    };
    for (PackageKind kind : a.PackageOrder)
        writeNext(kind);
    while (wander < a.Wander.size())
        writeNext(PackageKind::Wander);
    while (travel < a.Travel.size())
        writeNext(PackageKind::Travel);
    while (escort < a.Escort.size())
        writeNext(PackageKind::Escort);
    while (follow < a.Follow.size())
        writeNext(PackageKind::Follow);
    while (activate < a.Activate.size())
        writeNext(PackageKind::Activate);
}

// The header and NAME; false for a deleted actor, which has nothing more.
template <class R> bool writeActorStart(ByteSink& out, Tag t, const R& r) {
    out.header(t, r);
    out.writeZ(tag("NAME"), r.NAMESize, r.NAME);
    if (!isDeleted(r)) return true;
    out.writeDeletedForm();
    return false;
}

} // namespace

void writeNpc(ByteSink& out, const NpcRecord& r, WriteState&) {
    if (!writeActorStart(out, tag("NPC_"), r)) return;
    out.writeZOpt(tag("MODL"), r.MODLSize, r.MODL);
    out.writeZOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
    out.writeZOpt(tag("RNAM"), r.RNAMSize, r.RNAM);
    out.writeZOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    out.writeZOpt(tag("ANAM"), r.ANAMSize, r.ANAM);
    out.writeZOpt(tag("BNAM"), r.BNAMSize, r.BNAM);
    out.writeZOpt(tag("KNAM"), r.KNAMSize, r.KNAM);
    out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
    if (r.NPDTSize == 12)
        out.writeV(tag("NPDT"), r.NPDTSize, r.NPDTShort);
    else
        out.writeV(tag("NPDT"), r.NPDTSize, r.NPDT);
    out.writeFields(tag("FLAG"), r.FLAGSize, r, layout::actorFlags);
    out.writeVOpt(tag("INDX"), r.INDXSize, r.INDX);
    writeInventoryAndSpells(out, r);
    if (r.AIDTSize != 0) out.writeFields(tag("AIDT"), r.AIDTSize, r, layout::aiData);
    writeTravelAndPackages(out, r);
}

void writeCrea(ByteSink& out, const CreaRecord& r, WriteState&) {
    if (!writeActorStart(out, tag("CREA"), r)) return;
    out.writeZOpt(tag("MODL"), r.MODLSize, r.MODL);
    out.writeZOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    out.writeZOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
    out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
    out.writeV(tag("NPDT"), r.NPDTSize, r.NPDT);
    out.writeFields(tag("FLAG"), r.FLAGSize, r, layout::actorFlags);
    out.writeVOpt(tag("INDX"), r.INDXSize, r.INDX);
    out.writeVOpt(tag("XSCL"), r.XSCLSize, r.XSCL);
    writeInventoryAndSpells(out, r);
    out.writeFields(tag("AIDT"), r.AIDTSize, r, layout::aiData); // creatures always carry AIDT
    writeTravelAndPackages(out, r);
}

} // namespace quillon

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

// Destinations and packages; escort packages are written before follow packages.
void writeTravelAndPackages(ByteSink& out, const ActorLists& a) {
    for (const TravelDestination& d : a.Destinations)
        writeDestination(out, d);
    for (const WanderPackage& p : a.Wander)
        out.writeFields(tag("AI_W"), p.AI_WSize, p, layout::wander);
    for (const TravelPackage& p : a.Travel)
        out.writeFields(tag("AI_T"), p.AI_TSize, p, layout::travel);
    for (const FollowPackage& p : a.Escort)
        writeFollow(out, tag("AI_E"), p);
    for (const FollowPackage& p : a.Follow)
        writeFollow(out, tag("AI_F"), p);
    for (const ActivatePackage& p : a.Activate)
        out.writeFields(tag("AI_A"), p.AI_ASize, p, layout::activate);
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

#include "writer/write_common.h"

namespace quillon {

namespace {

void writeInventoryAndSpells(ByteSink& out, const ActorLists& a) {
    for (const InventoryItem& e : a.Inventory) {
        out.sub(tag("NPCO"), e.NPCOSize);
        out.int32(e.Count);
        out.bytes(e.Item);
    }
    for (const SpellEntry& e : a.Spells) {
        out.sub(tag("NPCS"), e.NPCSSize);
        out.bytes(e.Spell);
    }
}

void writeAiData(ByteSink& out, const ActorLists& a) {
    out.block(tag("AIDT"), a.AIDTSize, a.AIDT);
    out.int32(a.AIDTFlags);
}

void writeFollow(ByteSink& out, Tag t, const FollowPackage& p) {
    out.sub(t, p.Size);
    out.value(p.X);
    out.value(p.Y);
    out.value(p.Z);
    out.value(p.Duration);
    out.bytes(p.Target);
    out.value(p.Reset);
    out.zOpt(tag("CNDT"), p.CNDTSize, p.CNDT);
}

// Destinations and packages; escort packages are written before follow packages.
void writeTravelAndPackages(ByteSink& out, const ActorLists& a) {
    for (const TravelDestination& d : a.Destinations) {
        if (d.DODTSize == 0) continue;
        out.sub(tag("DODT"), d.DODTSize);
        for (float f : d.Position) out.value(f);
        out.zOpt(tag("DNAM"), d.DNAMSize, d.DNAM);
    }
    for (const WanderPackage& p : a.Wander) {
        out.sub(tag("AI_W"), p.AI_WSize);
        out.value(p.Distance);
        out.value(p.Duration);
        out.byte(p.TimeOfDay);
        out.bytes(p.Idles);
        out.byte(p.Reset);
    }
    for (const TravelPackage& p : a.Travel) {
        out.sub(tag("AI_T"), p.AI_TSize);
        out.value(p.X);
        out.value(p.Y);
        out.value(p.Z);
        out.int32(p.Reset);
    }
    for (const FollowPackage& p : a.Escort) writeFollow(out, tag("AI_E"), p);
    for (const FollowPackage& p : a.Follow) writeFollow(out, tag("AI_F"), p);
    for (const ActivatePackage& p : a.Activate) {
        out.sub(tag("AI_A"), p.AI_ASize);
        out.bytes(p.Target);
        out.byte(p.Reset);
    }
}

void writeFlag(ByteSink& out, const ActorLists& a) {
    out.sub(tag("FLAG"), a.FLAGSize);
    out.bytes(a.FLAG);
    out.byte(0); // the upper two bytes of the flag word were not kept
    out.byte(0);
}

} // namespace

void WriteNpcRecord(ByteSink& out, const NpcRecord& r) {
    out.header(tag("NPC_"), r);
    out.z(tag("NAME"), r.NAMESize, r.NAME);
    if (isDeleted(r)) {
        out.dele();
        return;
    }
    out.zOpt(tag("MODL"), r.MODLSize, r.MODL);
    out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
    out.zOpt(tag("RNAM"), r.RNAMSize, r.RNAM);
    out.zOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    out.zOpt(tag("ANAM"), r.ANAMSize, r.ANAM);
    out.zOpt(tag("BNAM"), r.BNAMSize, r.BNAM);
    out.zOpt(tag("KNAM"), r.KNAMSize, r.KNAM);
    out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
    out.sub(tag("NPDT"), r.NPDTSize);
    if (r.NPDTSize == 12)
        out.bytes(r.NPDTShort);
    else
        out.bytes(r.NPDT);
    writeFlag(out, r);
    if (r.INDXSize != 0) out.v(tag("INDX"), r.INDXSize, r.INDX);
    writeInventoryAndSpells(out, r);
    if (r.AIDTSize != 0) writeAiData(out, r);
    writeTravelAndPackages(out, r);
}

void WriteCreaRecord(ByteSink& out, const CreaRecord& r) {
    out.header(tag("CREA"), r);
    out.z(tag("NAME"), r.NAMESize, r.NAME);
    if (isDeleted(r)) {
        out.dele();
        return;
    }
    out.zOpt(tag("MODL"), r.MODLSize, r.MODL);
    out.zOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
    out.zOpt(tag("SCRI"), r.SCRISize, r.SCRI);
    out.block(tag("NPDT"), r.NPDTSize, r.NPDT);
    writeFlag(out, r);
    if (r.INDXSize != 0) out.v(tag("INDX"), r.INDXSize, r.INDX);
    if (r.XSCLSize != 0) out.v(tag("XSCL"), r.XSCLSize, r.XSCL);
    writeInventoryAndSpells(out, r);
    writeAiData(out, r); // creatures always carry AIDT
    writeTravelAndPackages(out, r);
}

} // namespace quillon

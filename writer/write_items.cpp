#include "writer/write_common.h"

namespace quillon {

namespace {

// MODL and the optional FNAM that open most item records after their NAME.
void writeItemStart(ByteSink& out, const ObjectTexts& o) {
    out.writeZ(tag("MODL"), o.MODLSize, o.MODL);
    out.writeZOpt(tag("FNAM"), o.FNAMSize, o.FNAM);
}
void writeScriptAndIcon(ByteSink& out, const ObjectTexts& o) {
    out.writeZOpt(tag("SCRI"), o.SCRISize, o.SCRI);
    out.writeZOpt(tag("ITEX"), o.ITEXSize, o.ITEX);
}

// Items whose data block sits between FNAM and SCRI/ITEX: MISC, REPA, LOCK, PROB, INGR.
template <class R, class Data>
void writeSimpleItem(ByteSink& out, Tag t, const R& r, Tag dataTag, std::int32_t size, const Data& data) {
    writeNamed(out, t, r, [&] {
        writeItemStart(out, r);
        out.writeV(dataTag, size, data);
        writeScriptAndIcon(out, r);
    });
}

void writeBodyParts(ByteSink& out, const BodyPartSlots& parts) {
    for (const BodyPartSlot& p : parts) {
        if (p.INDXSize == 0) continue;
        out.writeV(tag("INDX"), p.INDXSize, p.INDX);
        out.writeUOpt(tag("BNAM"), p.BNAMSize, p.BNAM);
        out.writeUOpt(tag("CNAM"), p.CNAMSize, p.CNAM);
    }
}

// ARMO and CLOT.
template <class R, class Data>
void writeWearable(ByteSink& out, Tag t, const R& r, Tag dataTag, std::int32_t size, const Data& data) {
    writeNamed(out, t, r, [&] {
        writeItemStart(out, r);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.writeV(dataTag, size, data);
        out.writeZOpt(tag("ITEX"), r.ITEXSize, r.ITEX);
        writeBodyParts(out, r.Parts);
        out.writeZOpt(tag("ENAM"), r.ENAMSize, r.ENAM);
    });
}

// LEVI and LEVC; entryTag is INAM for items, CNAM for creatures.
void writeLeveled(ByteSink& out, Tag t, const LeviRecord& r, Tag entryTag) {
    writeNamed(out, t, r, [&] {
        out.writeV(tag("DATA"), r.DATASize, r.DATA);
        out.writeV(tag("NNAM"), r.NNAMSize, r.NNAM);
        out.writeVOpt(tag("INDX"), r.INDXSize, r.INDX);
        for (const LeveledEntry& e : r.Entries) {
            if (e.NameSize == 0 && e.Name.empty()) continue;
            out.writeZ(entryTag, e.NameSize, e.Name);
            out.writeV(tag("INTV"), e.INTVSize, e.Level);
        }
    });
}

} // namespace

void writeDoor(ByteSink& out, const DoorRecord& r, WriteState&) {
    writeNamed(out, tag("DOOR"), r, [&] {
        writeItemStart(out, r);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.writeZOpt(tag("SNAM"), r.SNAMSize, r.SNAM);
        out.writeZOpt(tag("ANAM"), r.ANAMSize, r.ANAM);
    });
}

void writeMisc(ByteSink& out, const MiscRecord& r, WriteState&) {
    writeSimpleItem(out, tag("MISC"), r, tag("MCDT"), r.MCDTSize, r.MCDT);
}

void writeWeap(ByteSink& out, const WeapRecord& r, WriteState&) {
    writeNamed(out, tag("WEAP"), r, [&] {
        writeItemStart(out, r);
        out.writeV(tag("WPDT"), r.WPDTSize, r.WPDT);
        writeScriptAndIcon(out, r);
        out.writeZOpt(tag("ENAM"), r.ENAMSize, r.ENAM);
    });
}

void writeCont(ByteSink& out, const ContRecord& r, WriteState&) {
    writeNamed(out, tag("CONT"), r, [&] {
        writeItemStart(out, r);
        out.writeV(tag("CNDT"), r.CNDTSize, r.CNDT);
        out.writeV(tag("FLAG"), r.FLAGSize, r.FLAG);
        out.writeVOpt(tag("INDX"), r.INDXSize, r.INDX);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        for (const InventoryItem& e : r.Inventory)
            writeInventoryItem(out, e);
    });
}

// SPEL is written before ENCH although the game's files hold ENCH first.
void writeSpel(ByteSink& out, const SpelRecord& r, WriteState&) {
    writeNamed(out, tag("SPEL"), r, [&] {
        out.writeZOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeV(tag("SPDT"), r.SPDTSize, r.SPDT);
        for (const Effect& e : r.Effects)
            writeEffect(out, e);
    });
}

void writeEnch(ByteSink& out, const EnchRecord& r, WriteState&) {
    writeNamed(out, tag("ENCH"), r, [&] {
        out.writeV(tag("ENDT"), r.ENDTSize, r.ENDT);
        for (const Effect& e : r.Effects)
            writeEffect(out, e);
    });
}

void writeBody(ByteSink& out, const BodyRecord& r, WriteState&) {
    writeNamed(out, tag("BODY"), r, [&] {
        out.writeZ(tag("MODL"), r.MODLSize, r.MODL);
        out.writeZOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
        out.writeV(tag("BYDT"), r.BYDTSize, r.BYDT);
    });
}

void writeLigh(ByteSink& out, const LighRecord& r, WriteState&) {
    writeNamed(out, tag("LIGH"), r, [&] {
        writeItemStart(out, r);
        out.writeZOpt(tag("ITEX"), r.ITEXSize, r.ITEX);
        out.writeV(tag("LHDT"), r.LHDTSize, r.LHDT);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.writeZOpt(tag("SNAM"), r.SNAMSize, r.SNAM);
    });
}

void writeArmo(ByteSink& out, const ArmoRecord& r, WriteState&) {
    writeWearable(out, tag("ARMO"), r, tag("AODT"), r.AODTSize, r.AODT);
}
void writeClot(ByteSink& out, const ClotRecord& r, WriteState&) {
    writeWearable(out, tag("CLOT"), r, tag("CTDT"), r.CTDTSize, r.CTDT);
}
void writeRepa(ByteSink& out, const RepaRecord& r, WriteState&) {
    writeSimpleItem(out, tag("REPA"), r, tag("RIDT"), r.DataSize, r.Data);
}

void writeActi(ByteSink& out, const ActiRecord& r, WriteState&) {
    writeNamed(out, tag("ACTI"), r, [&] {
        writeItemStart(out, r);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
    });
}

void writeAppa(ByteSink& out, const AppaRecord& r, WriteState&) {
    writeNamed(out, tag("APPA"), r, [&] {
        writeItemStart(out, r);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.writeV(tag("AADT"), r.AADTSize, r.AADT);
        out.writeZOpt(tag("ITEX"), r.ITEXSize, r.ITEX);
    });
}

void writeLock(ByteSink& out, const LockRecord& r, WriteState&) {
    writeSimpleItem(out, tag("LOCK"), r, tag("LKDT"), r.DataSize, r.Data);
}
void writeProb(ByteSink& out, const ProbRecord& r, WriteState&) {
    writeSimpleItem(out, tag("PROB"), r, tag("PBDT"), r.DataSize, r.Data);
}
void writeIngr(ByteSink& out, const IngrRecord& r, WriteState&) {
    writeSimpleItem(out, tag("INGR"), r, tag("IRDT"), r.IRDTSize, r.IRDT);
}

void writeBook(ByteSink& out, const BookRecord& r, WriteState&) {
    writeNamed(out, tag("BOOK"), r, [&] {
        writeItemStart(out, r);
        out.writeFields(tag("BKDT"), r.BKDTSize, r, layout::bookData);
        writeScriptAndIcon(out, r);
        out.writeUOpt(tag("TEXT"), r.TEXTSize, r.TEXT); // book text has no terminator
        out.writeZOpt(tag("ENAM"), r.ENAMSize, r.ENAM);
    });
}

void writeAlch(ByteSink& out, const AlchRecord& r, WriteState&) {
    writeNamed(out, tag("ALCH"), r, [&] {
        writeItemStart(out, r);
        out.writeV(tag("ALDT"), r.ALDTSize, r.ALDT);
        out.writeZOpt(tag("SCRI"), r.SCRISize, r.SCRI);
        out.writeZOpt(tag("TEXT"), r.TEXTSize, r.TEXT); // here TEXT is the icon, zero-terminated
        for (const Effect& e : r.Effects)
            writeEffect(out, e);
    });
}

void writeLevi(ByteSink& out, const LeviRecord& r, WriteState&) {
    writeLeveled(out, tag("LEVI"), r, tag("INAM"));
}
void writeLevc(ByteSink& out, const LevcRecord& r, WriteState&) {
    writeLeveled(out, tag("LEVC"), r, tag("CNAM"));
}

} // namespace quillon

#include "writer/write_common.h"

namespace quillon {

namespace {

void writePlacement(ByteSink& out, Tag t, std::int32_t size, const std::array<float, 6>& p) {
    out.sub(t, size);
    for (float f : p) out.value(f);
}

// One reference; false when a moved reference names no target cell, which stops the cell.
bool writeReference(ByteSink& out, const CellReference& ref, Prompts& prompts) {
    if (ref.MVRFSize != 0) {
        out.sub(tag("MVRF"), ref.MVRFSize);
        out.raw(ref.MVRF.data(), 3);
        out.byte(ref.MVRFByte);
        if (ref.CNDTSize >= 1) {
            out.sub(tag("CNDT"), ref.CNDTSize);
            out.int32(ref.CNDT[0]);
            out.int32(ref.CNDT[1]);
        } else if (ref.MovedCellSize >= 1) {
            out.u(tag("CNAM"), ref.MovedCellSize, ref.MovedCell);
        } else {
            prompts.tell("Error while writing moved reference.");
            return false;
        }
    }
    out.sub(tag("FRMR"), ref.FRMRSize);
    out.raw(ref.FRMR.data(), 3);
    out.byte(ref.FRMRByte);
    out.z(tag("NAME"), ref.NAMESize, ref.NAME);
    if (ref.XSCLSize != 0) out.v(tag("XSCL"), ref.XSCLSize, ref.XSCL);
    if (ref.DODTSize != 0) writePlacement(out, tag("DODT"), ref.DODTSize, ref.DODT);
    out.zOpt(tag("DNAM"), ref.DNAMSize, ref.DNAM);
    if (ref.FLTVSize != 0) out.v(tag("FLTV"), ref.FLTVSize, ref.FLTV);
    out.zOpt(tag("KNAM"), ref.KNAMSize, ref.KNAM);
    out.zOpt(tag("TNAM"), ref.TNAMSize, ref.TNAM);
    out.zOpt(tag("ANAM"), ref.ANAMSize, ref.ANAM);
    out.zOpt(tag("CNAM"), ref.CNAMSize, ref.CNAM);
    if (ref.UNAMSize != 0) out.v(tag("UNAM"), ref.UNAMSize, ref.UNAM);
    out.zOpt(tag("BNAM"), ref.BNAMSize, ref.BNAM);
    if (ref.XCHGSize != 0) out.v(tag("XCHG"), ref.XCHGSize, ref.XCHG);
    if (ref.INTVSize != 0) out.v(tag("INTV"), ref.INTVSize, ref.INTV);
    if (ref.NAM9Size != 0) out.v(tag("NAM9"), ref.NAM9Size, ref.NAM9);
    if (ref.INDXSize != 0) out.v(tag("INDX"), ref.INDXSize, ref.INDX);
    out.zOpt(tag("XSOL"), ref.XSOLSize, ref.XSOL);
    if (ref.Disabled) out.v(tag("ZNAM"), 1, std::uint8_t(0)); // its value byte was not kept
    for (const std::string& entry : ref.SaveData) {
        if (entry.size() < 4) continue;
        out.raw(entry.data(), 4);
        out.int32(std::int32_t(entry.size() - 4));
        out.raw(entry.data() + 4, entry.size() - 4);
    }
    if (ref.DATASize != 0) writePlacement(out, tag("DATA"), ref.DATASize, ref.DATA);
    if (ref.DATA2Size != 0) writePlacement(out, tag("DATA"), ref.DATA2Size, ref.DATA2);
    if (ref.Deleted) {
        // The only DELE whose value is not zero: the bytes the original editor leaves here.
        out.sub(tag("DELE"), 4);
        for (std::uint8_t b : {100, 44, 72, 0}) out.byte(b);
    }
    return true;
}

} // namespace

void WriteCellRecord(ByteSink& out, const CellRecord& r, Prompts& prompts) {
    out.header(tag("CELL"), r);
    out.z(tag("NAME"), r.NAMESize, r.NAME);
    if (r.Deleted == 1) out.dele(); // cells test their DELE mark, not the flags
    out.sub(tag("DATA"), r.DATASize);
    out.int32(r.CellFlags);
    out.int32(r.GridX);
    out.int32(r.GridY);
    out.zOpt(tag("RGNN"), r.RGNNSize, r.RGNN);
    if (r.NAM5Size != 0) {
        out.block(tag("NAM5"), r.NAM5Size, r.NAM5);
        out.byte(0);
    }
    out.uOpt(tag("NAM8"), r.NAM8Size, r.NAM8);
    if (r.MPCD[0] != 0) {
        out.tag(tag("MPCD"));
        for (std::int32_t v : r.MPCD) out.int32(v);
    }
    if (r.WHGTSize != 0) out.v(tag("WHGT"), r.WHGTSize, r.WHGT);
    if (r.AMBISize != 0) {
        out.sub(tag("AMBI"), r.AMBISize);
        for (const Bytes<3>* colour : {&r.Ambient, &r.Sunlight, &r.Fog}) {
            out.bytes(*colour);
            out.byte(0);
        }
        out.value(r.FogDensity);
    }
    if (r.INTVSize != 0) out.v(tag("INTV"), r.INTVSize, r.INTV);
    bool hasReferences = !r.References.empty() && r.References.front().FRMRSize != 0;
    // Persistent references first, then NAM0, then the temporary ones, whatever the list order.
    for (int pass = 1; pass >= 0; --pass) {
        if (hasReferences) {
            for (const CellReference& ref : r.References) {
                if (ref.Persistent != pass) continue;
                if (!writeReference(out, ref, prompts)) return;
            }
        }
        if (pass == 1 && r.NAM0Size != 0) out.v(tag("NAM0"), r.NAM0Size, r.NAM0);
    }
}

} // namespace quillon

#include "writer/write_common.h"

namespace quillon {

namespace {

void writePlacement(ByteSink& out, Tag t, std::int32_t size, const std::array<float, 6>& p) {
    out.sub(t, size);
    for (float f : p) out.value(f);
}

// One reference; false when a moved reference names no target cell, which stops the cell.
bool writeReference(ByteSink& out, const CellReference& ref, Prompts& prompts) {
    const ReferenceDetails& more = ref.more.view();
    if (more.MVRFSize != 0) {
        out.sub(tag("MVRF"), more.MVRFSize);
        out.raw(more.MVRF.data(), 3);
        out.byte(more.MVRFByte);
        if (more.CNDTSize >= 1) {
            out.sub(tag("CNDT"), more.CNDTSize);
            out.int32(more.CNDT[0]);
            out.int32(more.CNDT[1]);
        } else if (more.MovedCellSize >= 1) {
            out.u(tag("CNAM"), more.MovedCellSize, more.MovedCell);
        } else if (!out.repairing()) {
            prompts.tell("Error while writing moved reference.");
            out.explain("cut short at a moved reference that names no cell (neither CNDT nor CNAM)");
            return false;
        }
    }
    out.sub(tag("FRMR"), ref.FRMRSize);
    out.raw(ref.FRMR.data(), 3);
    out.byte(ref.FRMRByte);
    out.z(tag("NAME"), ref.NAMESize, ref.NAME);
    if (ref.XSCLSize != 0) out.v(tag("XSCL"), ref.XSCLSize, ref.XSCL);
    if (more.DODTSize != 0) writePlacement(out, tag("DODT"), more.DODTSize, more.DODT);
    out.zOpt(tag("DNAM"), more.DNAMSize, more.DNAM);
    if (more.FLTVSize != 0) out.v(tag("FLTV"), more.FLTVSize, more.FLTV);
    out.zOpt(tag("KNAM"), more.KNAMSize, more.KNAM);
    out.zOpt(tag("TNAM"), more.TNAMSize, more.TNAM);
    out.zOpt(tag("ANAM"), more.ANAMSize, more.ANAM);
    out.zOpt(tag("CNAM"), more.CNAMSize, more.CNAM);
    if (more.UNAMSize != 0) out.v(tag("UNAM"), more.UNAMSize, more.UNAM);
    out.zOpt(tag("BNAM"), more.BNAMSize, more.BNAM);
    if (more.XCHGSize != 0) out.v(tag("XCHG"), more.XCHGSize, more.XCHG);
    if (more.INTVSize != 0) out.v(tag("INTV"), more.INTVSize, more.INTV);
    if (more.NAM9Size != 0) out.v(tag("NAM9"), more.NAM9Size, more.NAM9);
    if (more.INDXSize != 0) out.v(tag("INDX"), more.INDXSize, more.INDX);
    out.zOpt(tag("XSOL"), more.XSOLSize, more.XSOL);
    if (ref.Disabled) out.v(tag("ZNAM"), 1, std::uint8_t(0)); // its value byte was not kept
    for (const std::string& entry : more.SaveData) {
        if (entry.size() < 4) continue;
        Tag t;
        std::memcpy(&t, entry.data(), 4);
        out.sub(t, std::int32_t(entry.size() - 4));
        out.raw(entry.data() + 4, entry.size() - 4);
    }
    if (ref.DATASize != 0) writePlacement(out, tag("DATA"), ref.DATASize, ref.DATA);
    if (more.DATA2Size != 0) writePlacement(out, tag("DATA"), more.DATA2Size, more.DATA2);
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
        out.sub(tag("MPCD"), r.MPCD[0]);
        for (std::size_t i = 1; i < r.MPCD.size(); ++i) out.int32(r.MPCD[i]);
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

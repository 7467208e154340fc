#include "writer/write_common.h"

#include <cstring>

namespace quillon {

namespace {

// A moved reference's MVRF and the cell it moved to; false when it names no cell, which stops the
// cell.
bool writeMove(ByteSink& out, const ReferenceDetails& moved, Prompts& prompts) {
    out.writeFields(tag("MVRF"), moved.MVRFSize, moved, layout::movedReference);
    if (moved.CNDTSize >= 1) {
        out.writeV(tag("CNDT"), moved.CNDTSize, moved.CNDT);
    } else if (moved.MovedCellSize >= 1) {
        out.writeU(tag("CNAM"), moved.MovedCellSize, moved.MovedCell);
    } else if (!out.repairing()) {
        prompts.tell("Error while writing moved reference.");
        out.explain("cut short at a moved reference that names no cell (neither CNDT nor CNAM)");
        return false;
    }
    return true;
}

// One reference; false when a moved reference names no target cell, which stops the cell.
bool writeReference(ByteSink& out, const CellReference& ref, Prompts& prompts) {
    const ReferenceDetails& more = ref.more.view();
    if (more.MVRFSize != 0 && !writeMove(out, more, prompts)) return false;
    out.writeFields(tag("FRMR"), ref.FRMRSize, ref, layout::reference);
    out.writeZ(tag("NAME"), ref.NAMESize, ref.NAME);
    out.writeVOpt(tag("XSCL"), ref.XSCLSize, ref.XSCL);
    out.writeVOpt(tag("DODT"), more.DODTSize, more.DODT);
    out.writeZOpt(tag("DNAM"), more.DNAMSize, more.DNAM);
    out.writeVOpt(tag("FLTV"), more.FLTVSize, more.FLTV);
    out.writeZOpt(tag("KNAM"), more.KNAMSize, more.KNAM);
    out.writeZOpt(tag("TNAM"), more.TNAMSize, more.TNAM);
    out.writeZOpt(tag("ANAM"), more.ANAMSize, more.ANAM);
    out.writeZOpt(tag("CNAM"), more.CNAMSize, more.CNAM);
    out.writeVOpt(tag("UNAM"), more.UNAMSize, more.UNAM);
    out.writeZOpt(tag("BNAM"), more.BNAMSize, more.BNAM);
    out.writeVOpt(tag("XCHG"), more.XCHGSize, more.XCHG);
    out.writeVOpt(tag("INTV"), more.INTVSize, more.INTV);
    out.writeVOpt(tag("NAM9"), more.NAM9Size, more.NAM9);
    out.writeVOpt(tag("INDX"), more.INDXSize, more.INDX);
    out.writeZOpt(tag("XSOL"), more.XSOLSize, more.XSOL);
    if (ref.Disabled) out.writeV(tag("ZNAM"), 1, std::uint8_t(0)); // its value byte was not kept
    for (const std::string& entry : more.SaveData) {
        if (entry.size() < 4) continue;
        Tag t;
        std::memcpy(&t, entry.data(), 4);
        out.sub(t, std::int32_t(entry.size() - 4));
        out.raw(entry.data() + 4, entry.size() - 4);
    }
    out.writeVOpt(tag("DATA"), ref.DATASize, ref.DATA);
    out.writeVOpt(tag("DATA"), more.DATA2Size, more.DATA2);
    if (ref.Deleted) {
        // The only DELE whose value is not zero: the bytes the original editor leaves here.
        out.sub(tag("DELE"), 4);
        out.fields(Bytes<4>{100, 44, 72, 0});
    }
    return true;
}

} // namespace

void writeCell(ByteSink& out, const CellRecord& r, WriteState& state) {
    out.header(tag("CELL"), r);
    out.writeZ(tag("NAME"), r.NAMESize, r.NAME);
    if (r.Deleted == 1) out.writeDele(); // cells test their DELE mark, not the flags
    out.writeFields(tag("DATA"), r.DATASize, r, layout::cellData);
    out.writeZOpt(tag("RGNN"), r.RGNNSize, r.RGNN);
    if (r.NAM5Size != 0) out.writeFields(tag("NAM5"), r.NAM5Size, r, layout::mapColour);
    out.writeUOpt(tag("NAM8"), r.NAM8Size, r.NAM8);
    if (r.MPCD[0] != 0) {
        out.sub(tag("MPCD"), r.MPCD[0]); // the size word, then three values
        for (std::size_t i = 1; i < r.MPCD.size(); ++i)
            out.int32(r.MPCD[i]);
    }
    out.writeVOpt(tag("WHGT"), r.WHGTSize, r.WHGT);
    if (r.AMBISize != 0) out.writeFields(tag("AMBI"), r.AMBISize, r, layout::ambientLight);
    out.writeVOpt(tag("INTV"), r.INTVSize, r.INTV);
    bool hasReferences = !r.References.empty() && r.References.front().FRMRSize != 0;
    // Persistent references first, then NAM0, then the temporary ones, whatever the list order.
    for (int pass = 1; pass >= 0; --pass) {
        if (hasReferences) {
            for (const CellReference& ref : r.References) {
                if (ref.Persistent != pass) continue;
                if (!writeReference(out, ref, state.prompts)) return;
            }
        }
        if (pass == 1) out.writeVOpt(tag("NAM0"), r.NAM0Size, r.NAM0);
    }
}

} // namespace quillon

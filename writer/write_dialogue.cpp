#include "writer/write_common.h"

namespace quillon {

TopicIndex indexResponses(const std::vector<InfoRecord>& infos) {
    TopicIndex index;
    for (std::size_t i = 0; i < infos.size(); ++i) index[infos[i].Topic].push_back(i);
    return index;
}

void WriteDialRecord(ByteSink& out, const DialRecord& r, const std::vector<InfoRecord>& infos,
                     const TopicIndex& index, std::int32_t& writtenCount) {
    out.header(tag("DIAL"), r);
    out.z(tag("NAME"), r.NAMESize, r.NAME);
    out.sub(tag("DATA"), r.DATASize);
    if (r.DATASize == 4)
        out.int32(0); // the four bytes deleted topics carry
    else
        out.byte(r.DATA);
    if (r.XIDXSize != 0) out.v(tag("XIDX"), r.XIDXSize, r.XIDX);
    if (isDeleted(r)) out.dele(); // a deleted topic keeps NAME and DATA; DELE comes last
    // The topic match is exact, letter case included: two topics of one NAME both get every
    // matching response, and a response matching no topic is not written.
    auto found = index.find(r.NAME);
    if (found == index.end()) return;
    for (std::size_t i : found->second) {
        WriteInfoRecord(out, infos[i]);
        ++writtenCount;
    }
}

void WriteInfoRecord(ByteSink& out, const InfoRecord& r) {
    out.header(tag("INFO"), r);
    out.z(tag("INAM"), r.INAMSize, r.INAM);
    if (isDeleted(r)) {
        if (r.PNAMSize > 0) out.z(tag("PNAM"), r.PNAMSize, r.PNAM);
        if (r.NNAMSize > 0) out.z(tag("NNAM"), r.NNAMSize, r.NNAM);
        out.uOpt(tag("NAME"), r.NAMESize, r.NAME);
        out.dele();
        return;
    }
    // XIDX, PNAM and NNAM need a size above 0; every other optional sub-record any non-zero size.
    if (r.XIDXSize > 0) out.v(tag("XIDX"), r.XIDXSize, r.XIDX);
    if (r.PNAMSize > 0) out.z(tag("PNAM"), r.PNAMSize, r.PNAM);
    if (r.NNAMSize > 0) out.z(tag("NNAM"), r.NNAMSize, r.NNAM);
    out.sub(tag("DATA"), r.DATASize);
    out.int32(r.DialogueType);
    out.int32(r.Disposition);
    out.byte(r.Rank);
    out.byte(r.Gender);
    out.byte(r.PCRank);
    out.byte(r.Spare);
    out.zOpt(tag("ONAM"), r.ONAMSize, r.ONAM);
    out.zOpt(tag("RNAM"), r.RNAMSize, r.RNAM);
    out.zOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    out.zOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
    out.zOpt(tag("ANAM"), r.ANAMSize, r.ANAM);
    out.zOpt(tag("DNAM"), r.DNAMSize, r.DNAM);
    out.zOpt(tag("SNAM"), r.SNAMSize, r.SNAM);
    out.uOpt(tag("NAME"), r.NAMESize, r.NAME);
    if (r.QSTNSize != 0) out.v(tag("QSTN"), r.QSTNSize, r.QSTN);
    if (r.QSTFSize != 0) out.v(tag("QSTF"), r.QSTFSize, r.QSTF);
    if (r.QSTRSize != 0) out.v(tag("QSTR"), r.QSTRSize, r.QSTR);
    // Empty slots are skipped, not compacted; a slot carries one value, INTV before FLTV.
    for (const InfoCondition& c : r.Conditions) {
        if (c.SCVRSize == 0) continue;
        out.sub(tag("SCVR"), c.SCVRSize);
        out.byte(std::uint8_t(c.Index));
        out.byte(std::uint8_t(c.Type));
        out.bytes(c.Function);
        out.byte(std::uint8_t(c.Comparison));
        out.text(c.Name);
        if (c.INTVSize != 0)
            out.v(tag("INTV"), c.INTVSize, c.INTV);
        else if (c.FLTVSize != 0)
            out.v(tag("FLTV"), c.FLTVSize, c.FLTV);
    }
    out.uOpt(tag("BNAM"), r.BNAMSize, r.BNAM);
    // ACDT is never written back.
}

} // namespace quillon

#include "writer/write_common.h"

namespace quillon {

TopicIndex indexResponses(const std::vector<InfoRecord>& infos) {
    TopicIndex index;
    for (std::size_t i = 0; i < infos.size(); ++i)
        index[infos[i].Topic].push_back(i);
    return index;
}

void writeDial(ByteSink& out, const DialRecord& r, WriteState& state) {
    state.store.CurrentTopic = r.NAME;
    out.header(tag("DIAL"), r);
    out.writeZ(tag("NAME"), r.NAMESize, r.NAME);
    // The four bytes deleted topics carry are written as read.
    out.fixed(tag("DATA"), r.DATASize, r.DATASize == 4 ? 0 : 1, [&] {
        if (r.DATASize != 4) out.byte(r.DATA);
    });
    out.writeVOpt(tag("XIDX"), r.XIDXSize, r.XIDX);
    if (isDeleted(r)) out.writeDeletedForm(); // a deleted topic keeps NAME and DATA; DELE comes last
    // The topic match is exact, letter case included: two topics of one NAME both get every
    // matching response, and a response matching no topic is not written.
    auto found = state.topics.find(r.NAME);
    if (found == state.topics.end()) return;
    for (std::size_t i : found->second)
        writeInfo(out, state.store.INFO[i]);
}

// Responses are written by their topic, right after it.
void writtenWithItsTopic(ByteSink&, const InfoRecord&, WriteState&) {}

void writeInfo(ByteSink& out, const InfoRecord& r) {
    out.header(tag("INFO"), r);
    out.writeZ(tag("INAM"), r.INAMSize, r.INAM);
    if (isDeleted(r)) {
        if (r.PNAMSize >= 0) out.writeZOpt(tag("PNAM"), r.PNAMSize, r.PNAM);
        if (r.NNAMSize >= 0) out.writeZOpt(tag("NNAM"), r.NNAMSize, r.NNAM);
        out.writeUOpt(tag("NAME"), r.NAMESize, r.NAME);
        out.writeDeletedForm();
        return;
    }
    // XIDX, PNAM and NNAM need a size of 0 or more; every other optional sub-record any size.
    if (r.XIDXSize >= 0) out.writeVOpt(tag("XIDX"), r.XIDXSize, r.XIDX);
    if (r.PNAMSize >= 0) out.writeZOpt(tag("PNAM"), r.PNAMSize, r.PNAM);
    if (r.NNAMSize >= 0) out.writeZOpt(tag("NNAM"), r.NNAMSize, r.NNAM);
    out.writeFields(tag("DATA"), r.DATASize, r, layout::responseData);
    out.writeZOpt(tag("ONAM"), r.ONAMSize, r.ONAM);
    out.writeZOpt(tag("RNAM"), r.RNAMSize, r.RNAM);
    out.writeZOpt(tag("CNAM"), r.CNAMSize, r.CNAM);
    out.writeZOpt(tag("FNAM"), r.FNAMSize, r.FNAM);
    out.writeZOpt(tag("ANAM"), r.ANAMSize, r.ANAM);
    out.writeZOpt(tag("DNAM"), r.DNAMSize, r.DNAM);
    out.writeZOpt(tag("SNAM"), r.SNAMSize, r.SNAM);
    out.writeUOpt(tag("NAME"), r.NAMESize, r.NAME);
    out.writeVOpt(tag("QSTN"), r.QSTNSize, r.QSTN);
    out.writeVOpt(tag("QSTF"), r.QSTFSize, r.QSTF);
    out.writeVOpt(tag("QSTR"), r.QSTRSize, r.QSTR);
    // A slot carries one value, INTV before FLTV.
    for (const InfoCondition& c : r.Conditions) {
        out.headed(
            tag("SCVR"), c.SCVRSize, layoutWidth(c, layout::conditionHead),
            [&] { layout::conditionHead(c, [&](const auto&... f) { out.fields(f...); }); }, c.Name);
        if (c.INTVSize != 0)
            out.writeV(tag("INTV"), c.INTVSize, c.INTV);
        else if (c.FLTVSize != 0)
            out.writeV(tag("FLTV"), c.FLTVSize, c.FLTV);
    }
    out.writeUOpt(tag("BNAM"), r.BNAMSize, r.BNAM);
    out.writeZOpt(tag("ACDT"), r.ACDTSize, r.ACDT); // savegames carry it; nothing read is dropped
}

} // namespace quillon

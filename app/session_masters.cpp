#include "app/session.h"
#include "writer/byte_sink.h"

#include <set>

namespace quillon {

const LoadOrder& sessionMasters(Session& session) {
    std::string of = session.recordsPath + "\n" + session.fileStamp;
    if (session.loadOrder && session.loadOrderOf == of) return *session.loadOrder;
    auto order =
        std::make_shared<LoadOrder>(findMasters(session.store, session.recordsPath, session.masterSearch));
    readMasters(*order, &session.masterCache);
    std::string name = bareName(session.recordsPath), read;
    std::set<std::string> summarised;
    for (const auto& [path, summary] : session.masterSummaries)
        for (const std::string& given : useMasterSummary(*order, summary, path)) {
            summarised.insert(given);
            session.log.LogLine("-Master \"" + given + "\" was taken from the summary \"" + bareName(path) +
                                "\".");
        }
    session.masterCache.shareDerived(*order);
    for (const std::string& note : order->searchNotes)
        session.log.LogLine("-Masters: " + note + ".");
    for (const auto& m : order->masters) {
        if (summarised.count(m->name)) continue;
        if (!m->found()) {
            session.log.LogLine("-Master \"" + m->name + "\" of \"" + m->namedBy +
                                "\" was not found; its records are not known.");
            continue;
        }
        read += (read.empty() ? "" : ", ") + m->name;
        if (m->changed())
            session.log.LogLine("-Master \"" + m->name + "\" has changed since \"" + m->namedBy +
                                "\" was saved: " + groupedNumber(m->recordedSize) + " bytes then, " +
                                groupedNumber(m->size) + " now.");
    }
    if (!read.empty())
        session.log.LogLine("-Read the masters of \"" + name + "\" (" + read + ") in " +
                            formatSeconds(order->readMs) + " seconds.");
    session.loadOrder = std::move(order);
    session.loadOrderOf = of;
    return *session.loadOrder;
}

} // namespace quillon

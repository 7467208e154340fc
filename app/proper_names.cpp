#include "app/proper_names.h"

namespace quillon {

void forEachProperName(const RecordStore& store, const std::function<void(std::string_view)>& visit) {
    store.forEachArray([&](const auto& array) {
        for (const auto& r : array) {
            if constexpr (requires { std::string_view(r.FNAM); }) visit(r.FNAM);
        }
    });
    // Speakers' IDs are often their names (Bethesda's own are): with a master missing, they are all
    // there is of its names.
    for (const NpcRecord& n : store.NPC_)
        visit(n.NAME);
    for (const CreaRecord& c : store.CREA)
        visit(c.NAME);
    for (const InfoRecord& r : store.INFO)
        visit(r.ONAM);
    for (const CellRecord& c : store.CELL)
        visit(c.NAME);
    for (const DialRecord& d : store.DIAL)
        visit(d.NAME);
    for (const FactRecord& f : store.FACT)
        for (const auto& rank : f.Ranks)
            visit(fixedText(rank.RNAM));
}

} // namespace quillon

#include "app/merged_cells.h"

#include <unordered_map>

namespace quillon {

namespace {

std::string cellKey(const CellRecord& cell) {
    if (cell.CellFlags & 1) return "interior:" + foldedKey(cell.NAME);
    return "exterior:" + std::to_string(cell.GridX) + "," + std::to_string(cell.GridY);
}

struct Building {
    MergedCell merged;
    std::unordered_map<std::uint64_t, std::size_t> byNumber; // reference number -> place in references
};

class Merge {
public:
    explicit Merge(const LoadOrder& order) : order_(order) {}

    // The cells of the file at position p of the load order, whose header names masters.
    void add(const RecordStore& store, int p, const std::vector<std::string>& masters) {
        for (const CellRecord& cell : store.CELL) {
            auto [at, isNew] = places_.emplace(cellKey(cell), cells_.size());
            if (isNew) cells_.emplace_back();
            Building& b = cells_[at->second];
            b.merged.cell = &cell;
            for (const CellReference& ref : cell.References)
                place(b, ref, owner(p, ref.FRMRByte, masters));
        }
    }

    std::vector<MergedCell> finish() {
        std::vector<MergedCell> out;
        out.reserve(cells_.size());
        for (Building& b : cells_) {
            std::erase(b.merged.references, nullptr);
            out.push_back(std::move(b.merged));
        }
        return out;
    }

private:
    // The load-order position of the file a reference belongs to: its own when the number's high
    // byte is 0, else the master that byte counts (from 1) in the header of the file it stands in.
    int owner(int p, std::uint8_t high, const std::vector<std::string>& masters) const {
        if (high == 0 || high > masters.size()) return p;
        int at = order_.position(masters[high - 1]);
        return at < 0 ? p : at;
    }
    static void place(Building& b, const CellReference& ref, int owner) {
        std::uint64_t number = std::uint64_t(owner) << 32 | std::uint32_t(ref.FRMR[0]) |
                               std::uint32_t(ref.FRMR[1]) << 8 | std::uint32_t(ref.FRMR[2]) << 16;
        auto found = b.byNumber.find(number);
        if (found != b.byNumber.end()) {
            b.merged.references[found->second] = ref.Deleted ? nullptr : &ref;
            if (ref.Deleted) b.byNumber.erase(found);
            return;
        }
        if (ref.Deleted) return;
        b.byNumber.emplace(number, b.merged.references.size());
        b.merged.references.push_back(&ref);
    }

    const LoadOrder& order_;
    std::unordered_map<std::string, std::size_t> places_;
    std::vector<Building> cells_;
};

} // namespace

std::vector<MergedCell> mergedCells(const LoadOrder& order, const RecordStore& own) {
    Merge merge(order);
    for (std::size_t p = 0; p < order.masters.size(); ++p)
        merge.add(order.masters[p]->store(), int(p), order.masters[p]->masters);
    std::vector<std::string> ownMasters;
    if (!own.TES3.empty())
        for (const MasterEntry& m : own.TES3.front().Masters)
            ownMasters.push_back(m.MAST);
    merge.add(own, int(order.masters.size()), ownMasters);
    return merge.finish();
}

} // namespace quillon

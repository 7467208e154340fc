#pragma once
// The cells of a load order as the game shows them: a cell of the same name (interior) or grid
// (exterior) in a later file adds its references to the earlier one's, and a reference whose
// number names an earlier file's reference replaces it, or removes it when it carries DELE.
#include "app/load_order.h"

#include <vector>

namespace quillon {

struct MergedCell {
    const CellRecord* cell = nullptr; // the latest file's record of the cell
    std::vector<const CellReference*> references;
};

// The cells of the masters, then of the file's own store, merged, in the order each first
// appears in the load order.
std::vector<MergedCell> mergedCells(const LoadOrder& order, const RecordStore& own);

} // namespace quillon

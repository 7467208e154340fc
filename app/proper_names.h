#pragma once
// The names a file's records give (objects' names, speakers', cells', topics', rank titles):
// words of the game's world the spelling check takes as spelled right.
#include "records/record_store.h"

#include <functional>
#include <string_view>

namespace quillon {

void forEachProperName(const RecordStore& store, const std::function<void(std::string_view)>& visit);

} // namespace quillon

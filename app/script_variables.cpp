#include "app/script_variables.h"

#include "app/text.h"

namespace quillon {

std::set<std::string> scriptVariables(const ScptRecord& script) {
    std::set<std::string> out;
    for (const auto* list : {&script.ShortNames, &script.LongNames, &script.FloatNames})
        for (const std::string& name : *list)
            out.insert(foldedKey(name));
    return out;
}

} // namespace quillon

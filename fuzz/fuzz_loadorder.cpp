// libFuzzer entry point; the body is shared with the regression tests.
#include "fuzz/fuzz_targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillon::fuzz::loadOrder(data, size);
    return 0;
}

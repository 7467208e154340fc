// Every input that seeds the fuzzers or that they once failed on, replayed through the same code.
#include "fuzz/fuzz_targets.h"
#include "helpers.h"

using namespace quillon;
using namespace quillon::test;

TEST(FuzzRegressions, KeptInputsRunCleanly) {
    struct Target {
        const char* folder;
        void (*run)(const std::uint8_t*, std::size_t);
    };
    int replayed = 0;
    for (auto [folder, run] :
         {Target{"read", fuzz::read}, Target{"import", fuzz::importText}, Target{"cleanup", fuzz::cleanup},
          Target{"npclist", fuzz::npcList}, Target{"texts", fuzz::texts},
          Target{"loadorder", fuzz::loadOrder}, Target{"openmwcfg", fuzz::openmwConfig}}) {
        for (const char* kind : {"seeds", "regressions"}) {
            std::filesystem::path dir = std::filesystem::path(QUILLON_FUZZ_DIR) / kind / folder;
            if (!std::filesystem::is_directory(dir)) continue;
            for (const auto& entry : std::filesystem::directory_iterator(dir)) {
                if (!entry.is_regular_file() || entry.path().filename() == ".keep") continue;
                std::string bytes = readAll(entry.path().string());
                run(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
                ++replayed;
            }
        }
    }
    EXPECT_GT(replayed, 0) << "no fuzz inputs found under " << QUILLON_FUZZ_DIR;
}

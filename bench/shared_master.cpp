#include "bench/shared_master.h"

#include "bench/processes.h"
#include "tools/record_builder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

#include <unistd.h>

namespace quillon::bench {

namespace {

namespace fs = std::filesystem;
using namespace quillon::build;

// A plugin of a topic with a few responses and result scripts, naming Master.esm.
std::string smallPlugin(int n) {
    std::string header =
        Rec("TES3").sub("HEDR", hedr(0)).z("MAST", "Master.esm").sub("DATA", std::string(8, '\0')).bytes();
    std::string topic = "bench topic " + std::to_string(n);
    std::string out = header + Rec("DIAL").z("NAME", topic).sub("DATA", std::string(1, '\0')).bytes();
    for (int i = 0; i < 20; ++i)
        out += Rec("INFO")
                   .z("INAM", std::to_string(n) + "-" + std::to_string(i))
                   .sub("DATA", std::string(12, '\0'))
                   .z("ONAM", "bench_npc")
                   .text("NAME", "A few words of response " + std::to_string(i) + ".")
                   .text("BNAM", "if ( GetJournalIndex bench_quest >= 10 )\r\n\tAddTopic \"" + topic +
                                     "\"\r\nendif\r\nModDisposition 5")
                   .bytes();
    return out;
}

double medianOf(const std::vector<std::string>& argv, int runs) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(spawn(argv).ms);
    return median(times);
}

} // namespace

int timeSharedMaster(const std::string& quillon, const std::string& master, int plugins, int runs) {
    fs::path dir = fs::temp_directory_path() / ("quillon-shared-" + std::to_string(::getpid()));
    fs::create_directories(dir / "with");
    fs::create_directories(dir / "empty");
    fs::create_symlink(fs::absolute(master), dir / "with" / "Master.esm");
    std::vector<std::string> withMaster = {quillon, "check"}, without = withMaster;
    for (int i = 0; i < plugins; ++i) {
        std::string name = "p" + std::to_string(i) + ".esp";
        std::ofstream(dir / "with" / name, std::ios::binary) << smallPlugin(i);
        std::ofstream(dir / "empty" / name, std::ios::binary) << smallPlugin(i);
        withMaster.push_back((dir / "with" / name).string());
        without.push_back((dir / "empty" / name).string());
    }
    double open = medianOf({quillon, "counts", master}, runs), own = medianOf(without, runs),
           shared = medianOf(withMaster, runs);
    std::printf("%d plugins sharing %s, median of %d runs (whole processes)\n", plugins, master.c_str(),
                runs);
    std::printf("  %-40s %10.1f ms\n", "open the master (counts)", open);
    std::printf("  %-40s %10.1f ms\n", "check the plugins, master not found", own);
    std::printf("  %-40s %10.1f ms\n", "check the plugins with their master", shared);
    std::printf("  %-40s %10.2f (target at most 1.30)\n", "ratio to the open plus their own",
                shared / (open + own));
    fs::remove_all(dir);
    return 0;
}

int timeGameRules(const std::string& quillon, const std::string& file, int runs) {
    double open = medianOf({quillon, "counts", file}, runs),
           rules = medianOf({quillon, "check", file, "--only", "shadowed,never,order,journal,link"}, runs);
    std::printf("the game's dialogue rules on %s, median of %d runs (whole processes)\n", file.c_str(), runs);
    std::printf("  %-40s %10.1f ms\n", "open (counts)", open);
    std::printf("  %-40s %10.1f ms\n", "check --only shadowed,...,link", rules);
    std::printf("  %-40s %10.2f (target at most 2.00)\n", "ratio to the open", rules / open);
    return 0;
}

} // namespace quillon::bench

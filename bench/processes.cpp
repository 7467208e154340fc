#include "bench/processes.h"

#include "tools/record_builder.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillon::bench {

Spawned spawn(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const std::string& a : argv)
        args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    auto start = std::chrono::steady_clock::now();
    pid_t child = ::fork();
    if (child == 0) {
        int null = ::open("/dev/null", O_RDWR);
        ::dup2(null, 0);
        ::dup2(null, 1);
        ::dup2(null, 2);
        ::execv(args[0], args.data());
        ::_exit(127);
    }
    int status = 0;
    struct rusage usage {};
    ::wait4(child, &status, 0, &usage);
    Spawned s;
    s.ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    s.peakMb = usage.ru_maxrss / 1024.0;
    s.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return s;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

namespace {

struct Step {
    std::string name;
    std::vector<std::string> argv;
    std::string output; // removed before each run, so that every run writes a new file
};

} // namespace

namespace {

// A plugin naming master (by its file name) with one topic whose response adds it, written to
// path.
std::string writePlugin(const std::string& path, const std::string& master) {
    using namespace quillon::build;
    std::string size(8, '\0');
    std::int64_t bytes = std::int64_t(std::filesystem::file_size(master));
    std::memcpy(size.data(), &bytes, 8);
    std::string plugin = Rec("TES3")
                             .sub("HEDR", hedr(2))
                             .z("MAST", std::filesystem::path(master).filename().string())
                             .sub("DATA", size)
                             .bytes() +
                         Rec("DIAL").z("NAME", "bench topic").sub("DATA", std::string(1, '\0')).bytes() +
                         Rec("INFO")
                             .z("INAM", "1")
                             .sub("DATA", std::string(12, '\0'))
                             .z("ONAM", "bench_npc")
                             .text("NAME", "Hello.")
                             .text("BNAM", "AddTopic \"bench topic\"")
                             .bytes();
    std::ofstream(path, std::ios::binary) << plugin;
    return path;
}

} // namespace

const ProcessFigures* ProcessRun::find(const std::string& name) const {
    for (const ProcessFigures& f : figures)
        if (f.name == name) return &f;
    return nullptr;
}

ProcessRun timeProcesses(const std::string& quillon, const std::string& esmtool, const std::string& file,
                         int runs) {
    // Outputs beside the input, so that the yardstick writes to the same disk as Save.
    std::string base = file + ".bench-" + std::to_string(::getpid());
    std::string saved = base + ".save.esm", copied = base + ".dd.esm", cleaned = base + ".clean.esm",
                cloned = base + ".clone.esm", sheet = base + ".sheet.txt";
    // A small plugin written against the file, in its folder, for the commands that read it as a master.
    std::string plugin = writePlugin(base + ".plugin.esp", file);
    std::vector<Step> steps = {
        {"cat", {"/bin/cat", file}, ""},
        {"quillon counts", {quillon, "counts", file}, ""},
        {"quillon save", {quillon, "save", file, "-o", saved}, saved},
        {"dd bs=8M conv=fsync", {"/bin/dd", "if=" + saved, "of=" + copied, "bs=8M", "conv=fsync"}, copied},
        {"quillon morrowindize --all", {quillon, "morrowindize", file, "-o", cleaned, "--all"}, cleaned},
        {"check with master", {quillon, "check", plugin, "--only", "topic,choice,master"}, ""},
        {"check --only spelling", {quillon, "check", file, "--only", "spelling"}, ""},
        {"npc-list --with-masters",
         {quillon, "npc-list", plugin, "--cell", "Vivec", "--with-masters", "-o", sheet},
         sheet},
    };
    if (!esmtool.empty()) steps.push_back({"esmtool clone", {esmtool, "clone", file, cloned}, cloned});

    ProcessRun run;
    run.file = file;
    run.fileMb = double(std::filesystem::file_size(file)) / (1024.0 * 1024.0);
    std::vector<std::vector<double>> times(steps.size());
    std::vector<double> peaks(steps.size(), 0);
    for (int round = 0; round < runs; ++round) {
        for (std::size_t i = 0; i < steps.size(); ++i) {
            if (!steps[i].output.empty()) std::filesystem::remove(steps[i].output);
            ::sync(); // no run pays for the writing of the one before
            Spawned s = spawn(steps[i].argv);
            // A check that finds something exits 1, and that is its answer, not a failure.
            if (!s.ok && steps[i].name.rfind("check", 0) != 0)
                std::fprintf(stderr, "warning: \"%s\" failed\n", steps[i].name.c_str());
            times[i].push_back(s.ms);
            peaks[i] = std::max(peaks[i], s.peakMb);
        }
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        run.figures.push_back({steps[i].name, median(times[i]), peaks[i]});
        if (!steps[i].output.empty()) std::filesystem::remove(steps[i].output);
    }
    std::filesystem::remove(plugin);
    return run;
}

namespace {

double ms(const ProcessRun& run, const char* name) {
    const ProcessFigures* f = run.find(name);
    return f ? f->ms : 0;
}

void printTargets(const ProcessRun& run) {
    double cat = ms(run, "cat"), open = ms(run, "quillon counts"), save = ms(run, "quillon save");
    double dd = ms(run, "dd bs=8M conv=fsync"), clean = ms(run, "quillon morrowindize --all");
    double peak = run.find("quillon counts")->peakMb;
    std::printf("  Open: %.1fx cat (target <= 7), peak memory %.2fx the file (target <= 1.5)\n", open / cat,
                peak / run.fileMb);
    std::printf("  what Save adds to Open: %.0f ms, %.2fx dd (target <= 1.5)\n", save - open,
                (save - open) / dd);
    std::printf("  Morrowindize --all: %.2fx Open + Save (target <= 1)\n", clean / save);
    std::printf("  check of a small plugin reading the file as its master: %.2fx Open of the master (target "
                "<= 1.2)\n",
                ms(run, "check with master") / open);
    std::printf("  check --only spelling of every response: %.2fx Open (target <= 3)\n",
                ms(run, "check --only spelling") / open);
    if (double clone = ms(run, "esmtool clone"); clone > 0)
        std::printf("  esmtool clone: %.1fx the time of quillon save (target >= 20)\n", clone / save);
}

} // namespace

void printProcesses(const std::vector<ProcessRun>& runs) {
    for (const ProcessRun& run : runs) {
        double cat = ms(run, "cat");
        std::printf("\nwhole processes on %s (%.1f MB)\n", run.file.c_str(), run.fileMb);
        std::printf("%-28s %10s %10s %10s %10s", "process", "ms", "x cat", "peak MB", "x file");
        if (&run != &runs.front()) std::printf(" %10s", "x first");
        std::printf("\n");
        for (const ProcessFigures& f : run.figures) {
            std::printf("%-28s %10.1f %10.1f %10.1f %10.2f", f.name.c_str(), f.ms, f.ms / cat, f.peakMb,
                        f.peakMb / run.fileMb);
            if (&run != &runs.front()) std::printf(" %10.2f", f.ms / ms(runs.front(), f.name.c_str()));
            std::printf("\n");
        }
        printTargets(run);
    }
}

} // namespace quillon::bench

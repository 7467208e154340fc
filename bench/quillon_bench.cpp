// Times every command of Quillon on a synthetic master: in process (median milliseconds, MB/s,
// peak memory and the ratio to one plain read of the file), then as whole processes beside `cat`,
// `dd conv=fsync` and OpenMW's `esmtool clone`. Given a second, larger file it shows how each time
// grows with the data.
//   quillon_bench generate OUT.esm [--scale S] [--profile game|dense]
//   quillon_bench run FILE.esm [LARGER.esm] [--runs N]
//   quillon_bench processes FILE.esm [LARGER.esm] [--runs N]   (whole processes only)
//   quillon_bench one COMMAND FILE.esm        (one command in a fresh process, for its memory)
//   quillon_bench shared-master FILE.esm [--plugins N] [--runs N]
//                                             (check of N small plugins naming FILE as their master)
//   quillon_bench game-rules FILE.esm [--runs N]  (the dialogue rules' kinds against the Open)
#include "app/file_commands.h"
#include "bench/processes.h"
#include "bench/shared_master.h"
#include "bench/synthetic_master.h"
#include "cleanup/morrowindize.h"
#include "dialogue/dialogue_commands.h"
#include "npclist/npc_list.h"
#include "records/es_read.h"
#include "tools/fixed_answers.h"
#include "writer/es_write.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

using namespace quillon;

namespace {

// The answers of a batch run; the NPC list and the quotes are for "Vivec", files go to scratch.
struct BenchDialogs : FixedAnswers {
    std::string scratch;
    BenchDialogs() { typed = "Vivec"; }
    std::string openFile(const FileRequest&) override { return scratch + ".txt"; }
    std::string saveFile(const FileRequest&) override { return scratch + ".out"; }
};

using Clock = std::chrono::steady_clock;

struct Command {
    const char* name;
    // Untimed preparation of a fresh session, then the timed work.
    std::function<void(Session&, BenchDialogs&, const std::string&file)> prepare, run;
};

CleanupSettings allOptions() {
    CleanupSettings s;
    for (bool* b : {&s.isLineBreaks, &s.isAmerican, &s.isSentences, &s.isSpaceQuotes, &s.isSlang, &s.isTemple,
                    &s.isDashes, &s.isEllipsis, &s.isSquare, &s.isDashSpaces})
        *b = true;
    return s;
}

const std::vector<Command>& commands() {
    auto open = [](Session& s, BenchDialogs& d, const std::string& f) { openPath(s, d, f); };
    auto nothing = [](Session&, BenchDialogs&, const std::string&) {};
    static const std::vector<Command> list = {
        {"read", nothing,
         [](Session&, BenchDialogs&, const std::string& f) {
             std::string error;
             std::string bytes = loadFile(f, error);
             if (bytes.empty()) std::abort();
         }},
        {"open", nothing, open},
        {"save", open,
         [](Session& s, BenchDialogs& d, const std::string&) { saveAsPath(s, d, d.scratch + ".esm"); }},
        // Save's own work, without the disk: what the writers cost.
        {"serialise", open,
         [](Session& s, BenchDialogs& d, const std::string&) {
             if (serialiseStore(s.store, std::int32_t(s.counts.number(CountLabel::Total)), 1, d).empty())
                 std::abort();
         }},
        {"export", open,
         [](Session& s, BenchDialogs& d, const std::string&) { exportDialogueTo(s, d, d.scratch + ".txt"); }},
        {"import",
         [](Session& s, BenchDialogs& d, const std::string& f) {
             openPath(s, d, f);
             exportDialogueTo(s, d, d.scratch + ".txt");
         },
         [](Session& s, BenchDialogs& d, const std::string&) {
             importDialogueFrom(s, d, d.scratch + ".txt");
         }},
        {"loops", open, [](Session& s, BenchDialogs& d, const std::string&) { DetectLoops(s, d); }},
        {"morrowindize-none", open,
         [](Session& s, BenchDialogs& d, const std::string&) { Morrowindize(s, d); }},
        {"morrowindize-all",
         [](Session& s, BenchDialogs& d, const std::string& f) {
             openPath(s, d, f);
             s.settings = allOptions();
         },
         [](Session& s, BenchDialogs& d, const std::string&) { Morrowindize(s, d); }},
        {"npc-list", open,
         [](Session& s, BenchDialogs& d, const std::string&) {
             ExportNpcList(s, d, NpcListFormat::Html, false);
         }},
        {"quotes-xml", open, [](Session& s, BenchDialogs& d, const std::string&) { ExportQuotesXml(s, d); }},
        {"quotes-kst", open, [](Session& s, BenchDialogs& d, const std::string&) { ExportQuotesKst(s, d); }},
    };
    return list;
}

std::string scratchBase() {
    return (std::filesystem::temp_directory_path() / ("quillon-bench-" + std::to_string(::getpid())))
        .string();
}

double timeOnce(const Command& c, const std::string& file) {
    Session session;
    BenchDialogs dialogs;
    dialogs.scratch = scratchBase();
    c.prepare(session, dialogs, file);
    // What earlier runs wrote goes to disk first, so that no run pays for another's writing.
    ::sync();
    Clock::time_point start = Clock::now();
    c.run(session, dialogs, file);
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Peak memory of the command alone, in a fresh process (preparation included), in MB.
double peakMegabytes(const char* self, const Command& c, const std::string& file) {
    return bench::spawn({self, "one", c.name, file}).peakMb;
}

struct InProcess {
    std::string name;
    double ms;
};

// Peak memory of every command, each in a fresh process. Taken before anything is timed here:
// a child starts with the resident pages of this process, which must still be few.
std::vector<double> peaksInFreshProcesses(const char* self, const std::string& file) {
    std::vector<double> peaks;
    for (const Command& c : commands())
        peaks.push_back(peakMegabytes(self, c, file));
    return peaks;
}

std::vector<InProcess> timeInProcess(const std::string& file, int runs, const std::vector<double>& peaks,
                                     const std::vector<InProcess>* first) {
    double megabytes = double(std::filesystem::file_size(file)) / (1024.0 * 1024.0);
    std::printf("\nin process on %s (%.1f MB), median of %d runs\n", file.c_str(), megabytes, runs);
    std::printf("%-18s %10s %10s %10s %12s", "command", "ms", "MB/s", "x read", "peak MB");
    if (first) std::printf(" %10s", "x first");
    std::printf("\n");
    std::vector<InProcess> figures;
    double readMs = 0;
    for (const Command& c : commands()) {
        std::vector<double> times;
        for (int i = 0; i < runs; ++i)
            times.push_back(timeOnce(c, file));
        double median = bench::median(times);
        if (std::strcmp(c.name, "read") == 0) readMs = median;
        figures.push_back({c.name, median});
        std::printf("%-18s %10.1f %10.0f %10.1f %12.1f", c.name, median, megabytes / (median / 1000.0),
                    readMs > 0 ? median / readMs : 0.0, peaks[figures.size() - 1]);
        if (first) std::printf(" %10.2f", median / (*first)[figures.size() - 1].ms);
        std::printf("\n");
        std::fflush(stdout);
    }
    for (const char* ext : {".esm", ".txt", ".out"})
        std::filesystem::remove(scratchBase() + ext);
    return figures;
}

// OpenMW's esmtool, when this machine has it: $ESMTOOL, else the search path and /usr/games.
std::string findEsmtool() {
    if (const char* given = std::getenv("ESMTOOL")) return given;
    std::string path = std::getenv("PATH") ? std::getenv("PATH") : "";
    path += ":/usr/games";
    for (std::size_t start = 0; start <= path.size();) {
        std::size_t end = std::min(path.find(':', start), path.size());
        std::filesystem::path candidate = std::filesystem::path(path.substr(start, end - start)) / "esmtool";
        if (end > start && ::access(candidate.c_str(), X_OK) == 0) return candidate.string();
        start = end + 1;
    }
    return "";
}

int run(const char* self, const std::vector<std::string>& files, int runs, bool inProcessToo) {
    // Everything that forks comes first, while this process is small.
    std::vector<std::vector<double>> peaks;
    for (const std::string& file : files)
        if (inProcessToo) peaks.push_back(peaksInFreshProcesses(self, file));
    std::string quillon = (std::filesystem::path(self).parent_path() / "quillon").string();
    std::string esmtool = findEsmtool();
    std::vector<bench::ProcessRun> processes;
    for (const std::string& file : files)
        processes.push_back(bench::timeProcesses(quillon, esmtool, file, runs));

    std::vector<std::vector<InProcess>> inProcess;
    for (std::size_t i = 0; inProcessToo && i < files.size(); ++i)
        inProcess.push_back(timeInProcess(files[i], runs, peaks[i], i ? &inProcess.front() : nullptr));
    if (esmtool.empty()) std::printf("\n(esmtool not found: set ESMTOOL to compare with OpenMW's clone)\n");
    bench::printProcesses(processes);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.size() >= 2 && args[0] == "generate") {
        double scale = 1.0;
        const bench::Profile* profile = &bench::gameProfile();
        for (std::size_t i = 2; i + 1 < args.size(); i += 2) {
            if (args[i] == "--scale") scale = std::stod(args[i + 1]);
            if (args[i] == "--profile" && args[i + 1] == "dense") profile = &bench::referenceDenseProfile();
        }
        std::string bytes = bench::syntheticMaster(*profile, scale);
        std::ofstream(args[1], std::ios::binary) << bytes;
        std::printf("%s: %.1f MB\n", args[1].c_str(), double(bytes.size()) / (1024.0 * 1024.0));
        return 0;
    }
    if (args.size() >= 2 && (args[0] == "run" || args[0] == "processes")) {
        int runs = 5;
        std::vector<std::string> files;
        for (std::size_t i = 1; i < args.size(); ++i) {
            if (args[i] == "--runs" && i + 1 < args.size())
                runs = std::stoi(args[++i]);
            else
                files.push_back(args[i]);
        }
        return run(argv[0], files, runs, args[0] == "run");
    }
    if (args.size() >= 2 && args[0] == "shared-master") {
        int plugins = 50, runs = 5;
        for (std::size_t i = 2; i + 1 < args.size(); i += 2) {
            if (args[i] == "--plugins") plugins = std::stoi(args[i + 1]);
            if (args[i] == "--runs") runs = std::stoi(args[i + 1]);
        }
        std::string quillon = (std::filesystem::path(argv[0]).parent_path() / "quillon").string();
        return bench::timeSharedMaster(quillon, args[1], plugins, runs);
    }
    if (args.size() >= 2 && args[0] == "game-rules") {
        int runs = args.size() >= 4 && args[2] == "--runs" ? std::stoi(args[3]) : 5;
        std::string quillon = (std::filesystem::path(argv[0]).parent_path() / "quillon").string();
        return bench::timeGameRules(quillon, args[1], runs);
    }
    if (args.size() == 3 && args[0] == "one") {
        for (const Command& c : commands())
            if (args[1] == c.name) timeOnce(c, args[2]);
        for (const char* ext : {".esm", ".txt", ".out"})
            std::filesystem::remove(scratchBase() + ext);
        return 0;
    }
    std::fprintf(stderr, "usage: quillon_bench generate OUT.esm [--scale S] [--profile game|dense] | run "
                         "FILE [LARGER] [--runs N] | shared-master FILE [--plugins N] [--runs N]\n");
    return 2;
}

#pragma once
// Whole processes timed as a user sees them, beside the yardsticks of the machine: `cat` of the
// file (the read limit), `dd conv=fsync` of the written file (the durable write limit) and, when
// it is found, OpenMW's `esmtool clone` as a peer.
#include <string>
#include <vector>

namespace quillon::bench {

// One process run with its output thrown away: its wall time, its resident peak, and whether it
// exited with 0.
struct Spawned {
    double ms = 0;
    double peakMb = 0;
    bool ok = false;
};
Spawned spawn(const std::vector<std::string>& argv);

// The middle of the values (the upper one of an even count); 0 for none.
double median(std::vector<double> values);

struct ProcessFigures {
    std::string name;
    double ms = 0;     // median wall time
    double peakMb = 0; // largest resident set over the runs
};

struct ProcessRun {
    std::string file;
    double fileMb = 0;
    std::vector<ProcessFigures> figures;
    const ProcessFigures* find(const std::string& name) const;
};

// Runs every process `runs` times, round by round so that the machine's drift falls on all alike.
ProcessRun timeProcesses(const std::string& quillon, const std::string& esmtool, const std::string& file,
                         int runs);

// The table of one or two files (the second a larger sibling, with its ratio to the first) and
// the derived ratios the project holds itself to.
void printProcesses(const std::vector<ProcessRun>& runs);

} // namespace quillon::bench

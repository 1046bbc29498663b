#pragma once

#include <sys/types.h>

#include <array>
#include <ctime>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tidebrook {

/// Figures by their names: times in seconds, sizes in KiB.
using Figures = std::map<std::string, double>;
/// Those of several runs, or of the times that a step was made. A run may lack a figure.
using Runs = std::vector<Figures>;
/// By the names of the steps.
using Steps = std::map<std::string, Runs>;

/// Prints a line that `readSteps` reads.
void printFigures(const std::string &step, const Figures &figures);
/// Adds the figures that a program printed, in whatever else it printed.
void readSteps(Steps &steps, const std::string &output);

// What processes cost.

double secondsOf(clockid_t clock);

/// What the system counts under a name in a file of /proc, as "VmRSS" in "self/status"; 0 when the
/// process, or thread, has ended.
double procFigure(const std::string &file, const std::string &name);

/// Has a program of the benchmarks do what is measured of it: "cpu" of all threads, "wall", and
/// "peak", of the memory. Under callgrind only this part is counted.
Figures measureRegion(const std::function<void()> &work);

/// The memory of two processes at the same moment: "Pss", which divides what is shared by all who
/// share it; "alone", what the Pss would be if the two were the only ones; "Rss", which has what
/// is shared whole; and "Anonymous", what of that belongs to no file. Throws std::runtime_error
/// when one has ended.
std::array<Figures, 2> memoryOf(pid_t one, pid_t other);

/// The shared objects that a process has mapped.
std::set<std::string> librariesOf(pid_t process);

/// How often its threads have gone to sleep. Those that have ended no longer count.
double sleepsOf(pid_t process);

/// Waits until it has done nothing for a while.
void awaitIdle(pid_t process);

} // namespace tidebrook

#include "bench/figures.h"

#include <valgrind/callgrind.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace tidebrook {

namespace {

const auto pageBytes = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));

/// A part of a file that a process has mapped.
struct Mapping {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::uint64_t offset = 0;
    std::string file; ///< device, inode and path
};

std::vector<Mapping> mappingsOf(pid_t process) {
    std::vector<Mapping> mappings;
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        std::istringstream fields(line);
        Mapping mapping;
        std::string access;
        fields >> std::hex >> mapping.begin;
        fields.ignore(1, '-') >> mapping.end >> access >> mapping.offset;
        std::getline(fields, mapping.file);
        if (mapping.file.find('/') != std::string::npos)
            mappings.push_back(mapping);
    }
    return mappings;
}

/// The pages that are in memory and still a file's, by the file and the place in it: no copies of
/// the process's.
std::set<std::pair<std::string, std::uint64_t>> filePagesOf(pid_t process) {
    constexpr std::uint64_t presentFilePage = std::uint64_t{0b101} << 61U;
    std::ifstream pagemap;
    pagemap.rdbuf()->pubsetbuf(nullptr, 0); // it is read by whole entries alone
    pagemap.open("/proc/" + std::to_string(process) + "/pagemap");
    std::set<std::pair<std::string, std::uint64_t>> pages;
    for (const Mapping &mapping : mappingsOf(process)) {
        std::vector<std::uint64_t> entries((mapping.end - mapping.begin) / pageBytes);
        const std::size_t size = sizeof entries[0];
        pagemap.seekg(static_cast<std::streamoff>(mapping.begin / pageBytes * size));
        pagemap.read(reinterpret_cast<char *>(entries.data()),
                     static_cast<std::streamsize>(entries.size() * size));
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if ((entries[i] & presentFilePage) == presentFilePage)
                pages.emplace(mapping.file, mapping.offset / pageBytes + i);
        }
    }
    if (!pagemap || pages.empty())
        throw std::runtime_error("the pages of a process cannot be read");
    return pages;
}

} // namespace

void printFigures(const std::string &step, const Figures &figures) {
    std::cout << "measured " << step << std::fixed;
    for (const auto &[name, value] : figures)
        std::cout << ' ' << name << ' ' << value;
    std::cout << std::endl;
}

void readSteps(Steps &steps, const std::string &output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string first;
        std::string step;
        fields >> first >> step;
        if (first != "measured")
            continue;
        Figures &figures = steps[step].emplace_back();
        for (std::string name; fields >> name;)
            fields >> figures[name];
    }
}

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double procFigure(const std::string &file, const std::string &name) {
    std::ifstream lines("/proc/" + file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ':'))
            return std::stod(line.substr(name.size() + 1));
    }
    return 0;
}

Figures measureRegion(const std::function<void()> &work) {
    const double cpu = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
    const double wall = secondsOf(CLOCK_MONOTONIC);
    CALLGRIND_START_INSTRUMENTATION;
    work();
    CALLGRIND_STOP_INSTRUMENTATION;
    // Not what getrusage has for the peak: that remembers the parent's size from before the exec.
    return {{"wall", secondsOf(CLOCK_MONOTONIC) - wall},
            {"cpu", secondsOf(CLOCK_PROCESS_CPUTIME_ID) - cpu},
            {"peak", procFigure("self/status", "VmHWM")}};
}

std::array<Figures, 2> memoryOf(pid_t one, pid_t other) {
    std::array<Figures, 2> memories;
    const std::array processes{one, other};
    const std::array pages{filePagesOf(one), filePagesOf(other)};
    const auto shared =
        std::ranges::count_if(pages[0], [&](const auto &page) { return pages[1].contains(page); });
    for (std::size_t i = 0; i < memories.size(); ++i) {
        for (const char *name : {"Pss", "Rss", "Anonymous"})
            memories[i][name] = procFigure(std::to_string(processes[i]) + "/smaps_rollup", name);
        const double ofFiles =
            static_cast<double>(pages[i].size()) - static_cast<double>(shared) / 2;
        memories[i]["alone"] =
            memories[i]["Anonymous"] + ofFiles * static_cast<double>(pageBytes) / 1024;
    }
    return memories;
}

std::set<std::string> librariesOf(pid_t process) {
    std::set<std::string> libraries;
    for (const Mapping &mapping : mappingsOf(process)) {
        if (mapping.file.find(".so") != std::string::npos)
            libraries.insert(mapping.file);
    }
    return libraries;
}

double sleepsOf(pid_t process) {
    double sum = 0;
    const std::string tasks = std::to_string(process) + "/task/";
    for (const auto &thread : std::filesystem::directory_iterator("/proc/" + tasks))
        sum += procFigure(tasks + thread.path().filename().string() + "/status",
                          "voluntary_ctxt_switches");
    return sum;
}

void awaitIdle(pid_t process) {
    double before = 0;
    double now = sleepsOf(process);
    do {
        before = now;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        now = sleepsOf(process);
    } while (now != before);
}

} // namespace tidebrook

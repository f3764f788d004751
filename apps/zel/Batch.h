#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "Console.h"
#include "ExitCode.h"

/// A file that a batch makes of another.
struct BatchItem {
    std::string source, target;
};

/// Work on many files, each in a process of its own: a file that brings its process down, or fills the memory, costs itself alone.
class Batch {
public:
    using Work = std::function<ExitCode(const BatchItem& item)>;

    /// `limit` is the time that each item has; none for 0.
    Batch(const Console& console, std::vector<BatchItem> items, unsigned int jobs, std::chrono::seconds limit);

    /// Runs the work on all items, `jobs` at a time, and sums up. What the work prints comes in the order of the items, as JSON an array;
    /// what it says as soon as it is done. An item has failed, too, when its work says that it is done and its target is not written.
    ///
    /// @return  EXIT_BATCH when some failed, else EXIT_LOSSES when one ended so
    ExitCode Run(const Work& work, bool json);

private:
    using Clock = std::chrono::steady_clock;
    /// What tells a file from the one that takes its place.
    struct Stamp {
        bool operator==(const Stamp&) const = default;
        dev_t device;
        ino_t file;
        long long seconds, nanoseconds;
    };
    struct Process {
        int pid, handle;    // to wait for it; -1 where the system has none
        std::size_t item;
        int output, talk;    // files in memory
        Clock::time_point end;
        std::optional<Stamp> former;    // of the target
    };
    void Start(const Work& work);
    void WaitForOne() const;
    void Collect();
    void Finish(const Process& process, const std::string& failure);
    static std::optional<Stamp> GetStamp(const std::string& file);
    void PrintOutputs(bool json) const;
    ExitCode SumUp() const;

    const Console& m_console;
    const std::vector<BatchItem> m_items;
    const unsigned int m_jobs;
    const std::chrono::seconds m_limit;
    std::size_t m_next = 0;
    std::vector<Process> m_running;
    std::vector<int> m_codes;
    std::vector<std::string> m_outputs;
    std::vector<std::string> m_failures;    // what there is to say of items that gave no report
};

#pragma once

#include <functional>
#include <string>
#include <vector>

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

    Batch(const Console& console, std::vector<BatchItem> items, unsigned int jobs);

    /// Runs the work on all items, `jobs` at a time, and sums up. What the work prints comes in the order of the items, as JSON an array;
    /// what it says as soon as it is done.
    ///
    /// @return  EXIT_BATCH when some failed, else EXIT_LOSSES when one ended so
    ExitCode Run(const Work& work, bool json);

private:
    struct Process {
        int pid;
        std::size_t item;
        int output, talk;    // files in memory
    };
    void Start(const Work& work);
    void Finish(int pid, int status);
    void PrintOutputs(bool json) const;
    ExitCode SumUp() const;

    const Console& m_console;
    const std::vector<BatchItem> m_items;
    const unsigned int m_jobs;
    std::size_t m_next = 0;
    std::vector<Process> m_running;
    std::vector<int> m_codes;
    std::vector<std::string> m_outputs;
};

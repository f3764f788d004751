#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "ExitCode.h"
#include "MeshStatistics.h"
#include "Printable.h"
#include "SceneInput.h"
#include "SceneOutput.h"

/// Joins `--weld 0.01` to `--weld=0.01`, for each operation whose value may be left out: a number behind its name is the value.
void JoinStepValues(std::vector<std::string>& arguments);

/// zel process: runs mesh operations on a file, in the order in which they stand on the command line, and saves the result.
class ProcessVerb {
public:
    /// Adds the verb with its options to the program.
    explicit ProcessVerb(CLI::App& app);

    bool IsAsked() const { return m_verb->parsed(); }
    ExitCode Run(const Console& console) const;

private:
    void PrintResult(const Console& console, const Json& timings, const MeshStatistics& before, const MeshStatistics& after) const;

    CLI::App* m_verb;
    SceneInput m_input;
    SceneOutput m_output;
    std::string m_file, m_target;
    bool m_statistics = false, m_json = false;
};

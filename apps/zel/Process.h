#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "ExitCode.h"

/// zel process: runs mesh operations on a file, in the order in which they stand on the command line.
class ProcessVerb {
public:
    /// Adds the verb with its options to the program.
    explicit ProcessVerb(CLI::App& app);

    bool IsAsked() const { return m_verb->parsed(); }
    ExitCode Run(const Console& console) const;

private:
    CLI::App* m_verb;
    std::string m_file;
    bool m_statistics = false, m_json = false;
};

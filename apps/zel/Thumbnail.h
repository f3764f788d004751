#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "ExitCode.h"

/// zel thumbnail: a small square picture of a file, as file managers ask for.
class ThumbnailVerb {
public:
    /// Adds the verb with its options to the program.
    explicit ThumbnailVerb(CLI::App& app);

    bool IsAsked() const { return m_verb->parsed(); }
    ExitCode Run(const Console& console) const;

private:
    CLI::App* m_verb;
    std::string m_file, m_target;
    int m_size = 256;
};

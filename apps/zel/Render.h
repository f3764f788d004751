#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "ExitCode.h"
#include "PictureOptions.h"

/// zel render: a picture of a file, or a series all around it.
class RenderVerb {
public:
    /// Adds the verb with its options to the program.
    explicit RenderVerb(CLI::App& app);

    bool IsAsked() const { return m_verb->parsed(); }
    ExitCode Run(const Console& console) const;

private:
    CLI::App* m_verb;
    PictureOptions m_options;
    std::string m_file, m_target;
};

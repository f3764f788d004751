#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "ExitCode.h"
#include "SceneInput.h"
#include "SceneOutput.h"

/// zel merge: many files become one scene.
class MergeVerb {
public:
    /// Adds the verb with its options to the program.
    explicit MergeVerb(CLI::App& app);

    bool IsAsked() const { return m_verb->parsed(); }
    ExitCode Run(const Console& console) const;

private:
    CLI::App* m_verb;
    SceneInput m_input;
    SceneOutput m_output;
    std::string m_target;
    std::vector<std::string> m_files;
};

#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Batch.h"
#include "Console.h"
#include "ExitCode.h"
#include "SceneInput.h"
#include "SceneOutput.h"

/// zel convert: one file into another, or many into a folder.
class ConvertVerb {
public:
    /// Adds the verb with its options to the program.
    explicit ConvertVerb(CLI::App& app);

    bool IsAsked() const { return m_verb->parsed(); }
    ExitCode Run(const Console& console) const;

private:
    ExitCode ConvertFile(const Console& console, const std::string& source, const std::string& target) const;
    ExitCode ConvertMany(const Console& console) const;
    bool ListItems(const Console& console, std::vector<BatchItem>& items) const;
    std::string GetTitle(const std::string& source) const;

    CLI::App* m_verb;
    SceneInput m_input;
    SceneOutput m_output;
    std::vector<std::string> m_files;
    std::string m_folder;
    bool m_keepTree = false;
    unsigned int m_jobs = 1, m_jobSeconds = 3600;
    std::string m_shard;
};

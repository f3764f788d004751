#pragma once

#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "ExitCode.h"
#include "InputFiles.h"
#include "SceneFile.h"

/// What can be said about writing, for every verb that writes a scene: an option for each export flag that a user chooses, unit, axis,
/// textures, format, and the report.
class SceneOutput {
public:
    explicit SceneOutput(CLI::App& verb);

    /// EXIT_DONE when `target` can be written as far as can be seen, before the time that reading takes. Any other code comes after one line
    /// of the console: it is one of the inputs and the user has not allowed that, its format cannot be written, or something is in the way.
    ExitCode Check(const Console& console, const std::string& target, const InputFiles& inputs) const;
    /// Writes the scene and prints the report. One line of the console when it cannot be written.
    ///
    /// @param inputs  files that the scene comes from
    /// @param report  what reading had to say; what writing has joins it
    ExitCode Write(const Console& console, C3DScene& scene, const std::string& target, const InputFiles& inputs,
                   C3DConversionReport& report) const;
    /// The report of a conversion that came to nothing, and why.
    void PrintFailure(const InputFiles& inputs, const std::string& target, const C3DConversionReport& report,
                      const std::string& failure) const
    {
        PrintReport(inputs, target, report, failure);
    }

    bool IsJsonReport() const { return m_report == "json"; }
    /// True, with one line of the console, when the target is one of the inputs and the user has not allowed that.
    bool IsInput(const Console& console, const std::string& target, const InputFiles& inputs) const;
    /// The format asked for, 0 when it follows from the target's name. False, with one line of the console, for one that cannot be written.
    bool GetFormat(const Console& console, unsigned int& fileClass) const;

private:
    unsigned int GetFlags(unsigned int defaults, unsigned int fileClass) const;
    void ChangeUnit(const Console& console, C3DScene& scene) const;
    void TurnUp(C3DScene& scene, _UP_AXIS_MODE written) const;
    void PrintReport(const InputFiles& inputs, const std::string& target, const C3DConversionReport& report,
                     const std::string& failure) const;    // empty: it was written

    std::vector<std::pair<CLI::Option*, unsigned int>> m_flags;
    std::string m_format, m_form, m_unit, m_upAxis, m_textures, m_report;
    bool m_anyTextures = false, m_strict = false, m_overwrite = false;
};

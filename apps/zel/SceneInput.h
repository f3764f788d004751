#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "Console.h"
#include "SceneFile.h"

/// What can be said about reading, for every verb that reads a scene to make something of it: an option for each import flag.
///
/// IMPORT_NO_CHECKOUT has none: what follows counts on checked scenes.
class SceneInput {
public:
    explicit SceneInput(CLI::App& verb);

    /// Reads a file as ReadSceneFile does. The log goes to `report` in any case.
    std::optional<SceneFile> Read(const Console& console, const std::string& name, C3DConversionReport& report,
                                  std::string* failure = nullptr) const;

private:
    std::vector<std::pair<CLI::Option*, unsigned int>> m_flags;
};

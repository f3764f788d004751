#pragma once

#include <future>
#include <optional>
#include <string>

#include "SceneFile.h"

/// A file that is read on a thread of its own while this one does something else, apart from building scenes and from speaking.
class SceneReading {
public:
    SceneReading(const Console& console, const std::string& name);

    /// Waits for it. No result, after one line of the console, when the file cannot be read.
    std::optional<SceneFile> Finish() { return m_file.get(); }

private:
    std::future<std::optional<SceneFile>> m_file;
};

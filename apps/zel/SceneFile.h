#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <3dzel.h>

#include "Console.h"

struct ReleaseScene {
    void operator()(C3DScene* scene) const { DeleteMe(scene); }
};

/// A scene file that was read.
struct SceneFile {
    std::string name;
    std::string fileClass;
    std::string format;
    double readMilliseconds;
    std::unique_ptr<C3DScene, ReleaseScene> scene;
};

/// How files are read, for the whole run.
struct ReadSettings {
    std::optional<unsigned int> seconds, megabytes;    ///< limits for a file of another program; 0 is none
    std::optional<_UP_AXIS_MODE> up;                   ///< axis that points up in files that don't tell
    std::string extension;                             ///< of the format that files are in, whatever their names say; empty: by name
};
void SetReadSettings(const ReadSettings& settings);

/// Reads a file of any format without import flags; see below.
std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name);
/// Reads a file of any format, or standard input for the name "-". Warnings are told; a failure is one line of the console, and no result.
///
/// @param options  import flags; the log is left in them
/// @param failure  out: why there is no result; null when nobody asks
std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name, CSceneImportOptions& options,
                                       std::string* failure = nullptr);

/// Why a reading or a writing came to nothing; empty when `work` tells that it did not. Its exceptions are reasons too.
std::string RunIo(const C3DIo& io, const CIoOptions& options, const std::function<bool()>& work);
/// `reason` with the file's name before it, unless it names the file itself.
std::string NameFailure(const std::string& file, const std::string& reason);

#pragma once

#include <string>
#include <vector>

#include "files/FileExt.h"
#include "files/FileParser.h"

// One IO plug-in module: its formats, its manifest, and letting it register.

struct CIoFormat {
    CFileExt extension;
    CParserFactory factory;    ///< null until the module is loaded
};

// Manifest: a head line with the plug-in version, then a line for each format, fields separated by tabs:
// class, kind in hexadecimals without abilities, abilities "r", "w" or "rw", extensions separated by ';', description.
// Lines that begin with '#' are for people. (IOPluginManifest.cpp)

enum class ManifestState { MISSING, GOOD, DAMAGED, WRONG_VERSION };

/// What a manifest file says; no formats unless it is good.
ManifestState ReadIOManifest(const std::string& path, std::vector<CIoFormat>& formats);
/// The same of the text of a manifest.
ManifestState ParseIOManifest(const std::string& text, std::vector<CIoFormat>& formats);
std::string FormatIOManifest(const std::vector<CIoFormat>& formats);

// Modules (IOPluginModule.cpp)

/// Opens a module and lets it register.
///
/// @param handle   out: for dlclose; null when it fails
/// @param problem  out: what went wrong, as the rest of a line that begins with the module's name
bool OpenIOModule(const std::string& path, void*& handle, std::vector<CIoFormat>& formats, CXTString<wchar_t>& problem);

/// Lets a module register in a process of its own and takes over what that process tells, so that a module that aborts, exits or never
/// comes back costs nothing but a line.
///
/// @param formats  out: without factories
///
/// Cost: a fork and the loading of the module; at most MODULE_CPU_SECONDS of computing, or MODULE_SECONDS of waiting.
bool TryIOModule(const std::string& path, std::vector<CIoFormat>& formats, CXTString<wchar_t>& problem);

constexpr int MODULE_CPU_SECONDS = 2, MODULE_SECONDS = 20;

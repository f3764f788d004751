#pragma once

// IO plug-ins: file formats that come in modules of their own.
//
// A module is a shared object zel-io-NAME.so that exports zelRegisterIoPlugin. Beside it may stand its manifest,
// zel-io-NAME.formats: with it the module's formats are known without loading it, and it is loaded when the first file of one
// of its classes comes along. A module without manifest is first loaded in a process of its own, which tells its formats.
//
// A module that cannot be loaded, lacks the function, is made for another API version, throws, or in that process aborts or never
// comes back costs itself alone and one line of GetIOPluginLog. A manifest vouches for its module: what has one is not tried.

#include <vector>

#include "files/FileExt.h"
#include "files/FileParser.h"
#include "tools/Api.h"

/// Version of everything in this header and of the parser classes. A module made for another one is refused.
constexpr unsigned int ZEL_IO_PLUGIN_API = 1;

/// Takes what a module registers.
class IIoPluginRegistrar {
public:
    /// A file class, and who parses it. `factory` is called with the class and whoever wants the parser.
    virtual void RegisterFormat(const CFileExt& format, CParserFactory factory) = 0;

protected:
    ~IIoPluginRegistrar() = default;
};

/// What a module exports. It answers the version that it was made for, and registers nothing when `apiVersion` is another one.
///
///     extern "C" ZEL_API unsigned int zelRegisterIoPlugin(unsigned int apiVersion, IIoPluginRegistrar* registrar)
///     {
///         if (apiVersion == ZEL_IO_PLUGIN_API)
///             registrar->RegisterFormat(CFileExt(L"My files", L".my", FourCC("MYFO"), 0x4011), &CreateMyParser);
///         return ZEL_IO_PLUGIN_API;
///     }
using ZelRegisterIoPlugin = unsigned int (*)(unsigned int apiVersion, IIoPluginRegistrar* registrar);
constexpr const char* ZEL_IO_PLUGIN_ENTRY = "zelRegisterIoPlugin";

/// Finds plug-ins and makes the formats of the families in `family` known. What is known already stays as it is.
///
/// @param path  folder to look in. Empty: the folders of $ZEL_PLUGIN_PATH (separated by ':'), then 3dzel/plugins beside the
///              library, then the folder fixed at build time. Of modules with one name the first found counts
/// @return      number of modules added
ZEL_API int RegisterIOPlugins(unsigned int family, const CXTString<wchar_t>& path);
/// Adds formats that the program itself brings, as if they came from a module called `name`. False without a factory, a class or an
/// extension, and for a reserved class.
ZEL_API bool RegisterIOParser(const CXTString<wchar_t>& name, const CFileExt& format, CParserFactory factory);
/// Keeps a class for the system itself, for the whole process: formats of that class are refused, and those that came before go.
ZEL_API void ReserveIOClass(unsigned int fileClass);
/// Forgets the plug-ins with formats of these families. A module is unloaded as soon as no parser of it lives.
ZEL_API void FreeIOPlugins(unsigned int family);

/// A plug-in, as the listing shows it.
struct CIoPluginInfo {
    CXTString<wchar_t> name;    ///< NAME of zel-io-NAME.so
    CXTString<wchar_t> path;    ///< empty for what the program brings
    bool loaded;
    std::vector<CFileExt> formats;
};
ZEL_API std::vector<CIoPluginInfo> GetIOPlugins();
/// What went wrong with plug-ins in this process, one line each.
ZEL_API std::vector<CXTString<wchar_t>> GetIOPluginLog();
ZEL_API void AddIOPluginLog(const CXTString<wchar_t>& line);
ZEL_API void ClearIOPluginLog();

/// Writes the manifest of a module beside it; for the build of a plug-in. Loads the module. False when that fails.
ZEL_API bool WriteIOPluginManifest(const CXTString<wchar_t>& module);

/// Number of plug-ins that handle a class and have all of `abilities` (FILE_KIND_READ, FILE_KIND_WRITE).
ZEL_API int GetIOParserCount(unsigned int fileClass, unsigned int abilities);
/// A parser of plug-in `index` among these, loading its module; null when that fails.
///
/// @param module  out: to be given to ReleaseIOModule when the parser is destroyed
ZEL_API CFileParser* CreateIOParser(unsigned int fileClass, unsigned int abilities, int index, CFileIo* fileIo, void*& module);
ZEL_API void ReleaseIOModule(void* module);

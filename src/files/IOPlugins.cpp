// IO plug-ins: finding them, reading their manifests, loading them when a file needs them, unloading them.
//
//   register   for each folder, each zel-io-NAME.so whose NAME is new: its manifest, or else the module itself in a process of its own,
//              tells the formats
//   load       at the first parser of one of its classes; what the module registers then is what counts
//   free       formats go at once, the module with its last parser

#include "files/IOPlugin.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <mutex>

#include <dlfcn.h>
#include <unistd.h>

#include "files/IOPluginModule.h"
#include "tools/CaughtException.h"
#include "tools/FilePath.h"
#include "tools/ModuleFolders.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr std::string_view MODULE_PREFIX = "zel-io-", MODULE_SUFFIX = ".so", MANIFEST_SUFFIX = ".formats";
constexpr size_t MAX_LOG_LINES = 1000;

struct Module {
    Text name;
    std::string path;           ///< empty for what the program brings
    unsigned int family = 0;    ///< families asked for
    std::vector<CIoFormat> formats;
    void* handle = nullptr;
    bool loaded = false, failed = false, freed = false;
    int parsers = 0;    ///< that live
};

struct Manager {
    std::recursive_mutex lock;    // a module may call in while it registers
    std::vector<std::unique_ptr<Module>> modules;
    std::vector<unsigned int> reserved;    ///< classes
    std::vector<Text> log;
};

// Never destroyed: parsers may be released while the process ends.
Manager& GetManager()
{
    static Manager& manager = *new Manager;
    return manager;
}

void AddLine(const Text& line)
{
    std::vector<Text>& log = GetManager().log;
    if (log.size() < MAX_LOG_LINES)
        log.push_back(line);
}

void Log(const Text& module, const Text& what) { AddLine(module + L": " + what); }

// Opens a module and lets it register; false, with a line in the log, when that fails.
bool OpenModule(const Text& name, const std::string& path, void*& handle, std::vector<CIoFormat>& formats)
{
    Text problem;
    if (OpenIOModule(path, handle, formats, problem))
        return true;
    Log(name, problem);
    return false;
}

void RegisterFormats(const Module& module)
{
    for (const CIoFormat& format : module.formats)
        fileRegisterFile(format.extension, &module);
}

bool IsReserved(unsigned int fileClass)
{
    const auto& reserved = GetManager().reserved;
    return std::find(reserved.begin(), reserved.end(), fileClass) != reserved.end();
}

// Leaves what belongs to the families and is not the system's own.
void KeepAllowed(const Text& name, std::vector<CIoFormat>& formats, unsigned int family)
{
    std::erase_if(formats, [&](const CIoFormat& format) {
        const bool reserved = IsReserved(format.extension.fileClass);
        if (reserved)
            Log(name, L"can't have \"" + fileGetClassText(format.extension.fileClass) + L"\", a class of the system's own");
        return reserved || !(format.extension.kind & family & FILE_KIND_FAMILY);
    });
}

// Loads a module known by its manifest. What it registers replaces the manifest's formats; their order stays where it can.
bool LoadModule(Module& module)
{
    if (module.loaded || module.failed)
        return module.loaded;
    std::vector<CIoFormat> formats;
    module.failed = !OpenModule(module.name, module.path, module.handle, formats);
    if (module.failed)
        return false;
    module.loaded = true;
    KeepAllowed(module.name, formats, module.family);
    for (CIoFormat& known : module.formats) {
        const auto found = std::find_if(formats.begin(), formats.end(),
                                        [&](const CIoFormat& format) { return format.extension.fileClass == known.extension.fileClass; });
        if (found == formats.end()) {
            Log(module.name, L"doesn't handle \"" + fileGetClassText(known.extension.fileClass) + L"\", which its manifest names");
            continue;
        }
        known = *found;
        formats.erase(found);
    }
    module.formats.insert(module.formats.end(), formats.begin(), formats.end());
    RegisterFormats(module);
    return true;
}

std::string ManifestOf(const std::string& module)
{
    return module.substr(0, module.size() - MODULE_SUFFIX.size()) + std::string(MANIFEST_SUFFIX);
}

// NAME of "…/zel-io-NAME.so"; empty for another file.
Text NameOfModule(const std::string& path)
{
    std::string_view name = path;
    name.remove_prefix(name.find_last_of('/') + 1);
    if (!name.starts_with(MODULE_PREFIX) || !name.ends_with(MODULE_SUFFIX) || name.size() <= MODULE_PREFIX.size() + MODULE_SUFFIX.size())
        return {};
    name.remove_prefix(MODULE_PREFIX.size());
    name.remove_suffix(MODULE_SUFFIX.size());
    return Utf8ToWide(name);
}

bool IsKnown(const Text& name)
{
    const auto& modules = GetManager().modules;
    return std::any_of(modules.begin(), modules.end(), [&](const auto& module) { return !module->freed && module->name == name; });
}

// Adds the module when it has a format of these families.
bool AddModule(const std::string& path, unsigned int family)
{
    auto module = std::make_unique<Module>();
    module->name = NameOfModule(path);
    if (module->name.IsEmpty() || IsKnown(module->name))
        return false;
    module->path = path;
    module->family = family;
    const ManifestState state = ReadIOManifest(ManifestOf(path), module->formats);
    if (state == ManifestState::WRONG_VERSION) {
        Log(module->name, L"is made for another plug-in version");
        return false;
    }
    if (state == ManifestState::DAMAGED)
        Log(module->name, L"has a damaged manifest, and is asked itself");
    if (Text problem; state != ManifestState::GOOD && !TryIOModule(path, module->formats, problem)) {
        Log(module->name, problem);
        return false;
    }
    KeepAllowed(module->name, module->formats, family);
    if (module->formats.empty())
        return false;
    RegisterFormats(*module);
    GetManager().modules.push_back(std::move(module));
    return true;
}

int AddFolder(const std::string& folder, unsigned int family)
{
    int added = 0;
    const Text wide = fileAddSlash(Utf8ToWide(folder));
    for (const Text& file : fileList(wide))
        added += AddModule(WideToUtf8(wide + file), family);
    return added;
}

std::vector<std::string> DefaultFolders()
{
#ifdef ZEL_PLUGIN_DIR
    return GetModuleFolders("ZEL_PLUGIN_PATH", "plugins", ZEL_PLUGIN_DIR);
#else
    return GetModuleFolders("ZEL_PLUGIN_PATH", "plugins", nullptr);
#endif
}

void Destroy(Module* module)
{
    Manager& manager = GetManager();
    if (module->handle)
        dlclose(module->handle);
    std::erase_if(manager.modules, [&](const auto& own) { return own.get() == module; });
}

bool CanDo(const CIoFormat& format, unsigned int abilities)
{
    const unsigned int own = format.extension.kind & (FILE_KIND_READ | FILE_KIND_WRITE);
    return own == 0 || (own & abilities) == abilities;    // a format that doesn't tell is asked
}

const CIoFormat* FindFormat(const Module& module, unsigned int fileClass, unsigned int abilities)
{
    if (!module.freed)
        for (const CIoFormat& format : module.formats)
            if (format.extension.fileClass == fileClass && CanDo(format, abilities))
                return &format;
    return nullptr;
}

// Plug-in `index` of the class with its module loaded and held; null when there is none, or it fails.
Module* HoldModule(unsigned int fileClass, unsigned int abilities, int index, CParserFactory& factory)
{
    Manager& manager = GetManager();
    const std::lock_guard guard(manager.lock);
    for (const auto& module : manager.modules) {
        if (!FindFormat(*module, fileClass, abilities) || index-- > 0)
            continue;
        if (!LoadModule(*module))
            return nullptr;
        const CIoFormat* const format = FindFormat(*module, fileClass, abilities);
        if (!format || !format->factory)
            return nullptr;
        factory = format->factory;
        module->parsers++;
        return module.get();
    }
    return nullptr;
}

}

int RegisterIOPlugins(unsigned int family, const Text& path)
{
    const std::lock_guard guard(GetManager().lock);
    if (!path.IsEmpty())
        return AddFolder(WideToUtf8(path), family);
    int added = 0;
    for (const std::string& folder : DefaultFolders())
        added += AddFolder(folder, family);
    return added;
}

bool RegisterIOParser(const Text& name, const CFileExt& format, CParserFactory factory)
{
    if (!factory || format.fileClass == 0 || format.extensions.empty())
        return false;
    Manager& manager = GetManager();
    const std::lock_guard guard(manager.lock);
    if (IsReserved(format.fileClass))
        return false;
    const auto found = std::find_if(manager.modules.begin(), manager.modules.end(),
                                    [&](const auto& module) { return !module->freed && module->path.empty() && module->name == name; });
    Module* module = found != manager.modules.end() ? found->get() : nullptr;
    if (!module) {
        manager.modules.push_back(std::make_unique<Module>());
        module = manager.modules.back().get();
        module->name = name;
        module->loaded = true;
    }
    module->family |= format.GetFamily();
    std::erase_if(module->formats, [&](const CIoFormat& own) { return own.extension.fileClass == format.fileClass; });
    module->formats.push_back({format, factory});
    return fileRegisterFile(format, module);
}

void ReserveIOClass(unsigned int fileClass)
{
    Manager& manager = GetManager();
    const std::lock_guard guard(manager.lock);
    if (IsReserved(fileClass))
        return;
    manager.reserved.push_back(fileClass);
    for (const auto& module : manager.modules) {    // that came before
        if (module->freed)
            continue;
        KeepAllowed(module->name, module->formats, module->family);
        fileUnregisterOwner(module.get());
        RegisterFormats(*module);
    }
}

void FreeIOPlugins(unsigned int family)
{
    Manager& manager = GetManager();
    const std::lock_guard guard(manager.lock);
    std::vector<Module*> unused;
    for (const auto& module : manager.modules) {
        if (module->freed || !(module->family & family & FILE_KIND_FAMILY))
            continue;
        fileUnregisterOwner(module.get());
        module->freed = true;
        if (module->parsers == 0)
            unused.push_back(module.get());
    }
    for (Module* const module : unused)
        Destroy(module);
}

std::vector<CIoPluginInfo> GetIOPlugins()
{
    Manager& manager = GetManager();
    const std::lock_guard guard(manager.lock);
    std::vector<CIoPluginInfo> infos;
    for (const auto& module : manager.modules) {
        if (module->freed)
            continue;
        CIoPluginInfo info{module->name, Utf8ToWide(module->path), module->loaded, {}};
        for (const CIoFormat& format : module->formats)
            info.formats.push_back(format.extension);
        infos.push_back(std::move(info));
    }
    return infos;
}

std::vector<Text> GetIOPluginLog()
{
    const std::lock_guard guard(GetManager().lock);
    return GetManager().log;
}

void AddIOPluginLog(const Text& line)
{
    const std::lock_guard guard(GetManager().lock);
    AddLine(line);
}

void ClearIOPluginLog()
{
    const std::lock_guard guard(GetManager().lock);
    GetManager().log.clear();
}

bool WriteIOPluginManifest(const Text& module)
{
    const std::lock_guard guard(GetManager().lock);
    std::string path = WideToUtf8(module);
    const Text name = NameOfModule(path);
    void* handle = nullptr;
    std::vector<CIoFormat> formats;
    if (path.find('/') == std::string::npos)
        path = "./" + path;    // else it would be searched for among the libraries
    if (name.IsEmpty() || !OpenModule(name, path, handle, formats))
        return false;
    const std::string text = FormatIOManifest(formats);
    dlclose(handle);
    const std::string manifest = ManifestOf(path), temporary = manifest + ".new";
    std::ofstream file(temporary, std::ios::binary);
    file << text;
    file.close();
    if (file && std::rename(temporary.c_str(), manifest.c_str()) == 0)
        return true;
    unlink(temporary.c_str());
    return false;
}

int GetIOParserCount(unsigned int fileClass, unsigned int abilities)
{
    Manager& manager = GetManager();
    const std::lock_guard guard(manager.lock);
    return static_cast<int>(std::count_if(manager.modules.begin(), manager.modules.end(),
                                          [&](const auto& module) { return FindFormat(*module, fileClass, abilities); }));
}

CFileParser* CreateIOParser(unsigned int fileClass, unsigned int abilities, int index, CFileIo* fileIo, void*& module)
{
    CParserFactory factory = nullptr;
    Module* const owner = HoldModule(fileClass, abilities, index, factory);
    module = nullptr;
    if (!owner)
        return nullptr;
    CFileParser* parser = nullptr;
    if (const auto thrown = CatchAll([&] { parser = factory(fileClass, fileIo); })) {
        const std::lock_guard guard(GetManager().lock);
        Log(owner->name, L"failed to make a parser: " + *thrown);
    }
    if (parser)
        module = owner;
    else
        ReleaseIOModule(owner);
    return parser;
}

void ReleaseIOModule(void* module)
{
    if (!module)
        return;
    const std::lock_guard guard(GetManager().lock);
    Module* const own = static_cast<Module*>(module);
    if (--own->parsers == 0 && own->freed)
        Destroy(own);
}

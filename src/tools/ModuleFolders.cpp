#include "tools/ModuleFolders.h"

#include <dlfcn.h>
#include <stdlib.h>

#include <cstdlib>
#include <memory>
#include <sstream>

// With its last separator; empty when it can't be told.
static std::string FolderOfLibrary()
{
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&FolderOfLibrary), &info) || !info.dli_fname)
        return {};
    const std::unique_ptr<char, void (*)(void*)> path(realpath(info.dli_fname, nullptr), &std::free);
    const std::string name = path ? path.get() : info.dli_fname;
    return name.substr(0, name.find_last_of('/') + 1);
}

std::vector<std::string> GetModuleFolders(const char* variable, const std::string& kind, const char* installed)
{
    std::vector<std::string> folders;
    if (const char* const list = secure_getenv(variable)) {
        std::istringstream stream(list);
        for (std::string folder; std::getline(stream, folder, ':');)
            if (!folder.empty())
                folders.push_back(folder);
    }
    if (const std::string library = FolderOfLibrary(); !library.empty()) {
        folders.push_back(library + "3dzel/" + kind);
        folders.push_back(library + "../lib/3dzel/" + kind);
    }
    if (installed)
        folders.push_back(installed);
    return folders;
}

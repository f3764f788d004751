// Reading of text formats through the import library: the class of the file in four characters, then its bytes. What comes of it can be
// worked with, or is refused; the library's own faults are not ours to mend, which is why files are read in a process of their own.

#include <cstdint>
#include <cstdio>
#include <string>

#include <unistd.h>

#include "LibraryImport.h"
#include "support/Owned.h"
#include "support/TempFolder.h"
#include "support/WorkWith.h"

static constexpr std::size_t CLASS = 4, MOST_BYTES = 16384;

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < CLASS || size > MOST_BYTES)
        return 0;
    static TempFolder folder;
    const std::string path = folder.Write("file", std::string(reinterpret_cast<const char*>(data + CLASS), size - CLASS));
    unsigned int fileClass = 0;
    for (std::size_t i = 0; i < CLASS; i++)
        fileClass = fileClass << 8 | data[i];
    CSceneImportOptions options;
    CProgress progress(L"Reading", 1000);
    LibraryReading reading;
    const Owned<C3DScene> scene(ImportFile(fileClass, Utf8ToWide(path), reading, options, progress));
    if (scene) {
        scene->CheckoutImport(options);
        WorkWith(*scene);
    }
    return 0;
}

// Reading of text formats through the import library, in this process. What comes of it can be worked with, or is refused; the library's own
// faults are not ours to mend, which is why files are read in a process of their own.

#include <cstdint>

#include "ForeignInput.h"
#include "LibraryImport.h"
#include "support/Owned.h"
#include "support/WorkWith.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ForeignInput input(data, size);
    if (input.path.empty())
        return 0;
    CSceneImportOptions options;
    CProgress progress(L"Reading", 1000);
    LibraryReading reading;
    const Owned<C3DScene> scene(ImportFile(input.fileClass, Utf8ToWide(input.path), reading, options, progress));
    if (scene) {
        scene->CheckoutImport(options);
        WorkWith(*scene);
    }
    return 0;
}

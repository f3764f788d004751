// Foreign files as a host reads them: the plug-in's worker may die of one, the host gets a scene that can be worked with, or a refusal with a
// reason. Kept inputs are those of ImportFuzz.cpp.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <3dzel.h>

#include "ForeignInput.h"
#include "support/Owned.h"
#include "support/WorkWith.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Init3DZel(INIT_NO_COMMANDS);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ForeignInput input(data, size);
    if (input.path.empty())
        return 0;
    CSceneImportOptions options;
    options.GetCustomData().SetUnsigned(IMPORT_SECONDS, 5);
    C3DIo io(CFileNameSpec(Utf8ToWide(input.path), input.fileClass), FILEIO_READ | FILEIO_SILENT, nullptr);
    const Owned<C3DScene> scene(io.Read(false, &options));
    if (scene)
        WorkWith(*scene);
    else if (io.GetResultText().IsEmpty()) {
        std::fprintf(stderr, "refused without a reason\n");
        std::abort();
    }
    return 0;
}

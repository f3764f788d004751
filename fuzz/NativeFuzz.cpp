// The native scene file: whatever it holds, it is refused with CXArchiveException, or gives a scene that can be worked with, written, and
// read again as the same.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "io/NativeFile.h"
#include "support/Owned.h"
#include "support/SceneEqual.h"
#include "support/Streams.h"
#include "support/WorkWith.h"

/// Magic, version and lowest reader are easy to tell; what comes behind them is worth the time.
static constexpr std::size_t HEADER = sizeof(C3DIFIo::MAGIC) + 8;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < HEADER)
        return 0;
    const Owned<C3DScene> scene(C3DScene::Create());
    if (!Load(*scene, StreamBytes(data + HEADER, data + size)))
        return 0;
    const StreamBytes stored = Stored(*scene);
    const Owned<C3DScene> again(C3DScene::Create());
    const std::string difference = Load(*again, stored) ? FirstDifference(*scene, *again) : "is not read again";
    if (!difference.empty()) {
        std::fprintf(stderr, "%s\n", difference.c_str());
        std::abort();
    }
    WorkWith(*scene);
    return 0;
}

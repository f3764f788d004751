// zel-import-worker CLASS FILE MEGABYTES GROWTH: reads a file for a host, in a process that may end any way the import library takes it. The
// result goes to the memory that the host has opened. MEGABYTES is the memory that it may take, and GROWTH how many bytes more for each byte of
// the files that belong to the first.

#include <csignal>
#include <cstdlib>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include "Confinement.h"
#include "LibraryImport.h"
#include "WorkerLimits.h"
#include "WorkerResult.h"

namespace {

/// Shows the host how far the reading is.
class StateSink : public IProgressSink {
public:
    explicit StateSink(WorkerState& state) : m_state(state) {}
    bool OnProgress(const CXTString<wchar_t>&, double fraction) override
    {
        m_state.thousandths = static_cast<std::uint32_t>(fraction * 1000);
        return true;
    }

private:
    WorkerState& m_state;
};

void LeaveNoTrace()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);    // nobody waits for the result any more
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    ConfineProcess();
}

std::uint64_t ToNumber(const char* text) { return std::strtoull(text, nullptr, 10); }

// The scene; null, with the reason in the log, also when memory ran out somewhere and the library went on with what it had.
C3DScene* ReadScene(char** arguments, LibraryReading& reading, CSceneImportOptions& options)
{
    C3DScene* scene = nullptr;
    try {
        CProgress progress(L"Reading", 1000);
        scene = ImportFile(static_cast<unsigned int>(ToNumber(arguments[1])), Utf8ToWide(arguments[2]), reading, options, progress);
    } catch (const std::bad_alloc&) {
        NoteLackOfMemory();
    }
    const CXTString<wchar_t> lack = DescribeLackOfMemory();
    if (lack.IsEmpty())
        return scene;
    options.RemoveLog();
    options.AddLogInfo(IoLogInfo::FAILURE, lack);
    return nullptr;
}

}

int main(int argc, char** argv)
{
    if (argc != 5)
        return WORKER_EXIT_ARGUMENTS;
    LeaveNoTrace();
    void* const shared = mmap(nullptr, WORKER_STATE_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, WORKER_STATE_DESCRIPTOR, 0);
    if (shared == MAP_FAILED)
        return WORKER_EXIT_ARGUMENTS;
    WorkerState& state = *static_cast<WorkerState*>(shared);

    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS);
    SetWorkerLimits(ToNumber(argv[3]), ToNumber(argv[4]));
    StateSink sink(state);
    const CProgressScope scope(&sink);
    CSceneImportOptions options;
    LibraryReading reading;
    reading.onCompanion = GrowWorkerLimits;
    reading.leavesData = true;
    C3DScene* const scene = ReadScene(argv, reading, options);
    AllowWorkerResult();
    if (!WriteWorkerResult(WORKER_RESULT_DESCRIPTOR, options, reading.images, scene))
        return WORKER_EXIT_RESULT;
    state.done = 1;
    std::_Exit(WORKER_EXIT_DONE);    // the scene and the library's data go with the process
}

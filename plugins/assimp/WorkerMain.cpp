// zel-import-worker CLASS FILE MEGABYTES: reads a file for a host, in a process that may end any way the import library takes it. The
// result goes to the memory that the host has opened.

#include <csignal>
#include <cstdlib>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include "LibraryImport.h"
#include "WorkerResult.h"

namespace {

enum Exit { EXIT_DONE = 0, EXIT_ARGUMENTS = 2, EXIT_RESULT = 3 };

void SetLimits(rlim_t megabytes)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);    // nobody waits for the result any more
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
#if !defined(__SANITIZE_ADDRESS__)    // the sanitizer takes all the address space there is
    if (megabytes > 0 && megabytes < RLIM_INFINITY >> 20) {
        const rlimit most = {megabytes << 20, megabytes << 20};
        setrlimit(RLIMIT_AS, &most);
    }
#else
    static_cast<void>(megabytes);
#endif
}

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

}

int main(int argc, char** argv)
{
    if (argc != 4)
        return EXIT_ARGUMENTS;
    SetLimits(std::strtoull(argv[3], nullptr, 10));
    void* const shared = mmap(nullptr, WORKER_RESULT, PROT_READ | PROT_WRITE, MAP_SHARED, WORKER_DESCRIPTOR, 0);
    if (shared == MAP_FAILED)
        return EXIT_ARGUMENTS;
    WorkerState& state = *static_cast<WorkerState*>(shared);

    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS);
    StateSink sink(state);
    const CProgressScope scope(&sink);
    CSceneImportOptions options;
    C3DScene* scene = nullptr;
    try {
        CProgress progress(L"Reading", 1000);
        const unsigned int fileClass = static_cast<unsigned int>(std::strtoul(argv[1], nullptr, 10));
        scene = ImportFile(fileClass, Utf8ToWide(argv[2]), options, progress);
    } catch (const std::bad_alloc&) {
        options.AddLogInfo(IoLogInfo::FAILURE, L"not enough memory within the limit of the importer");
    }
    if (!WriteWorkerResult(WORKER_DESCRIPTOR, options, scene))
        return EXIT_RESULT;
    state.done = 1;
    std::_Exit(EXIT_DONE);    // the scene goes with the process
}

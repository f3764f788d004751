#include "ImportWorker.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {    // this header does not say so itself
#include <sys/pidfd.h>
}

#include "WorkerResult.h"

namespace {

using Text = CXTString<wchar_t>;
using Clock = std::chrono::steady_clock;

// The program lies beside the folder of the plug-ins, or where the environment says.
std::string FindProgram()
{
    if (const char* const told = std::getenv("ZEL_IMPORT_WORKER"); told && *told)
        return told;
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&FindProgram), &info) || !info.dli_fname)
        return {};
    const std::string module = info.dli_fname, folder = module.substr(0, module.find_last_of('/'));
    return folder.substr(0, folder.find_last_of('/')) + "/zel-import-worker";
}

/// The memory that host and worker share.
class SharedMemory {
public:
    SharedMemory() : m_descriptor(memfd_create("zel-import", MFD_CLOEXEC))
    {
        if (m_descriptor >= 0 && ftruncate(m_descriptor, WORKER_RESULT) == 0)
            m_state = Map(WORKER_RESULT, PROT_READ | PROT_WRITE);
    }
    ~SharedMemory()
    {
        if (m_state)
            munmap(m_state, WORKER_RESULT);
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    bool IsValid() const { return m_state != nullptr; }
    int GetDescriptor() const { return m_descriptor; }
    WorkerState& GetState() const { return *static_cast<WorkerState*>(m_state); }

    C3DScene* TakeResult(CIoOptions& options) const
    {
        struct stat status;
        if (fstat(m_descriptor, &status) != 0 || status.st_size < static_cast<off_t>(WORKER_RESULT))
            return nullptr;
        const auto size = static_cast<std::size_t>(status.st_size);
        void* const all = Map(size, PROT_READ);
        if (!all)
            throw std::bad_alloc();
        struct Unmap {
            void* bytes;
            std::size_t size;
            ~Unmap() { munmap(bytes, size); }
        } const unmap{all, size};
        return ReadWorkerResult(static_cast<const char*>(all) + WORKER_RESULT, size - WORKER_RESULT, options);
    }

private:
    void* Map(std::size_t size, int protection) const
    {
        void* const mapped = mmap(nullptr, size, protection, MAP_SHARED, m_descriptor, 0);
        return mapped == MAP_FAILED ? nullptr : mapped;
    }

    int m_descriptor;
    void* m_state = nullptr;
};

/// A worker at its work. Killed with this.
class Worker {
public:
    ~Worker()
    {
        if (m_process > 0) {
            kill(m_process, SIGKILL);
            Reap();
        }
    }

    /// 0, or the error that kept it from starting.
    int Start(const std::string& program, const std::vector<std::string>& arguments, int descriptor)
    {
        std::vector<char*> words{const_cast<char*>(program.c_str())};
        for (const std::string& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);    // importers talk
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        posix_spawn_file_actions_adddup2(&actions, descriptor, WORKER_DESCRIPTOR);
        posix_spawn_file_actions_addclosefrom_np(&actions, WORKER_DESCRIPTOR + 1);
        const int error = posix_spawn(&m_process, program.c_str(), &actions, nullptr, words.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error)
            m_process = -1;
        return error;
    }

    /// Waits for the end, at most that long.
    bool WaitFor(std::chrono::milliseconds time)
    {
        const int handle = pidfd_open(m_process, 0);
        pollfd end{handle, POLLIN, 0};
        const bool ended = handle < 0 || poll(&end, 1, static_cast<int>(time.count())) > 0;
        if (handle >= 0)
            close(handle);
        if (ended)
            Reap();
        return ended;
    }
    /// As waitpid gives it, once it has ended.
    int GetStatus() const { return m_status; }

private:
    void Reap()
    {
        while (waitpid(m_process, &m_status, 0) < 0 && errno == EINTR)
            continue;
        m_process = -1;
    }

    pid_t m_process = -1;
    int m_status = 0;
};

double GetLimit(const CSceneImportOptions& options, unsigned int id, double standard)
{
    unsigned int limit;
    return options.GetCustomData().GetUnsigned(id, limit) ? limit : standard;
}

// A file may hold much more than its size, up to a point.
double GetStandardMegabytes(const std::string& path)
{
    struct stat status;
    const double size = stat(path.c_str(), &status) == 0 ? static_cast<double>(status.st_size) / (1 << 20) : 0;
    return IMPORT_MEGABYTES_STANDARD + size * IMPORT_MEGABYTES_PER_MEGABYTE;
}

Text DescribeEnd(int status)
{
    Text text;
    if (WIFSIGNALED(status))
        text.FormatString(L"the importer crashed on it (%s)", Utf8ToWide(strsignal(WTERMSIG(status))).Str().c_str());
    else
        text.FormatString(L"the importer gave up on it (exit code %d)", WEXITSTATUS(status));
    return text;
}

/// Why a worker's result does not count; empty when it does.
Text WaitForResult(Worker& worker, WorkerState& state, double seconds, CProgress& progress)
{
    constexpr std::chrono::milliseconds LOOK(2);
    const auto start = Clock::now();
    while (!state.done && !worker.WaitFor(LOOK)) {    // a worker that is done may take its time to end
        if (!progress.SetPos(state.thousandths))
            return L"reading was stopped";
        if (seconds > 0 && std::chrono::duration<double>(Clock::now() - start).count() > seconds) {
            Text text;
            text.FormatString(L"the importer took longer than %g s", seconds);
            return text;
        }
    }
    return state.done ? Text() : DescribeEnd(worker.GetStatus());
}

}

bool ImportsInProcess()
{
    const char* const told = std::getenv("ZEL_IMPORT_IN_PROCESS");
    return told && std::strcmp(told, "1") == 0;
}

C3DScene* ImportInWorker(unsigned int fileClass, const CXTString<wchar_t>& path, CSceneImportOptions& options, CProgress& progress)
{
    const SharedMemory memory;
    if (!memory.IsValid())
        throw std::bad_alloc();
    const std::string program = FindProgram(), file = WideToUtf8(path);
    const double megabytes = GetLimit(options, IMPORT_MEGABYTES, GetStandardMegabytes(file));
    Worker worker;
    if (const int error = worker.Start(program, {std::to_string(fileClass), file, std::to_string(static_cast<std::uint64_t>(megabytes))},
                                       memory.GetDescriptor())) {
        options.AddLogInfo(IoLogInfo::FAILURE, Utf8ToWide(program + ": " + std::strerror(error)));
        return nullptr;
    }
    const Text reason = WaitForResult(worker, memory.GetState(), GetLimit(options, IMPORT_SECONDS, IMPORT_SECONDS_STANDARD), progress);
    if (!reason.IsEmpty()) {
        options.AddLogInfo(IoLogInfo::FAILURE, reason);
        return nullptr;
    }
    try {
        return memory.TakeResult(options);
    } catch (const CXArchiveException*) {
        XDeleteThreadException();
        options.AddLogInfo(IoLogInfo::FAILURE, L"what the importer gave back is damaged");
        return nullptr;
    }
}

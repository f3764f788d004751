#include "ImportWorker.h"

#include <algorithm>
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

/// A file in memory that a worker gets.
class MemoryFile {
public:
    explicit MemoryFile(const char* name) : m_descriptor(memfd_create(name, MFD_CLOEXEC | MFD_ALLOW_SEALING)) {}
    ~MemoryFile()
    {
        if (m_bytes)
            munmap(m_bytes, m_mapped);
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int GetDescriptor() const { return m_descriptor; }
    void* GetBytes() const { return m_bytes; }
    bool Resize(std::size_t size) const { return ftruncate(m_descriptor, static_cast<off_t>(size)) == 0; }
    /// Whoever has the file can from now on do none of these to it. False when somebody saw to it that it can't be had.
    bool Seal(int seals) const { return fcntl(m_descriptor, F_ADD_SEALS, seals) == 0; }
    std::size_t GetSize() const
    {
        struct stat status;
        return fstat(m_descriptor, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
    }
    /// The first bytes, for as long as this lives. Null when there is no room. A file that can still shrink must not be mapped.
    void* Map(std::size_t size, int protection)
    {
        void* const bytes = mmap(nullptr, size, protection, MAP_SHARED, m_descriptor, 0);
        if (bytes == MAP_FAILED)
            return nullptr;
        m_mapped = size;
        return m_bytes = bytes;
    }

private:
    int m_descriptor;
    void* m_bytes = nullptr;
    std::size_t m_mapped = 0;
};

/// The memory that host and worker share.
class SharedMemory {
public:
    SharedMemory() : m_state("zel-import-state"), m_result("zel-import-result")
    {
        if (m_result.GetDescriptor() < 0 || !m_state.Resize(WORKER_STATE_SIZE) || !m_state.Seal(F_SEAL_SHRINK | F_SEAL_GROW) ||
            !m_state.Map(WORKER_STATE_SIZE, PROT_READ | PROT_WRITE))
            throw std::bad_alloc();
    }

    const MemoryFile& GetStateFile() const { return m_state; }
    const MemoryFile& GetResultFile() const { return m_result; }
    WorkerState& GetState() const { return *static_cast<WorkerState*>(m_state.GetBytes()); }

    /// Once the worker is gone. What it leaves may still be open elsewhere, so it is sealed first.
    C3DScene* TakeResult(CIoOptions& options)
    {
        if (!m_result.Seal(F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE) || m_result.GetSize() == 0)
            throw XSetThreadException(new CXArchiveException(CXArchiveException::ARCHIVE_END_OF_FILE));
        const std::size_t size = m_result.GetSize();
        const void* const bytes = m_result.Map(size, PROT_READ);
        if (!bytes)
            throw std::bad_alloc();
        return ReadWorkerResult(bytes, size, options);
    }

private:
    MemoryFile m_state, m_result;
};

/// A worker at its work, with all processes that it starts. They end with this.
class Worker {
public:
    ~Worker() { End(); }

    /// 0, or the error that kept it from starting.
    int Start(const std::string& program, const std::vector<std::string>& arguments, const SharedMemory& memory)
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
        // through numbers that neither has: the one may have the other's place
        const int state = memory.GetStateFile().GetDescriptor(), result = memory.GetResultFile().GetDescriptor();
        const int apart = std::max({state, result, WORKER_RESULT_DESCRIPTOR}) + 1;
        posix_spawn_file_actions_adddup2(&actions, result, apart);
        posix_spawn_file_actions_adddup2(&actions, state, WORKER_STATE_DESCRIPTOR);
        posix_spawn_file_actions_adddup2(&actions, apart, WORKER_RESULT_DESCRIPTOR);
        posix_spawn_file_actions_addclosefrom_np(&actions, WORKER_RESULT_DESCRIPTOR + 1);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);    // a group of its own
        const int error = posix_spawn(&m_process, program.c_str(), &actions, &attributes, words.data(), environ);
        posix_spawnattr_destroy(&attributes);
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
        if (ended && handle >= 0)
            End();
        return ended;
    }
    /// Of all processes. The group has its number as long as the first of them is not reaped.
    void End()
    {
        if (m_process <= 0)
            return;
        kill(-m_process, SIGKILL);
        while (waitpid(m_process, &m_status, 0) < 0 && errno == EINTR)
            continue;
        m_process = -1;
    }
    /// As waitpid gives it, once it has ended.
    int GetStatus() const { return m_status; }

private:
    pid_t m_process = -1;
    int m_status = 0;
};

bool GetLimit(const CSceneImportOptions& options, unsigned int id, unsigned int& limit)
{
    return options.GetCustomData().GetUnsigned(id, limit);
}

double GetSeconds(const CSceneImportOptions& options)
{
    unsigned int seconds;
    return GetLimit(options, IMPORT_SECONDS, seconds) ? seconds : IMPORT_SECONDS_STANDARD;
}

// What a worker is told of its memory: how much it may take, and how much more for each byte of files beside the first. A limit that the user
// sets holds for all of them.
std::vector<std::string> GetMemoryArguments(const CSceneImportOptions& options, const std::string& path)
{
    unsigned int megabytes;
    if (GetLimit(options, IMPORT_MEGABYTES, megabytes))
        return {std::to_string(megabytes), "0"};
    struct stat status;
    const std::uint64_t size = stat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
    return {std::to_string(IMPORT_MEGABYTES_STANDARD + ((size * IMPORT_BYTES_PER_BYTE) >> 20)), std::to_string(IMPORT_BYTES_PER_BYTE)};
}

Text DescribeEnd(int status)
{
    Text text;
    if (WIFSIGNALED(status))
        text.FormatString(L"the importer crashed on it (%s)", Utf8ToWide(strsignal(WTERMSIG(status))).Str().c_str());
    else if (WEXITSTATUS(status) == WORKER_EXIT_RESULT)
        text = L"what comes of it takes more memory than it may take (zel: --read-megabytes)";
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
    SharedMemory memory;
    const std::string program = FindProgram(), file = WideToUtf8(path);
    std::vector<std::string> arguments{std::to_string(fileClass), file};
    for (const std::string& argument : GetMemoryArguments(options, file))
        arguments.push_back(argument);
    Worker worker;
    if (const int error = worker.Start(program, arguments, memory)) {
        options.AddLogInfo(IoLogInfo::FAILURE, Utf8ToWide(program + ": " + std::strerror(error)));
        return nullptr;
    }
    const Text reason = WaitForResult(worker, memory.GetState(), GetSeconds(options), progress);
    worker.End();
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

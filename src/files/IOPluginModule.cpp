// Letting an IO plug-in register: here, or in a process of its own first.

#include "files/IOPluginModule.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "files/IOPlugin.h"
#include "tools/CaughtException.h"

namespace {

using Text = CXTString<wchar_t>;

class Collector : public IIoPluginRegistrar {
public:
    void RegisterFormat(const CFileExt& format, CParserFactory factory) override
    {
        if (format.fileClass && !format.extensions.empty() && factory)
            formats.push_back({format, factory});
    }

    std::vector<CIoFormat> formats;
};

}

bool OpenIOModule(const std::string& path, void*& handle, std::vector<CIoFormat>& formats, Text& problem)
{
    problem = Text();
    handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* const error = dlerror();
        problem = L"can't be loaded: " + Utf8ToWide(error ? error : "");
        return false;
    }
    Collector collector;
    unsigned int version = 0;
    if (void* const entry = dlsym(handle, ZEL_IO_PLUGIN_ENTRY)) {
        const auto registerFormats = reinterpret_cast<ZelRegisterIoPlugin>(entry);
        if (const auto thrown = CatchAll([&] { version = registerFormats(ZEL_IO_PLUGIN_API, &collector); }))
            problem = L"failed while it registered: " + *thrown;
        else if (version != ZEL_IO_PLUGIN_API)
            problem.FormatString(L"is made for plug-in version %u, not %u", version, ZEL_IO_PLUGIN_API);
    } else
        problem = Text(L"has no function ") + Utf8ToWide(ZEL_IO_PLUGIN_ENTRY);
    if (!problem.IsEmpty()) {
        dlclose(handle);
        handle = nullptr;
        return false;
    }
    formats = std::move(collector.formats);
    return true;
}

// --- In a process of its own -----------------------------------------------------------------------------------------
//
// The process answers through a pipe: the text of a manifest, or a problem behind a '!', and then a NUL. An answer that does not end
// with it is none.

namespace {

constexpr char PROBLEM = '!', END = '\0';

// What the process must not share with its parent: handlers, what it prints, core files, and what runs when a program ends.
void LeaveParent()
{
    setpgid(0, 0);
    for (int number = 1; number < NSIG; number++)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const rlimit noCore{0, 0}, seconds{MODULE_CPU_SECONDS, MODULE_CPU_SECONDS};
    setrlimit(RLIMIT_CORE, &noCore);
    setrlimit(RLIMIT_CPU, &seconds);
    const int nothing = open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, standard);
    std::atexit([] { _exit(EXIT_FAILURE); });    // runs before what the parent has registered, temporary files and the like
}

[[noreturn]] void Answer(const std::string& path, int pipe)
{
    LeaveParent();
    std::vector<CIoFormat> formats;
    void* handle;
    Text problem;
    std::string answer = OpenIOModule(path, handle, formats, problem) ? FormatIOManifest(formats) : PROBLEM + WideToUtf8(problem);
    answer += END;
    for (std::size_t sent = 0; sent < answer.size();) {
        const ssize_t count = write(pipe, answer.data() + sent, answer.size() - sent);
        if (count < 0 && errno != EINTR)
            break;
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    _exit(EXIT_SUCCESS);
}

// The answer without its end; nothing when it does not come in time or breaks off.
std::optional<std::string> ReadAnswer(int pipe)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(MODULE_SECONDS);
    std::string answer;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd descriptor{pipe, POLLIN, 0};
        const int ready = left > 0 ? poll(&descriptor, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        char bytes[4096];
        const ssize_t count = ready > 0 ? read(pipe, bytes, sizeof bytes) : 0;
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return std::nullopt;
        answer.append(bytes, static_cast<std::size_t>(count));
        if (answer.back() == END) {
            answer.pop_back();
            return answer;
        }
    }
}

// How a process ended that gave no answer.
Text DescribeEnd(int status)
{
    Text text;
    if (WIFEXITED(status))
        text = L"ended the process";
    else if (WTERMSIG(status) == SIGKILL || WTERMSIG(status) == SIGXCPU)
        text = L"did not come back";
    else
        text.FormatString(L"was ended by signal %d", WTERMSIG(status));
    return text + L" while it registered";
}

}

bool TryIOModule(const std::string& path, std::vector<CIoFormat>& formats, Text& problem)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        problem = L"can't be tried: " + Utf8ToWide(std::strerror(errno));
        return false;
    }
    const pid_t process = fork();
    if (process == 0)
        Answer(path, ends[1]);
    close(ends[1]);
    if (process < 0) {
        problem = L"can't be tried: " + Utf8ToWide(std::strerror(errno));
        close(ends[0]);
        return false;
    }
    setpgid(process, process);    // both sides: whoever comes first
    const std::optional<std::string> answer = ReadAnswer(ends[0]);
    close(ends[0]);
    kill(-process, SIGKILL);    // and what it has started; one that has ended keeps its status
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (!answer)
        problem = DescribeEnd(status);
    else if (!answer->empty() && answer->front() == PROBLEM)
        problem = Utf8ToWide(answer->substr(1));
    else if (ParseIOManifest(*answer, formats) == ManifestState::GOOD)
        return true;
    else
        problem = L"registers what no manifest can hold";
    return false;
}

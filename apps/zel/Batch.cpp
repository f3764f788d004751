#include "Batch.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {    // this header does not say so itself
#include <sys/pidfd.h>
}

#include "Failure.h"
#include "Printable.h"

namespace {

std::string TakeText(int file)
{
    std::string text;
    char buffer[65536];
    lseek(file, 0, SEEK_SET);
    for (ssize_t got; (got = read(file, buffer, sizeof(buffer))) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    close(file);
    return text;
}

}

Batch::Batch(const Console& console, std::vector<BatchItem> items, unsigned int jobs, std::chrono::seconds limit)
    : m_console(console), m_items(std::move(items)), m_jobs(std::max(jobs, 1u)), m_limit(limit), m_codes(m_items.size(), EXIT_FAILED),
      m_outputs(m_items.size()), m_failures(m_items.size())
{
}

ExitCode Batch::Run(const Work& work, bool json)
{
    while (m_next < m_items.size() || !m_running.empty()) {
        while (m_running.size() < m_jobs && m_next < m_items.size())
            Start(work);
        WaitForOne();
        Collect();
        const std::size_t done = m_next - m_running.size();
        m_console.ShowProgress(std::to_string(done) + " of " + std::to_string(m_items.size()) + " files",
                               static_cast<double>(done) / static_cast<double>(m_items.size()));
    }
    m_console.ClearProgress();
    PrintOutputs(json);
    return SumUp();
}

void Batch::Start(const Work& work)
{
    const std::size_t item = m_next++;
    const BatchItem& files = m_items[item];
    std::fflush(nullptr);    // or each process would print it again
    const int output = memfd_create("output", MFD_CLOEXEC), talk = memfd_create("talk", MFD_CLOEXEC);
    const std::optional<Stamp> former = GetStamp(files.target);
    const int pid = fork();
    if (pid < 0) {
        m_failures[item] = std::string("no process could be started: ") + std::strerror(errno);
        m_console.Fail(files.source + ": " + m_failures[item]);
        close(output);
        close(talk);
        return;
    }
    if (pid > 0) {
        m_running.push_back({pid, pidfd_open(pid, 0), item, output, talk, Clock::now() + m_limit, former});
        return;
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(output, STDOUT_FILENO);
    dup2(talk, STDERR_FILENO);
    const ExitCode code = RunSafely(m_console, files.source, [&] { return work(files); });
    std::fflush(nullptr);
    _exit(code);    // what the batch has open is the batch's to tidy up
}

// Until a process ends, or its time does.
void Batch::WaitForOne() const
{
    using std::chrono::milliseconds;
    constexpr milliseconds LONGEST(60000), WITHOUT_HANDLE(100);
    milliseconds time = LONGEST;
    std::vector<pollfd> ends;
    for (const Process& process : m_running) {
        ends.push_back({process.handle, POLLIN, 0});
        if (process.handle < 0)
            time = std::min(time, WITHOUT_HANDLE);
        if (m_limit.count() > 0)
            time = std::min(time, std::chrono::ceil<milliseconds>(process.end - Clock::now()));
    }
    if (!ends.empty())
        poll(ends.data(), ends.size(), static_cast<int>(std::max(time.count(), milliseconds::rep{0})));
}

void Batch::Collect()
{
    std::erase_if(m_running, [this](const Process& process) {
        int status;
        std::string failure;
        int ended = waitpid(process.pid, &status, WNOHANG);
        if (ended == 0 && m_limit.count() > 0 && Clock::now() >= process.end) {
            kill(process.pid, SIGKILL);
            ended = waitpid(process.pid, &status, 0);
            failure = "took longer than " + std::to_string(m_limit.count()) + " seconds (see --job-seconds)";
        } else if (ended == process.pid && WIFEXITED(status))
            m_codes[process.item] = WEXITSTATUS(status);
        else if (ended == process.pid)
            failure = "its process was ended by signal " + std::to_string(WTERMSIG(status));
        if (ended == process.pid)
            Finish(process, failure);
        return ended == process.pid;
    });
}

void Batch::Finish(const Process& process, const std::string& failure)
{
    const BatchItem& files = m_items[process.item];
    int& code = m_codes[process.item];
    m_outputs[process.item] = TakeText(process.output);
    const std::string talk = TakeText(process.talk);
    m_console.PassOn(talk);
    if (process.handle >= 0)
        close(process.handle);
    const std::optional<Stamp> written = GetStamp(files.target);
    std::string reason = failure;
    if ((code == EXIT_DONE || code == EXIT_LOSSES) && (!written || written == process.former)) {
        reason = "its process ended without writing " + files.target;
        code = EXIT_FAILED;
    }
    if (!reason.empty())
        m_console.Fail(files.source + ": " + reason);
    m_failures[process.item] = reason.empty() ? talk : reason;
}

std::optional<Batch::Stamp> Batch::GetStamp(const std::string& file)
{
    struct stat status;
    if (stat(file.c_str(), &status) != 0)
        return std::nullopt;
    return Stamp{status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void Batch::PrintOutputs(bool json) const
{
    if (!json) {
        for (const std::string& output : m_outputs)
            std::fwrite(output.data(), 1, output.size(), stdout);
        return;
    }
    Json all = Json::array();
    for (std::size_t i = 0; i < m_items.size(); i++) {
        Json one = Json::parse(m_outputs[i], nullptr, false);
        const bool hasReport = !one.is_discarded();
        if (!hasReport)    // ended before that
            one = {{"schema", 1}, {"sources", {m_items[i].source}}, {"target", m_items[i].target}};
        if (!m_failures[i].empty() && (!hasReport || one["written"] == true)) {
            one["written"] = false;
            one["error"] = m_failures[i];
        }
        one["exit_code"] = m_codes[i];
        all.push_back(std::move(one));
    }
    PrintJson(all);
}

ExitCode Batch::SumUp() const
{
    const auto losses = std::ranges::count(m_codes, EXIT_LOSSES), done = std::ranges::count(m_codes, EXIT_DONE) + losses;
    const auto failed = static_cast<long>(m_codes.size()) - done;
    std::string text = std::to_string(m_items.size()) + " files: " + std::to_string(done) + " written";
    if (losses)
        text += ", " + std::to_string(losses) + " of them with losses";
    if (failed)
        text += ", " + std::to_string(failed) + " failed";
    m_console.Say(text);
    if (std::ranges::count(m_codes, EXIT_INTERRUPTED))
        return EXIT_INTERRUPTED;
    return failed ? EXIT_BATCH : losses ? EXIT_LOSSES : EXIT_DONE;
}

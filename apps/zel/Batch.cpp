#include "Batch.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

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

Batch::Batch(const Console& console, std::vector<BatchItem> items, unsigned int jobs)
    : m_console(console), m_items(std::move(items)), m_jobs(std::max(jobs, 1u)), m_codes(m_items.size(), EXIT_FAILED),
      m_outputs(m_items.size())
{
}

ExitCode Batch::Run(const Work& work, bool json)
{
    std::size_t done = 0;
    while (done < m_items.size()) {
        while (m_running.size() < m_jobs && m_next < m_items.size())
            Start(work);
        int status;
        const int pid = waitpid(-1, &status, 0);
        if (pid < 0 && errno != EINTR)
            break;    // none could be started
        const std::size_t former = m_running.size();
        Finish(pid, status);
        done += former - m_running.size();
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
    std::fflush(nullptr);    // or each process would print it again
    const int output = memfd_create("output", MFD_CLOEXEC), talk = memfd_create("talk", MFD_CLOEXEC);
    const int pid = fork();
    if (pid < 0) {
        m_console.Fail(m_items[item].source + ": no process could be started: " + std::strerror(errno));
        close(output);
        close(talk);
        return;
    }
    if (pid > 0) {
        m_running.push_back({pid, item, output, talk});
        return;
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(output, STDOUT_FILENO);
    dup2(talk, STDERR_FILENO);
    const ExitCode code = work(m_items[item]);
    std::fflush(nullptr);
    _exit(code);    // what the batch has open is the batch's to tidy up
}

void Batch::Finish(int pid, int status)
{
    const auto process = std::ranges::find(m_running, pid, &Process::pid);
    if (process == m_running.end())
        return;
    const std::string& source = m_items[process->item].source;
    m_outputs[process->item] = TakeText(process->output);
    m_console.PassOn(TakeText(process->talk));
    if (WIFEXITED(status))
        m_codes[process->item] = WEXITSTATUS(status);
    else
        m_console.Fail(source + ": its process was ended by signal " + std::to_string(WTERMSIG(status)));
    m_running.erase(process);
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
        if (one.is_discarded())    // ended before it could tell
            one = {{"sources", {m_items[i].source}}, {"target", m_items[i].target}, {"written", false}};
        one["exit_code"] = m_codes[i];
        all.push_back(std::move(one));
    }
    std::printf("%s\n", all.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
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

#include "Console.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "Printable.h"

namespace {

// Messages of importers may run over lines.
std::string OneLine(std::string text)
{
    std::ranges::replace_if(
        text, [](char character) { return character == '\n' || character == '\r' || character == '\t'; }, ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    return Printable(text);
}

bool HasColor()
{
    const char* noColor = std::getenv("NO_COLOR");
    return !(noColor && *noColor) && isatty(STDOUT_FILENO);
}

}

void Console::Say(const std::string& text) const
{
    if (!m_quiet)
        Fail(text);
}

void Console::Fail(const std::string& text) const
{
    ClearProgress();
    std::fprintf(stderr, "zel: %s\n", OneLine(text).c_str());
}

void Console::PassOn(const std::string& talk) const
{
    ClearProgress();
    std::fwrite(talk.data(), 1, talk.size(), stderr);
}

void Console::PrintHeading(const std::string& text) const
{
    const std::string heading = Printable(text);
    std::printf(HasColor() ? "\033[1m%s\033[0m\n" : "%s\n", heading.c_str());
}

bool Console::Finish() const
{
    errno = 0;
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return true;
    Fail(std::string("standard output: ") + (errno ? std::strerror(errno) : "not all could be written"));
    return false;
}

bool Console::HasProgress() const { return !m_quiet && isatty(STDERR_FILENO); }

void Console::ShowProgress(const std::string& text, double fraction) const
{
    constexpr int WIDTH = 30;
    if (!HasProgress())
        return;
    const int filled = std::clamp(static_cast<int>(fraction * WIDTH), 0, WIDTH);
    std::fprintf(stderr, "\r\033[K[%s%s] %s", std::string(filled, '#').c_str(), std::string(WIDTH - filled, ' ').c_str(),
                 OneLine(text.substr(0, 40)).c_str());
    std::fflush(stderr);
    m_showsProgress = true;
}

void Console::ClearProgress() const
{
    if (m_showsProgress)
        std::fputs("\r\033[K", stderr);
    m_showsProgress = false;
}

#include "Console.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace {

// Messages of importers may run over lines and hold control characters of a broken file.
std::string OneLine(const std::string& text)
{
    std::string line;
    for (const char character : text)
        line += static_cast<unsigned char>(character) < ' ' || character == 0x7F ? ' ' : character;
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
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

std::string Console::Heading(const std::string& text) const { return HasColor() ? "\033[1m" + text + "\033[0m" : text; }

bool Console::HasProgress() const { return !m_quiet && isatty(STDERR_FILENO); }

void Console::ShowProgress(const std::string& text, double fraction) const
{
    constexpr int WIDTH = 30;
    if (!HasProgress())
        return;
    const int filled = std::clamp(static_cast<int>(fraction * WIDTH), 0, WIDTH);
    std::fprintf(stderr, "\r\033[K[%s%s] %s", std::string(filled, '#').c_str(), std::string(WIDTH - filled, ' ').c_str(),
                 OneLine(text).substr(0, 40).c_str());
    std::fflush(stderr);
    m_showsProgress = true;
}

void Console::ClearProgress() const
{
    if (m_showsProgress)
        std::fputs("\r\033[K", stderr);
    m_showsProgress = false;
}

#include "Console.h"

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

void Console::Fail(const std::string& text) const { std::fprintf(stderr, "zel: %s\n", OneLine(text).c_str()); }

std::string Console::Heading(const std::string& text) const { return HasColor() ? "\033[1m" + text + "\033[0m" : text; }

#include "JsonText.h"

#include <cstdio>

JsonText& JsonText::Value(std::string_view text)
{
    Separate();
    m_text += '"';
    for (const char character : text)
        if (character == '"' || character == '\\') {
            m_text += '\\';
            m_text += character;
        } else if (static_cast<unsigned char>(character) < 32) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned int>(character));
            m_text += escape;
        } else {
            m_text += character;
        }
    m_text += '"';
    return *this;
}

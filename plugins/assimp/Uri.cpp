#include "Uri.h"

#include <charconv>

std::string DecodeUri(const std::string& uri)
{
    std::string text;
    for (std::size_t i = 0; i < uri.size(); i++) {
        unsigned char byte = 0;
        const char* const digits = uri.data() + i + 1;
        if (uri[i] == '%' && i + 2 < uri.size() && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2 && byte != 0) {
            text += static_cast<char>(byte);
            i += 2;
        } else {
            text += uri[i];
        }
    }
    return text;
}

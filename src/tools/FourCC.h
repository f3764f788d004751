#pragma once

/// A four-character code: the first character in the most significant byte. FourCC("ABCD") is 0x41424344.
consteval unsigned int FourCC(const char (&code)[5])
{
    return static_cast<unsigned int>(static_cast<unsigned char>(code[0])) << 24 |
           static_cast<unsigned int>(static_cast<unsigned char>(code[1])) << 16 |
           static_cast<unsigned int>(static_cast<unsigned char>(code[2])) << 8 |
           static_cast<unsigned int>(static_cast<unsigned char>(code[3]));
}

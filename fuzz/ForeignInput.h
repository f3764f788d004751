#pragma once

#include <cstdint>
#include <string>

#include "support/TempFolder.h"

/// What the targets that read foreign files are given: the class of the file in four characters, then its bytes.
struct ForeignInput {
    unsigned int fileClass = 0;
    std::string path;    ///< the bytes as a file; empty for an input that is too short or too long

    ForeignInput(const std::uint8_t* data, std::size_t size)
    {
        constexpr std::size_t CLASS = 4, MOST_BYTES = 16384;
        if (size < CLASS || size > MOST_BYTES)
            return;
        for (std::size_t i = 0; i < CLASS; i++)
            fileClass = fileClass << 8 | data[i];
        static const TempFolder folder;
        path = folder.Write("file", std::string(reinterpret_cast<const char*>(data + CLASS), size - CLASS));
    }
};

#pragma once

#include <vector>

#include "tools/Archive.h"
#include "tools/Exception.h"
#include "tools/IoFile.h"

using StreamBytes = std::vector<unsigned char>;

/// What `write(ar)` stores.
template <class WRITE> StreamBytes StoredBy(WRITE write, unsigned int buffer = 4096)
{
    CCustomMemFile file;
    CXArchive ar(&file, CXArchive::STORE, buffer);
    write(ar);
    ar.Close();
    const auto* bytes = static_cast<const unsigned char*>(file.GetBytes());
    return StreamBytes(bytes, bytes + file.GetLength());
}

constexpr int NO_ERROR_TYPE = -1;

/// Runs `read(ar)` over `bytes`; the type of the archive exception, or NO_ERROR_TYPE.
template <class READ> int LoadedBy(const StreamBytes& bytes, READ read, unsigned int buffer = 4096)
{
    CCustomMemFile file(bytes.data(), bytes.size());
    CXArchive ar(&file, CXArchive::LOAD, buffer);
    try {
        read(ar);
        return NO_ERROR_TYPE;
    } catch (CXArchiveException* exception) {
        const int type = exception->GetType();
        XDeleteThreadException();
        return type;
    }
}

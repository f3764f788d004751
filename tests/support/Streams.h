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
    try {
        CXArchive ar(&file, CXArchive::LOAD, buffer);
        read(ar);
        return NO_ERROR_TYPE;
    } catch (CXArchiveException* exception) {
        const int type = exception->GetType();
        XDeleteThreadException();
        return type;
    }
}

/// The bytes that an object's Serialize writes.
template <class OBJECT> StreamBytes Stored(OBJECT& object)
{
    return StoredBy([&](CXArchive& ar) { object.Serialize(ar); });
}

/// Serialize from those bytes. False when it throws the archive exception.
template <class OBJECT> bool Load(OBJECT& object, const StreamBytes& bytes)
{
    return LoadedBy(bytes, [&](CXArchive& ar) { object.Serialize(ar); }) == NO_ERROR_TYPE;
}

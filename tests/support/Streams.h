#pragma once

#include <vector>

#include "tools/Archive.h"
#include "tools/Exception.h"
#include "tools/IoFile.h"

/// The bytes that an object's Serialize writes.
template <class OBJECT> std::vector<unsigned char> Stored(OBJECT& object)
{
    CCustomMemFile file;
    file.OpenFile(L"", 0, nullptr);
    {
        CXArchive ar(&file, CXArchive::STORE);
        object.Serialize(ar);
        ar.Close();
    }
    const auto* bytes = static_cast<const unsigned char*>(file.GetBytes());
    return {bytes, bytes + file.GetLength()};
}

/// Serialize from those bytes. False when it throws the archive exception.
template <class OBJECT> bool Load(OBJECT& object, const std::vector<unsigned char>& bytes)
{
    CCustomMemFile file(bytes.data(), bytes.size());
    file.OpenFile(L"", 1, nullptr);
    try {
        CXArchive ar(&file, CXArchive::LOAD);
        object.Serialize(ar);
        return true;
    } catch (CXArchiveException*) {
        XDeleteThreadException();
        return false;
    }
}

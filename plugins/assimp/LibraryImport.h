#pragma once

#include <cstdint>
#include <functional>

#include <3dzel.h>

#include "UnpackedImages.h"

/// What a reading with the import library is asked, and what it gives beside the scene and the log.
struct LibraryReading {
    UnpackedImages images;    ///< that lay inside the file; the host writes them
    /// Told the size of each further file that is about to be read. May be empty.
    std::function<void(std::uint64_t size)> onCompanion;
    /// The library's data stay where they are until the process ends: its destructors crash after some files that it reads well.
    bool leavesData = false;
};

/// Reads a file with the import library in this very process.
///
/// @return  null, with the library's words in the log, for a file that it refuses and for one without content. Throws std::bad_alloc
C3DScene* ImportFile(unsigned int fileClass, const CXTString<wchar_t>& path, LibraryReading& reading, CSceneImportOptions& options,
                     CProgress& progress);

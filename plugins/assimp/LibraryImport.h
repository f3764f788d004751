#pragma once

#include <3dzel.h>

/// Reads a file with the import library in this very process.
///
/// @return  null, with the library's words in the log, for a file that it refuses and for one without content
C3DScene* ImportFile(unsigned int fileClass, const CXTString<wchar_t>& path, CSceneImportOptions& options, CProgress& progress);

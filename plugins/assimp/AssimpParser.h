#pragma once

#include <3dzel.h>

/// Reads one file class through the import library.
class CAssimpParser : public C3DParser {
public:
    CAssimpParser(unsigned int fileClass, CFileIo* fileIo);

    IoShowDialog MustShowDialog() override;
    /// Formats with +y up ask for it to be turned up.
    void LoadDefaultOptions(CSceneImportOptions& options) override;
    /// Null, with the library's words in the log, for a file that it refuses and for one without content.
    C3DScene* Read(const CXTString<wchar_t>& path, CSceneImportOptions& options) override;

private:
    unsigned int m_fileClass;
};

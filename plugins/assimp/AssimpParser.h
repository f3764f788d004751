#pragma once

#include <3dzel.h>

struct ExportFormat;

/// Reads and writes one file class through the import library.
class CAssimpParser : public C3DParser {
public:
    CAssimpParser(unsigned int fileClass, CFileIo* fileIo);

    IoShowDialog MustShowDialog() override;
    /// The axis that points up: the one of IMPORT_UP_AXIS where the file can't say, or else that of the format.
    void LoadDefaultOptions(CSceneImportOptions& options) override;
    /// Null, with the library's words in the log, for a file that it refuses and for one without content.
    C3DScene* Read(const CXTString<wchar_t>& path, CSceneImportOptions& options) override;
    /// What the format imposes: flags, up axis, unit, limits, rules of names.
    void SaveDefaultOptions(CSceneExportOptions& options) override;
    /// Files take their places together, when all are written. False, with what went wrong in the log, leaves what stood there; each kind of
    /// thing that the format cannot hold has a line in the log.
    bool Save(const CXTString<wchar_t>& path, C3DScene* scene, CSceneExportOptions& options) override;

private:
    /// What went wrong; empty for nothing.
    CXTString<wchar_t> Write(const CXTString<wchar_t>& path, C3DScene& scene, const ExportFormat& format, CSceneExportOptions& options);

    unsigned int m_fileClass;
};

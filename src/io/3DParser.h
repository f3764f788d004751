#pragma once

#include "files/FileParser.h"
#include "io/SceneOptions.h"

class C3DScene;

/// Reads and writes scenes of one file class. Plug-ins derive from it.
///
/// A parser is created on the heap for a C3DIo, belongs to it and lives until CloseParser.
class ZEL_API C3DParser : public CFileParser {
public:
    explicit C3DParser(CFileIo* fileIo);
    ~C3DParser() override;
    IoShowDialog MustShowDialog() override;

    /// May set `defaultFlags`, `forcedFlags`, `swapCoordinates`, `upAxis`. Nothing here.
    virtual void LoadDefaultOptions(CSceneImportOptions& options);
    /// Asks for options; false when the user cancels. No dialog and true here.
    virtual bool LoadOptionsDialog(CSceneImportOptions& options);
    /// What the options amount to, for a display.
    virtual CXTString<wchar_t> GetLoadParametersInfo(CSceneImportOptions& options);
    /// A new scene, which the caller of C3DIo::Read gets; null lets the next parser try. The scene need not be clean: import
    /// repairs names, coordinates that are no numbers, corners out of range. Null here.
    virtual C3DScene* Read(const CXTString<wchar_t>& path, CSceneImportOptions& options);

    virtual void SaveDefaultOptions(CSceneExportOptions& options);
    /// Asks for options with the export sheet.
    virtual bool SaveOptionsDialog(CSceneExportOptions& options);
    virtual CXTString<wchar_t> GetSaveParametersInfo(CSceneExportOptions& options);
    /// Writes the prepared scene, which is not kept. IORESULT_NO_PARSER and false here.
    virtual bool Save(const CXTString<wchar_t>& path, C3DScene* scene, CSceneExportOptions& options);

    /// True when a scene read with that data can be written back into its file; with null: whether the format can at all.
    virtual bool CanUpdate(void* parserData) const;
    virtual bool Update(const CXTString<wchar_t>& path, C3DScene* scene, void* parserData, CSceneExportOptions& options);
    /// The scene gives back what the parser keeps with it. False here.
    virtual bool ReleaseParser(bool reading, void* parserData);

    C3DScene* GetScene() const { return m_scene; }
    void SetScene(C3DScene* scene) { m_scene = scene; }

private:
    C3DScene* m_scene = nullptr;
};

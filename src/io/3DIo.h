#pragma once

#include "files/FileIo.h"
#include "io/3DParser.h"
#include "io/SceneOptions.h"

class C3DScene;

/// Turns a file name into a scene and a scene into a file.
///
///     C3DIo io(L"model.obj", FILEIO_READ, nullptr);
///     C3DScene* scene = io.Read(false, nullptr);       // null: io.GetLastResult() tells why
class ZEL_API C3DIo : public CFileIo {
public:
    C3DIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent);
    /// Without a file: for what a format offers.
    C3DIo(unsigned int fileClass, unsigned int flags, CWnd* parent);
    C3DIo(const C3DIo& other);

    /// A plug-in's parser, else the one built in for the class. Null with IORESULT_NO_PARSER otherwise.
    CFileParser* InitParser() override;
    void CloseParser() override;
    ~C3DIo() override;

    /// The scene of the file, which becomes the caller's (DeleteMe). Parsers are tried one after the other until one gives a
    /// scene; that passes through C3DScene::CheckoutImport.
    ///
    /// @param showDialog  ask for options, unless silent. Without `options` the remembered ones count, and are remembered
    /// @param options     flags and settings; also receives the log. May be null
    /// @return            null: GetLastResult tells why. Exceptions of a parser are reported and passed on
    virtual C3DScene* Read(bool showDialog, CSceneImportOptions* options);
    /// Writes a copy of the scene, prepared as the options tell. On success the scene takes over the file name.
    virtual bool Save(bool showDialog, C3DScene* scene, CSceneExportOptions* options);

    /// Makes the parser. True as long as it stands.
    bool PrepareReading();
    bool PrepareSaving();
    C3DParser* GetParser();

    /// True when the scene came from a file of that class that its parser can write back.
    static bool CanUpdate(unsigned int fileClass, C3DScene* scene);
    /// Gives data that a parser kept with a scene back to a parser of the class.
    static bool ReleaseParser(bool reading, unsigned int fileClass, void* parserData);
    /// Edits the settings of a format in `parameters` (may be null). False when cancelled or without parser.
    static bool DisplayFormatDialog(unsigned int fileClass, bool reading, CCustomData* parameters, CWnd* parent);
    /// What the settings amount to; empty without parser.
    static CXTString<wchar_t> GetParametersInfo(const CCustomData& parameters, unsigned int fileClass, bool reading);

private:
    IoShowDialog MustShowDialog();
    bool LoadOptionsDialog(CSceneImportOptions& options);
    bool SaveOptionsDialog(CSceneExportOptions& options);

    C3DScene* ReadFile(CSceneImportOptions& options);
    C3DScene* FinishReading(C3DScene* scene, CSceneImportOptions& options);
    bool WriteFile(C3DScene* scene, CSceneExportOptions& options);
    bool FailSaving(CSceneExportOptions& options);

    bool m_prepared = false;
};

#include "io/3DIo.h"

#include <atomic>

#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "io/BuiltInParsers.h"
#include "io/ImportSettings.h"
#include "io/ShapelessScene.h"
#include "scene/3DScene.h"
#include "tools/CaughtException.h"
#include "tools/Exception.h"
#include "tools/IoFile.h"
#include "tools/Progress.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int CLASS_XSI = FourCC("XSI ");
constexpr unsigned int NOTICE_XSI = 2007;
constexpr unsigned int SHAPES = 7;    // polymeshes, curves, patches
constexpr unsigned int FAILURE_LEVELS = IoLogInfo::WARNING | IoLogInfo::FAILURE;

void ShowXsiNotice(CWnd* parent)
{
    static std::atomic<bool> shown{false};
    if (shown.exchange(true))
        return;
    CNotifyDlg2::ShowDialog(NOTICE_XSI, 0, L"XSI file support",
                            L"<b>Autodesk Crosswalk version 2013</b> must be setup on your computer in order to allow reading and "
                            L"writing XSI Softimage files.<br><br>This application is free, and can be downloaded from the web "
                            L"site of its maker.",
                            parent);
}

bool HasContent(C3DScene& scene, const CSceneImportOptions& options)
{
    return scene.GetChildCount(nullptr, SHAPES) > 0 || IsShapelessScene(scene, options, IMPORT_SHAPELESS);
}

// Wait cursor that a silent object never shows.
void ShowUnlessSilent(CWaitCursor& cursor, const CFileIo& io)
{
    if (!io.IsSilent())
        cursor.Show();
}

template <class OPTIONS> void TakeParserFlags(OPTIONS& options, bool saved)
{
    if (!saved && options.flags == 0)
        options.flags = options.defaultFlags;
    options.flags |= options.forcedFlags;
}

void LogException(CIoOptions& options, const CXException* exception)
{
    if (exception && !exception->GetText().IsEmpty())
        options.AddLogInfo(IoLogInfo::FAILURE, exception->GetText());
}

// The steps that the format dialog and the parameter text share: a record as a file would get it.
template <class OPTIONS> void InitSettings(OPTIONS& options, const CCustomData* parameters)
{
    options.SetOption(IOOPT_SETTINGS_ONLY);
    if (parameters)
        options.InitFromSavedPrefs(*parameters);
}

template <class OPTIONS> void TakeSettingsFlags(OPTIONS& options, const CCustomData* parameters)
{
    if (!parameters || parameters->IsEmpty())
        options.flags |= options.defaultFlags;
    options.flags |= options.forcedFlags;
}

bool IsSceneClass(unsigned int fileClass)
{
    CFileExt format;
    return fileGetExtensionInfo(fileClass, &format) && format.kind & FILE_FAMILY_3D;
}

}

C3DIo::C3DIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent) : CFileIo(name, flags, parent) { RegisterBuiltInFormats(); }

C3DIo::C3DIo(unsigned int fileClass, unsigned int flags, CWnd* parent) : CFileIo(fileClass, flags, parent) { RegisterBuiltInFormats(); }

C3DIo::C3DIo(const C3DIo& other) : CFileIo(other) {}

C3DIo::~C3DIo() = default;

CFileParser* C3DIo::InitParser()
{
    const unsigned int firstClass = GetClass();
    do {
        if (!CFileIo::InitParser())
            SetFileParser(CreateBuiltInParser(GetClass(), this));
        if (GetParser())
            return GetFileParser();
        CFileIo::CloseParser();    // a parser of another family
    } while (TryNextParser());
    if (firstClass == CLASS_XSI && !IsSilent())
        ShowXsiNotice(GetParent());
    SetIoError(IORESULT_NO_PARSER, nullptr, IoLogInfo::FAILURE);
    return nullptr;
}

void C3DIo::CloseParser()
{
    m_prepared = false;
    CFileIo::CloseParser();
}

C3DParser* C3DIo::GetParser() { return dynamic_cast<C3DParser*>(GetFileParser()); }

bool C3DIo::PrepareReading()
{
    if (m_prepared)
        return true;
    IoFile file;
    const bool isReachable = !IsURL(false) || IsURL(true);
    if (!isReachable || !file.OpenFile(GetDiskName(), 1, nullptr)) {
        SetIoError(IORESULT_NO_FILE, nullptr, IoLogInfo::FAILURE);
        SetIoDetail(file.GetErrorText());
        ReportIoError(nullptr, FAILURE_LEVELS);
        return false;
    }
    m_prepared = InitParser() != nullptr;
    return m_prepared;
}

bool C3DIo::PrepareSaving()
{
    m_prepared = m_prepared || InitParser() != nullptr;
    return m_prepared;
}

C3DScene* C3DIo::Read(bool showDialog, CSceneImportOptions* options)
{
    if (!PrepareReading())
        return nullptr;
    CSceneImportOptions local;
    CSceneImportOptions& record = options ? *options : local;
    const bool ask = showDialog && !IsSilent();

    CCustomData prefs;
    const bool saved = ask && !options && LoadIoParameters(true, prefs, GetClass());
    if (saved)
        record.InitFromSavedPrefs(prefs);
    GetParser()->LoadDefaultOptions(record);
    TakeParserFlags(record, saved);
    if (ask) {
        record.SetOption(IOOPT_INTERACTIVE);
        if (!LoadOptionsDialog(record)) {
            SetIoError(IORESULT_CANCELLED, &record, IoLogInfo::WARNING);
            return nullptr;
        }
        if (!options)
            SaveIoParameters(true, record.SaveToSavedPrefs(), GetClass());
    }

    if (C3DScene* const scene = ReadFile(record))
        return FinishReading(scene, record);
    if (!CProgressScope::IsCancelled() && CanTryAnotherParser()) {
        CloseParser();
        TryNextParser();
        return Read(showDialog, options);
    }
    // A parser that had its own say sets IORESULT_OK at another level, and no message follows.
    if (GetLastResult() == IORESULT_OK && GetLastLevel() == IoLogInfo::INFORMATION)
        SetIoError(IORESULT_FAILED, &record, IoLogInfo::FAILURE);
    ReportIoError(&record, FAILURE_LEVELS);
    return nullptr;
}

// The parser's turn. A scene that it began and did not give back goes.
C3DScene* C3DIo::ReadFile(CSceneImportOptions& options)
{
    CWaitCursor cursor(false);
    ShowUnlessSilent(cursor, *this);
    C3DParser& parser = *GetParser();
    const auto dropBegunScene = [&](const C3DScene* result) {
        if (parser.GetScene() != result)
            DeleteMe(parser.GetScene());
        parser.SetScene(nullptr);
    };
    const auto cancel = [&](C3DScene* result) -> C3DScene* {
        dropBegunScene(result);
        DeleteMe(result);
        SetIoError(IORESULT_CANCELLED, &options, IoLogInfo::WARNING);
        XDeleteThreadException();
        return nullptr;
    };
    const auto fail = [&](const CXException* exception) {
        dropBegunScene(nullptr);
        if (GetLastResult() == IORESULT_OK)
            SetIoError(IORESULT_FAILED, &options, IoLogInfo::FAILURE);
        LogException(options, exception);
        ReportIoError(&options, FAILURE_LEVELS);
    };
    try {
        C3DScene* const scene = parser.Read(GetDiskName(), options);
        if (CProgressScope::IsCancelled())
            return cancel(scene);
        dropBegunScene(scene);
        XDeleteThreadException();
        return scene;
    } catch (const CXException* exception) {
        if (CProgressScope::IsCancelled())
            return cancel(nullptr);
        fail(exception);
        throw;
    } catch (...) {
        fail(nullptr);
        throw;
    }
}

C3DScene* C3DIo::FinishReading(C3DScene* scene, CSceneImportOptions& options)
{
    if (scene->GetFilename().IsEmpty())
        scene->SetFilename(CFileNameSpec(GetFullName(), GetClass()));
    scene->CheckoutImport(options);
    if (CProgressScope::IsCancelled()) {    // steps may be left out
        DeleteMe(scene);
        SetIoError(IORESULT_CANCELLED, &options, IoLogInfo::WARNING);
        return nullptr;
    }
    if (HasContent(*scene, options)) {
        SetIoError(IORESULT_OK, nullptr, IoLogInfo::INFORMATION);    // whatever a parser before this one had to say
        return scene;
    }
    SetIoError(IORESULT_EMPTY, &options, IoLogInfo::WARNING);
    DeleteMe(scene);
    ReportIoError(&options, FAILURE_LEVELS);
    return nullptr;
}

bool C3DIo::Save(bool showDialog, C3DScene* scene, CSceneExportOptions* options)
{
    if (!scene || !PrepareSaving())
        return false;
    CSceneExportOptions local;
    CSceneExportOptions& record = options ? *options : local;
    const bool ask = showDialog && !IsSilent();

    bool saved = false;
    if (ask && !options) {
        CCustomData prefs;
        saved = LoadIoParameters(false, prefs, GetClass());
        record.InitFromSavedPrefs(prefs);
    }
    GetParser()->SaveDefaultOptions(record);
    TakeParserFlags(record, saved);
    record.filePath = GetDiskName();
    if (record.flags & EXPORT_UPDATE_ORIGINAL) {
        unsigned int dataClass = 0;
        scene->GetParserData(dataClass, false);
        if (!GetParser()->CanUpdate(nullptr) || dataClass != GetClass())
            record.flags &= ~EXPORT_UPDATE_ORIGINAL;
    }

    CWaitCursor cursor(false);
    if (ask) {
        record.SetOption(IOOPT_INTERACTIVE);
        if (!SaveOptionsDialog(record)) {
            SetIoError(IORESULT_CANCELLED, &record, IoLogInfo::WARNING);
            return FailSaving(record);
        }
        if (!options)
            SaveIoParameters(false, record.SaveToSavedPrefs(), GetClass());
    }
    ShowUnlessSilent(cursor, *this);
    const CFileNameSpec formerName = scene->GetFilename();
    if (!WriteFile(scene, record)) {
        scene->SetFilename(formerName);    // a parser may drop it from the scene that it writes
        return FailSaving(record);
    }
    scene->SetFilename(CFileNameSpec(GetFullName(), GetClass()));
    SetIoError(IORESULT_OK, &record, IoLogInfo::INFORMATION);
    ReportIoError(&record, IoLogInfo::ALL);
    return true;
}

// A working copy, prepared, goes to the parser; it never outlives this.
bool C3DIo::WriteFile(C3DScene* scene, CSceneExportOptions& options)
{
    const auto fail = [&](const CXException* exception) {
        C3DScene::ReleaseExport(options);
        SetIoError(IORESULT_EXCEPTION, &options, IoLogInfo::FAILURE);
        LogException(options, exception);
        ReportIoError(&options, FAILURE_LEVELS);
    };
    try {
        C3DScene* const working = scene->InitExport(options);
        bool written = false;
        if (CProgressScope::IsCancelled())
            SetIoError(IORESULT_CANCELLED, &options, IoLogInfo::WARNING);    // preparing may have left steps out
        else if (!working || !working->GetChildNode(nullptr))
            SetIoError(IORESULT_NOTHING_TO_SAVE, &options, IoLogInfo::FAILURE);
        else {
            C3DParser& parser = *GetParser();
            unsigned int dataClass = 0;
            void* const data = working->GetParserData(dataClass, false);
            const bool update = options.flags & EXPORT_UPDATE_ORIGINAL && dataClass == GetClass() && parser.CanUpdate(data);
            written = update ? parser.Update(options.filePath, working, data, options) : parser.Save(options.filePath, working, options);
        }
        C3DScene::ReleaseExport(options);
        return written;
    } catch (const CXException* exception) {
        if (CProgressScope::IsCancelled()) {
            C3DScene::ReleaseExport(options);
            XDeleteThreadException();
            return false;
        }
        fail(exception);
        throw;
    } catch (...) {
        fail(nullptr);
        throw;
    }
}

bool C3DIo::FailSaving(CSceneExportOptions& options)
{
    if (CProgressScope::IsCancelled())
        SetIoError(IORESULT_CANCELLED, &options, IoLogInfo::WARNING);
    else if (GetLastResult() == IORESULT_OK)
        SetIoError(IORESULT_FAILED, &options, IoLogInfo::FAILURE);
    ReportIoError(&options, FAILURE_LEVELS);
    return false;
}

IoShowDialog C3DIo::MustShowDialog()
{
    C3DParser* const parser = GetParser();
    if (!parser)
        return IODIALOG_NONE;
    if (IsFlagSet(FILEIO_FORCE_DIALOG))
        return IODIALOG_SHOW;
    if (parser->MustShowDialog() == IODIALOG_FROM_FILE && !IsFlagSet(FILEIO_NO_FILE))
        return IODIALOG_FROM_FILE;
    return IsSilent() ? IODIALOG_NONE : IODIALOG_SHOW;
}

bool C3DIo::LoadOptionsDialog(CSceneImportOptions& options)
{
    C3DParser* const parser = GetParser();
    return parser && parser->LoadOptionsDialog(options);
}

bool C3DIo::SaveOptionsDialog(CSceneExportOptions& options)
{
    C3DParser* const parser = GetParser();
    return parser && parser->SaveOptionsDialog(options);
}

bool C3DIo::CanUpdate(unsigned int fileClass, C3DScene* scene)
{
    unsigned int dataClass = 0;
    void* const data = scene ? scene->GetParserData(dataClass, false) : nullptr;
    if (!data || dataClass != fileClass)
        return false;
    C3DIo io(fileClass, 0, nullptr);
    return io.PrepareSaving() && io.GetParser()->CanUpdate(data);
}

bool C3DIo::ReleaseParser(bool reading, unsigned int fileClass, void* parserData)
{
    C3DIo io(fileClass, reading ? FILEIO_READ | FILEIO_SILENT : FILEIO_SILENT, nullptr);
    bool released = false;
    // A scene gives its data back while it ends, where nothing may be thrown.
    if (const auto thrown = CatchAll([&] { released = io.InitParser() && io.GetParser()->ReleaseParser(reading, parserData); }))
        AddIOPluginLog(L"\"" + fileGetClassText(fileClass) + L"\" failed to take its data back: " + *thrown);
    return released;
}

bool C3DIo::DisplayFormatDialog(unsigned int fileClass, bool reading, CCustomData* parameters, CWnd* parent)
{
    if (!IsSceneClass(fileClass))
        return false;
    C3DIo io(fileClass, FILEIO_NO_FILE | FILEIO_SILENT | (reading ? FILEIO_READ : 0u), parent);
    if (!io.InitParser())
        return false;
    const auto edit = [&](auto& options, auto loadDefaults, auto showDialog) {
        InitSettings(options, parameters);
        loadDefaults(options);
        TakeSettingsFlags(options, parameters);
        const bool accepted = showDialog(options);
        if (parameters)
            *parameters = options.SaveToSavedPrefs();
        return accepted;
    };
    if (reading) {
        CSceneImportOptions options;
        return edit(
            options, [&](auto& o) { io.GetParser()->LoadDefaultOptions(o); }, [&](auto& o) { return io.LoadOptionsDialog(o); });
    }
    CSceneExportOptions options;
    return edit(
        options, [&](auto& o) { io.GetParser()->SaveDefaultOptions(o); }, [&](auto& o) { return io.SaveOptionsDialog(o); });
}

CXTString<wchar_t> C3DIo::GetParametersInfo(const CCustomData& parameters, unsigned int fileClass, bool reading)
{
    if (!IsSceneClass(fileClass))
        return {};
    C3DIo io(fileClass, FILEIO_NO_FILE | (reading ? FILEIO_READ : 0u), nullptr);
    if (!io.InitParser())
        return {};
    const auto describe = [&](auto& options, auto loadDefaults, auto getText) {
        InitSettings(options, &parameters);
        loadDefaults(options);
        TakeSettingsFlags(options, &parameters);
        return getText(options);
    };
    C3DParser& parser = *io.GetParser();
    if (reading) {
        CSceneImportOptions options;
        return describe(
            options, [&](auto& o) { parser.LoadDefaultOptions(o); }, [&](auto& o) { return parser.GetLoadParametersInfo(o); });
    }
    CSceneExportOptions options;
    return describe(
        options, [&](auto& o) { parser.SaveDefaultOptions(o); }, [&](auto& o) { return parser.GetSaveParametersInfo(o); });
}

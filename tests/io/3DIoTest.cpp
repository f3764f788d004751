#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "io/3DIo.h"
#include "scene/3DScene.h"
#include "scene/ParserSceneInfo.h"
#include "support/TempFolder.h"
#include "tools/Exception.h"
#include "tools/StringTable.h"
#include "windows/ScriptWindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int FIRST = FourCC("ZF01"), SECOND = FourCC("ZF02"), OTHER = FourCC("ZF03");

C3DScene* MakeScene(_OBJECT_KINDOF kind)
{
    C3DScene* const scene = C3DScene::Create();
    C3DSceneNode* const node = C3DSceneNode::Create();
    node->SetObject(C3DBaseObject::Create(kind), true);
    scene->AddNode(nullptr, node);
    return scene;
}

// What the fake parser of a class does; each call is written down.
struct Behaviour {
    std::function<C3DScene*(C3DParser&, CSceneImportOptions&)> read = [](C3DParser&, CSceneImportOptions&) {
        return MakeScene(OBJECT_POLYGONAL);
    };
    std::function<bool(C3DParser&, C3DScene*, CSceneExportOptions&)> save = [](C3DParser&, C3DScene*, CSceneExportOptions&) {
        return true;
    };
    unsigned int defaultFlags = 0, forcedFlags = 0;
    bool canUpdate = false;
};

std::map<unsigned int, Behaviour> g_behaviour;
std::string g_calls;

class FakeParser : public C3DParser {
public:
    FakeParser(unsigned int fileClass, CFileIo* fileIo)
        : C3DParser(fileIo), m_own(g_behaviour[fileClass]), m_name(1, static_cast<char>(fileClass & 0xFF))
    {
    }
    ~FakeParser() override { Say("closed"); }
    void LoadDefaultOptions(CSceneImportOptions& options) override { SetFlags(options); }
    void SaveDefaultOptions(CSceneExportOptions& options) override { SetFlags(options); }
    bool LoadOptionsDialog(CSceneImportOptions& options) override
    {
        Say(options.IsOptionSet(IOOPT_SETTINGS_ONLY) ? "settings" : "dialog");
        CDialogTable page;
        page.Add(CONTROL_CHECK, 1, L"Triangulate").checked = options.flags & IMPORT_TRIANGULATE;
        if (!RunDialog(GetParent(), L"Import", {&page}))
            return false;
        options.flags = page.Find(1)->checked ? options.flags | IMPORT_TRIANGULATE : options.flags & ~IMPORT_TRIANGULATE;
        return true;
    }
    C3DScene* Read(const Text&, CSceneImportOptions& options) override { return Say("read"), m_own.read(*this, options); }
    bool Save(const Text&, C3DScene* scene, CSceneExportOptions& options) override
    {
        return Say("save"), m_own.save(*this, scene, options);
    }
    bool CanUpdate(void* data) const override { return m_own.canUpdate && (!data || *static_cast<int*>(data) == 1); }
    bool Update(const Text&, C3DScene*, void*, CSceneExportOptions&) override { return Say("update"), true; }
    bool ReleaseParser(bool reading, void* data) override
    {
        if (!data)
            throw 42;
        Say(reading ? "release reading" : "release writing");
        *static_cast<int*>(data) = 0;
        return true;
    }

private:
    void Say(const char* what) { g_calls += m_name + ":" + what + " "; }
    template <class OPTIONS> void SetFlags(OPTIONS& options)
    {
        Say("defaults");
        options.defaultFlags = m_own.defaultFlags;
        options.forcedFlags = m_own.forcedFlags;
    }
    const Behaviour m_own;
    std::string m_name;
};

CFileParser* CreateFake(unsigned int fileClass, CFileIo* fileIo) { return new FakeParser(fileClass, fileIo); }

class C3DIoTest : public testing::Test {
protected:
    C3DIoTest() : m_config("XDG_CONFIG_HOME", m_folder.Name("config"))
    {
        g_behaviour.clear();
        g_calls.clear();
        SetLanguage(LANGUAGE_ENGLISH);
        SetWindowSystem(&m_windows);
        RegisterIOParser(L"first", CFileExt(L"First", L".zfa", FIRST, 0x4013), &CreateFake);
        RegisterIOParser(L"second", CFileExt(L"Second", L".zfa", SECOND, 0x4013), &CreateFake);
        RegisterIOParser(L"other", CFileExt(L"Other", L".zfo", OTHER, 0x4013), &CreateFake);
        m_file = Utf8ToWide(m_folder.Write("scene.zfa", "x"));
    }
    ~C3DIoTest() override
    {
        FreeIOPlugins(FILE_FAMILY_3D);
        SetWindowSystem(nullptr);
    }
    static std::string TakeCalls() { return std::exchange(g_calls, {}); }
    static Behaviour& First() { return g_behaviour[FIRST]; }
    static Behaviour& Second() { return g_behaviour[SECOND]; }
    void Press(bool ok)
    {
        m_windows.dialogUsers.push_back([ok](const auto&) { return ok; });
    }

    TempFolder m_folder;
    ScopedVariable m_config;
    CScriptWindowSystem m_windows;
    Text m_file;
};

}

TEST_F(C3DIoTest, ReadsThroughOneParser)
{
    C3DIo io(m_file, FILEIO_READ, nullptr);
    C3DScene* const scene = io.Read(false, nullptr);
    ASSERT_TRUE(scene);
    EXPECT_EQ(TakeCalls(), "1:defaults 1:read ");
    EXPECT_EQ(io.GetLastResult(), IORESULT_OK);
    EXPECT_EQ(scene->GetFilename().GetFullName(), m_file);
    EXPECT_EQ(scene->GetFilename().GetClass(), FIRST);
    EXPECT_EQ(scene->GetRefCount(), 1);
    EXPECT_EQ(m_windows.waitCursors, 0);
    EXPECT_EQ(m_windows.waitCursorCount, 1);
    io.CloseParser();
    EXPECT_EQ(scene->GetChildCount(nullptr, OBJECT_POLYGONAL), 1);    // outlives its parser
    DeleteMe(scene);
}

TEST_F(C3DIoTest, TriesOneParserAfterTheOther)
{
    First().read = [](C3DParser& parser, CSceneImportOptions&) -> C3DScene* {
        parser.SetIoError(IORESULT_FAILED, nullptr, IoLogInfo::FAILURE);
        return nullptr;
    };
    {
        C3DIo io(m_file, FILEIO_READ, nullptr);
        C3DScene* const scene = io.Read(false, nullptr);
        ASSERT_TRUE(scene);
        EXPECT_EQ(io.GetLastResult(), IORESULT_OK);
        EXPECT_EQ(TakeCalls(), "1:defaults 1:read 1:closed 2:defaults 2:read ");
        EXPECT_EQ(scene->GetFilename().GetClass(), SECOND);
        DeleteMe(scene);
    }
    TakeCalls();
    Second().read = First().read;
    C3DIo io(m_file, FILEIO_READ, nullptr);
    EXPECT_EQ(io.Read(false, nullptr), nullptr);
    EXPECT_EQ(TakeCalls(), "1:defaults 1:read 1:closed 2:defaults 2:read ");
    EXPECT_EQ(io.GetLastResult(), IORESULT_FAILED);
    EXPECT_EQ(m_windows.shown.size(), 1u);    // one message for the whole chain

    C3DIo one(CFileNameSpec(m_file, FIRST), FILEIO_READ, nullptr);    // a class that is given is tried alone
    EXPECT_EQ(one.Read(false, nullptr), nullptr);
    EXPECT_EQ(TakeCalls(), "1:defaults 1:read ");
}

TEST_F(C3DIoTest, TellsWhyThereIsNoScene)
{
    const auto emptyScene = [](C3DParser&, CSceneImportOptions&) { return MakeScene(OBJECT_LIGHT); };
    const auto ownMessage = [](C3DParser& parser, CSceneImportOptions&) -> C3DScene* {
        parser.SetIoError(IORESULT_OK, nullptr, IoLogInfo::FAILURE);
        return nullptr;
    };
    const auto noPartner = [](C3DParser& parser, CSceneImportOptions& options) -> C3DScene* {
        parser.SetIoError(IORESULT_NO_FILE, &options, IoLogInfo::FAILURE);
        return nullptr;
    };
    m_folder.Write("scene.zfo", "x");
    m_folder.Write("scene.zzz", "x");
    m_folder.Write("scene.3dif", "x");
    struct {
        const char *name, *file;
        decltype(Behaviour::read) read;
        int result;
        size_t shown;
    } const rows[] = {
        {"missing", "none.zfo", {}, IORESULT_NO_FILE, 1},
        {"a folder", "", {}, IORESULT_NO_FILE, 1},
        {"unknown extension", "scene.zzz", {}, IORESULT_NO_PARSER, 0},
        {"only lights", "scene.zfo", emptyScene, IORESULT_EMPTY, 1},
        {"parser had its own message", "scene.zfo", ownMessage, IORESULT_OK, 0},
        {"parser tells more", "scene.zfo", noPartner, IORESULT_NO_FILE, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_windows.shown.clear();
        g_behaviour[OTHER].read = row.read;
        C3DIo io(m_folder.Wide(row.file), FILEIO_READ, nullptr);
        EXPECT_EQ(io.Read(true, nullptr), nullptr);
        // Read(true) asks for options where there is a parser: nobody answers, so what counts is tried without.
        if (row.read) {
            EXPECT_EQ(io.GetLastResult(), IORESULT_CANCELLED);
            m_windows.shown.clear();
            EXPECT_EQ(io.Read(false, nullptr), nullptr);
        }
        EXPECT_EQ(io.GetLastResult(), row.result);
        EXPECT_EQ(m_windows.shown.size(), row.shown);
    }
}

TEST_F(C3DIoTest, PassesExceptionsOnAndLeavesNothingBehind)
{
    struct Thrown {};
    C3DScene* begun = nullptr;
    First().read = [&](C3DParser& parser, CSceneImportOptions&) -> C3DScene* {
        begun = MakeScene(OBJECT_POLYGONAL);
        begun->AddRef();
        parser.SetScene(begun);
        throw XSetThreadException(new CXArchiveException(CXArchiveException::ARCHIVE_BAD_COUNT, L"bad count"));
    };
    CSceneImportOptions options;
    C3DIo io(m_file, FILEIO_READ, nullptr);
    try {
        io.Read(false, &options);
        ADD_FAILURE() << "nothing thrown";
    } catch (const CXArchiveException* exception) {
        EXPECT_EQ(exception->GetType(), CXArchiveException::ARCHIVE_BAD_COUNT);
        XDeleteThreadException();
    }
    EXPECT_EQ(begun->GetRefCount(), 1);    // the half-made scene was given up
    DeleteMe(begun);
    EXPECT_EQ(io.GetLastResult(), IORESULT_FAILED);
    EXPECT_TRUE(options.GetLogText(IoLogInfo::FAILURE).Find(Text(L"bad count")) >= 0);
    EXPECT_EQ(m_windows.shown.size(), 1u);
    EXPECT_EQ(m_windows.waitCursors, 0);

    First().save = [](C3DParser&, C3DScene*, CSceneExportOptions&) -> bool { throw Thrown(); };
    C3DScene* const scene = MakeScene(OBJECT_POLYGONAL);
    C3DIo saving(m_file, FILEIO_SILENT, nullptr);
    EXPECT_THROW(saving.Save(false, scene, nullptr), Thrown);
    EXPECT_EQ(saving.GetLastResult(), IORESULT_EXCEPTION);
    EXPECT_EQ(scene->GetRefCount(), 1);
    DeleteMe(scene);
}

TEST_F(C3DIoTest, AsksForOptionsAndRemembersThem)
{
    std::vector<unsigned int> seen;
    First().defaultFlags = IMPORT_CLEAN_GROUPS | IMPORT_WELD;
    First().forcedFlags = IMPORT_GLOBAL_COORDINATES;
    First().read = [&](C3DParser&, CSceneImportOptions& options) -> C3DScene* {
        seen.push_back(options.flags);
        return MakeScene(OBJECT_POLYGONAL);
    };
    const auto read = [&](bool showDialog, unsigned int flags, CSceneImportOptions* options) {
        C3DIo io(CFileNameSpec(m_file, FIRST), flags, nullptr);
        C3DScene* const scene = io.Read(showDialog, options);
        DeleteMe(scene);
        return scene ? IORESULT_OK : io.GetLastResult();
    };
    constexpr unsigned int DEFAULTS = IMPORT_CLEAN_GROUPS | IMPORT_WELD | IMPORT_GLOBAL_COORDINATES;
    // Cancelled: nothing read, nothing remembered, no report.
    EXPECT_EQ(read(true, FILEIO_READ, nullptr), IORESULT_CANCELLED);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(m_windows.shown, std::vector<Text>{Text(L"dialog: Import")});
    // The user ticks a box; that is remembered, welding is not.
    m_windows.dialogUsers.push_back([](const auto& pages) { return CScriptWindowSystem::Check(pages, 1); });
    EXPECT_EQ(read(true, FILEIO_READ, nullptr), IORESULT_OK);
    Press(true);
    EXPECT_EQ(read(true, FILEIO_READ, nullptr), IORESULT_OK);
    // Without dialog, and when silent, nothing remembered counts.
    EXPECT_EQ(read(false, FILEIO_READ, nullptr), IORESULT_OK);
    EXPECT_EQ(read(true, FILEIO_READ | FILEIO_SILENT, nullptr), IORESULT_OK);
    // Options that are given count as they are, apart from what is forced.
    CSceneImportOptions given(IMPORT_UNIFY_NORMALS);
    EXPECT_EQ(read(false, FILEIO_READ, &given), IORESULT_OK);
    Press(true);
    EXPECT_EQ(read(true, FILEIO_READ, &given), IORESULT_OK);
    EXPECT_TRUE(given.IsOptionSet(IOOPT_INTERACTIVE));
    constexpr unsigned int UNIFIED = IMPORT_UNIFY_NORMALS | IMPORT_GLOBAL_COORDINATES;
    EXPECT_EQ(seen, (std::vector<unsigned int>{DEFAULTS | IMPORT_TRIANGULATE, (DEFAULTS | IMPORT_TRIANGULATE) & ~IMPORT_WELD, DEFAULTS,
                                               DEFAULTS, UNIFIED, UNIFIED}));
}

TEST_F(C3DIoTest, TurnsAForeignUpAxis)
{
    First().read = [](C3DParser&, CSceneImportOptions& options) {
        options.upAxis = UP_AXIS_Y;
        return MakeScene(OBJECT_POLYGONAL);
    };
    for (const unsigned int flags : {0u, static_cast<unsigned int>(IMPORT_NO_CHECKOUT)}) {
        CSceneImportOptions options(flags);
        C3DIo io(m_file, FILEIO_READ, nullptr);
        C3DScene* const scene = io.Read(false, &options);
        ASSERT_TRUE(scene);
        EXPECT_EQ(options.GetLogText(IoLogInfo::INFORMATION), Text(flags ? L"" : L"Change scene orientation\n"));
        DeleteMe(scene);
    }
}

TEST_F(C3DIoTest, SavesAndTakesTheNameOver)
{
    C3DScene* const scene = MakeScene(OBJECT_POLYGONAL);
    scene->SetFilename(CFileNameSpec(L"/old/name.x", OTHER));
    const auto dropName = [](bool result) {
        return [result](C3DParser&, C3DScene* working, CSceneExportOptions&) {
            working->SetFilename(CFileNameSpec());
            return result;
        };
    };
    const Text target = m_folder.Wide("new.zfa");
    First().save = dropName(false);
    C3DIo failing(target, 0, nullptr);
    EXPECT_FALSE(failing.Save(false, scene, nullptr));
    EXPECT_EQ(failing.GetLastResult(), IORESULT_FAILED);
    EXPECT_EQ(scene->GetFilename().GetFullName(), Text(L"/old/name.x"));
    EXPECT_EQ(m_windows.shown.size(), 1u);

    First().save = dropName(true);
    CSceneExportOptions options;
    C3DIo io(target, 0, nullptr);
    EXPECT_FALSE(io.Save(false, nullptr, &options));
    EXPECT_EQ(io.GetLastResult(), IORESULT_OK);    // no scene is no error
    TakeCalls();
    EXPECT_TRUE(io.Save(false, scene, &options));
    EXPECT_EQ(TakeCalls(), "1:defaults 1:save ");
    EXPECT_EQ(options.filePath, target);
    EXPECT_EQ(scene->GetFilename().GetFullName(), target);
    EXPECT_EQ(scene->GetFilename().GetClass(), FIRST);
    EXPECT_EQ(scene->GetRefCount(), 1);
    DeleteMe(scene);

    C3DScene* const empty = C3DScene::Create();
    EXPECT_FALSE(io.Save(false, empty, nullptr));
    EXPECT_EQ(io.GetLastResult(), IORESULT_NOTHING_TO_SAVE);
    DeleteMe(empty);
}

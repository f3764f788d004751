#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "files/FileIo.h"
#include "files/IOPlugin.h"
#include "support/TempFolder.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int TEST = FourCC("TEST"), HOST = FourCC("HOST");
const char* const MANIFEST = "zel-io-formats\t1\nTEST\t0x4010\trw\t.tst;.tst2\tTest files\n";

class IOPlugins : public testing::Test {
protected:
    IOPlugins() { ClearIOPluginLog(); }
    ~IOPlugins() override { FreeIOPlugins(0xFF000); }

    // Copies of the test plug-ins, under names of their own or others.
    void Add(const std::string& plugin, const std::string& as = "") const
    {
        std::filesystem::copy_file(std::string(TEST_PLUGINS) + "/zel-io-" + plugin + ".so",
                                   m_folder.Name("zel-io-" + (as.empty() ? plugin : as) + ".so"));
    }
    int Register(unsigned int family = FILE_FAMILY_3D) const { return RegisterIOPlugins(family, m_folder.Wide()); }

    static std::string LogText()
    {
        std::string text;
        for (const Text& line : GetIOPluginLog())
            text += WideToUtf8(line) + "\n";
        return text;
    }
    // The answers of the parsers in the order in which they are tried; 9 for none.
    static std::vector<int> Chain(unsigned int flags)
    {
        std::vector<int> answers;
        CFileIo io(L"a.tst", flags, nullptr);
        do {
            CFileParser* const parser = io.InitParser();
            answers.push_back(parser ? parser->MustShowDialog() : 9);
            io.CloseParser();
        } while (io.TryNextParser());
        return answers;
    }

    TempFolder m_folder;
};

}

TEST_F(IOPlugins, LoadsAModuleWithManifestWithTheFirstParserOnly)
{
    Add("good");
    m_folder.Write("zel-io-good.formats", MANIFEST);
    m_folder.Write("notes.txt", "not a module");
    m_folder.Write("zel-io-.so", "nor is this");
    EXPECT_EQ(Register(), 1);
    EXPECT_EQ(Register(), 0);    // known
    ASSERT_EQ(GetIOPlugins().size(), 1u);
    EXPECT_EQ(GetIOPlugins()[0].name, Text(L"good"));
    EXPECT_FALSE(GetIOPlugins()[0].loaded);
    CFileExt info;
    ASSERT_TRUE(fileGetExtensionInfo(TEST, &info));
    EXPECT_EQ(info.kind, 0x4013u);
    EXPECT_EQ(info.extensions.size(), 2u);

    CFileIo io(L"a.TST2", FILEIO_READ, nullptr);
    EXPECT_EQ(io.GetClass(), TEST);
    EXPECT_FALSE(GetIOPlugins()[0].loaded);
    ASSERT_TRUE(io.InitParser());
    EXPECT_EQ(io.InitParser(), io.GetFileParser());
    EXPECT_TRUE(GetIOPlugins()[0].loaded);
    EXPECT_EQ(io.GetFileParser()->GetFileIo(), &io);
    EXPECT_EQ(LogText(), "");
}

TEST_F(IOPlugins, CostThemselvesAloneWhenTheyFail)
{
    // Faults in mind: a failing module takes the following ones with it, or the whole program, or leaves what it had registered before it
    // failed.
    for (const char* const plugin : {"empty", "old", "thrower", "number", "aborts", "exits", "loops"})
        Add(plugin);
    Add("good", "zlast");
    m_folder.Write("zel-io-broken.so", "no module at all");
    EXPECT_EQ(Register(), 1);
    ASSERT_EQ(GetIOPlugins().size(), 1u);
    EXPECT_EQ(GetIOPlugins()[0].name, Text(L"zlast"));
    const std::string log = LogText();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 8) << log;
    for (const char* const part :
         {"broken: can't be loaded", "empty: has no function", "old: is made for plug-in version 99",
          "thrower: failed while it registered: registering went wrong", "number: failed while it registered: an exception without a text",
          "aborts: was ended by signal 6 while it registered", "exits: ended the process while it registered",
          "loops: did not come back while it registered"})
        EXPECT_NE(log.find(part), std::string::npos) << part << "\n" << log;
    EXPECT_FALSE(GetIOPlugins()[0].loaded);    // until a file needs it
    EXPECT_EQ(Chain(FILEIO_READ), std::vector<int>{1});
}

TEST_F(IOPlugins, FormAChainOfParsers)
{
    Add("good");      // answers 1
    Add("reader");    // answers 0, reads only
    Add("second");    // answers 2
    Register();
    EXPECT_EQ(Chain(FILEIO_READ), (std::vector<int>{1, 0, 2}));
    EXPECT_EQ(Chain(0), (std::vector<int>{1, 2}));
}

TEST_F(IOPlugins, AreSkippedWhenTheirManifestPromisesTooMuch)
{
    Add("factory");    // makes no parser
    m_folder.Write("zel-io-broken.so", "");
    m_folder.Write("zel-io-broken.formats", MANIFEST);
    Add("good", "liar");
    m_folder.Write("zel-io-liar.formats", "zel-io-formats\t1\nLIAR\t0x4010\tr\t.tst\tOther files\n");
    Add("second", "zlast");
    EXPECT_EQ(Register(), 4);
    const std::vector<int> chain = Chain(FILEIO_READ);
    EXPECT_EQ(chain.front(), 2) << "the first parser that can be made";
    const std::string log = LogText();
    for (const char* const part : {"factory: failed to make a parser: no parser today", "broken: can't be loaded"})
        EXPECT_NE(log.find(part), std::string::npos) << part << "\n" << log;
    CFileIo liar(FourCC("LIAR"), FILEIO_READ, nullptr);
    EXPECT_FALSE(liar.InitParser());
    EXPECT_NE(LogText().find("liar: doesn't handle \"LIAR\""), std::string::npos);
}

TEST_F(IOPlugins, ReadManifestsWithCare)
{
    const std::string head = "zel-io-formats\t1\n";
    struct {
        const char* name;
        std::string text;
        std::size_t extensions;    // 1 by most manifests, 2 by the module itself
    } const rows[] = {
        {"as written", MANIFEST, 2},
        {"comments and blank lines", head + "# x\n\nTEST\t0x4010\tr\t.tst\tTest\n", 1},
        {"class in hexadecimals", head + "0x54455354\t0x4010\tr\t.tst\tTest\n", 1},
        {"other plug-in version", "zel-io-formats\t2\nTEST\t0x4010\tr\t.tst\tTest\n", 0},
        {"no head: the module tells", "TEST\t0x4010\tr\t.tst\tTest\n", 2},
        {"field missing", head + "TEST\t0x4010\tr\t.tst\n", 2},
        {"unknown ability", head + "TEST\t0x4010\tx\t.tst\tTest\n", 2},
        {"kind is no number", head + "TEST\t4010\tr\t.tst\tTest\n", 2},
        {"other family", head + "TEST\t0x1000\tr\t.tst\tTest\n", 0},
        {"empty file", "", 2},
    };
    Add("good");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_folder.Write("zel-io-good.formats", row.text);
        Register();
        CFileExt info;
        EXPECT_EQ(fileGetExtensionInfo(TEST, &info), row.extensions > 0);
        EXPECT_EQ(info.extensions.size(), row.extensions);
        FreeIOPlugins(FILE_FAMILY_3D);
        EXPECT_FALSE(fileGetExtensionInfo(TEST));
    }
}

TEST_F(IOPlugins, CannotTakeAClassOfTheSystem)
{
    // Faults in mind: what came before the class was reserved stays; a manifest brings it all the same.
    constexpr unsigned int OWN = FourCC("OWN ");
    const CFileExt format(L"Own", L".own", OWN, 0x4011);
    const CParserFactory factory = [](unsigned int, CFileIo* io) -> CFileParser* { return new CFileParser(io); };
    ASSERT_TRUE(RegisterIOParser(L"host", format, factory));
    ReserveIOClass(OWN);
    EXPECT_EQ(GetIOParserCount(OWN, FILE_KIND_READ), 0);
    EXPECT_FALSE(fileGetExtensionInfo(OWN));
    EXPECT_FALSE(RegisterIOParser(L"host", format, factory));
    Add("good", "taker");
    m_folder.Write("zel-io-taker.formats", "zel-io-formats\t1\nOWN \t0x4010\tr\t.own\tOwn\n");
    EXPECT_EQ(Register(), 0);
    EXPECT_NE(LogText().find("taker: can't have \"OWN \", a class of the system's own"), std::string::npos) << LogText();
}

TEST_F(IOPlugins, WriteTheirOwnManifest)
{
    Add("good");
    ASSERT_TRUE(WriteIOPluginManifest(m_folder.Wide("zel-io-good.so")));
    EXPECT_NE(m_folder.Read("zel-io-good.formats").find("\nTEST\t0x4010\trw\t.tst;.tst2\tTest files\n"), std::string::npos);
    Register();
    ASSERT_EQ(GetIOPlugins().size(), 1u);
    EXPECT_FALSE(GetIOPlugins()[0].loaded);
    EXPECT_FALSE(WriteIOPluginManifest(m_folder.Wide("zel-io-none.so")));
    EXPECT_FALSE(WriteIOPluginManifest(m_folder.Wide("other.so")));
}

TEST_F(IOPlugins, StayLoadedAsLongAsAParserLives)
{
    Add("good");
    Register();
    CFileIo io(L"a.tst", FILEIO_READ, nullptr);
    ASSERT_TRUE(io.InitParser());
    FreeIOPlugins(0x1000);    // another family
    EXPECT_EQ(GetIOPlugins().size(), 1u);
    FreeIOPlugins(FILE_FAMILY_3D);
    EXPECT_TRUE(GetIOPlugins().empty());
    EXPECT_FALSE(fileGetFileExt(L".tst"));
    EXPECT_EQ(io.GetFileParser()->MustShowDialog(), 1);    // its code is still there
    EXPECT_EQ(Register(), 1);                              // may come back meanwhile
    io.CloseParser();
    EXPECT_EQ(Chain(FILEIO_READ), std::vector<int>{1});
}

TEST_F(IOPlugins, AreLookedForInTheFoldersOfTheEnvironment)
{
    const TempFolder other;
    Add("good");
    std::filesystem::copy_file(m_folder.Name("zel-io-good.so"), other.Name("zel-io-good.so"));
    std::filesystem::copy_file(std::string(TEST_PLUGINS) + "/zel-io-second.so", other.Name("zel-io-second.so"));
    const ScopedVariable path("ZEL_PLUGIN_PATH", ":" + m_folder.Name() + "::/none:" + other.Name());
    ASSERT_GE(RegisterIOPlugins(FILE_FAMILY_3D, L""), 2);    // and those that the build has made already
    const std::vector<CIoPluginInfo> plugins = GetIOPlugins();
    EXPECT_EQ(plugins[0].path, m_folder.Wide("zel-io-good.so"));    // the first "good" counts
    EXPECT_EQ(plugins[1].path, other.Wide("zel-io-second.so"));
}

TEST_F(IOPlugins, CanBePartOfTheProgram)
{
    const CParserFactory factory = [](unsigned int, CFileIo* io) -> CFileParser* { return new CFileParser(io); };
    EXPECT_FALSE(RegisterIOParser(L"host", CFileExt(L"Host", L".hst", HOST, 0x4011), nullptr));
    ASSERT_TRUE(RegisterIOParser(L"host", CFileExt(L"Host", L".hst", HOST, 0x4011), factory));
    CFileIo reading(L"a.hst", FILEIO_READ, nullptr), writing(L"a.hst", 0, nullptr);
    EXPECT_TRUE(reading.InitParser());
    EXPECT_FALSE(writing.InitParser());
    FreeIOPlugins(FILE_FAMILY_3D);
    EXPECT_FALSE(fileGetExtensionInfo(HOST));
}

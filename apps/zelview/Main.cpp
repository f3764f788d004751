// zelview: shows 3D scenes in a window.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "3dzel.h"
#include "Script.h"

namespace {

enum ExitCode { EXIT_DONE = 0, EXIT_SCRIPT = 1, EXIT_USAGE = 2, EXIT_NO_SCREEN = 3 };

struct Options {
    std::vector<std::string> files;
    std::string script;
    bool offscreen = false, screen = false;
};

/// A profile that is forgotten at the end: a script's pictures and answers don't depend on what a user has set.
class ForgottenProfile : public IApplication {
public:
    unsigned int GetProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int standard) override
    {
        const auto found = m_values.find({WideToUtf8(section), WideToUtf8(key)});
        return found != m_values.end() ? found->second : standard;
    }
    bool WriteProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int value) override
    {
        m_values[{WideToUtf8(section), WideToUtf8(key)}] = value;
        return true;
    }

private:
    std::map<std::pair<std::string, std::string>, unsigned int> m_values;
};

/// Reads the command line; the exit code when the program ends with that, else -1.
int ReadOptions(int argc, char** argv, Options& options)
{
    CLI::App app("Shows 3D scenes in a window.", "zelview");
    app.set_version_flag("--version", ZEL_VERSION);
    app.add_option("FILE", options.files, "Files to open; the first one is shown, Ctrl+Page Down shows the next");
    app.add_option("--script", options.script,
                   "Run the steps of a file, one a line ('-': standard input), and end; see docs/viewer-script.md")
        ->type_name("FILE");
    app.add_flag("--offscreen", options.offscreen, "Need no screen; as usual for a script");
    app.add_flag("--screen", options.screen, "Show the window while a script runs")->excludes("--offscreen");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? EXIT_DONE : EXIT_USAGE;
    }
    return -1;
}

CXTString<wchar_t> GetProgramTitle()
{
    CXTString<wchar_t> title;
    title.LoadStringW(7470);
    return title;
}

/// Where things of the library live: made before the first and gone after the last of them.
class Library {
public:
    explicit Library(IApplication* profile)
    {
        SetApplication(profile);
        Init3DZel(INIT_LINK_RESOURCES);
    }
    ~Library()
    {
        Close3DZel(INIT_LINK_RESOURCES);
        SetApplication(nullptr);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

/// The library's frame with the commands that are a host's to add.
class ViewerFrame : public C3DFrameViewer {
public:
    ~ViewerFrame() override { SetPeer(nullptr); }    // its menus go before the commands do

    void AddPluginCommands(unsigned int owner) override
    {
        C3DFrameViewer::AddPluginCommands(owner);
        GetCommandMgr().AddCommand(&m_saveAsBitmap, nullptr);
    }

private:
    C3DSaveAsBitmap m_saveAsBitmap;
};

void OpenFiles(C3DFrameViewer& frame, const std::vector<std::string>& files)
{
    unsigned int mode = OPEN_REPLACE;
    for (const std::string& file : files) {
        const CXTString<wchar_t> path = fileMakeAbsolutePath(fileAddSlash(fileGetCurrentDirectory()), Utf8ToWide(file));
        if (frame.OpenFile(path, mode))
            mode = OPEN_ADD;
    }
}

int Show(const Options& options)
{
    ViewerFrame frame;
    frame.SetFrameFlag(FRAME_NO_RECENT_FILES, !options.script.empty());
    CXTString<wchar_t> error;
    if (!LoadWindowSystem(error) || !frame.Create(GetProgramTitle())) {
        if (error.IsEmpty())
            error = L"There is no window to draw in.";
        std::fprintf(stderr, "zelview: %s\n", WideToUtf8(error).c_str());
        return EXIT_NO_SCREEN;
    }
    frame.ShowFrame();
    OpenFiles(frame, options.files);
    std::unique_ptr<Script> script;
    if (!options.script.empty()) {
        script = std::make_unique<Script>(frame);
        std::string trouble;
        if (!script->Start(options.script, trouble)) {
            std::fprintf(stderr, "zelview: %s\n", trouble.c_str());
            return EXIT_USAGE;
        }
    }
    const int code = GetWindowSystem().Run();
    return script && script->HasFailed() ? EXIT_SCRIPT : code;
}

}

int main(int argc, char** argv)
{
    Options options;
    if (const int code = ReadOptions(argc, argv, options); code != -1)
        return code;
    // The toolkit reads this when it starts.
    if (options.offscreen || (!options.script.empty() && !options.screen))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::unique_ptr<IApplication> profile;
    if (options.script.empty())
        profile = std::make_unique<CProfileFile>();
    else
        profile = std::make_unique<ForgottenProfile>();
    const Library library(profile.get());
    return Show(options);
}

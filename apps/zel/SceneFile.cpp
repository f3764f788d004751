#include "SceneFile.h"

#include <chrono>

#include "Failure.h"
#include "StandardInput.h"

static ReadSettings s_settings;

void SetReadSettings(const ReadSettings& settings) { s_settings = settings; }

// A name with the extension of the settings.
static CFileNameSpec GetWantedName() { return CFileNameSpec(Utf8ToWide("stdin." + s_settings.extension)); }

// The class that the extension of the settings asks for; 0 for none, or by name.
static unsigned int GetWantedClass() { return s_settings.extension.empty() ? 0 : GetWantedName().GetClass(); }

static void ApplySettings(CSceneImportOptions& options)
{
    options.GetCustomData().SetBool(IMPORT_SHAPELESS, true);
    if (s_settings.seconds)
        options.GetCustomData().SetUnsigned(IMPORT_SECONDS, *s_settings.seconds);
    if (s_settings.megabytes)
        options.GetCustomData().SetUnsigned(IMPORT_MEGABYTES, *s_settings.megabytes);
    if (s_settings.up)
        options.GetCustomData().SetUnsigned(IMPORT_UP_AXIS, *s_settings.up);
}

// The first failure of the log is the exact one; later ones only say that the work failed.
static std::string GetFailureReason(const C3DIo& io, const CIoOptions& options)
{
    for (const IoLogInfo& line : options.GetLog())
        if (line.level == IoLogInfo::FAILURE)
            return WideToUtf8(line.text);
    return WideToUtf8(io.GetResultText());
}

std::string RunIo(const C3DIo& io, const CIoOptions& options, const std::function<bool()>& work)
{
    std::string reason;
    try {
        if (work())
            return {};
        reason = GetFailureReason(io, options);
    } catch (const CXException* error) {
        reason = error->GetText().IsEmpty() ? GetFailureReason(io, options) : WideToUtf8(error->GetText());
        XDeleteThreadException();
    } catch (...) {
        reason = DescribeException();
    }
    return reason.empty() ? "failed" : reason;    // a failure without words is one too
}

std::string NameFailure(const std::string& file, const std::string& reason)
{
    return reason.find(file) == std::string::npos ? file + ": " + reason : reason;
}

// A broken file can be wrong in each of its faces; the report of a conversion has them all.
static void SayWarnings(const Console& console, const std::string& name, const CSceneImportOptions& options)
{
    constexpr std::size_t MOST_LINES = 5;
    std::size_t count = 0;
    for (const IoLogInfo& line : options.GetLog())
        if (line.level == IoLogInfo::WARNING && count++ < MOST_LINES)
            console.Say(name + ": " + WideToUtf8(line.text));
    count += options.GetDroppedLogCount();
    if (count > MOST_LINES)
        console.Say(name + ": " + std::to_string(count - MOST_LINES) + " more warnings");
}

// Reads the file at `path` into `file`. Empty, or why that failed.
static std::string ReadFile(const std::string& path, unsigned int fileClass, CSceneImportOptions& options, SceneFile& file)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(path), fileClass), FILEIO_READ | FILEIO_SILENT, nullptr);
    const auto start = std::chrono::steady_clock::now();
    const std::string reason = RunIo(io, options, [&] {
        file.scene.reset(io.Read(false, &options));
        return file.scene != nullptr;
    });
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    CFileExt format;
    fileGetExtensionInfo(io.GetClass(), &format);
    file.fileClass = WideToUtf8(fileGetClassText(io.GetClass()));
    file.format = WideToUtf8(format.description);
    file.readMilliseconds = elapsed.count();
    return reason;
}

static std::string ReadStandardInput(unsigned int fileClass, CSceneImportOptions& options, SceneFile& file)
{
    if (fileClass == 0)
        return "--read-as must tell the format of what comes on standard input";
    SpooledInput input;
    if (const std::string reason = input.Fill(WideToUtf8(fileGetExtension(GetWantedName().GetFullName()))); !reason.empty())
        return reason;
    const std::string reason = ReadFile(input.GetPath(), fileClass, options, file);
    if (file.scene)    // textures are looked for from where the user is
        file.scene->SetFilename(CFileNameSpec(fileGetCurrentDirectory() + GetWantedName().GetFullName(), fileClass));
    return reason;
}

std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name)
{
    CSceneImportOptions options;
    return ReadSceneFile(console, name, options);
}

std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name, CSceneImportOptions& options, std::string* failure)
{
    const unsigned int wantedClass = GetWantedClass();
    ApplySettings(options);
    SceneFile file;
    file.name = name;
    std::string reason;
    if (wantedClass == 0 && !s_settings.extension.empty())
        reason = "no reader for files like ." + s_settings.extension + " (see zel formats)";
    else if (name == STANDARD_INPUT)
        reason = ReadStandardInput(wantedClass, options, file);
    else
        reason = ReadFile(name, wantedClass, options, file);
    if (!file.scene) {
        if (failure)
            *failure = reason;
        console.Fail(NameFailure(name, reason));
        return std::nullopt;
    }
    SayWarnings(console, name, options);
    return file;
}

#include "SceneFile.h"

#include <chrono>
#include <exception>
#include <new>

static ReadSettings s_settings;

void SetReadSettings(const ReadSettings& settings) { s_settings = settings; }

// The class that the extension of the settings asks for; 0 for none, or by name.
static unsigned int GetWantedClass()
{
    return s_settings.extension.empty() ? 0 : CFileNameSpec(Utf8ToWide("file." + s_settings.extension)).GetClass();
}

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
    } catch (const std::bad_alloc&) {
        reason = "not enough memory";
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {    // a plug-in throws whatever it likes
        reason = "an exception without a text";
    }
    return reason.empty() ? "failed" : reason;    // a failure without words is one too
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

std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name)
{
    CSceneImportOptions options;
    return ReadSceneFile(console, name, options);
}

std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name, CSceneImportOptions& options)
{
    const unsigned int wantedClass = GetWantedClass();
    if (wantedClass == 0 && !s_settings.extension.empty()) {
        console.Fail(name + ": no reader for files like ." + s_settings.extension + " (see zel formats)");
        return std::nullopt;
    }
    ApplySettings(options);
    C3DIo io(CFileNameSpec(Utf8ToWide(name), wantedClass), FILEIO_READ | FILEIO_SILENT, nullptr);
    SceneFile file;
    const auto start = std::chrono::steady_clock::now();
    const std::string reason = RunIo(io, options, [&] {
        file.scene.reset(io.Read(false, &options));
        return file.scene != nullptr;
    });
    if (!file.scene) {
        console.Fail(reason.find(name) == std::string::npos ? name + ": " + reason : reason);
        return std::nullopt;
    }
    SayWarnings(console, name, options);
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    CFileExt format;
    fileGetExtensionInfo(io.GetClass(), &format);
    file.name = name;
    file.fileClass = WideToUtf8(fileGetClassText(io.GetClass()));
    file.format = WideToUtf8(format.description);
    file.readMilliseconds = elapsed.count();
    return file;
}

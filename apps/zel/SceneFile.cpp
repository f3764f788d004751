#include "SceneFile.h"

#include <chrono>
#include <exception>
#include <new>

namespace {

// The first failure of the log is the exact one; later ones only say that the reading failed.
std::string Reason(const C3DIo& io, const CSceneImportOptions& options)
{
    for (const IoLogInfo& line : options.GetLog())
        if (line.level == IoLogInfo::FAILURE)
            return WideToUtf8(line.text);
    return WideToUtf8(io.GetResultText());
}

}

std::optional<SceneFile> ReadSceneFile(const Console& console, const std::string& name)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(name)), FILEIO_READ | FILEIO_SILENT, nullptr);
    CSceneImportOptions options;
    SceneFile file;
    const auto start = std::chrono::steady_clock::now();
    std::string reason;
    try {
        file.scene.reset(io.Read(false, &options));
        if (!file.scene)
            reason = Reason(io, options);
    } catch (const CXException* error) {
        reason = error->GetText().IsEmpty() ? Reason(io, options) : WideToUtf8(error->GetText());
        XDeleteThreadException();
    } catch (const std::bad_alloc&) {
        reason = "not enough memory";
    } catch (const std::exception& error) {
        reason = error.what();
    }
    if (!file.scene) {
        console.Fail(reason.find(name) == std::string::npos ? name + ": " + reason : reason);
        return std::nullopt;
    }
    for (const IoLogInfo& line : options.GetLog())
        if (line.level == IoLogInfo::WARNING)
            console.Say(name + ": " + WideToUtf8(line.text));
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    CFileExt format;
    fileGetExtensionInfo(io.GetClass(), &format);
    file.name = name;
    file.fileClass = WideToUtf8(fileGetClassText(io.GetClass()));
    file.format = WideToUtf8(format.description);
    file.readMilliseconds = elapsed.count();
    return file;
}

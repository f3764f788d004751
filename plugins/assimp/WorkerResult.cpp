#include "WorkerResult.h"

#include <cerrno>
#include <memory>

#include <unistd.h>

namespace {

/// An archive's file that goes to a descriptor as it comes.
class DescriptorFile : public IoFile {
public:
    explicit DescriptorFile(int descriptor) : m_descriptor(descriptor) {}
    bool IsOpen() const override { return true; }
    std::uint64_t GetPosition() const override { return m_position; }
    bool WriteBytes(const void* bytes, std::size_t size) override
    {
        const char* next = static_cast<const char*>(bytes);
        m_position += size;
        while (size > 0) {
            const ssize_t written = write(m_descriptor, next, size);
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                return false;
            next += written;
            size -= static_cast<std::size_t>(written);
        }
        return true;
    }

private:
    int m_descriptor;
    std::uint64_t m_position = 0;
};

struct Release {
    void operator()(C3DScene* scene) const { DeleteMe(scene); }
};

}

bool WriteWorkerResult(int descriptor, const CIoOptions& options, UnpackedImages& images, C3DScene* scene)
{
    DescriptorFile file(descriptor);
    try {
        CXArchive ar(&file, CXArchive::STORE, 1 << 16);
        ar.WriteCount(options.GetLog().size());
        for (const IoLogInfo& line : options.GetLog())
            ar << static_cast<std::uint32_t>(line.level) << line.loss << line.text;
        images.Serialize(ar);
        ar << (scene != nullptr);
        if (scene)
            scene->Serialize(ar);
        ar.Close();
    } catch (const CXArchiveException*) {
        XDeleteThreadException();
        return false;
    }
    return true;
}

static void ReadLogLine(CXArchive& ar, CIoOptions& options)
{
    std::uint32_t level = 0;
    bool loss = false;
    CXTString<wchar_t> text;
    ar >> level >> loss >> text;
    if (loss)
        options.AddLossInfo(text);
    else
        options.AddLogInfo(static_cast<int>(level), text);
}

C3DScene* ReadWorkerResult(const void* bytes, std::size_t size, CIoOptions& options)
{
    CCustomMemFile file(bytes, size);
    CXArchive ar(&file, CXArchive::LOAD, 1 << 16);
    for (std::uint64_t lines = ar.ReadCount(sizeof(std::uint32_t)); lines > 0; lines--)
        ReadLogLine(ar, options);
    UnpackedImages images;
    images.Serialize(ar);
    bool hasScene = false;
    ar >> hasScene;
    if (!hasScene)
        return nullptr;
    std::unique_ptr<C3DScene, Release> scene(C3DScene::Create());
    scene->Serialize(ar);
    ar.Close();
    images.Write(*scene, options);
    return scene.release();
}

#include "images/2DIo.h"

#include <algorithm>
#include <mutex>

#include "files/FileExt.h"
#include "images/ImageCodec.h"
#include "tools/FilePath.h"
#include "tools/IoFile.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr int FILES_AND_PICTURES = 4;    // a file may be so many times as large as its pictures may be

// The whole file; a result of IO_FILE_RESULT, with the reason in `reason`.
int LoadFile(const Text& name, long long most, CImageBytes& bytes, IMAGE_RESULT& reason)
{
    IoFile file;
    if (!file.OpenFile(name, 1, nullptr))
        return IORESULT_NO_FILE;
    reason = IMAGE_TOO_LARGE;
    const std::uint64_t length = file.GetLength(), limit = static_cast<std::uint64_t>(std::max(most, 0LL)) * FILES_AND_PICTURES;
    if (length > limit)
        return IORESULT_FAILED;
    bytes.resize(static_cast<std::size_t>(length));
    bytes.resize(file.ReadBytes(bytes.data(), bytes.size()));
    return IORESULT_OK;
}

// Name of one of several files: "name0007.png".
Text NumberedName(const Text& name, int number)
{
    Text digits;
    digits.FormatString(L"%04d", number);
    return fileStripExtension(name) + digits + fileGetExtension(name);
}

// The standard layer with the alpha layer that may stand beside it.
class Flattened {
public:
    explicit Flattened(const CLayerBitmap* layers)
    {
        m_picture = layers ? layers->GetStandardLayer() : nullptr;
        const Bitmap* const alpha = layers ? layers->GetLayer(layers->FindLayer(LAYER_ALPHA)) : nullptr;
        if (m_picture && alpha) {
            m_joined.reset(CreateRGBABitmap(m_picture, alpha, true));
            m_picture = m_joined.get();
        }
    }
    const Bitmap* Get() const { return m_picture; }

private:
    const Bitmap* m_picture;
    std::unique_ptr<Bitmap> m_joined;
};

}

void RegisterImageFormats()
{
    static std::once_flag once;
    std::call_once(once, [] {
        constexpr unsigned int CREATOR = FourCC("ZELP");
        for (const CImageCodec* const codec : GetImageCodecs()) {
            const unsigned int abilities = FILE_KIND_READ | FILE_KIND_LISTED | (codec->write ? FILE_KIND_WRITE : 0u);
            fileRegisterFile(CFileExt(codec->name, codec->extensions, codec->fileClass, FILE_FAMILY_BITMAP | abilities, CREATOR, CREATOR));
        }
    });
}

C2DIo::C2DIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent) : CFileIo(name, flags, parent) { RegisterImageFormats(); }

C2DIo::~C2DIo() = default;

int C2DIo::Fail(int result, unsigned int reason)
{
    SetIoError(result, nullptr, IoLogInfo::FAILURE);
    SetIoDetail(GetImageResultText(static_cast<IMAGE_RESULT>(reason)));
    return result;
}

int C2DIo::PrepareReading()
{
    IMAGE_RESULT reason = IMAGE_OK;
    m_bytes = nullptr;
    m_file.clear();
    int result;
    try {
        result = LoadFile(GetDiskName(), m_options.maxBytes, m_file, reason);
    } catch (const std::bad_alloc&) {
        result = IORESULT_FAILED;
        reason = IMAGE_NO_MEMORY;
    }
    return result == IORESULT_OK ? PrepareReading(m_file.data(), m_file.size()) : Fail(result, reason);
}

int C2DIo::PrepareReading(const void* bytes, std::size_t size)
{
    m_bytes = static_cast<const unsigned char*>(bytes);
    m_size = size;
    if (!ProbeImage(m_bytes, m_size, GetClass())) {
        m_bytes = nullptr;
        return Fail(IORESULT_NO_PARSER, IMAGE_UNKNOWN);
    }
    SetIoError(IORESULT_OK, nullptr, IoLogInfo::INFORMATION);
    return IORESULT_OK;
}

void C2DIo::SetNeededBitmapSize(int width, int height)
{
    m_neededWidth = std::max(width, 0);
    m_neededHeight = std::max(height, 0);
}

CFrameBitmap* C2DIo::ReadRange(int first, int count)
{
    if (!m_bytes && GetLastResult() == IORESULT_OK)
        PrepareReading();
    if (!m_bytes)
        return nullptr;
    CImageRequest request;
    request.first = first;
    request.count = count;
    request.neededWidth = m_neededWidth;
    request.neededHeight = m_neededHeight;
    request.fileClass = GetClass();
    request.options = m_options;
    auto frames = std::make_unique<CFrameBitmap>();
    const IMAGE_RESULT result = first < 0 ? IMAGE_NO_FRAME : ReadImage(m_bytes, m_size, request, *frames);
    if (result != IMAGE_OK) {
        Fail(IORESULT_FAILED, result);
        return nullptr;
    }
    SetIoError(IORESULT_OK, nullptr, IoLogInfo::INFORMATION);
    return frames.release();
}

CLayerBitmap* C2DIo::Read(int frame)
{
    const std::unique_ptr<CFrameBitmap> frames(ReadRange(frame, 1));
    return frames ? frames->DetachFrame(0) : nullptr;
}

CFrameBitmap* C2DIo::ReadFrames() { return ReadRange(0, INT_MAX); }

int C2DIo::PrepareSaving(const CFrameBitmap* frames, int count)
{
    m_saveCount = 0;
    const CImageCodec* const codec = FindImageCodec(GetClass());
    if (!codec || !codec->write) {
        Fail(IORESULT_NO_PARSER, IMAGE_OK);
        return IORESULT_FAILED;
    }
    if (!frames || count < 1 || count > frames->GetFrameCount())
        return Fail(IORESULT_FAILED, IMAGE_NO_PICTURE);
    for (int i = 0; i < count; i++)
        if (!frames->GetFrame(i)->GetStandardLayer())
            return Fail(IORESULT_FAILED, IMAGE_NO_PICTURE);
    m_saveCount = count;
    SetIoError(IORESULT_OK, nullptr, IoLogInfo::INFORMATION);
    return IORESULT_OK;
}

int C2DIo::Save(const CFrameBitmap* frames, int first)
{
    const int count = m_saveCount;
    if (first < 0 || first >= count || PrepareSaving(frames, count) != IORESULT_OK)
        return GetLastResult() == IORESULT_OK ? Fail(IORESULT_FAILED, IMAGE_NO_PICTURE) : IORESULT_FAILED;
    if (count == 1 || FindImageCodec(GetClass())->manyFrames)
        return WriteFrames(*frames, first, count - first, GetDiskName());
    for (int i = first; i < count; i++)
        if (const int result = WriteFrames(*frames, i, 1, NumberedName(GetDiskName(), i)); result != IORESULT_OK)
            return result;
    return IORESULT_OK;
}

int C2DIo::WriteFrames(const CFrameBitmap& frames, int first, int count, const Text& name)
{
    std::vector<Flattened> pictures;
    CImageSource source;
    source.loopCount = frames.GetLoopCount();
    for (int i = first; i < first + count; i++)
        pictures.emplace_back(frames.GetFrame(i));
    for (int i = 0; i < count; i++) {
        const Bitmap* const picture = pictures[static_cast<std::size_t>(i)].Get();
        if (!picture)
            return Fail(IORESULT_FAILED, IMAGE_NO_MEMORY);
        source.frames.push_back({picture, frames.GetDuration(first + i)});
    }
    CImageBytes bytes;
    if (const IMAGE_RESULT result = WriteImage(*FindImageCodec(GetClass()), source, m_options, bytes); result != IMAGE_OK)
        return Fail(IORESULT_FAILED, result);
    IoFile file;
    if (!file.OpenFile(name, 0, nullptr)) {
        Fail(IORESULT_NO_FILE, IMAGE_OK);
        SetIoDetail(file.GetErrorText());
        return IORESULT_FAILED;
    }
    const bool written = file.WriteBytes(bytes.data(), bytes.size());
    if (file.CloseFile(written) && written)
        return IORESULT_OK;
    Fail(IORESULT_FAILED, IMAGE_OK);
    SetIoDetail(file.GetErrorText());
    return IORESULT_FAILED;
}

int C2DIo::Save(const Bitmap* bitmap)
{
    // Lent, not given: the frame lets go of it before it ends.
    CFrameBitmap frames;
    if (bitmap)
        frames.AddFrame(new CLayerBitmap(const_cast<Bitmap*>(bitmap)));
    const int result = PrepareSaving(&frames, 1) == IORESULT_OK ? Save(&frames, 0) : IORESULT_FAILED;
    if (bitmap)
        frames.GetFrame(0)->DetachAll();
    return result;
}

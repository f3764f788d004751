// WebP, by libwebp; animations by its demuxer and muxer.

#include <algorithm>
#include <cstring>

#include <webp/decode.h>
#include <webp/demux.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include "images/ImageCodec.h"
#include "tools/FourCC.h"

namespace {

constexpr int EFFORT = 1;    // lossless, 0 to 9: more takes several times as long for a few per cent

struct Deleter {
    void operator()(WebPAnimDecoder* decoder) const { WebPAnimDecoderDelete(decoder); }
    void operator()(WebPAnimEncoder* encoder) const { WebPAnimEncoderDelete(encoder); }
};

IMAGE_PROBE Probe(const unsigned char* data, std::size_t size)
{
    return size >= 12 && std::memcmp(data, "RIFF", 4) == 0 && std::memcmp(data + 8, "WEBP", 4) == 0 ? PROBE_SURE : PROBE_NO;
}

IMAGE_RESULT ResultOf(VP8StatusCode status)
{
    switch (status) {
    case VP8_STATUS_OK: return IMAGE_OK;
    case VP8_STATUS_OUT_OF_MEMORY: return IMAGE_NO_MEMORY;
    case VP8_STATUS_UNSUPPORTED_FEATURE: return IMAGE_UNSUPPORTED;
    case VP8_STATUS_SUSPENDED:
    case VP8_STATUS_NOT_ENOUGH_DATA: return IMAGE_TRUNCATED;
    default: return IMAGE_DAMAGED;
    }
}

IMAGE_RESULT ReadStill(const unsigned char* data, std::size_t size, const WebPBitstreamFeatures& features, CImageTarget& target)
{
    if (!target.WantsFrame())
        return IMAGE_NO_FRAME;
    constexpr int WORK = 4;    // bytes a pixel that the decoder takes
    auto picture = target.NewPicture(features.has_alpha ? BITMAP_RGBA : BITMAP_RGB, features.width, features.height, WORK);
    if (!picture)
        return target.GetResult();
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return IMAGE_UNSUPPORTED;
    const std::size_t stride = static_cast<std::size_t>(picture->GetWidth()) * picture->GetBytesPerPixel();
    config.output.colorspace = features.has_alpha ? MODE_RGBA : MODE_RGB;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = picture->GetLine(0);
    config.output.u.RGBA.stride = static_cast<int>(stride);
    config.output.u.RGBA.size = stride * static_cast<std::size_t>(picture->GetHeight());
    const VP8StatusCode status = WebPDecode(data, size, &config);
    WebPFreeDecBuffer(&config.output);
    if (status != VP8_STATUS_OK)
        return target.Fail(ResultOf(status));
    target.AddFrame(std::move(picture));
    return target.GetResult();
}

IMAGE_RESULT ReadAnimation(const unsigned char* data, std::size_t size, const WebPBitstreamFeatures& features, CImageTarget& target)
{
    constexpr int CANVASES = 12;    // bytes a pixel: two canvases and the frame that is being decoded
    if (!target.Fits(features.width, features.height, 4, CANVASES))
        return target.GetResult();
    const WebPData file = {data, size};
    const std::unique_ptr<WebPAnimDecoder, Deleter> decoder(WebPAnimDecoderNew(&file, nullptr));
    WebPAnimInfo info;
    if (!decoder || !WebPAnimDecoderGetInfo(decoder.get(), &info))
        return target.Fail(IMAGE_DAMAGED);
    target.SetLoopCount(static_cast<int>(info.loop_count));
    const std::size_t stride = static_cast<std::size_t>(info.canvas_width) * 4;
    int shown = 0;
    while (!target.IsDone() && WebPAnimDecoderHasMoreFrames(decoder.get())) {
        unsigned char* canvas;
        int until;
        if (!WebPAnimDecoderGetNext(decoder.get(), &canvas, &until))
            return target.Fail(IMAGE_DAMAGED);
        const int duration = until - shown;
        shown = until;
        if (!target.WantsFrame()) {
            target.SkipFrame();
            continue;
        }
        auto picture = target.NewPicture(BITMAP_RGBA, info.canvas_width, info.canvas_height);
        if (!picture)
            return target.GetResult();
        for (int y = 0; y < picture->GetHeight(); y++)
            std::memcpy(picture->GetLine(y), canvas + static_cast<std::size_t>(y) * stride, stride);
        if (!picture->HasAlpha())
            picture.reset(picture->ConvertToType(BITMAP_RGB));
        if (!target.AddFrame(std::move(picture), duration))
            return target.GetResult();
    }
    return target.GetResult();
}

IMAGE_RESULT Read(const unsigned char* data, std::size_t size, CImageTarget& target)
{
    constexpr std::size_t RIFF_HEAD = 8;
    const std::size_t length = data[4] | data[5] << 8 | data[6] << 16 | static_cast<std::size_t>(data[7]) << 24;
    if (length > size - RIFF_HEAD)
        return target.Fail(IMAGE_TRUNCATED);
    WebPBitstreamFeatures features;
    if (const VP8StatusCode status = WebPGetFeatures(data, size, &features); status != VP8_STATUS_OK)
        return target.Fail(ResultOf(status));
    return features.has_animation ? ReadAnimation(data, size, features, target) : ReadStill(data, size, features, target);
}

// A picture as the encoder takes it.
class Input {
public:
    Input() { m_valid = WebPPictureInit(&m_picture); }
    ~Input() { WebPPictureFree(&m_picture); }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    bool Import(const Bitmap& bitmap, bool lossless)
    {
        std::unique_ptr<Bitmap> colored;
        const Bitmap* source = &bitmap;
        if (bitmap.GetType() == BITMAP_GREY) {
            colored.reset(bitmap.ConvertToType(BITMAP_RGB));
            source = colored.get();
        }
        if (!m_valid || !source)
            return false;
        m_picture.use_argb = lossless;
        m_picture.width = source->GetWidth();
        m_picture.height = source->GetHeight();
        const int stride = source->GetWidth() * source->GetBytesPerPixel();
        return source->GetType() == BITMAP_RGBA ? WebPPictureImportRGBA(&m_picture, source->GetLine(0), stride)
                                                : WebPPictureImportRGB(&m_picture, source->GetLine(0), stride);
    }
    WebPPicture& Get() { return m_picture; }

private:
    WebPPicture m_picture;
    bool m_valid;
};

bool Configure(WebPConfig& config, const CImageOptions& options)
{
    if (!WebPConfigInit(&config))
        return false;
    config.quality = static_cast<float>(std::clamp(options.webpQuality, 0, 100));
    if (options.webpLossless && !WebPConfigLosslessPreset(&config, EFFORT))
        return false;
    config.exact = 1;    // colours under transparent pixels stay
    return WebPValidateConfig(&config);
}

int Append(const unsigned char* bytes, std::size_t count, const WebPPicture* picture)
{
    return AppendBytes(*static_cast<CImageBytes*>(picture->custom_ptr), bytes, count);
}

IMAGE_RESULT WriteStill(const Bitmap& bitmap, const WebPConfig& config, CImageBytes& out)
{
    Input input;
    if (!input.Import(bitmap, config.lossless))
        return IMAGE_NO_MEMORY;
    input.Get().writer = &Append;
    input.Get().custom_ptr = &out;
    return WebPEncode(&config, &input.Get()) ? IMAGE_OK : IMAGE_NO_MEMORY;
}

IMAGE_RESULT WriteAnimation(const CImageSource& source, const WebPConfig& config, CImageBytes& out)
{
    const Bitmap& first = *source.frames.front().picture;
    WebPAnimEncoderOptions settings;
    if (!WebPAnimEncoderOptionsInit(&settings))
        return IMAGE_UNSUPPORTED;
    settings.anim_params.loop_count = std::min(source.loopCount, 0xFFFF);
    settings.anim_params.bgcolor = 0;
    const std::unique_ptr<WebPAnimEncoder, Deleter> encoder(WebPAnimEncoderNew(first.GetWidth(), first.GetHeight(), &settings));
    if (!encoder)
        return IMAGE_NO_MEMORY;
    int time = 0;
    for (const auto& [picture, duration] : source.frames) {
        Input input;
        if (picture->GetWidth() != first.GetWidth() || picture->GetHeight() != first.GetHeight())
            return IMAGE_SIDES;
        if (!input.Import(*picture, config.lossless))
            return IMAGE_NO_MEMORY;
        if (!WebPAnimEncoderAdd(encoder.get(), &input.Get(), time, &config))
            return IMAGE_NO_MEMORY;
        time += std::max(duration, 1);    // frames without duration would become one
    }
    WebPData file;
    WebPDataInit(&file);
    const std::unique_ptr<WebPData, decltype(&WebPDataClear)> clear(&file, &WebPDataClear);
    if (!WebPAnimEncoderAdd(encoder.get(), nullptr, time, nullptr) || !WebPAnimEncoderAssemble(encoder.get(), &file))
        return IMAGE_NO_MEMORY;
    out.assign(file.bytes, file.bytes + file.size);
    return IMAGE_OK;
}

IMAGE_RESULT Write(const CImageSource& source, const CImageOptions& options, CImageBytes& out)
{
    const Bitmap& first = *source.frames.front().picture;
    WebPConfig config;
    if (std::max(first.GetWidth(), first.GetHeight()) > WEBP_MAX_DIMENSION)
        return IMAGE_SIDES;
    if (!Configure(config, options))
        return IMAGE_UNSUPPORTED;
    return source.frames.size() == 1 ? WriteStill(first, config, out) : WriteAnimation(source, config, out);
}

}

const CImageCodec g_webpCodec = {FourCC("WEBP"), L"WebP", L".webp", true, &Probe, &Read, &Write};

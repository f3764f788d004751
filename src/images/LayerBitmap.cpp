#include "images/LayerBitmap.h"

#include <cstring>

namespace {

bool IsPicture(unsigned int type) { return type == LAYER_RGB || type == LAYER_RGBA || type == LAYER_GREY; }

// Type of picture that a layer of that type holds; 0 for a type that no layer has.
unsigned int PictureOf(unsigned int layerType)
{
    if (layerType == LAYER_MASK || layerType == LAYER_ALPHA)
        return BITMAP_GREY;
    return IsPicture(layerType) ? layerType : 0;
}

void CopyAlpha(const Bitmap& alpha, Bitmap& to)
{
    for (int y = 0; y < to.GetHeight(); y++) {
        const unsigned char* source = alpha.GetLine(y);
        unsigned char* target = to.GetLine(y) + 3;
        for (int x = 0; x < to.GetWidth(); x++)
            target[x * 4] = source[x];
    }
}

}

CLayerBitmap::CLayerBitmap() = default;

CLayerBitmap::CLayerBitmap(Bitmap* bitmap) { AddLayer(bitmap); }

CLayerBitmap::~CLayerBitmap() = default;

bool CLayerBitmap::AddLayer(Bitmap* bitmap, unsigned int type)
{
    if (!bitmap)
        return false;
    if (type == 0)
        type = bitmap->GetType();
    if (PictureOf(type) != static_cast<unsigned int>(bitmap->GetType()))
        return false;
    m_layers.push_back({std::unique_ptr<Bitmap>(bitmap), type});
    return true;
}

Bitmap* CLayerBitmap::GetLayer(int index) const { return index >= 0 && index < GetLayerCount() ? m_layers[index].bitmap.get() : nullptr; }

unsigned int CLayerBitmap::GetLayerType(int index) const { return index >= 0 && index < GetLayerCount() ? m_layers[index].type : 0; }

int CLayerBitmap::FindLayer(unsigned int type) const
{
    for (int i = 0; i < GetLayerCount(); i++)
        if (m_layers[i].type == type || (type == LAYER_STANDARD && IsPicture(m_layers[i].type)))
            return i;
    return -1;
}

Bitmap* CLayerBitmap::GetStandardLayer() const { return GetLayer(FindLayer(LAYER_STANDARD)); }

int CLayerBitmap::GetWidth() const
{
    const Bitmap* const standard = GetStandardLayer();
    return standard ? standard->GetWidth() : 0;
}

int CLayerBitmap::GetHeight() const
{
    const Bitmap* const standard = GetStandardLayer();
    return standard ? standard->GetHeight() : 0;
}

Bitmap* CLayerBitmap::DetachLayer(int index)
{
    if (index < 0 || index >= GetLayerCount())
        return nullptr;
    Bitmap* const bitmap = m_layers[index].bitmap.release();
    m_layers.erase(m_layers.begin() + index);
    return bitmap;
}

Bitmap* CLayerBitmap::DetachLayerByType(unsigned int type) { return DetachLayer(FindLayer(type)); }

Bitmap* CLayerBitmap::DetachStandardLayer() { return DetachLayerByType(LAYER_STANDARD); }

void CLayerBitmap::DetachAll()
{
    for (Layer& layer : m_layers)
        layer.bitmap.release();
    m_layers.clear();
}

Bitmap* CLayerBitmap::DetachAlpha()
{
    if (Bitmap* const alpha = DetachLayerByType(LAYER_ALPHA))
        return alpha;
    // Programs write an alpha of 255 throughout into grey masks as well: those speak by their brightness.
    const int rgba = FindLayer(LAYER_RGBA);
    if (rgba >= 0 && GetLayer(rgba)->HasAlpha()) {
        const std::unique_ptr<Bitmap> bitmap(DetachLayer(rgba));
        return bitmap->ConvertToType(BITMAP_GREY);
    }
    if (Bitmap* const mask = DetachLayerByType(LAYER_MASK))
        return mask;
    const std::unique_ptr<Bitmap> standard(DetachStandardLayer());
    if (!standard)
        return nullptr;
    const std::unique_ptr<Bitmap> opaque(standard->ConvertToType(BITMAP_RGB));
    return opaque ? opaque->ConvertToType(BITMAP_GREY) : nullptr;
}

bool CLayerBitmap::MakeRGBALayer(bool remove)
{
    const int standard = FindLayer(LAYER_STANDARD), alpha = FindLayer(LAYER_ALPHA);
    if (standard < 0)
        return false;
    if (alpha < 0)
        return m_layers[standard].type == LAYER_RGBA;
    std::unique_ptr<Bitmap> joined(CreateRGBABitmap(GetLayer(standard), GetLayer(alpha), true));
    if (!joined)
        return false;
    m_layers[standard] = {std::move(joined), LAYER_RGBA};
    if (remove)
        m_layers.erase(m_layers.begin() + alpha);
    return true;
}

rgbaBitmap* CreateRGBABitmap(const Bitmap* rgb, const Bitmap* alpha, bool scale)
{
    if (!rgb || !alpha)
        return nullptr;
    const bool fits = rgb->GetWidth() == alpha->GetWidth() && rgb->GetHeight() == alpha->GetHeight();
    if (!fits && !scale)
        return nullptr;
    const std::unique_ptr<Bitmap> grey(alpha->ConvertToType(BITMAP_GREY));
    std::unique_ptr<Bitmap> joined(rgb->ConvertToType(BITMAP_RGBA));
    if (!grey || !joined || (!fits && !grey->Resize(rgb->GetWidth(), rgb->GetHeight(), 1)))
        return nullptr;
    CopyAlpha(*grey, *joined);
    return static_cast<rgbaBitmap*>(joined.release());    // ConvertToType makes one of that class
}

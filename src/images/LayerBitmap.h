#pragma once

#include <memory>
#include <vector>

#include "images/Bitmap.h"

/// What a layer is. The layers below LAYER_ALPHA are pictures or masks on their own; the first of the pictures is the standard layer.
enum LAYER_TYPE : unsigned int {
    LAYER_RGB = BITMAP_RGB,
    LAYER_RGBA = BITMAP_RGBA,
    LAYER_GREY = BITMAP_GREY,
    LAYER_MASK = 5,           ///< a mask that the file keeps beside its picture
    LAYER_STANDARD = 4095,    ///< when asked for: the standard layer, whichever of RGB, RGBA and GREY it is
    LAYER_ALPHA = 4096,       ///< the alpha of the standard layer, apart from it; grey
};

/// A picture in layers, all of which it owns.
class ZEL_API CLayerBitmap {
public:
    CLayerBitmap();
    /// Takes one picture over as the standard layer; null gives an empty object.
    explicit CLayerBitmap(Bitmap* bitmap);
    ~CLayerBitmap();
    CLayerBitmap(const CLayerBitmap&) = delete;
    CLayerBitmap& operator=(const CLayerBitmap&) = delete;

    /// Takes the picture over as the last layer; without type, that of the picture. False, with nothing taken, for null, for LAYER_STANDARD, and
    /// for a picture of another type than the layer's (LAYER_MASK and LAYER_ALPHA are grey).
    bool AddLayer(Bitmap* bitmap, unsigned int type = 0);
    int GetLayerCount() const { return static_cast<int>(m_layers.size()); }
    /// Null, or 0, outside.
    Bitmap* GetLayer(int index) const;
    unsigned int GetLayerType(int index) const;
    /// First layer of a type; -1 for none.
    int FindLayer(unsigned int type) const;
    /// The layer that shows: the first of type RGB, RGBA or GREY. Null without.
    Bitmap* GetStandardLayer() const;
    /// Size of the standard layer; 0 without.
    int GetWidth() const;
    int GetHeight() const;

    /// Gives a layer to the caller. Null outside, or when no layer has the type.
    Bitmap* DetachLayer(int index);
    Bitmap* DetachLayerByType(unsigned int type);
    Bitmap* DetachStandardLayer();
    /// Forgets all layers, which are the caller's from now on.
    void DetachAll();
    /// What this picture says about transparency, as a grey picture of the caller's: its alpha layer; the alpha of an RGBA picture that is not
    /// opaque throughout; its mask; else the brightness of the standard layer. Null when it has no layer. The layer used goes.
    Bitmap* DetachAlpha();

    /// Joins the standard layer and a LAYER_ALPHA into one RGBA layer in the place of the former; a standard layer without
    /// alpha layer stays as it is.
    ///
    /// @param remove  the alpha layer goes; else it stays beside
    /// @return        true when the standard layer is RGBA now
    bool MakeRGBALayer(bool remove);

private:
    struct Layer {
        std::unique_ptr<Bitmap> bitmap;
        unsigned int type;
    };
    std::vector<Layer> m_layers;
};

/// A new picture, the caller's, of the colours of `rgb` and the transparency of `alpha` (the alpha of an RGBA picture, else the brightness).
///
/// @param scale  an alpha of another size is scaled to the picture's; else sizes that differ are refused
/// @return       null when one is missing, for sizes that differ, or without memory
ZEL_API rgbaBitmap* CreateRGBABitmap(const Bitmap* rgb, const Bitmap* alpha, bool scale);

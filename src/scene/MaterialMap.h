#pragma once

#include <memory>

#include "channels/Channel.h"
#include "geometry/4x4Matrix.h"
#include "geometry/Quaternion.h"
#include "images/Bitmap.h"
#include "scene/Forward.h"
#include "scene/Keyframable.h"
#include "tools/CustomData.h"
#include "tools/Object.h"
#include "tools/Rect.h"
#include "tools/String.h"

class CLayerBitmap;

/// What of a material a map gives.
enum MapType : unsigned int { MAP_DIFFUSE = 1, MAP_AMBIENT, MAP_SPECULAR, MAP_TRANSPARENCY, MAP_BUMP };

/// Where a map's coordinates come from.
enum MapProjection : unsigned int {
    PROJECTION_NONE = 0,    ///< as PROJECTION_UVW
    PROJECTION_UVW = 1,     ///< the object's own channel
    PROJECTION_PLANAR,
    PROJECTION_CYLINDRICAL,
    PROJECTION_SPHERICAL,
    PROJECTION_BOX,    ///< planar, for each face along the dominant axis of its normal
};

/// Axis of a projection.
enum MapAxis : unsigned int { MAP_AXIS_X = 0, MAP_AXIS_Y = 1, MAP_AXIS_Z = 2 };

enum MAP_PROPERTIES : unsigned int {
    MAP_NO_ALPHA_TEST = 0x4,    ///< for views
    MAP_RELOAD = 0x1000000,     ///< the next GetBitmap reads the file again
};

/// A texture: an image file, how it is laid on the surface, and, once asked for, the image itself.
///
/// The file is named relative to the scene's, or absolutely, and is looked for when it has moved. The placement (translation, scale,
/// rotation, matrix, tiling) is keyed; `time` arguments are frames. v = 1 is the top of the image.
class ZEL_API CMaterialMap : public CXObject, public C3DKeyframable {
    ZEL_DECLARE_CREATABLE(CMaterialMap)
public:
    CMaterialMap();
    CMaterialMap(const CMaterialMap&) = delete;
    ~CMaterialMap() override;
    /// Everything but the bitmap, which is dropped here and read anew when asked for.
    CMaterialMap& operator=(const CMaterialMap& other);
    /// Type, axis, projection, channel, both file names, flags and keys.
    bool operator==(const CMaterialMap& other) const;
    /// Without bitmap, which is read anew.
    void Serialize(CXArchive& ar) override;

    /// Owned by the caller. An empty file name becomes that of an unnamed material.
    static CMaterialMap* Create(const CXTString<wchar_t>& fileName, unsigned int channelID, MapType type, MapProjection projection);

    const CXTString<wchar_t>& GetFileName() const { return m_fileName; }
    /// Made relative to `baseDir` when that is a folder. Another name than before drops the bitmap.
    void SetFileName(const CXTString<wchar_t>& name, const CXTString<wchar_t>& baseDir);
    /// A second image whose alpha, or luminance, is the map's alpha; empty for none.
    const CXTString<wchar_t>& GetAlphaFileName() const { return m_alphaFileName; }
    void SetAlphaFileName(const CXTString<wchar_t>& name, const CXTString<wchar_t>& baseDir);
    MapType GetType() const { return m_type; }
    void SetType(MapType type) { m_type = type; }
    MapProjection GetProjection() const { return m_projection; }
    void SetProjection(MapProjection projection) { m_projection = projection; }
    MapAxis GetAxis() const { return m_axis; }
    void SetAxis(MapAxis axis) { m_axis = axis; }
    /// Id of the texture coordinates; 0xFFFFFFFF for none.
    unsigned int GetChannelID() const { return m_channelID; }
    void SetChannelID(unsigned int id) { m_channelID = id; }
    bool IsFlagSet(MAP_PROPERTIES flags) const { return (m_flags & flags) == static_cast<unsigned int>(flags); }
    void SetFlag(MAP_PROPERTIES flags, bool set) { m_flags = set ? m_flags | flags : m_flags & ~flags; }
    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }

    // Image (MaterialBitmap.cpp)

    /// The image, read at the first call; null when it cannot be found or read, which is not tried again before the name changes or
    /// MAP_RELOAD is set. It stays the map's own.
    ///
    /// @param scene  whose file and texture paths help to find it; may be null
    /// @param size   pixels that are needed: a reader may give a smaller image that is at least that large; (-1, -1) for all
    Bitmap* GetBitmap(const C3DScene* scene, CSize size);
    bool HasBitmap() const { return m_bitmap != nullptr; }
    /// Reads the image when it is not in memory; without one, whether an alpha file is named.
    bool HasAlpha(const C3DScene* scene);
    /// Where the image, or the alpha image, is; empty when it is nowhere. `absolute` false: relative to the scene's folder.
    CXTString<wchar_t> GetBitmapPath(const C3DScene* scene, bool alpha, bool absolute) const;

    // Placement (MaterialPlacement.cpp)

    /// Rotation, matrix, translation and scale, multiplied in that order, then the swaps of axes.
    void GetMatrix(unsigned int time, C4x4TMatrix<float>& matrix) const;
    void SetMatrix(unsigned int time, const C4x4TMatrix<float>& matrix);
    void GetTranslation(unsigned int time, C3DTVector<float>& translation) const;
    void SetTranslation(unsigned int time, const C3DTVector<float>& translation);
    void Translate(unsigned int time, const C3DTVector<float>& translation);
    void GetScale(unsigned int time, C3DTVector<float>& scale) const;
    void SetScale(unsigned int time, const C3DTVector<float>& scale);
    void Scale(unsigned int time, const C3DTVector<float>& factors);
    void GetRotation(unsigned int time, CQuaternion& rotation) const;
    void SetRotation(unsigned int time, const CQuaternion& rotation);
    void Rotate(unsigned int time, const CQuaternion& rotation);
    /// Heading, pitch and bank in radians.
    void GetHPBRotation(unsigned int time, C3DTVector<float>& angles) const;
    void SetHPBRotation(unsigned int time, const C3DTVector<float>& angles);
    /// How often the image repeats along u, v and w; 1 without key.
    void GetTile(unsigned int time, C3DTVector<float>& tile) const;
    void SetTile(unsigned int time, const C3DTVector<float>& tile);
    /// Follows a swap of the scene's axes (geometry/Swap.h). Maps that use the object's own coordinates stay.
    void SwapCoordinates(unsigned int mode);
    void ChangeChannelID(const CChannelMap& map);

protected:
    /// Looks for a file whose name may be out of date: beside the scene, below its root, in the texture paths.
    bool FindBitmap(const C3DScene* scene, const CXTString<wchar_t>& name, CXTString<wchar_t>& found, bool absolute) const;
    bool LoadBitmapW(const C3DScene* scene, const CXTString<wchar_t>& fileName, const CXTString<wchar_t>& alphaName, CSize size);
    CLayerBitmap* ReadBitmap(const C3DScene* scene, const CXTString<wchar_t>& name, CXTString<wchar_t>& resolved, CSize size) const;
    bool ChangeFileName(CXTString<wchar_t>& member, const CXTString<wchar_t>& name, const CXTString<wchar_t>& baseDir);

private:
    friend class C3DMaterial;
    enum LoadState : unsigned int { NOT_TRIED, LOADED, LOADING, FAILED };

    void DropBitmap();
    void RestoreSwap();
    void FilesChanged();

    CXTString<wchar_t> m_fileName, m_alphaFileName;
    CCustomData m_customData;
    unsigned int m_channelID = 0xFFFFFFFF;
    MapType m_type = {};
    MapProjection m_projection = PROJECTION_NONE;
    MapAxis m_axis = MAP_AXIS_X;
    std::unique_ptr<Bitmap> m_bitmap;
    unsigned int m_flags = 0;
    LoadState m_loadState = NOT_TRIED;
    C3DMaterial* m_material = nullptr;    ///< hears of other file names; null for a map of its own
};

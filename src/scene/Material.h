#pragma once

#include <cstdint>
#include <memory>

#include "scene/Forward.h"
#include "scene/Keyframable.h"
#include "scene/MaterialMap.h"
#include "tools/Color.h"
#include "tools/CustomData.h"
#include "tools/Hash.h"
#include "tools/Object.h"
#include "tools/String.h"

enum _MATERIAL_FLAGS : unsigned int {
    MATERIAL_HIDDEN = 0x1,           ///< nodes that use this material alone are not shown
    MATERIAL_PLAIN_TEXTURE = 0x2,    ///< for hosts: a view draws the diffuse texture without the colours below it
    // News for views, which clear them. Neither copied nor stored.
    MATERIAL_NAME_CHANGED = 0x100,
    MATERIAL_TEXTURE_CHANGED = 0x200,
    MATERIAL_COLOR_CHANGED = 0x400,
    MATERIAL_PARAMETER_CHANGED = 0x800,
    MATERIAL_IMAGES_CHANGED = 0x1000,    ///< image files; of the maps those that have an image in memory stay as they are
};
constexpr unsigned int MATERIAL_CHANGES = 0xFF00;

/// Revisions of a material (C3DBaseObject::GetRevision), for each kind of news that views have to do with.
struct C3DMaterialRevisions {
    std::uint64_t look = 0;       ///< colours, parameters and how the texture is drawn: setters and flags tell of them
    std::uint64_t texture = 0;    ///< MATERIAL_TEXTURE_CHANGED
    std::uint64_t images = 0;     ///< MATERIAL_IMAGES_CHANGED
    friend bool operator==(const C3DMaterialRevisions&, const C3DMaterialRevisions&) = default;
};

/// How a surface looks: colours and factors, which are keys and so can be animated, and a texture map of each type.
///
/// Faces refer to it by its id. `time` arguments are frames; colours have four bytes, factors are 0 to 1 and are clamped to that when set.
/// Its collection finds it by name and by its diffuse colour at time 0: the setters of both keep that true.
class ZEL_API C3DMaterial : public CXObject, public C3DKeyframable {
    ZEL_DECLARE_CREATABLE(C3DMaterial)
public:
    /// Takes the next id of the process; belongs to no collection.
    C3DMaterial();
    C3DMaterial(const C3DMaterial&) = delete;
    ~C3DMaterial() override;
    /// Everything but id and owner, which stay. News flags are not taken, bitmaps are not copied.
    C3DMaterial& operator=(const C3DMaterial& other);
    /// Storing clears the news flags behind it. Loading takes the id too, except where the material is in a collection.
    void Serialize(CXArchive& ar) override;

    /// Keys, maps and vertex colour channel are equal; names do not count.
    bool HasSameParameters(const C3DMaterial& other) const;
    bool operator==(const C3DMaterial& other) const;    ///< and the names

    unsigned int GetMaterialID() const { return m_materialID; }
    const CXTString<wchar_t>& GetName() const { return m_name; }
    void SetName(const CXTString<wchar_t>& name);
    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }

    unsigned int GetFlags() const { return m_flags; }
    bool IsFlagSet(_MATERIAL_FLAGS flags) const { return (m_flags & flags) == static_cast<unsigned int>(flags); }
    bool IsOneFlagSet(unsigned int flags) const { return (m_flags & flags) != 0; }
    void SetFlag(_MATERIAL_FLAGS flags, bool set) { SetFlags(flags, set); }
    void SetFlags(unsigned int flags, bool set);
    const C3DMaterialRevisions& GetRevisions() const { return m_revisions; }

    // Colours (MaterialColors.cpp). Without key: 30 30 30 ambient, 192 192 192 diffuse and specular, opaque.

    /// `applyFactor` multiplies red, green and blue by the factor, and the diffuse alpha by 1 - transparency; fractions are cut off.
    CRGBColor GetAmbientColor(unsigned int time, bool applyFactor) const;
    CRGBColor GetDiffuseColor(unsigned int time, bool applyFactor) const;
    CRGBColor GetSpecularColor(unsigned int time, bool applyFactor) const;
    void SetAmbientColor(unsigned int time, const CRGBColor& color);
    void SetDiffuseColor(unsigned int time, const CRGBColor& color);
    void SetSpecularColor(unsigned int time, const CRGBColor& color);
    /// Four floats, 0 to 1, factors applied.
    void FloatGetAmbientColor(unsigned int time, float* rgba) const;
    void FloatGetDiffuseColor(unsigned int time, float* rgba) const;
    void FloatGetSpecularColor(unsigned int time, float* rgba) const;

    // Factors. Without key: transparency 0, all others 1.

    float GetAmbientFactor(unsigned int time) const;
    float GetDiffuseFactor(unsigned int time) const;
    float GetSpecularFactor(unsigned int time) const;
    float GetBumpFactor(unsigned int time) const;
    float GetTransparencyFactor(unsigned int time) const;
    void SetAmbientFactor(unsigned int time, float factor);
    void SetDiffuseFactor(unsigned int time, float factor);
    void SetSpecularFactor(unsigned int time, float factor);
    void SetBumpFactor(unsigned int time, float factor);
    void SetTransparencyFactor(unsigned int time, float factor);
    /// A transparency above 0 or a diffuse alpha below 255.
    bool IsTransparent(unsigned int time) const;

    /// Radians; the preferences' angle without key and for a stored -1.
    float GetSmoothAngle(unsigned int time) const;
    /// Clamped to 0 to pi; -1 stands for the preferences' angle.
    void SetSmoothAngle(unsigned int time, float angle);
    /// Id of the colour channel that tints the surface, 0xFFFFFFFF for none; its strength, 1 without key.
    unsigned int GetVertexColor(unsigned int time, float& strength) const;
    void SetVertexColor(unsigned int time, unsigned int channelID, float strength);

    // Maps (Material.cpp). Null for none; the material owns them.

    CMaterialMap* GetAmbientMaps() const { return m_ambientMap.get(); }
    CMaterialMap* GetDiffuseMaps() const { return m_diffuseMap.get(); }
    CMaterialMap* GetSpecularMaps() const { return m_specularMap.get(); }
    CMaterialMap* GetTransparencyMaps() const { return m_transparencyMap.get(); }
    CMaterialMap* GetBumpMaps() const { return m_bumpMap.get(); }
    CMaterialMap* GetMaterialMap(MapType type) const;
    /// The map of that type: one that is there already as it stands, else a new one. Null for an empty name or an unknown type.
    CMaterialMap* AddMaterialMap(const CXTString<wchar_t>& fileName, unsigned int channelID, MapType type, MapProjection projection);
    /// The channels of the maps and of the vertex colour that `map` names get the ids of those that took them in.
    void ChangeChannelID(const CChannelMap& map);

private:
    friend class CMaterials;
    friend class CMaterialMap;
    using Map = std::unique_ptr<CMaterialMap>;

    /// Takes no id of the process.
    C3DMaterial(CMaterials* owner, unsigned int id);
    static Map C3DMaterial::*MapOf(MapType type);
    void AdoptMap(Map& place, CMaterialMap* map);
    /// A number for the keys and for the image files of all maps: equal for materials with the same parameters.
    unsigned int GetContentHash() const;
    void KeysMayChange() const override { ContentMayChange(); }
    void ContentMayChange() const;
    /// The news flags among them become revisions.
    void NoteNews(unsigned int flags);
    template <class T> void SetValue(unsigned int time, std::uint64_t classId, const T& value);

    static Map C3DMaterial::*const MAPS[5];    // in the order in which they are stored

    unsigned int m_flags = 0;
    C3DMaterialRevisions m_revisions;
    CXTString<wchar_t> m_name;
    CCustomData m_customData;
    CMaterials* m_owner = nullptr;    ///< whose tables hold this material; null outside one
    Map m_ambientMap, m_diffuseMap, m_specularMap, m_transparencyMap, m_bumpMap;
    unsigned int m_materialID;
    unsigned int m_vertexColorChannel = 0xFFFFFFFF;
    // Under what the owner's tables hold this material; it leaves them by these whatever became of the keys.
    unsigned int m_hashedColor = 0, m_hashedContent = 0;
    mutable bool m_mayBeChanged = false;    ///< since then; the owner has it in its list
};

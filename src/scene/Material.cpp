#include "scene/Material.h"

#include <bit>
#include <utility>

#include "channels/Channel.h"
#include "scene/Materials.h"
#include "scene/ProcessState.h"
#include "tools/Archive.h"
#include "tools/HashMix.h"

ZEL_IMPLEMENT_CREATABLE(C3DMaterial, CXObject)

C3DMaterial::Map C3DMaterial::*const C3DMaterial::MAPS[5] = {&C3DMaterial::m_ambientMap, &C3DMaterial::m_diffuseMap,
                                                             &C3DMaterial::m_specularMap, &C3DMaterial::m_transparencyMap,
                                                             &C3DMaterial::m_bumpMap};

C3DMaterial::C3DMaterial() : C3DMaterial(nullptr, CreateSceneID(ID_MATERIAL)) {}

C3DMaterial::C3DMaterial(CMaterials* owner, unsigned int id) : m_owner(owner), m_materialID(id) { NoteNews(MATERIAL_CHANGES); }

C3DMaterial::~C3DMaterial() = default;

C3DMaterial& C3DMaterial::operator=(const C3DMaterial& other)
{
    if (this == &other)
        return *this;
    if (m_owner)
        m_owner->HashRemove(this);
    C3DKeyframable::operator=(other);
    m_flags = other.m_flags & ~MATERIAL_CHANGES;
    m_name = other.m_name;
    m_customData = other.m_customData;
    m_vertexColorChannel = other.m_vertexColorChannel;
    CMaterials* const owner = std::exchange(m_owner, nullptr);    // the tables hear of it once, below
    for (const auto map : MAPS) {
        if (!(other.*map))
            (this->*map).reset();
        else {
            if (!(this->*map))
                AdoptMap(this->*map, new CMaterialMap);
            *(this->*map) = *(other.*map);
        }
    }
    m_owner = owner;
    if (m_owner)
        m_owner->HashInsert(this);
    NoteNews(MATERIAL_COLOR_CHANGED | MATERIAL_TEXTURE_CHANGED);
    return *this;
}

bool C3DMaterial::HasSameParameters(const C3DMaterial& other) const
{
    if (m_vertexColorChannel != other.m_vertexColorChannel)
        return false;
    for (const auto map : MAPS) {
        const CMaterialMap *const a = (this->*map).get(), *const b = (other.*map).get();
        if (!a != !b || (a && !(*a == *b)))
            return false;
    }
    return C3DKeyframable::operator==(other);
}

bool C3DMaterial::operator==(const C3DMaterial& other) const { return m_name == other.m_name && HasSameParameters(other); }

void C3DMaterial::SetName(const CXTString<wchar_t>& name)
{
    if (m_owner && m_name == name)
        return;
    if (m_owner)
        m_owner->HashRemove(this);
    m_name = name;
    if (m_owner)
        m_owner->HashInsert(this);
}

// ---- Flags and news

void C3DMaterial::SetFlags(unsigned int flags, bool set)
{
    const unsigned int former = m_flags;
    m_flags = set ? m_flags | flags : m_flags & ~flags;
    if (set)
        NoteNews(flags);
    if ((m_flags ^ former) & MATERIAL_PLAIN_TEXTURE)
        NoteNews(MATERIAL_PARAMETER_CHANGED);
}

void C3DMaterial::NoteNews(unsigned int flags)
{
    constexpr unsigned int LOOK = MATERIAL_COLOR_CHANGED | MATERIAL_PARAMETER_CHANGED;
    if (!(flags & (LOOK | MATERIAL_TEXTURE_CHANGED | MATERIAL_IMAGES_CHANGED)))
        return;
    const std::uint64_t revision = CreateRevision();
    if (flags & LOOK)
        m_revisions.look = revision;
    if (flags & MATERIAL_TEXTURE_CHANGED)
        m_revisions.texture = revision;
    if (flags & MATERIAL_IMAGES_CHANGED)
        m_revisions.images = revision;
    if (m_owner)
        NoteSceneChange();
}

// ---- Maps

C3DMaterial::Map C3DMaterial::*C3DMaterial::MapOf(MapType type)
{
    switch (type) {
    case MAP_DIFFUSE: return &C3DMaterial::m_diffuseMap;
    case MAP_AMBIENT: return &C3DMaterial::m_ambientMap;
    case MAP_SPECULAR: return &C3DMaterial::m_specularMap;
    case MAP_TRANSPARENCY: return &C3DMaterial::m_transparencyMap;
    case MAP_BUMP: return &C3DMaterial::m_bumpMap;
    }
    return nullptr;
}

CMaterialMap* C3DMaterial::GetMaterialMap(MapType type) const
{
    const auto place = MapOf(type);
    return place ? (this->*place).get() : nullptr;
}

CMaterialMap* C3DMaterial::AddMaterialMap(const CXTString<wchar_t>& fileName, unsigned int channelID, MapType type,
                                          MapProjection projection)
{
    const auto place = MapOf(type);
    if (!place || fileName.IsEmpty())
        return nullptr;
    if (!(this->*place)) {
        AdoptMap(this->*place, CMaterialMap::Create(fileName, channelID, type, projection));
        ContentMayChange();
    }
    return (this->*place).get();
}

void C3DMaterial::AdoptMap(Map& place, CMaterialMap* map)
{
    place.reset(map);
    map->m_material = this;
}

/// Equal for keys with equal values. Materials mostly have colours and factors; others count by their class alone.
static std::uint64_t GetValueHash(const C3DKeyframe& key)
{
    if (const auto* const color = dynamic_cast<const C3DTypeKey<CRGBColor>*>(&key))
        return color->value.red | color->value.green << 8 | color->value.blue << 16;
    if (const auto* const factor = dynamic_cast<const C3DTypeKey<float>*>(&key))
        return std::bit_cast<unsigned int>(factor->value + 0.0f);    // both zeros are equal
    return 0;
}

unsigned int C3DMaterial::GetContentHash() const
{
    unsigned int files = 0;
    for (const auto place : MAPS) {
        constexpr unsigned int ODD = 0x9E3779B1;
        const CMaterialMap* const map = (this->*place).get();
        files = files * ODD + (map ? map->GetFileName().GetHash() + 3 * map->GetAlphaFileName().GetHash() : 1);
    }
    std::uint64_t keys = 0;    // a sum: those of one time stand in any order
    for (const _KeyframeInfo& info : GetKeyPlaces())
        keys += HashMix64(HashMix64(info.key->GetClassID() + static_cast<unsigned int>(info.time)) + GetValueHash(*info.key));
    return files ^ static_cast<unsigned int>(keys >> 32);
}

void C3DMaterial::ContentMayChange() const
{
    if (m_owner && !m_mayBeChanged)
        m_owner->ContentMayChange(*this);
}

void C3DMaterial::ChangeChannelID(const CChannelMap& map)
{
    if (const CChannelInfo* const info = map.Find(CChannelInfo(m_vertexColorChannel, CHANNEL_VC)))
        m_vertexColorChannel = info->GetChannelID();
    NoteNews(MATERIAL_PARAMETER_CHANGED);
    for (const auto place : MAPS)
        if (CMaterialMap* const owned = (this->*place).get())
            owned->ChangeChannelID(map);
}

// ---- Stream

void C3DMaterial::Serialize(CXArchive& ar)
{
    if (ar.IsLoading() && m_owner) {
        // The tables know this one under its id, and a stream that breaks off must not reach them.
        C3DMaterial read(nullptr, m_materialID);
        read.Serialize(ar);
        const unsigned int news = read.m_flags & MATERIAL_CHANGES;
        *this = read;
        SetFlags(news, true);
        return;
    }

    C3DKeyframable::Serialize(ar);
    Move(ar, m_flags);
    if (ar.IsStoring())
        m_flags &= ~MATERIAL_CHANGES;
    Move(ar, m_name);
    for (const auto place : MAPS) {
        Map& map = this->*place;
        int hasMap = map != nullptr;
        Move(ar, hasMap);
        if (!hasMap)
            map.reset();
        else {
            if (!map)
                AdoptMap(map, new CMaterialMap);
            map->Serialize(ar);
        }
    }
    Move(ar, m_vertexColorChannel);
    Move(ar, m_materialID);
    m_customData.Serialize(ar);
    if (ar.IsLoading()) {
        if (m_materialID == 0xFFFFFFFF)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        AdvanceSceneID(ID_MATERIAL, m_materialID);
        NoteNews(MATERIAL_CHANGES);
    }
}

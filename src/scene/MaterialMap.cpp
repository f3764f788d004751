#include "scene/MaterialMap.h"

#include "channels/Channel.h"
#include "scene/Material.h"
#include "tools/Archive.h"
#include "tools/FilePath.h"

ZEL_IMPLEMENT_CREATABLE(CMaterialMap, CXObject)

CMaterialMap::CMaterialMap() = default;

CMaterialMap::~CMaterialMap() = default;

CMaterialMap* CMaterialMap::Create(const CXTString<wchar_t>& fileName, unsigned int channelID, MapType type, MapProjection projection)
{
    constexpr unsigned int UNNAMED_TEXT = 9422;
    auto* const map = new CMaterialMap;
    if (fileName.IsEmpty())
        map->m_fileName.LoadStringW(UNNAMED_TEXT);
    else
        map->m_fileName = fileName;
    map->m_channelID = channelID;
    map->m_type = type;
    map->m_projection = projection;
    return map;
}

CMaterialMap& CMaterialMap::operator=(const CMaterialMap& other)
{
    if (this == &other)
        return *this;
    C3DKeyframable::operator=(other);
    m_fileName = other.m_fileName;
    m_alphaFileName = other.m_alphaFileName;
    m_customData = other.m_customData;
    m_channelID = other.m_channelID;
    m_type = other.m_type;
    m_projection = other.m_projection;
    m_axis = other.m_axis;
    m_flags = other.m_flags;
    DropBitmap();
    if (other.m_loadState == LOADING)
        m_loadState = LOADING;
    FilesChanged();
    return *this;
}

bool CMaterialMap::operator==(const CMaterialMap& other) const
{
    return m_type == other.m_type && m_axis == other.m_axis && m_projection == other.m_projection && m_channelID == other.m_channelID &&
           m_flags == other.m_flags && m_fileName == other.m_fileName && m_alphaFileName == other.m_alphaFileName &&
           C3DKeyframable::operator==(other);
}

void CMaterialMap::Serialize(CXArchive& ar)
{
    C3DKeyframable::Serialize(ar);
    Move(ar, m_fileName);
    Move(ar, m_alphaFileName);
    Move(ar, m_type);
    Move(ar, m_projection);
    Move(ar, m_axis);
    Move(ar, m_channelID);
    Move(ar, m_flags);
    m_customData.Serialize(ar);
    if (ar.IsLoading()) {
        RestoreSwap();
        DropBitmap();
        FilesChanged();
    }
}

// ---- File names

void CMaterialMap::SetFileName(const CXTString<wchar_t>& name, const CXTString<wchar_t>& baseDir)
{
    ChangeFileName(m_fileName, name, baseDir);
}

void CMaterialMap::SetAlphaFileName(const CXTString<wchar_t>& name, const CXTString<wchar_t>& baseDir)
{
    ChangeFileName(m_alphaFileName, name, baseDir);
}

bool CMaterialMap::ChangeFileName(CXTString<wchar_t>& member, const CXTString<wchar_t>& name, const CXTString<wchar_t>& baseDir)
{
    const CXTString<wchar_t> changed = fileIsDirectory(baseDir) ? fileMakeRelativePath(baseDir, name) : name;
    if (changed == member)
        return false;
    member = changed;
    DropBitmap();
    FilesChanged();
    return true;
}

void CMaterialMap::DropBitmap()
{
    m_bitmap.reset();
    m_loadState = NOT_TRIED;
}

void CMaterialMap::FilesChanged()
{
    if (m_material)
        m_material->ContentMayChange();
}

// ---- Channel

void CMaterialMap::ChangeChannelID(const CChannelMap& map)
{
    if (const CChannelInfo* const info = map.Find(CChannelInfo(m_channelID, CHANNEL_UVW)))
        m_channelID = info->GetChannelID();
}

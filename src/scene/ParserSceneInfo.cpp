#include "scene/ParserSceneInfo.h"

#include <cstdint>

#include "tools/Archive.h"

static CParserSceneInfo::Release s_release = nullptr;

CParserSceneInfo::CParserSceneInfo(void* data, unsigned int size, bool owner) : m_owner(owner), m_data(data), m_size(size) {}

CParserSceneInfo::~CParserSceneInfo() = default;

void CParserSceneInfo::Serialize(CXArchive& ar)
{
    std::int64_t handle = 0;    // the place of a handle, which means nothing to another process
    Move(ar, handle);
    Move(ar, m_size);
    Move(ar, m_owner);
}

void CParserSceneInfo::ReleaseInfo(CParserSceneInfo* info)
{
    if (!info)
        return;
    const bool owner = info->m_owner;
    const unsigned int size = info->m_size;
    void* data = info->m_data;
    if (info->Delete() && data && s_release)
        s_release(owner, size, data);
}

void CParserSceneInfo::SetRelease(Release release) { s_release = release; }

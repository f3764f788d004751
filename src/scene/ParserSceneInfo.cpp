#include "scene/ParserSceneInfo.h"

#include <cstdint>

#include "tools/Archive.h"

static CParserSceneInfo::Release s_release = nullptr;

CParserSceneInfo::CParserSceneInfo(void* data, unsigned int size, bool owner) : m_owner(owner), m_data(data), m_size(size) {}

CParserSceneInfo::~CParserSceneInfo() = default;

void CParserSceneInfo::Serialize(CXArchive& ar)
{
    // A handle means nothing to another process: only its low half is written, and nobody reads it.
    auto handle = static_cast<std::int64_t>(static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(m_data)));
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

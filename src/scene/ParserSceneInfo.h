#pragma once

#include "tools/Object.h"

class CXArchive;

/// What a parser wants kept with the scene that it made: its own record, given back to it when the last scene that shares the
/// info lets go.
class ZEL_API CParserSceneInfo : public CInstanciatedObject {
public:
    /// Gives data back to whoever made it. Supplied by the file front end.
    using Release = void (*)(bool owner, unsigned int size, void* data);

    CParserSceneInfo(void* data, unsigned int size, bool owner);
    CParserSceneInfo(const CParserSceneInfo&) = delete;
    CParserSceneInfo& operator=(const CParserSceneInfo&) = delete;

    /// A word that was the data once (0; read and dropped), size, owner flag.
    void Serialize(CXArchive& ar);

    void* GetData() const { return m_data; }
    unsigned int GetDataSize() const { return m_size; }
    bool IsOwner() const { return m_owner; }
    /// Forgets the data: whoever took it owns it.
    void Detach()
    {
        m_data = nullptr;
        m_size = 0;
    }

    /// Drops one reference. Data that lost its last info goes to the release function, if one is set.
    static void ReleaseInfo(CParserSceneInfo* info);
    /// Sets the function that gets back the data of every info; null for none. Process-wide.
    static void SetRelease(Release release);

protected:
    ~CParserSceneInfo() override;

private:
    bool m_owner;
    void* m_data;
    unsigned int m_size;
};

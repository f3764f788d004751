#pragma once

#include <cstdint>
#include <vector>

#include "channels/DependentChannels.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/SceneNode.h"

/// How far step `i` of `steps` has come, 0 to 1.
inline float PartOf(unsigned int i, unsigned int steps) { return static_cast<float>(i) / static_cast<float>(steps); }

/// A solid in the making: points and texture coordinates are given in order, exactly as many as announced.
class CPrimitiveBuilder {
public:
    /// `uvwPoints` 0: no texture channel.
    CPrimitiveBuilder(std::uint64_t points, int corners, std::uint64_t uvwPoints, unsigned int channelID) : m_object(new C3DObject)
    {
        m_object->Init(static_cast<int>(points), 0, corners, uvwPoints != 0, static_cast<int>(uvwPoints), channelID);
        m_point = m_object->GetPointList()->GetFirst();
        m_channel = static_cast<CUVWChannel*>(m_object->GetChannelByIndex(0, CHANNEL_UVW, false));
        if (m_channel)
            m_uvw = m_channel->GetUVWPointList()->GetFirst();
    }
    CPrimitiveBuilder(const CPrimitiveBuilder&) = delete;
    ~CPrimitiveBuilder() { DeleteMe(m_object); }

    /// Whether a list can hold that many elements. A number of steps must pass too, before it goes into products.
    static bool IsSize(std::uint64_t count) { return count - 1 < 0x7FFFFFFF; }

    void AddPoint(double x, double y, double z)
    {
        m_point->x = static_cast<float>(x);
        m_point->y = static_cast<float>(y);
        m_point->z = static_cast<float>(z);
        m_point++;
    }
    /// Ignored without channel.
    void AddUVW(float u, float v)
    {
        if (!m_uvw)
            return;
        m_uvw->u = u;
        m_uvw->v = v;
        m_uvw++;
    }
    /// Faces of the object and, with the same corners, of the channel. `fill(int* corners, unsigned int k)`.
    template <class FILL> void AddFaces(std::uint64_t count, int corners, FILL fill)
    {
        m_object->GetFaceList()->AppendFaces(static_cast<int>(count), corners, fill);
        if (m_channel)
            m_channel->GetUVWFaceList()->AppendFaces(static_cast<int>(count), corners, fill);
    }
    C3DFaceList& GetFaces() { return *m_object->GetFaceList(); }
    CUVWChannel* GetChannel() { return m_channel; }

    /// The node with the object, which goes over to the caller.
    C3DSceneNode* Finish(const wchar_t* name, unsigned int materialID)
    {
        C3DFaceList& faces = *m_object->GetFaceList();
        for (unsigned int i = 0; materialID && i < static_cast<unsigned int>(faces.GetSize()); i++)
            faces.SetFaceMaterial(i, materialID);
        m_object->FreeExtra();
        C3DSceneNode* node = C3DSceneNode::Create();
        node->SetName(name);
        node->SetObject(m_object, true);
        m_object = nullptr;
        return node;
    }

private:
    C3DObject* m_object;
    C3DTPoint<float>* m_point;
    CUVWChannel* m_channel;
    CUVWPoint* m_uvw = nullptr;
};

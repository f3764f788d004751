#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "channels/NormalFaceList.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/UVWFaceList.h"
#include "channels/UVWPointList.h"
#include "channels/VCChannel.h"
#include "channels/VCFaceList.h"
#include "channels/VCPointList.h"
#include "geometry/3DVectorList.h"
#include "io/SceneOptions.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Patch.h"
#include "scene/SceneBuilders.h"
#include "support/Consistent.h"
#include "support/Meshes.h"
#include "tools/FileNameSpec.h"
#include "tools/StringTable.h"

// Scenes as parsers and hosts make them.

inline C3DSceneNode* AddObject(C3DScene& scene, const wchar_t* name, C3DBaseObject* object, C3DSceneNode* parent = nullptr)
{
    C3DSceneNode* const node = AddNode(scene, parent, name, 0);
    node->SetObject(object, true);
    return node;
}

template <class OBJECT = C3DObject> OBJECT* MakeObject(Mesh mesh)
{
    return new OBJECT(std::exchange(mesh.points, nullptr), std::exchange(mesh.faces, nullptr), nullptr);
}

template <class OBJECT = C3DObject> C3DSceneNode* AddMesh(C3DScene& scene, const wchar_t* name, Mesh mesh, C3DSceneNode* parent = nullptr)
{
    return AddObject(scene, name, MakeObject<OBJECT>(std::move(mesh)), parent);
}

/// A channel of that class with `points` points; every face of the object gets those of `corners`, else the numbers of its corners.
template <class CHANNEL> CHANNEL* AddChannel(C3DGeomObject& object, int points, std::vector<std::vector<int>> corners = {})
{
    auto* const channel = new CHANNEL;
    if (corners.empty())
        corners = AllCorners(*object.GetFaceList());
    channel->GetPointList()->SetSize(points);
    AddFaces(*channel->GetFaceList(), corners);
    for (std::size_t i = 0; i < corners.size(); i++)
        if (corners[i].empty())
            channel->GetFaceList()->SetFaceFlags(static_cast<unsigned int>(i), FACE_EMPTY, true);
    object.AddChannel(channel);
    return channel;
}

/// Lines of the log, each behind its level; '!' marks an information that tells of a loss.
inline std::vector<std::wstring> Lines(const CIoOptions& options)
{
    std::vector<std::wstring> lines;
    for (const IoLogInfo& line : options.GetLog())
        lines.push_back(std::to_wstring(line.level) + (line.loss ? L"! " : L" ") + line.text.Str());
    return lines;
}
using TextLines = std::vector<std::wstring>;

/// Texts in English as long as it lives.
struct InEnglish {
    InEnglish() { SetLanguage(LANGUAGE_ENGLISH); }
};

#pragma once

#include <map>
#include <string>
#include <vector>

#include <3dzel.h>

#include "Formats.h"

struct aiNode;
struct aiScene;

/// The cameras and lights of a file, which belong to nodes by name.
///
/// Fields of view are horizontal and in radians, as the camera's gizmo takes them; angles of spots are those of the whole cone. An area light
/// is an omni light; ambient light has no object and is left out.
class CameraLightImport {
public:
    /// An object, and where it is in its node: there, objects look and shine along +y.
    struct Item {
        C3DBaseObject* object;    ///< owned by whoever takes it
        C4x4TMatrix<float> place;
        CXTString<wchar_t> name;
    };

    CameraLightImport(const aiScene& source, const FormatTraits& traits, CSceneImportOptions& options);
    ~CameraLightImport();
    CameraLightImport(const CameraLightImport&) = delete;
    CameraLightImport& operator=(const CameraLightImport&) = delete;

    bool Has(const aiNode& node) const;
    /// What belongs to the node; the first node of a name takes it.
    std::vector<Item> Take(const aiNode& node);
    /// What no node has taken.
    std::vector<Item> TakeRest();

private:
    std::multimap<std::string, Item> m_items;
    bool m_placedTwice;
};

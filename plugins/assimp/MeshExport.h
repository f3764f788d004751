#pragma once

#include <memory>
#include <vector>

#include <3dzel.h>

#include "ExportFormats.h"
#include "LossLog.h"
#include "MaterialExport.h"
#include "ObjectCorners.h"

class BoneExport;
struct aiMesh;

/// The channels of an object that a format takes, read into layers.
struct ObjectLayers {
    std::vector<CornerLayer> normals;    ///< none or one
    std::vector<CornerLayer> coordinates;
    std::vector<CornerLayer> colors;    ///< the object's own set first
};

/// Reads what the format takes; of the rest, what is lost is counted.
ObjectLayers ReadLayers(C3DGeomObject& object, ObjectCorners& corners, const ExportFormat& format, LossLog& losses);

/// The layers that the faces of one material get as their first, second ... set of coordinates: those that its maps name, then the others, as
/// many as the format takes. Null in front of a set that the faces lack.
std::vector<const CornerLayer*> ChooseCoordinates(const ObjectLayers& layers, const C3DGeomObject& object,
                                                  const std::vector<unsigned int>& mapChannels, const ExportFormat& format);

/// Meshes of objects, as the library wants them: one for each material, faces over vertices that have one value of everything.
class MeshExport {
public:
    MeshExport(const C3DScene& scene, const ExportFormat& format, MaterialExport& materials, LossLog& losses)
        : m_scene(scene), m_format(format), m_materials(materials), m_losses(losses)
    {
    }

    /// The meshes of a polygon object, a curve or an object of points; none when the format takes nothing of it.
    std::vector<std::unique_ptr<aiMesh>> Export(C3DGeomObject& object, const C3DSceneNode& node);

private:
    std::unique_ptr<aiMesh> ExportPart(const ObjectCorners& corners, const ObjectCorners::Part& part, const ObjectLayers& layers,
                                       const C3DGeomObject& object, const BoneExport& bones);
    std::unique_ptr<aiMesh> ExportCurve(const C3DCurve& curve);
    std::unique_ptr<aiMesh> ExportPoints(const C3DGeomObject& object);

    const C3DScene& m_scene;
    const ExportFormat& m_format;
    MaterialExport& m_materials;
    LossLog& m_losses;
};

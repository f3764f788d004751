// PLY: the import library's writer splits every corner of a face from those of its neighbours.

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "Convert.h"
#include "MaterialExport.h"
#include "MeshExport.h"
#include "VertexSplit.h"
#include "WorldObjects.h"
#include "Writers.h"

namespace {

/// An object that waits for the head of the file, which counts all of them.
struct Mesh {
    std::shared_ptr<C3DGeomObject> object;    // whose points are referred to
    ObjectCorners corners;
    ObjectLayers layers;
    BlockVector<unsigned int> vertices;          // of each corner
    BlockVector<unsigned int> cornerOfVertex;    // none in an object of points
    const CornerLayer* coordinates = nullptr;

    explicit Mesh(const std::shared_ptr<C3DGeomObject>& shared) : object(shared), corners(*shared) {}
    bool IsCloud() const { return corners.GetFaceCount() == 0; }
    const CornerLayer* GetNormals() const { return layers.normals.empty() ? nullptr : &layers.normals.front(); }
    const CornerLayer* GetColors() const { return layers.colors.empty() ? nullptr : &layers.colors.front(); }
    std::size_t GetVertexCount() const { return IsCloud() ? corners.GetPointCount() : cornerOfVertex.size(); }
    const C3DTPoint<float>& GetPoint(std::size_t vertex) const
    {
        return corners.GetPoint(IsCloud() ? static_cast<int>(vertex) : corners.GetCornerPoints()[cornerOfVertex[vertex]]);
    }
    /// The value at a vertex; null for none.
    const Position* Find(const CornerLayer* layer, std::size_t vertex) const
    {
        return layer && !IsCloud() && layer->HasValue(cornerOfVertex[vertex]) ? &layer->At(cornerOfVertex[vertex]) : nullptr;
    }
};

class PlyWriter {
public:
    explicit PlyWriter(const WriterTask& task)
        : m_task(task), m_isText(std::string_view(task.format.form) == "text"), m_textures(task), m_materials(task, m_textures)
    {
    }

    void Run()
    {
        m_file = m_task.files.OpenMain();
        if (!m_file)
            return;
        ForWorldObjects(m_task.scene, [this](const C3DSceneNode&, const auto& object) { Take(object); });
        CountNodeLosses(m_task);
        WriteHead();
        for (const auto& mesh : m_meshes)
            WriteVertices(*mesh);
        std::size_t first = 0;
        for (const auto& mesh : m_meshes) {
            WriteFaces(*mesh, first);
            first += mesh->GetVertexCount();
        }
    }

private:
    void Take(const std::shared_ptr<C3DGeomObject>& shared)
    {
        C3DGeomObject& object = *shared;
        if (object.GetKindOf() == OBJECT_CURVE) {
            m_task.losses.Add(LOSS_CURVES);
            return;
        }
        auto mesh = std::make_unique<Mesh>(shared);
        m_task.losses.Add(LOSS_FACES, mesh->corners.GetRefusedCount());
        mesh->layers = ReadLayers(object, mesh->corners, m_task.format, m_task.losses);
        for (const ObjectCorners::Part& part : mesh->corners.GetParts())
            m_materials.GetIndex(part.material);
        if (const auto sets = ChooseCoordinates(mesh->layers, object, {}, m_task.format); !sets.empty())
            mesh->coordinates = sets.front();
        std::vector<const CornerLayer*> splitting;
        for (const CornerLayer* layer : {mesh->GetNormals(), mesh->coordinates, mesh->GetColors()})
            if (layer)
                splitting.push_back(layer);
        VertexSplit split(mesh->corners, splitting);
        split.Run(0, mesh->corners.GetCornerPoints().size());
        mesh->vertices = split.GetVertices();
        mesh->cornerOfVertex = split.GetCorners();
        m_meshes.push_back(std::move(mesh));
    }

    void WriteHead()
    {
        std::size_t vertexCount = 0, faceCount = 0;
        unsigned int largest = 0;
        for (const auto& mesh : m_meshes) {
            vertexCount += mesh->GetVertexCount();
            faceCount += mesh->corners.GetFaceCount();
            m_hasNormals |= mesh->GetNormals() != nullptr;
            m_hasCoordinates |= mesh->coordinates != nullptr;
            m_hasColors |= mesh->GetColors() != nullptr;
            for (const unsigned int size : mesh->corners.GetSizes())
                largest = std::max(largest, size);
        }
        m_hasLargeFaces = largest > 255;
        m_file->Write(m_isText ? "ply\nformat ascii 1.0\n" : "ply\nformat binary_little_endian 1.0\n");
        m_file->Write("comment 3dzel\nelement vertex ");
        m_file->WriteNumber(vertexCount);
        m_file->Write("\nproperty float x\nproperty float y\nproperty float z\n");
        if (m_hasNormals)
            m_file->Write("property float nx\nproperty float ny\nproperty float nz\n");
        if (m_hasCoordinates)
            m_file->Write("property float s\nproperty float t\n");
        if (m_hasColors)
            m_file->Write("property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n");
        if (faceCount > 0) {
            m_file->Write("element face ");
            m_file->WriteNumber(faceCount);
            m_file->Write(m_hasLargeFaces ? "\nproperty list uint int vertex_indices\n" : "\nproperty list uchar int vertex_indices\n");
        }
        m_file->Write("end_header\n");
    }

    void WriteVertices(const Mesh& mesh)
    {
        for (std::size_t i = 0; i < mesh.GetVertexCount(); i++) {
            const C3DTPoint<float>& point = mesh.GetPoint(i);
            WriteFloats({point.x, point.y, point.z});
            if (m_hasNormals) {
                const Position* normal = mesh.Find(mesh.GetNormals(), i);
                normal ? WriteFloats({normal->x, normal->y, normal->z}) : WriteFloats({0, 0, 0});
            }
            if (m_hasCoordinates) {
                const Position* place = mesh.Find(mesh.coordinates, i);
                place ? WriteFloats({place->x, place->y}) : WriteFloats({0, 0});
            }
            if (m_hasColors)
                WriteColor(mesh.Find(mesh.GetColors(), i));
            EndLine();
        }
    }

    void WriteFaces(const Mesh& mesh, std::size_t first)
    {
        const unsigned int* vertex = mesh.vertices.data();
        for (const unsigned int size : mesh.corners.GetSizes()) {
            if (m_isText)
                WriteWord(size);
            else if (m_hasLargeFaces)
                m_file->WriteValue(size);
            else
                m_file->WriteValue(static_cast<std::uint8_t>(size));
            for (unsigned int k = 0; k < size; k++) {
                const auto number = static_cast<std::uint32_t>(first + *vertex++);
                m_isText ? WriteWord(number) : m_file->WriteValue(number);
            }
            EndLine();
        }
    }

    void WriteFloats(std::initializer_list<float> values)
    {
        for (const float value : values)
            m_isText ? WriteWord(value) : m_file->WriteValue(value);
    }

    void WriteColor(const Position* packed)
    {
        const CRGBColor color = packed ? UnpackColor(*packed) : CRGBColor(255, 255, 255);
        for (int i = 0; i < 4; i++)
            m_isText ? WriteWord(static_cast<unsigned int>(color.ValPtr()[i])) : m_file->WriteValue(color.ValPtr()[i]);
    }

    template <class T> void WriteWord(T value)
    {
        if (!m_isLineStart)
            m_file->WriteCharacter(' ');
        m_file->WriteNumber(value);
        m_isLineStart = false;
    }

    void EndLine()
    {
        if (m_isText)
            m_file->WriteCharacter('\n');
        m_isLineStart = true;
    }

    const WriterTask& m_task;
    const bool m_isText;
    TextureExport m_textures;
    MaterialExport m_materials;    // counts them
    OutputFile* m_file = nullptr;
    std::vector<std::unique_ptr<Mesh>> m_meshes;
    bool m_hasNormals = false, m_hasCoordinates = false, m_hasColors = false, m_hasLargeFaces = false, m_isLineStart = true;
};

}

void WritePly(const WriterTask& task) { PlyWriter(task).Run(); }

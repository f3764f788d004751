// STL: the import library's writer triangulates, generates normals and copies the scene for each, at a hundred times the cost of the data.

#include <set>
#include <string_view>

#include "MaterialExport.h"
#include "MeshExport.h"
#include "WorldObjects.h"
#include "Writers.h"

namespace {

class StlWriter {
public:
    explicit StlWriter(const WriterTask& task) : m_task(task), m_isText(std::string_view(task.format.form) == "text") {}

    void Run()
    {
        OutputFile* file = m_task.files.OpenMain();
        if (!file)
            return;
        m_file = file;
        WriteHead();
        ForWorldObjects(m_task.scene, [this](const C3DSceneNode&, const auto& object) { WriteObject(*object); });
        WriteEnd();
        CountNodeLosses(m_task);
    }

private:
    static constexpr std::size_t HEAD_SIZE = 80;

    void WriteHead()
    {
        if (m_isText) {
            m_file->Write("solid 3dzel\n");
            return;
        }
        char head[HEAD_SIZE + sizeof m_count] = "3dzel";    // not "solid", which begins the text form. The count follows at the end
        m_file->Write(head, sizeof head);
    }

    void WriteEnd()
    {
        if (m_isText)
            m_file->Write("endsolid 3dzel\n");
        else if (m_file->SetPosition(HEAD_SIZE))
            m_file->WriteValue(m_count);
    }

    void WriteObject(C3DGeomObject& object)
    {
        ObjectCorners corners(object);
        ReadLayers(object, corners, m_task.format, m_task.losses);
        m_task.losses.Add(LOSS_FACES, corners.GetRefusedCount());
        if (corners.GetFaceCount() == 0)
            m_task.losses.Add(object.GetKindOf() == OBJECT_CURVE ? LOSS_CURVES : LOSS_POINTS);
        CountMaterials(corners);
        const int* corner = corners.GetCornerPoints().data();
        for (const unsigned int size : corners.GetSizes()) {
            for (unsigned int k = 2; k < size; k++)    // the export preparation has left triangles
                WriteTriangle(corners.GetPoint(corner[0]), corners.GetPoint(corner[k - 1]), corners.GetPoint(corner[k]));
            corner += size;
        }
    }

    void CountMaterials(const ObjectCorners& corners)
    {
        for (const ObjectCorners::Part& part : corners.GetParts())
            if (FindOwnMaterial(m_task.scene, part.material) && m_materials.insert(part.material).second)
                m_task.losses.Add(LOSS_MATERIALS);
    }

    void WriteTriangle(const C3DTPoint<float>& a, const C3DTPoint<float>& b, const C3DTPoint<float>& c)
    {
        C3DTVector<double> normal = Cross(C3DTVector<double>(b - a), C3DTVector<double>(c - a));
        normal.Normalize();
        m_count++;
        if (m_isText) {
            WriteLine("facet normal ", C3DTVector<float>(normal));
            m_file->Write("outer loop\n");
            for (const C3DTPoint<float>* point : {&a, &b, &c})
                WriteLine("vertex ", *point);
            m_file->Write("endloop\nendfacet\n");
            return;
        }
        struct {
            float values[12];
        } const record = {{static_cast<float>(normal.x), static_cast<float>(normal.y), static_cast<float>(normal.z), a.x, a.y, a.z, b.x,
                           b.y, b.z, c.x, c.y, c.z}};
        m_file->WriteValue(record);
        m_file->WriteValue(std::uint16_t{0});
    }

    void WriteLine(std::string_view word, const C3DTCoordinates<float>& values)
    {
        m_file->Write(word);
        for (int i = 0; i < 3; i++) {
            m_file->WriteNumber(values[i]);
            m_file->WriteCharacter(i < 2 ? ' ' : '\n');
        }
    }

    const WriterTask& m_task;
    const bool m_isText;
    OutputFile* m_file = nullptr;
    std::uint32_t m_count = 0;
    std::set<unsigned int> m_materials;
};

}

void WriteStl(const WriterTask& task) { StlWriter(task).Run(); }

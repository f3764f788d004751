// OBJ: the import library's writer splits points, is ten times slower than its data, and writes no colours with materials.

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <assimp/material.h>

#include "Convert.h"
#include "MaterialExport.h"
#include "MeshExport.h"
#include "VertexSplit.h"
#include "WorldObjects.h"
#include "Writers.h"

namespace {

class ObjWriter {
public:
    explicit ObjWriter(const WriterTask& task) : m_task(task), m_textures(task), m_materials(task, m_textures) {}

    void Run()
    {
        m_file = m_task.files.OpenMain();
        if (!m_file)
            return;
        const CXTString<wchar_t> library = fileStripExtension(m_task.target) + L".mtl";
        const bool hasMaterials = m_task.format.Can(CAN_MATERIALS) && HasMaterials();
        m_file->Write("# 3dzel\n");
        if (hasMaterials)
            m_file->Write("mtllib " + WideToUtf8(fileStripPath(library)) + "\n");
        ForWorldObjects(m_task.scene, [this](const C3DSceneNode& node, const auto& object) { WriteObject(node, *object); });
        CountNodeLosses(m_task);
        if (hasMaterials)
            WriteLibrary(library);
    }

private:
    bool HasMaterials() const;
    void WriteObject(const C3DSceneNode& node, C3DGeomObject& object);
    void WriteMesh(C3DGeomObject& object, ObjectCorners& corners);
    void WriteCurve(const C3DCurve& curve);
    void WriteCloud(const C3DGeomObject& object);
    void WritePoints(const C3DPointList& points);
    std::size_t WritePoints(const ObjectCorners& corners, const CornerLayer* colors, BlockVector<unsigned int>& pointOfCorner);
    void WriteFaces(const ObjectCorners& corners, const ObjectCorners::Part& part, const BlockVector<unsigned int>& pointOfCorner,
                    const CornerLayer* coordinates, std::size_t firstCoordinate, const CornerLayer* normals);
    void WriteMaterial(unsigned int id);
    void WriteLibrary(const CXTString<wchar_t>& path);
    void WriteLine(std::string_view word, std::initializer_list<float> values);

    const WriterTask& m_task;
    TextureExport m_textures;
    MaterialExport m_materials;
    OutputFile* m_file = nullptr;
    std::size_t m_points = 0, m_coordinates = 0, m_normals = 0;    // written so far
    std::string m_material;                                        // in force
};

// Faces without a material name the default one only where others stand: no name would be that of the faces before.
bool ObjWriter::HasMaterials() const
{
    C3DFaceList::MaterialsMap used;
    m_task.scene.GetMaterials(nullptr, used, true);
    for (unsigned int pos = used.GetFirst(); pos != HASH_END;)
        if (FindOwnMaterial(m_task.scene, used.GetNext(pos).first))
            return true;
    return false;
}

void ObjWriter::WriteObject(const C3DSceneNode& node, C3DGeomObject& object)
{
    m_file->Write("o " + WideToUtf8(node.GetName()) + "\n");
    if (const auto* curve = dynamic_cast<const C3DCurve*>(&object)) {
        WriteCurve(*curve);
        return;
    }
    ObjectCorners corners(object);
    m_task.losses.Add(LOSS_FACES, corners.GetRefusedCount());
    corners.GetFaceCount() > 0 ? WriteMesh(object, corners) : WriteCloud(object);
}

void ObjWriter::WriteMesh(C3DGeomObject& object, ObjectCorners& corners)
{
    const ObjectLayers layers = ReadLayers(object, corners, m_task.format, m_task.losses);
    BlockVector<unsigned int> pointOfCorner;
    const std::size_t pointCount = WritePoints(corners, layers.colors.empty() ? nullptr : &layers.colors.front(), pointOfCorner);

    std::map<const CornerLayer*, std::size_t> firstCoordinate;    // each set of coordinates once, whatever materials use it
    std::vector<const CornerLayer*> coordinatesOf;
    for (const ObjectCorners::Part& part : corners.GetParts()) {
        const auto sets = ChooseCoordinates(layers, object, m_materials.GetMapChannels(part.material), m_task.format);
        const CornerLayer* set = sets.empty() ? nullptr : sets.front();
        coordinatesOf.push_back(set);
        if (!set || !firstCoordinate.try_emplace(set, m_coordinates).second)
            continue;
        for (const Position& value : set->values)
            value.z == 0 ? WriteLine("vt", {value.x, value.y}) : WriteLine("vt", {value.x, value.y, value.z});
        m_coordinates += set->values.size();
    }
    const CornerLayer* normals = layers.normals.empty() ? nullptr : &layers.normals.front();
    if (normals)
        for (const Position& value : normals->values)
            WriteLine("vn", {value.x, value.y, value.z});

    for (std::size_t i = 0; i < corners.GetParts().size(); i++) {
        const CornerLayer* set = coordinatesOf[i];
        WriteMaterial(corners.GetParts()[i].material);
        WriteFaces(corners, corners.GetParts()[i], pointOfCorner, set, set ? firstCoordinate[set] : 0, normals);
    }
    m_points += pointCount;
    m_normals += normals ? normals->values.size() : 0;
}

// Points carry colours here, so that they are split where the colours of their corners differ.
std::size_t ObjWriter::WritePoints(const ObjectCorners& corners, const CornerLayer* colors, BlockVector<unsigned int>& pointOfCorner)
{
    if (!colors) {
        for (std::size_t i = 0; i < corners.GetPointCount(); i++) {
            const C3DTPoint<float>& point = corners.GetPoint(static_cast<int>(i));
            WriteLine("v", {point.x, point.y, point.z});
        }
        pointOfCorner.assign(corners.GetCornerPoints().begin(), corners.GetCornerPoints().end());
        return corners.GetPointCount();
    }
    VertexSplit split(corners, {colors});
    split.Run(0, corners.GetCornerPoints().size());
    for (const unsigned int corner : split.GetCorners()) {
        const C3DTPoint<float>& point = corners.GetPoint(corners.GetCornerPoints()[corner]);
        const CRGBColor color = colors->HasValue(corner) ? UnpackColor(colors->At(corner)) : CRGBColor(255, 255, 255);
        WriteLine("v", {point.x, point.y, point.z, color.red / 255.0f, color.green / 255.0f, color.blue / 255.0f});
    }
    pointOfCorner = split.GetVertices();
    return split.GetCorners().size();
}

void ObjWriter::WriteFaces(const ObjectCorners& corners, const ObjectCorners::Part& part, const BlockVector<unsigned int>& pointOfCorner,
                           const CornerLayer* coordinates, std::size_t firstCoordinate, const CornerLayer* normals)
{
    std::size_t corner = part.firstCorner;
    for (std::size_t i = part.firstFace; i < part.firstFace + part.faceCount; i++) {
        m_file->WriteCharacter('f');
        for (const std::size_t end = corner + corners.GetSizes()[i]; corner < end; corner++) {
            m_file->WriteCharacter(' ');
            m_file->WriteNumber(m_points + pointOfCorner[corner] + 1);
            const bool hasCoordinate = coordinates && coordinates->HasValue(corner);
            if (hasCoordinate || normals)
                m_file->WriteCharacter('/');
            if (hasCoordinate)
                m_file->WriteNumber(firstCoordinate + static_cast<std::size_t>(coordinates->corners[corner]) + 1);
            if (normals) {
                m_file->WriteCharacter('/');
                m_file->WriteNumber(m_normals + static_cast<std::size_t>(normals->corners[corner]) + 1);
            }
        }
        m_file->WriteCharacter('\n');
    }
}

void ObjWriter::WriteCurve(const C3DCurve& curve)
{
    WriteMaterial(curve.GetMaterialID());
    WritePoints(*curve.GetPointList());
    m_file->WriteCharacter('l');
    for (int i = 0; i < curve.GetPointNbr(); i++) {
        m_file->WriteCharacter(' ');
        m_file->WriteNumber(++m_points);
    }
    m_file->WriteCharacter('\n');
}

void ObjWriter::WriteCloud(const C3DGeomObject& object)
{
    if (object.GetPointNbr() == 0)
        return;
    WritePoints(*object.GetPointList());
    for (int i = 0; i < object.GetPointNbr(); i++) {
        m_file->Write("p ");
        m_file->WriteNumber(++m_points);
        m_file->WriteCharacter('\n');
    }
}

void ObjWriter::WritePoints(const C3DPointList& points)
{
    const C3DTPoint<float>* point = points.GetFirst();
    for (int i = 0; i < points.GetSize(); i++)
        WriteLine("v", {point[i].x, point[i].y, point[i].z});
}

void ObjWriter::WriteLine(std::string_view word, std::initializer_list<float> values)
{
    m_file->Write(word);
    for (const float value : values) {
        m_file->WriteCharacter(' ');
        m_file->WriteNumber(value);
    }
    m_file->WriteCharacter('\n');
}

// Materials

std::string NameOf(const aiMaterial& material)
{
    std::string name = material.GetName().C_Str();
    std::ranges::replace(name, ' ', '_');
    return name;
}

void ObjWriter::WriteMaterial(unsigned int id)
{
    const aiMaterial& material = m_materials.GetMaterial(id);
    std::string name = NameOf(material);
    if (!m_task.format.Can(CAN_MATERIALS) || name == m_material || (m_material.empty() && name == AI_DEFAULT_MATERIAL_NAME))
        return;
    m_file->Write("usemtl " + name + "\n");
    m_material = std::move(name);
}

class MaterialLines {
public:
    MaterialLines(const aiMaterial& material, OutputFile& file) : m_material(material), m_file(file) {}

    void Number(std::string_view word, const char* key, unsigned int type, unsigned int index) const
    {
        if (float value; m_material.Get(key, type, index, value) == AI_SUCCESS)
            Line(word, {value});
    }
    void Color(std::string_view word, const char* key, unsigned int type, unsigned int index) const
    {
        if (aiColor3D color; m_material.Get(key, type, index, color) == AI_SUCCESS)
            Line(word, {color.r, color.g, color.b});
    }
    void File(std::string_view word, aiTextureType type) const
    {
        aiString name;
        if (m_material.Get(AI_MATKEY_TEXTURE(type, 0), name) == AI_SUCCESS && name.length > 0) {
            m_file.Write(word);
            m_file.WriteCharacter(' ');
            m_file.Write(name.C_Str());
            m_file.WriteCharacter('\n');
        }
    }

private:
    void Line(std::string_view word, std::initializer_list<float> values) const
    {
        m_file.Write(word);
        for (const float value : values) {
            m_file.WriteCharacter(' ');
            m_file.WriteNumber(value);
        }
        m_file.WriteCharacter('\n');
    }

    const aiMaterial& m_material;
    OutputFile& m_file;
};

std::string BumpWord(const aiMaterial& material)
{
    float factor;
    if (material.Get(AI_MATKEY_BUMPSCALING, factor) != AI_SUCCESS || factor == 1)
        return "map_bump";
    char text[32];
    return "map_bump -bm " + std::string(text, std::to_chars(text, text + sizeof text, factor).ptr);
}

void ObjWriter::WriteLibrary(const CXTString<wchar_t>& path)
{
    OutputFile* file = m_task.files.Open(path);
    if (!file)
        return;
    file->Write("# 3dzel\n");
    for (const std::unique_ptr<aiMaterial>& material : m_materials.TakeMaterials()) {
        file->Write("newmtl " + NameOf(*material) + "\n");
        const MaterialLines lines(*material, *file);
        lines.Color("Ka", AI_MATKEY_COLOR_AMBIENT);
        lines.Color("Kd", AI_MATKEY_COLOR_DIFFUSE);
        lines.Color("Ks", AI_MATKEY_COLOR_SPECULAR);
        lines.Color("Ke", AI_MATKEY_COLOR_EMISSIVE);
        lines.Number("Ns", AI_MATKEY_SHININESS);
        lines.Number("Ni", AI_MATKEY_REFRACTI);
        lines.Number("d", AI_MATKEY_OPACITY);
        lines.Number("Pm", AI_MATKEY_METALLIC_FACTOR);
        lines.Number("Pr", AI_MATKEY_ROUGHNESS_FACTOR);
        file->Write("illum 2\n");
        lines.File("map_Ka", aiTextureType_AMBIENT);
        lines.File("map_Kd", aiTextureType_DIFFUSE);
        lines.File("map_Ks", aiTextureType_SPECULAR);
        lines.File("map_Ke", aiTextureType_EMISSIVE);
        lines.File("map_d", aiTextureType_OPACITY);
        lines.File(BumpWord(*material), aiTextureType_HEIGHT);
        lines.File("norm", aiTextureType_NORMALS);
        lines.File("map_Pm", aiTextureType_METALNESS);
        lines.File("map_Pr", aiTextureType_DIFFUSE_ROUGHNESS);
    }
}

}

void WriteObj(const WriterTask& task) { ObjWriter(task).Run(); }

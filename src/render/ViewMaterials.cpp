// Materials, as they go into the call list under way.
//
//   faces     InitMaterial, or InitTexture (ViewTextures.cpp): once for a run of faces of one material
//   corners   InitPointMaterial: the first corner of a run sets the user material, the others send what differs from the corner before
//   wires     InitDiffuseColor: a plain colour, without light
//   news      MaterialChanged, or FlushChangedMaterials for views that nobody told: what a material's revisions tell of changes

#include <GL/gl.h>

#include <algorithm>

#include "channels/VCPointList.h"
#include "render/GLColor.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"

namespace {

constexpr unsigned int UNKNOWN_TEXTURE = NO_MATERIAL - 1;    // neither a material's nor none

void SetMaterialColor(GLenum which, const CRGBColor& color) { glMaterialfv(GL_FRONT_AND_BACK, which, GetDrawnColor(color).data()); }

float GetShininess(float specularFactor)
{
    constexpr float DULLEST = 0.2f, SHINIEST = 0.7f, GL_RANGE = 128;
    return std::clamp(specularFactor, DULLEST, SHINIEST) * GL_RANGE;
}

/// A change of image files (MATERIAL_IMAGES_CHANGED): has the first image that is not in memory read again; false when all are.
bool ReloadImage(const C3DMaterial& material)
{
    for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP; type++) {
        CMaterialMap* const map = material.GetMaterialMap(static_cast<MapType>(type));
        if (map && !map->HasBitmap()) {
            map->SetFlag(MAP_RELOAD, true);
            return true;
        }
    }
    return false;
}

}

void C3DView::InitMaterial(C3DMaterial* material, int force)
{
    if (!material || (!force && GetKey(*material) == m_currentMaterial))
        return;
    const unsigned int tick = GetTick();
    SetMaterialColor(GL_AMBIENT, material->GetAmbientColor(tick, true));
    SetMaterialColor(GL_DIFFUSE, material->GetDiffuseColor(tick, true));
    SetMaterialColor(GL_SPECULAR, material->GetSpecularColor(tick, true));
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, GetShininess(material->GetSpecularFactor(tick)));
    constexpr GLColor NO_GLOW{0, 0, 0, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, NO_GLOW.data());
    m_currentMaterial = GetKey(*material);
    m_corners.material = NO_MATERIAL;
}

C3DView::MaterialKey C3DView::GetKey(const C3DMaterial& material) const
{
    const MaterialKey id = material.GetMaterialID();
    for (const C3DMaterial* const own : {&m_selectionMaterial, &m_cameraMaterial, &m_lightMaterial, &m_wireframeMaterial, &m_userMaterial})
        if (own == &material)
            return id | OWN_MATERIAL;
    return id;
}

void C3DView::InitMaterial() { InitMaterial(m_element.material, false); }

void C3DView::ReinitCurrentMaterial()
{
    m_currentMaterial = NO_MATERIAL;
    m_boundTexture = UNKNOWN_TEXTURE;
}

bool C3DView::IsMaterialCurrent()
{
    const MaterialKey key = GetKey(*m_element.material);
    const bool isSet = m_currentMaterial == key || (m_element.vcInUse && AreCornersOf(key));
    return isSet && m_boundTexture == GetWantedTexture();
}

void C3DView::InitDiffuseColor(C3DMaterial& material)
{
    if (GetKey(material) == m_currentMaterial)
        return;
    m_currentMaterial = GetKey(material);
    glColor4fv(GetDrawnColor(material.GetDiffuseColor(GetTick(), true)).data());
}

void C3DView::InitDiffuseColor(unsigned int materialID)
{
    C3DMaterial* const material = m_scene ? m_scene->GetMaterialByID(materialID) : nullptr;
    if (material)
        InitDiffuseColor(*material);
}

// Corners

void C3DView::InitPointMaterial()
{
    enum Answer { AS_IT_IS, DONE, SELECTION, POINT_COLOR };
    C3DMaterial* material = m_element.material;
    const int answer = m_pointMaterialCallback ? m_pointMaterialCallback(&m_element) : AS_IT_IS;
    if (answer == DONE)
        return;
    if (answer == SELECTION)
        material = &m_selectionMaterial;
    if (answer == POINT_COLOR)
        SetCornerColor(m_element.pointColor);
    else if (answer == AS_IT_IS && m_element.vcInUse && material)
        MixVertexColor(*material);
    else
        InitMaterial(material, false);
}

/// What all corners of a material have in common.
void C3DView::InitCornerMaterial(const C3DMaterial& material)
{
    const unsigned int tick = GetTick();
    m_userMaterial.SetAmbientColor(0, material.GetAmbientColor(tick, true));
    m_userMaterial.SetSpecularFactor(0, material.GetSpecularFactor(tick));
    InitMaterial(&m_userMaterial, true);
    m_corners.material = GetKey(material);
    m_corners.diffuse = material.GetDiffuseColor(tick, true);
}

CRGBColor C3DView::GetMixedColor(const CRGBColor& color) const
{
    const double part = m_element.vcFactor * color.alpha / 255.0;
    return m_corners.diffuse * (1 - part) + color * part;
}

CRGBColor C3DView::GetCornerColor(int corner) const
{
    const int point = corner < m_element.vcFace.GetSize() ? m_element.vcFace.GetAt(corner) : -1;
    if (point < 0 || !m_element.vcPointList || point >= m_element.vcPointList->GetSize())
        return {0, 0, 0, 0};
    return (*m_element.vcPointList)[point]->GetColor();
}

void C3DView::MixVertexColor(const C3DMaterial& material)
{
    const CRGBColor color = GetCornerColor(m_element.cornerNumber);
    if (!AreCornersOf(GetKey(material)))
        InitCornerMaterial(material);
    else if (color == m_corners.color && m_element.vcFactor == m_corners.factor)
        return;
    SetMaterialColor(GL_DIFFUSE, GetMixedColor(color));
    m_corners.color = color;
    m_corners.factor = m_element.vcFactor;
}

void C3DView::SetCornerColor(const CRGBColor& color)
{
    const MaterialKey user = GetKey(m_userMaterial);
    if (!AreCornersOf(user)) {
        InitMaterial(&m_userMaterial, true);
        m_corners.material = user;
    } else if (color == m_corners.color)
        return;
    SetMaterialColor(GL_AMBIENT, color);
    SetMaterialColor(GL_DIFFUSE, color);
    m_corners.color = color;
}

// News

bool C3DView::HasNews(const C3DMaterial& material) const
{
    const C3DMaterialRevisions* const known = m_knownNews.Find(material.GetMaterialID());
    return !known || *known != material.GetRevisions();
}

void C3DView::MaterialChanged(unsigned int materialID)
{
    C3DMaterial* const material = m_scene ? m_scene->GetMaterialByID(materialID) : nullptr;
    if (!material)
        return;
    CGLActivate activate(this);
    if (!TakeNews(*material))
        return;
    MaterialIDs changed;
    changed.Insert(materialID);
    FlushNodesOf(changed);
}

bool C3DView::TakeNews(C3DMaterial& material)
{
    const unsigned int id = material.GetMaterialID();
    const C3DMaterialRevisions now = material.GetRevisions(), known = m_knownNews[id];
    const bool hadTexture = HasTexture(id), hadAlpha = m_alphaMaterials.Find(static_cast<int>(id));

    // Once another view has cleared the flag, the images that it had read again are those in memory.
    const bool newTexture =
        known.images == now.images ? known.texture != now.texture : !material.IsFlagSet(MATERIAL_IMAGES_CHANGED) || ReloadImage(material);
    if (newTexture && m_texturesLoaded)
        InitMaterialMapping(id, true);

    // A texture that comes, goes or gets holes is a matter of the lists too.
    const bool newLists = known.look != now.look || hadTexture != HasTexture(id) || hadAlpha != m_alphaMaterials.Find(static_cast<int>(id));
    if (newLists) {
        RecompileMaterial(material);
        NoteTransparency(material);
    }
    if (newTexture || newLists)
        Invalidate();
    m_knownNews.SetAt(id, now);
    material.SetFlags(MATERIAL_CHANGES, false);
    return newLists;
}

void C3DView::NoteNewMaterials()
{
    std::vector<unsigned int> textured;
    for (unsigned int pos = m_scene->GetFirstMaterial(); pos != HASH_END;) {
        const C3DMaterial& material = *m_scene->GetNextMaterial(pos);
        const unsigned int id = material.GetMaterialID();
        if (m_knownNews.Find(id))
            continue;
        C3DMaterialRevisions& known = m_knownNews[id] = material.GetRevisions();
        known.look = 0;    // is still to be looked at
        if (m_texturesLoaded && material.GetDiffuseMaps() && !HasTexture(id))
            textured.push_back(id);
    }
    if (textured.empty())
        return;
    C3DFaceList::MaterialsMap used;
    m_scene->GetMaterials(nullptr, used, true);
    for (const unsigned int id : textured)
        if (used.Find(id))
            InitMaterialMapping(id, false);
}

void C3DView::FlushChangedMaterials()
{
    NoteNewMaterials();
    MaterialIDs changed;
    for (unsigned int pos = m_scene->GetFirstMaterial(); pos != HASH_END;) {
        C3DMaterial* const material = m_scene->GetNextMaterial(pos);
        if (HasNews(*material) && TakeNews(*material))
            changed.Insert(material->GetMaterialID());
    }
    if (!changed.IsEmpty())
        FlushNodesOf(changed);
}

void C3DView::NoteTransparency(const C3DMaterial& material)
{
    const int id = static_cast<int>(material.GetMaterialID());
    if (material.IsTransparent(GetTick()) || m_alphaMaterials.Find(id))
        m_transparentMaterials.Insert(id);
    else
        m_transparentMaterials.Remove(id);
}

void C3DView::FlushNodesOf(const MaterialIDs& materials)
{
    const auto isUsed = [&](C3DGeomObject& object) {
        if (const C3DFaceList::MaterialsMap* const used = object.GetMaterialsHashMap(true))
            for (const auto& use : *used)
                if (materials.Find(use.first))
                    return true;
        return false;
    };
    CHashTable<unsigned int> done;
    FlushNodes([&](C3DSceneNode* node) {
        // Without lists it is not drawn yet, and whoever has it drawn flushes it: in a flush of all, after the last material.
        C3DGeomObject* const object = node->GetGeomObject();
        if (object && IsCompiled(object) && isUsed(*object) && done.Insert(object->GetObjectID())) {
            RemoveNode(node);
            FlushNode(node);
        }
    });
}

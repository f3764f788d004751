// Textures: of each material the diffuse map, as a texture of the view's context under the material's id, for as long as textures are on.

#include <GL/gl.h>

#include <algorithm>

#include "render/GLColor.h"
#include "render/TexturePixels.h"
#include "render/View.h"
#include "render/ViewProfile.h"
#include "scene/3DScene.h"

namespace {

constexpr unsigned int NO_TEXTURE = 0xFFFFFFFF;
constexpr int LARGEST_SIDE = 1024;

/// The next of 4, 8 ... 1024, which is the last.
int GetTextureSide(int pixels)
{
    int side = 4;
    while (side < pixels && side < LARGEST_SIDE)
        side *= 2;
    return side;
}

/// The longest side that a texture may have; 0 when there are to be none.
int GetMaxSide(bool economy)
{
    int side = LARGEST_SIDE;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
    if (!economy)
        return side;
    const int limit = static_cast<int>(GetViewProfile(PROFILE_LOW_RES));
    return limit > 0 ? std::min(side, GetTextureSide(limit)) : 0;
}

}

int C3DView::IsTextureEnabled() const { return 1; }

// Loading

void C3DView::InitMapping()
{
    if (!m_scene || !IsTextureEnabled())
        return;
    if (!(m_settings.viewFlags & VIEWFLAG_TEXTURE)) {
        DestroyMapping(false);
        return;
    }
    if (m_texturesLoaded)
        return;
    DestroyMapping(true);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, m_settings.viewFlags & VIEWFLAG_PERSPECTIVE_HINT ? GL_NICEST : GL_FASTEST);
    C3DFaceList::MaterialsMap used;
    m_scene->GetMaterials(nullptr, used, true);
    for (const auto& entry : used) {
        InitMaterialMapping(entry.first, false);
        C3DMaterial* const material = m_scene->GetMaterialByID(entry.first);
        if (!material)
            continue;
        material->SetFlags(MATERIAL_TEXTURE_CHANGED | MATERIAL_IMAGES_CHANGED, false);    // what is read now is news no more
        if (C3DMaterialRevisions* const known = m_knownNews.Find(entry.first)) {
            known->texture = material->GetRevisions().texture;
            known->images = material->GetRevisions().images;
        }
    }
    m_texturesLoaded = true;
}

unsigned int C3DView::InitMaterialMapping(unsigned int materialID, bool replace)
{
    CHashID entry{materialID, GetGLContext(), CALLLIST_TEXTURE};
    entry.name = GetTextureName(materialID);
    if (entry.name && !replace)
        return entry.name;
    if (entry.name) {
        glDeleteTextures(1, &entry.name);
        m_callLists.Remove(entry);
    }
    m_alphaMaterials.Remove(static_cast<int>(materialID));

    C3DMaterial* const material = m_scene->GetMaterialByID(materialID);
    if (!material || !material->GetDiffuseMaps())
        return NO_TEXTURE;
    if (!entry.name)    // a name that was there is in call lists, and stays
        glGenTextures(1, &entry.name);
    if (!LoadTexture(material, MAP_DIFFUSE, entry.name)) {
        glDeleteTextures(1, &entry.name);
        return NO_TEXTURE;
    }
    m_callLists.Insert(entry);
    return entry.name;
}

int C3DView::LoadTexture(C3DMaterial* material, MapType type, unsigned int textureName)
{
    CMaterialMap* const map = type == MAP_DIFFUSE ? material->GetDiffuseMaps() : nullptr;
    const int maxSide = GetMaxSide((m_settings.viewFlags & VIEWFLAG_ECONOMY) != 0);
    if (!map || maxSide == 0)
        return 0;
    const Bitmap* const picture = map->GetBitmap(m_scene, {maxSide, maxSide});
    if (!picture || picture->GetType() == BITMAP_GREY || !picture->GetLine(0))
        return 0;

    const bool alpha = picture->GetType() == BITMAP_RGBA && GetViewProfile(PROFILE_ALPHA_CUT) != 0 && !map->IsFlagSet(MAP_NO_ALPHA_TEST);
    const int materialID = static_cast<int>(material->GetMaterialID());
    if (alpha)
        m_alphaMaterials.Insert(materialID);
    else
        m_alphaMaterials.Remove(materialID);

    glBindTexture(GL_TEXTURE_2D, textureName);
    UploadTexture(*picture,
                  {std::min(GetTextureSide(picture->GetWidth()), maxSide), std::min(GetTextureSide(picture->GetHeight()), maxSide)}, alpha);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    const int filter = m_settings.viewFlags & VIEWFLAG_SMOOTH_TEXTURES ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    return 1;
}

void C3DView::DestroyMapping(bool keepTextureState)
{
    if (!m_texturesLoaded)
        return;
    if (!keepTextureState) {
        glDisable(GL_TEXTURE_2D);
        glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST);
    }
    if (GetGLContext())
        DeleteGLLists(CALLLIST_TEXTURE, nullptr);
    m_alphaMaterials.RemoveAll();
    m_texturesLoaded = false;
}

// Use

unsigned int C3DView::GetTextureName(unsigned int materialID) const
{
    unsigned int place = m_callLists.GetPosition({materialID, GetGLContext(), CALLLIST_TEXTURE});
    return place == HASH_END ? 0 : m_callLists.GetNext(place).name;
}

unsigned int C3DView::GetWantedTexture()
{
    const unsigned int id = m_element.material->GetMaterialID();
    return (m_element.viewFlags & VIEWFLAG_TEXTURE) && m_element.uvwInUse && TextureExist() ? id : NO_MATERIAL;
}

int C3DView::TextureExist()
{
    const C3DMaterial* const material = m_element.material;
    return material && !IsOwn(*material) && HasTexture(material->GetMaterialID());
}

void C3DView::EnableTexture(int on)
{
    if (on)
        glEnable(GL_TEXTURE_2D);
    else
        glDisable(GL_TEXTURE_2D);
}

void C3DView::InitTexture()
{
    C3DMaterial* const material = m_element.material;
    if (!IsTextureEnabled() || !material || IsMaterialCurrent())
        return;
    EndPrimitive();
    m_boundTexture = GetWantedTexture();
    ApplyMaterial(*material, m_boundTexture != NO_MATERIAL ? GetTextureName(m_boundTexture) : 0);
    BeginPrimitive(m_primitive);
}

void C3DView::ApplyMaterial(C3DMaterial& material, unsigned int textureName)
{
    InitMaterial(&material, false);
    CRGBColor diffuse = material.GetDiffuseColor(GetTick(), true);
    if (textureName) {
        // The texture gives the colour: below it lies a white, or the material's hue at its brightest.
        if (material.IsFlagSet(MATERIAL_PLAIN_TEXTURE))
            diffuse = {255, 255, 255};
        else
            diffuse.SetLuminance(1);
        glBindTexture(GL_TEXTURE_2D, textureName);
        glPushAttrib(GL_TRANSFORM_BIT);
        glMatrixMode(GL_TEXTURE);
        glLoadIdentity();
        glPopAttrib();
    }
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, GetDrawnColor(diffuse).data());
    EnableTexture(textureName != 0);
}

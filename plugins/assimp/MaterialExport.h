#pragma once

#include <map>
#include <memory>
#include <set>
#include <vector>

#include <assimp/material.h>

#include <3dzel.h>

#include "TextureExport.h"
#include "Writers.h"

/// The materials of a scene as the library wants them, in the order in which they are asked for, as they are at time 0.
///
/// The default material, left as it is, stands for none.
class MaterialExport {
public:
    MaterialExport(const WriterTask& task, TextureExport& textures)
        : m_scene(task.scene), m_format(task.format), m_textures(textures), m_losses(task.losses)
    {
    }

    /// The library's index of a material; an unknown id is none.
    unsigned int GetIndex(unsigned int id);
    const aiMaterial& GetMaterial(unsigned int id) { return *m_materials[GetIndex(id)]; }
    /// Channels of texture coordinates that the maps of a material use, each once: the n-th is its n-th set. Ascending, so that sets keep their
    /// order; where the format has one set, that of the diffuse map alone.
    const std::vector<unsigned int>& GetMapChannels(unsigned int id);
    /// The faces of this material are seen from both sides; before GetIndex.
    void SetTwoSided(unsigned int id) { m_twoSided.insert(id); }

    /// One at least.
    std::vector<std::unique_ptr<aiMaterial>> TakeMaterials();

private:
    std::unique_ptr<aiMaterial> Build(unsigned int id, C3DMaterial* from);
    void SetColors(const C3DMaterial& from, aiMaterial& to) const;
    void SetExtras(const C3DMaterial& from, aiMaterial& to);
    void SetMap(unsigned int id, const CMaterialMap& map, aiMaterial& to);

    const C3DScene& m_scene;
    const ExportFormat& m_format;
    TextureExport& m_textures;
    LossLog& m_losses;
    std::set<unsigned int> m_twoSided;
    std::map<unsigned int, unsigned int> m_indexes;                     // by id
    std::map<unsigned int, std::vector<unsigned int>> m_mapChannels;    // by id
    std::vector<std::unique_ptr<aiMaterial>> m_materials;
};

/// The material of an id, null where there is none to speak of: no such material, or the default one as it comes.
C3DMaterial* FindOwnMaterial(const C3DScene& scene, unsigned int id);

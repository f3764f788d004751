#pragma once

#include "scene/Material.h"
#include "tools/Hash.h"

/// The materials of a scene, by id. Owns them.
class ZEL_API CMaterials : public CXObject {
    ZEL_DECLARE_CREATABLE(CMaterials)
public:
    CMaterials() = default;
    CMaterials(const CMaterials&) = delete;
    CMaterials& operator=(const CMaterials&) = delete;
    ~CMaterials() override;

    /// A new material under that id when it is free and not 0xFFFFFFFF, else under the next id of the process. Id 0 is the
    /// default material and is named so.
    C3DMaterial* CreateNewMaterial(unsigned int id);
    /// Null for none. Constant time.
    C3DMaterial* FindByID(unsigned int id) const;
    bool RemoveMaterial(unsigned int id);
    void RemoveAll();
    unsigned int GetCount() const { return m_byID.GetCount(); }
    /// Slot of the first material, 0xFFFFFFFF for none.
    unsigned int GetFirst() const { return m_byID.GetFirst(); }
    /// The material at `pos`, which moves on to the next slot or 0xFFFFFFFF. There is no order of ids.
    void GetNext(unsigned int& pos, unsigned int& id, C3DMaterial*& material) const;

private:
    CHashMap<unsigned int, C3DMaterial*> m_byID;
};

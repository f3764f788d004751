#pragma once

#include <vector>

#include "geometry/3DFaceList.h"
#include "scene/IdSet.h"
#include "scene/Material.h"
#include "scene/NameNumbers.h"
#include "tools/Hash.h"

/// The materials of a scene: found by id, by name and by diffuse colour at constant cost. Owns them.
///
/// Id 0 is the default material, made when it is first asked for.
class ZEL_API CMaterials : public CXObject {
    ZEL_DECLARE_CREATABLE(CMaterials)
public:
    CMaterials();
    CMaterials(const CMaterials&) = delete;
    CMaterials& operator=(const CMaterials&) = delete;
    ~CMaterials() override;
    void Serialize(CXArchive& ar) override;

    /// A new material under that id when it is free and not 0xFFFFFFFF, else under the next id of the process. Id 0 is the
    /// default material and is named so; where a name is taken, a number goes behind it.
    C3DMaterial* CreateNewMaterial(unsigned int id);
    /// Null for none; id 0 makes the default material.
    C3DMaterial* FindByID(unsigned int id);
    /// Null for none, also for id 0.
    C3DMaterial* FindByID(unsigned int id) const;
    C3DMaterial* FindByName(const CXTString<wchar_t>& name) const;
    /// A material with the same parameters, with `byName` of the same name too; null for none. Looks at those of the same colour, or
    /// name, alone. Cost: near constant.
    C3DMaterial* Find(const C3DMaterial& material, bool byName) const;
    /// Faces that use it are not touched. False for an unknown id.
    bool RemoveMaterial(unsigned int id);
    void RemoveAll();
    /// Material 0 becomes as `material`, and is made when it is missing.
    void SetDefaultMaterial(const C3DMaterial& material);

    enum _COPY_MATERIALS : unsigned int {
        COPY_ONLY_NEW = 1,       ///< leaves out ids that are here already
        COPY_REPLACE_ALL = 2,    ///< what was here goes first
        COPY_ONLY_LISTED = 4,    ///< ids in the map alone
    };
    /// Copies materials under their ids. A material whose id is here already becomes as the other one, unless COPY_ONLY_NEW.
    /// COPY_ONLY_LISTED with a null map copies nothing.
    void CopyMaterials(const CMaterials& from, unsigned int flags, const C3DFaceList::MaterialsMap* listed);

    unsigned int GetCount() const { return m_byID.GetCount(); }
    /// Slot of the first material, 0xFFFFFFFF for none.
    unsigned int GetFirst() const { return m_byID.GetFirst(); }
    /// The material at `pos`, which moves on to the next slot or 0xFFFFFFFF. There is no order of ids.
    void GetNext(unsigned int& pos, unsigned int& id, C3DMaterial*& material) const;

protected:
    friend class C3DMaterial;
    /// The id must be free.
    void HashInsert(C3DMaterial* material);
    void HashRemove(C3DMaterial* material);
    /// Empties the tables; materials are not destroyed.
    void HashFree();

private:
    template <class KEY> using Buckets = CHashMap<KEY, const KEY&, CIdSet>;

    template <class KEY> static bool RemoveFrom(Buckets<KEY>& buckets, const KEY& key, unsigned int id);
    C3DMaterial* FindOfContent(const C3DMaterial& material, const CIdSet& ofColor, const CIdSet& ofContent) const;
    void ContentMayChange(const C3DMaterial& material);
    void HashContent(C3DMaterial& material) const;
    void UnhashContent(const C3DMaterial& material) const;
    void RefreshContent() const;

    CHashMap<unsigned int, C3DMaterial*> m_byID;
    Buckets<unsigned int> m_byColor;    // diffuse, at time 0
    Buckets<CXTString<wchar_t>> m_byName;
    // Colour and content: thousands of materials may share one colour. Keys change behind the collection's back, so that the entries of
    // those that may have changed are renewed when somebody asks.
    mutable Buckets<std::uint64_t> m_byContent;
    mutable std::vector<unsigned int> m_changed;
    CNameNumbers m_numbers;
};

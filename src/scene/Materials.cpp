#include "scene/Materials.h"

#include <memory>

#include "scene/ProcessState.h"
#include "tools/Archive.h"

ZEL_IMPLEMENT_CREATABLE(CMaterials, CXObject)

static constexpr unsigned int DEFAULT_MATERIAL_ID = 0;
static constexpr unsigned int LEAST_STORED_SIZE = 40;    // bytes of a material without name, keys and maps

static CXTString<wchar_t> GetDefaultName()
{
    constexpr unsigned int DEFAULT_MATERIAL_TEXT = 9358;
    CXTString<wchar_t> name;
    return name.LoadStringW(DEFAULT_MATERIAL_TEXT) ? name : CXTString<wchar_t>(L"Default Material");
}

static unsigned int GetColorKey(const C3DMaterial& material)
{
    const CRGBColor color = material.GetDiffuseColor(0, false);
    return color.red | color.green << 8 | color.blue << 16 | static_cast<unsigned int>(color.alpha) << 24;
}

static std::uint64_t GetContentKey(unsigned int color, unsigned int content) { return static_cast<std::uint64_t>(color) << 32 | content; }

CMaterials::CMaterials() = default;

CMaterials::~CMaterials() { RemoveAll(); }

void CMaterials::Serialize(CXArchive& ar)
{
    CXObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar.WriteCount(m_byID.GetCount());
        for (const auto& entry : m_byID)
            ar.WriteObject(entry.second);
        return;
    }
    RemoveAll();
    for (std::uint64_t left = ar.ReadCount(LEAST_STORED_SIZE); left > 0; left--) {
        std::unique_ptr<C3DMaterial> material(XDynamicCast<C3DMaterial>(ar.ReadObject(C3DMaterial::GetThisRuntimeClassDescriptor())));
        if (!material || m_byID.Find(material->m_materialID))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        material->m_owner = this;
        HashInsert(material.release());
    }
}

C3DMaterial* CMaterials::CreateNewMaterial(unsigned int id)
{
    const auto isIdTaken = [this](unsigned int candidate) {
        // 0xFFFFFFFE and 0xFFFFFFFF mean "no material", 0 the default one
        return candidate == DEFAULT_MATERIAL_ID || candidate >= 0xFFFFFFFE || m_byID.Find(candidate);
    };
    auto material = std::make_unique<C3DMaterial>();
    material->m_owner = this;
    if (id != NO_MATERIAL && !m_byID.Find(id))
        material->m_materialID = id;
    else
        while (isIdTaken(material->m_materialID))    // ids given by hand may be ahead of the counter
            material->m_materialID = CreateSceneID(ID_MATERIAL);

    CXTString<wchar_t>& name = material->m_name;
    if (id == DEFAULT_MATERIAL_ID)
        name = GetDefaultName();
    const auto isNameTaken = [this](const CXTString<wchar_t>& candidate) { return m_byName.Find(candidate) != nullptr; };
    if (isNameTaken(name))
        name = m_numbers.GetFreeName(name, isNameTaken);
    HashInsert(material.get());
    return material.release();
}

C3DMaterial* CMaterials::FindByID(unsigned int id)
{
    C3DMaterial* const found = const_cast<const CMaterials*>(this)->FindByID(id);
    if (found || id != DEFAULT_MATERIAL_ID)
        return found;
    SetDefaultMaterial(C3DMaterial());
    return const_cast<const CMaterials*>(this)->FindByID(id);
}

C3DMaterial* CMaterials::FindByID(unsigned int id) const
{
    C3DMaterial** const found = m_byID.Find(id);
    return found ? *found : nullptr;
}

C3DMaterial* CMaterials::FindByName(const CXTString<wchar_t>& name) const
{
    const CIdSet* const ids = m_byName.Find(name);
    if (!ids)
        return nullptr;
    unsigned int pos = ids->GetFirst();
    return FindByID(ids->GetNext(pos));
}

C3DMaterial* CMaterials::Find(const C3DMaterial& material, bool byName) const
{
    const unsigned int color = GetColorKey(material);
    const CIdSet* const ids = byName ? m_byName.Find(material.m_name) : m_byColor.Find(color);
    if (!ids)
        return nullptr;
    if (!byName) {
        constexpr unsigned int FEW = 4;
        RefreshContent();
        const CIdSet* const ofContent = m_byContent.Find(GetContentKey(color, material.GetContentHash()));
        if (!ofContent)
            return nullptr;
        if (ofContent->GetCount() * FEW < ids->GetCount())
            return FindOfContent(material, *ids, *ofContent);
    }
    for (unsigned int pos = ids->GetFirst(); pos != HASH_END;) {
        C3DMaterial* const candidate = FindByID(ids->GetNext(pos));
        if (candidate->HasSameParameters(material))
            return candidate;
    }
    return nullptr;
}

/// What a walk over the materials of the colour would meet first, by looking only at those of the same content.
C3DMaterial* CMaterials::FindOfContent(const C3DMaterial& material, const CIdSet& ofColor, const CIdSet& ofContent) const
{
    C3DMaterial* first = nullptr;
    unsigned int firstPosition = HASH_END;
    for (unsigned int pos = ofContent.GetFirst(); pos != HASH_END;) {
        const unsigned int id = ofContent.GetNext(pos), position = ofColor.GetPosition(id);
        C3DMaterial* const candidate = FindByID(id);
        if (position < firstPosition && candidate->HasSameParameters(material)) {
            first = candidate;
            firstPosition = position;
        }
    }
    return first;
}

bool CMaterials::RemoveMaterial(unsigned int id)
{
    C3DMaterial* const material = const_cast<const CMaterials*>(this)->FindByID(id);
    if (!material)
        return false;
    HashRemove(material);
    delete material;
    return true;
}

void CMaterials::RemoveAll()
{
    for (const auto& entry : m_byID)
        delete entry.second;
    HashFree();
}

void CMaterials::SetDefaultMaterial(const C3DMaterial& material)
{
    if (C3DMaterial* const standing = const_cast<const CMaterials*>(this)->FindByID(DEFAULT_MATERIAL_ID)) {
        *standing = material;
        return;
    }
    std::unique_ptr<C3DMaterial> made(new C3DMaterial(nullptr, DEFAULT_MATERIAL_ID));
    *made = material;
    made->m_name = GetDefaultName();
    made->m_owner = this;
    HashInsert(made.release());
}

void CMaterials::CopyMaterials(const CMaterials& from, unsigned int flags, const C3DFaceList::MaterialsMap* listed)
{
    if (&from == this)
        return;
    if (flags & COPY_REPLACE_ALL)
        RemoveAll();
    if ((flags & COPY_ONLY_LISTED) && !listed)
        return;
    for (const auto& [id, source] : from.m_byID) {
        if ((flags & COPY_ONLY_LISTED) && !listed->Find(id))
            continue;
        if (C3DMaterial** const standing = m_byID.Find(id)) {
            if (!(flags & COPY_ONLY_NEW))
                **standing = *source;
            continue;
        }
        std::unique_ptr<C3DMaterial> copy(new C3DMaterial(nullptr, id));
        *copy = *source;
        copy->m_owner = this;
        HashInsert(copy.release());
    }
}

void CMaterials::GetNext(unsigned int& pos, unsigned int& id, C3DMaterial*& material) const
{
    const auto& entry = m_byID.GetNext(pos);
    id = entry.first;
    material = entry.second;
}

// ---- Tables

void CMaterials::HashInsert(C3DMaterial* material)
{
    material->m_hashedColor = GetColorKey(*material);
    m_byID.Insert(material->m_materialID, material);
    m_byColor[material->m_hashedColor].Insert(material->m_materialID);
    m_byName[material->m_name].Insert(material->m_materialID);
    HashContent(*material);
    NoteSceneChange();
}

void CMaterials::HashRemove(C3DMaterial* material)
{
    m_byID.Remove(material->m_materialID);
    RemoveFrom(m_byColor, material->m_hashedColor, material->m_materialID);
    if (RemoveFrom(m_byName, material->m_name, material->m_materialID))
        m_numbers.SetFree(material->m_name);
    UnhashContent(*material);
}

void CMaterials::HashFree()
{
    m_byID.RemoveAll();
    m_byColor.RemoveAll();
    m_byName.RemoveAll();
    m_byContent.RemoveAll();
    m_changed.clear();
    m_numbers.RemoveAll();
}

void CMaterials::HashContent(C3DMaterial& material) const
{
    material.m_hashedContent = material.GetContentHash();
    m_byContent[GetContentKey(material.m_hashedColor, material.m_hashedContent)].Insert(material.m_materialID);
}

void CMaterials::UnhashContent(const C3DMaterial& material) const
{
    RemoveFrom(m_byContent, GetContentKey(material.m_hashedColor, material.m_hashedContent), material.m_materialID);
}

void CMaterials::ContentMayChange(const C3DMaterial& material)
{
    material.m_mayBeChanged = true;
    m_changed.push_back(material.m_materialID);
}

void CMaterials::RefreshContent() const
{
    for (const unsigned int id : m_changed)
        if (C3DMaterial* const material = FindByID(id); material && material->m_mayBeChanged) {    // it may be gone, or another one
            UnhashContent(*material);
            HashContent(*material);
            material->m_mayBeChanged = false;
        }
    m_changed.clear();
}

/// True when the bucket of the key became empty, and went.
template <class KEY> bool CMaterials::RemoveFrom(Buckets<KEY>& buckets, const KEY& key, unsigned int id)
{
    CIdSet* const ids = buckets.Find(key);
    if (!ids)
        return false;
    ids->Remove(id);
    return ids->GetCount() == 0 && buckets.Remove(key);
}

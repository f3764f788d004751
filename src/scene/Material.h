#pragma once

#include "scene/Forward.h"
#include "scene/Keyframable.h"
#include "tools/CustomData.h"
#include "tools/Object.h"
#include "tools/String.h"

/// Material of a scene, referred to by its id.
class ZEL_API C3DMaterial : public CXObject, public C3DKeyframable {
    ZEL_DECLARE_CREATABLE(C3DMaterial)
public:
    /// Takes the next id of the process.
    C3DMaterial();
    C3DMaterial(const C3DMaterial&) = delete;
    C3DMaterial& operator=(const C3DMaterial&) = delete;
    ~C3DMaterial() override;
    void Serialize(CXArchive& ar) override;

    unsigned int GetMaterialID() const { return m_materialID; }
    const CXTString<wchar_t>& GetName() const { return m_name; }
    void SetName(const CXTString<wchar_t>& name) { m_name = name; }
    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }

private:
    friend class CMaterials;

    CXTString<wchar_t> m_name;
    CCustomData m_customData;
    CMaterials* m_owner = nullptr;
    unsigned int m_materialID;
};

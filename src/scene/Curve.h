#pragma once

#include "scene/GeomObject.h"

/// Curve: the points in list order make one open line of one material. Geometric, without faces to speak of.
class ZEL_API C3DCurve : public C3DGeomObject {
    ZEL_DECLARE_CREATABLE(C3DCurve)
public:
    C3DCurve();
    C3DCurve(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels);

    /// The geometric record, then the material id.
    void Serialize(CXArchive& ar) override;
    bool InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const override;
    /// The curve's own material beside those of a face list, if it has one.
    const MaterialMap* GetMaterialsHashMap(bool withBack) override;
    bool ReplaceMaterial(unsigned int from, unsigned int to) override;
    bool ReplaceMaterials(const MaterialMap& map) override;

    unsigned int GetMaterialID() const { return m_material; }
    void SetMaterialID(unsigned int id) { m_material = id; }

protected:
    ~C3DCurve() override;

private:
    unsigned int m_material = 0;
    MaterialMap m_used;    ///< what GetMaterialsHashMap gave last
};

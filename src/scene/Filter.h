#pragma once

#include "geometry/Point.h"
#include "scene/Forward.h"

class C3DFace;

/// What a C3DFilter refuses.
enum _FILTER_MODE : unsigned int {
    FILTER_EMPTY = 1,         ///< nodes whose object is flagged OBJECT_EMPTY
    FILTER_HIDDEN = 2,        ///< hidden nodes
    FILTER_UNSELECTED = 4,    ///< nodes that are not selected
};

/// Says which nodes, faces and points take part in a walk or an operation. The base looks at nodes alone.
class ZEL_API C3DFilter {
public:
    explicit C3DFilter(unsigned int mode = 0) : m_mode(mode) {}
    C3DFilter(const C3DFilter&) = default;
    C3DFilter& operator=(const C3DFilter&) = default;
    virtual ~C3DFilter();

    virtual bool ProcessNode(const C3DSceneNode* node) const;
    virtual bool ProcessFace(const C3DBaseObject* object, const C3DFace* face) const;
    virtual bool ProcessPoint(const C3DBaseObject* object, const C3DTPoint<float>* point) const;

    /// The test of a mode; 0 passes every node.
    static bool ProcessNode(unsigned int mode, const C3DSceneNode* node);

    unsigned int GetMode() const { return m_mode; }
    void SetMode(unsigned int mode) { m_mode = mode; }

private:
    unsigned int m_mode;
};

/// Nodes that use one material, and of their faces those that have it (or, without `include`, all others).
class ZEL_API C3DFilterByMaterial : public C3DFilter {
public:
    C3DFilterByMaterial() = default;
    ~C3DFilterByMaterial() override;

    bool ProcessNode(const C3DSceneNode* node) const override;
    bool ProcessFace(const C3DBaseObject* object, const C3DFace* face) const override;
    using C3DFilter::ProcessNode;

    void SetMaterial(unsigned int material, bool include)
    {
        m_material = material;
        m_include = include;
    }
    unsigned int GetMaterial() const { return m_material; }

private:
    unsigned int m_material = 0xFFFFFFFF;
    bool m_include = true;
};

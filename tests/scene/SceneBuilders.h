#pragma once

#include <memory>
#include <string>
#include <vector>

#include "geometry/3DPointList.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Group.h"

/// Drops its reference at the end of the scope.
template <class T> class CRef {
public:
    explicit CRef(T* object) : m_object(object) {}
    CRef(const CRef&) = delete;
    ~CRef() { DeleteMe(m_object); }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    operator T*() const { return m_object; }
    T* Release()
    {
        T* object = m_object;
        m_object = nullptr;
        return object;
    }

private:
    T* m_object;
};

/// A null pointer that the compiler does not know to be one: queries on it are part of the interface.
template <class T> T* Null()
{
    static T* volatile none = nullptr;
    return none;
}

/// Group that counts how many of its kind are alive.
class CCountedGroup : public C3DGroup {
public:
    static inline int alive = 0;
    CCountedGroup() { alive++; }

protected:
    ~CCountedGroup() override { alive--; }
};

/// A node of one wide letter under `parent` (null: the root), with an object of that kind; 0 for none.
inline C3DSceneNode* AddNode(C3DScene& scene, C3DSceneNode* parent, const wchar_t* name, unsigned int kind)
{
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetName(name);
    if (kind)
        node->SetObject(C3DBaseObject::Create(static_cast<_OBJECT_KINDOF>(kind)), true);
    scene.AddNode(parent, node);
    return node;
}

/// The same with the object of another node.
inline C3DSceneNode* AddSharer(C3DScene& scene, C3DSceneNode* parent, const wchar_t* name, const C3DSceneNode* other)
{
    C3DSceneNode* node = AddNode(scene, parent, name, 0);
    node->SetObject(scene.CreateObjectInstance(other->GetBaseObject()), true);
    return node;
}

/// Names of the nodes of a walk, one after the other.
inline std::wstring Names(const C3DScene& scene, C3DNodePos pos)
{
    std::wstring names;
    while (pos)
        names += scene.GetNextNode(pos)->GetName().Str();
    return names;
}

/// Names below a node in the form "a(b(c)d)".
inline std::wstring Outline(const C3DScene& scene, const C3DSceneNode* top = nullptr)
{
    std::wstring text;
    for (const C3DSceneNode* node = scene.GetChildNode(top); node; node = scene.GetRightNode(node)) {
        text += node->GetName().Str();
        if (node->GetFirstChild())
            text += L"(" + Outline(scene, node) + L")";
    }
    return text;
}

/// Two triangles that form the square (0,0,0)..(1,1,0), and one point at (9,9,9) that no face uses.
inline C3DObject* CreateSquare()
{
    const float points[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 9, 9, 9};
    const int triangles[] = {0, 1, 2, 0, 2, 3};
    return CreateObjectFromArrays(points, sizeof points, triangles, sizeof triangles, nullptr, 0);
}

inline C3DTPoint<float>& PointOf(const C3DGeomObject* object, int index) { return *object->GetPointList()->ElementAt(index); }

inline C4x4TMatrix<float> Translation(float x, float y, float z)
{
    C4x4TMatrix<float> matrix;
    matrix.SetTranslation(x, y, z);
    return matrix;
}

inline std::vector<float> Values(const C3DTCoordinates<float>& p) { return {p.x, p.y, p.z}; }

#pragma once

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "scene/3DScene.h"
#include "scene/Curve.h"
#include "scene/GeomObject.h"
#include "tools/FileNameSpec.h"

/// Holds two scenes against each other, field by field, and keeps where the first difference is. Numbers are equal when their bits are.
///
/// What a stream leaves out does not count: node ids, caches, stamps, bitmaps, channels that can be computed again, the marks of
/// changed materials, the spare room and the gaps of lists, the order of materials.
class CSceneComparison {
public:
    CSceneComparison(const C3DScene& a, const C3DScene& b) { CompareScenes(a, b); }
    /// "node 3 \"wheel\"/object/channel 0/point 7"; empty when the scenes are equal.
    const std::string& GetDifference() const { return m_difference; }

private:
    /// One step down the path, for as long as it lives.
    class CStep {
    public:
        CStep(CSceneComparison& owner, std::string name) : m_path(owner.m_path) { m_path.push_back(std::move(name)); }
        ~CStep() { m_path.pop_back(); }
        CStep(const CStep&) = delete;
        CStep& operator=(const CStep&) = delete;

    private:
        std::vector<std::string>& m_path;
    };

    bool IsOver() const { return !m_difference.empty(); }
    void Differ(const std::string& what)
    {
        if (IsOver())
            return;
        for (const std::string& step : m_path)
            m_difference += step + "/";
        m_difference += what;
    }
    /// Both or neither; true when there is something to compare.
    template <class T> bool Both(const char* what, const T* a, const T* b)
    {
        if (!a != !b)
            Differ(std::string(what) + ": one is missing");
        return a && b && !IsOver();
    }
    template <class T> void Same(const char* what, const T& a, const T& b)
    {
        static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T>);
        if (std::memcmp(&a, &b, sizeof a) != 0)
            Differ(std::string(what) + ": " + std::to_string(+a) + " and " + std::to_string(+b));
    }
    void Same(const char* what, const CXTString<wchar_t>& a, const CXTString<wchar_t>& b)
    {
        if (a != b)
            Differ(std::string(what) + ": \"" + WideToUtf8(a) + "\" and \"" + WideToUtf8(b) + "\"");
    }
    void Same(const char* what, const CCustomData& a, const CCustomData& b)
    {
        if (a == b)
            return;
        CXTString<wchar_t> first, second;
        a.DumpCustomData(first, 0, false);
        b.DumpCustomData(second, 0, false);
        Differ(std::string(what) + ":\n" + WideToUtf8(first) + "and\n" + WideToUtf8(second));
    }
    template <class T> void SameClass(const T& a, const T& b)
    {
        if (a.GetRuntimeClassDescriptor() != b.GetRuntimeClassDescriptor())
            Differ(std::string("class: ") + a.GetRuntimeClassDescriptor()->GetName() + " and " + b.GetRuntimeClassDescriptor()->GetName());
    }
    /// Words that can only be asked bit by bit.
    template <class FLAG, class T> void SameBits(const char* what, const T& a, const T& b, bool (T::*has)(FLAG) const)
    {
        for (unsigned int bit = 1; bit; bit <<= 1)
            Same(what, (a.*has)(static_cast<FLAG>(bit)), (b.*has)(static_cast<FLAG>(bit)));
    }

    void CompareScenes(const C3DScene& a, const C3DScene& b)
    {
        Same("scene parameters", a.GetCustomData(), b.GetCustomData());
        CompareMaterials(a, b);
        CompareTrees(a, b);
    }

    // Materials

    void CompareMaterials(const C3DScene& a, const C3DScene& b)
    {
        Same("number of materials", a.GetMaterialNumber(), b.GetMaterialNumber());
        for (unsigned int pos = a.GetFirstMaterial(); pos != HASH_END && !IsOver();) {
            const C3DMaterial* const material = a.GetNextMaterial(pos);
            const CStep step(*this, "material " + std::to_string(material->GetMaterialID()));
            if (const C3DMaterial* const other = b.GetMaterialByID(material->GetMaterialID()); Both("material", material, other))
                CompareMaterial(*material, *other);
        }
    }
    void CompareMaterial(const C3DMaterial& a, const C3DMaterial& b)
    {
        CompareKeys(a, b);
        Same("flags", a.GetFlags() & ~MATERIAL_CHANGES, b.GetFlags() & ~MATERIAL_CHANGES);
        Same("name", a.GetName(), b.GetName());
        Same("id", a.GetMaterialID(), b.GetMaterialID());
        float strengthA, strengthB;
        Same("vertex colour channel", a.GetVertexColor(0, strengthA), b.GetVertexColor(0, strengthB));
        Same("custom data", a.GetCustomData(), b.GetCustomData());
        for (const MapType type : {MAP_DIFFUSE, MAP_AMBIENT, MAP_SPECULAR, MAP_TRANSPARENCY, MAP_BUMP}) {
            const CStep step(*this, "map " + std::to_string(type));
            const CMaterialMap *const first = a.GetMaterialMap(type), *const second = b.GetMaterialMap(type);
            if (Both("map", first, second))
                CompareMap(*first, *second);
        }
    }
    void CompareMap(const CMaterialMap& a, const CMaterialMap& b)
    {
        CompareKeys(a, b);
        Same("file name", a.GetFileName(), b.GetFileName());
        Same("alpha file name", a.GetAlphaFileName(), b.GetAlphaFileName());
        Same("type", a.GetType(), b.GetType());
        Same("projection", a.GetProjection(), b.GetProjection());
        Same("axis", a.GetAxis(), b.GetAxis());
        Same("channel", a.GetChannelID(), b.GetChannelID());
        SameBits("flags", a, b, &CMaterialMap::IsFlagSet);
        Same("custom data", a.GetCustomData(), b.GetCustomData());
    }

    // Keys

    void CompareKeys(const C3DKeyframable& a, const C3DKeyframable& b)
    {
        Same("number of keys", a.GetKeyNbr(KEY_ANY), b.GetKeyNbr(KEY_ANY));
        for (int i = 0, count = a.GetKeyNbr(KEY_ANY); i < count && !IsOver(); i++) {
            const CStep step(*this, "key " + std::to_string(i));
            int timeA = 0, timeB = 0;
            const C3DKeyframe& first = *a.GetKeyByIndex(static_cast<unsigned int>(i), &timeA, KEY_ANY);
            const C3DKeyframe& second = *b.GetKeyByIndex(static_cast<unsigned int>(i), &timeB, KEY_ANY);
            Same("time", timeA, timeB);
            Same("class id", first.GetClassID(), second.GetClassID());
            Same("custom data", first.GetCustomData(), second.GetCustomData());
            if (!IsOver())
                CompareValues(first, second);
            if (!IsOver())
                CompareCurves(first.GetKeyCurve(), second.GetKeyCurve());
        }
    }
    void SameVector(const char* what, const C3DTVector<float>& a, const C3DTVector<float>& b)
    {
        Same(what, a.flags, b.flags);
        for (int i = 0; i < 3; i++)
            Same(what, a[i], b[i]);
    }
    template <class T> bool CompareTyped(const C3DKeyframe& a, const C3DKeyframe& b)
    {
        const auto* const first = dynamic_cast<const C3DTypeKey<T>*>(&a);
        const auto* const second = dynamic_cast<const C3DTypeKey<T>*>(&b);
        if (!first || !second)
            return false;
        if constexpr (std::is_arithmetic_v<T>)
            Same("value", first->value, second->value);
        else
            for (int i = 0; i < 4; i++)
                Same("value", first->value.ValPtr()[i], second->value.ValPtr()[i]);
        return true;
    }
    void CompareValues(const C3DKeyframe& a, const C3DKeyframe& b)
    {
        if (CompareTyped<int>(a, b) || CompareTyped<unsigned int>(a, b) || CompareTyped<float>(a, b) || CompareTyped<double>(a, b) ||
            CompareTyped<CRGBColor>(a, b))
            return;
        const auto *const first = dynamic_cast<const C3DMatrixKey*>(&a), *const second = dynamic_cast<const C3DMatrixKey*>(&b);
        if (!first || !second)
            return Differ("a key of an unknown class");
        for (int i = 0; i < 16; i++)
            Same("matrix", first->ToMatrix().m[i / 4][i % 4], second->ToMatrix().m[i / 4][i % 4]);
        if (const auto* const vector = dynamic_cast<const C3DVectorKey*>(first))
            SameVector("vector", vector->GetVector(), dynamic_cast<const C3DVectorKey&>(*second).GetVector());
        if (const auto* const rotation = dynamic_cast<const C3DRotateKey*>(first)) {
            double angleA, angleB;
            SameVector("axis", rotation->GetRotation(angleA), dynamic_cast<const C3DRotateKey&>(*second).GetRotation(angleB));
            Same("angle", angleA, angleB);
        }
    }
    void CompareCurves(const C3DKeyCurve* a, const C3DKeyCurve* b)
    {
        Same("curve", a->GetClassID(), b->GetClassID());
        const auto *const first = dynamic_cast<const C3DTCBCurve*>(a), *const second = dynamic_cast<const C3DTCBCurve*>(b);
        for (int i = 0; first && second && i < 5; i++)
            Same("curve value", first->values[i], second->values[i]);
    }

    // Nodes: both trees in one walk, which no depth troubles

    void CompareTrees(const C3DScene& a, const C3DScene& b)
    {
        const CTreeNode *first = a.GetRoot(), *second = b.GetRoot();
        for (int number = 0; Both("node", first, second); number++) {
            const auto& nodeA = static_cast<const C3DSceneNode&>(*first);
            const auto& nodeB = static_cast<const C3DSceneNode&>(*second);
            const CStep step(*this, "node " + std::to_string(number) + " \"" + WideToUtf8(nodeA.GetName()) + "\"");
            CompareNode(nodeA, nodeB);
            if (nodeB.GetScene() != &b)
                Differ("its scene is another one");
            Advance(first, second);
        }
    }
    void Advance(const CTreeNode*& a, const CTreeNode*& b)
    {
        if (Both("child", a->GetFirstChild(), b->GetFirstChild())) {
            a = a->GetFirstChild();
            b = b->GetFirstChild();
            return;
        }
        while (a && !IsOver() && !Both("sibling", a->GetNextSibling(), b->GetNextSibling())) {
            a = a->GetParentNode();
            b = b->GetParentNode();
        }
        if (a && !IsOver()) {
            a = a->GetNextSibling();
            b = b->GetNextSibling();
        }
    }
    void CompareNode(const C3DSceneNode& a, const C3DSceneNode& b)
    {
        CompareKeys(a, b);
        Same("flags", a.GetFlags(), b.GetFlags());
        SameBits("update flags", a, b, &C3DSceneNode::IsInvalidate);
        Same("name", a.GetName(), b.GetName());
        Same("custom data", a.GetCustomData(), b.GetCustomData());
        const C3DBaseObject *const first = a.GetBaseObject(), *const second = b.GetBaseObject();
        if (!Both("object", first, second))
            return;
        const CStep step(*this, "object");
        if (second->GetScene() != b.GetScene())
            Differ("its scene is not that of the node");
        // The same object on one side is the same on the other, and is compared once.
        const auto [partner, isNew] = m_objects.insert({first, second});
        const auto [back, isNewBack] = m_partners.insert({second, first});
        if (partner->second != second || back->second != first)
            return Differ("shared by other nodes");
        Same("instances", first->GetInstanceCount(), second->GetInstanceCount());
        if (isNew && isNewBack)
            CompareObject(*first, *second);
    }

    // Objects

    void CompareObject(const C3DBaseObject& a, const C3DBaseObject& b)
    {
        Same("kind", a.GetKindOf(), b.GetKindOf());
        Same("flags", a.GetFlags(), b.GetFlags());
        Same("id", a.GetObjectID(), b.GetObjectID());
        Same("custom data", a.GetCustomData(), b.GetCustomData());
        const C3DGeomObject *const first = a, *const second = b;
        if (first && second)
            CompareGeometry(*first, *second);
        const C3DCurve *const curve = a, *const otherCurve = b;
        if (curve && otherCurve)
            Same("material", curve->GetMaterialID(), otherCurve->GetMaterialID());
    }
    void CompareGeometry(const C3DGeomObject& a, const C3DGeomObject& b)
    {
        CompareLists(a.GetFaceList(), b.GetFaceList(), a.GetPointList(), b.GetPointList());
        bool inheritedA, inheritedB;
        Same("smooth angle", a.GetSmoothAngle(&inheritedA), b.GetSmoothAngle(&inheritedB));
        Same("inherited smooth angle", inheritedA, inheritedB);
        Same("smooth mode", a.GetSmoothMode(&inheritedA), b.GetSmoothMode(&inheritedB));
        Same("inherited smooth mode", inheritedA, inheritedB);
        Same("face mode", a.GetFaceMode(), b.GetFaceMode());
        Same("global texture channel", a.GetGlobalUVWChannel(), b.GetGlobalUVWChannel());
        float strengthA, strengthB;
        Same("global colour channel", a.GetGlobalVCChannel(strengthA), b.GetGlobalVCChannel(strengthB));
        Same("strength of colours", strengthA, strengthB);

        const std::vector<const CChannel*> first = StoredChannels(a), second = StoredChannels(b);
        Same("number of channels", first.size(), second.size());
        for (std::size_t i = 0; i < first.size() && !IsOver(); i++) {
            const CStep step(*this, "channel " + std::to_string(i));
            CompareChannel(*first[i], *second[i]);
        }
    }
    static std::vector<const CChannel*> StoredChannels(const C3DGeomObject& object)
    {
        std::vector<const CChannel*> channels;
        for (CChannel* const channel : *object.GetChannels())
            if (!channel->CanBeRecomputed())
                channels.push_back(channel);
        return channels;
    }
    void CompareChannel(const CChannel& a, const CChannel& b)
    {
        SameClass(a, b);
        Same("type", a.GetType(), b.GetType());
        const unsigned int stale = a.IsFlagSet(CHANNEL_DERIVED) ? CHANNEL_STALE : 0u;
        Same("flags", a.GetFlags() | stale, b.GetFlags());
        Same("id", a.GetChannelID(), b.GetChannelID());
        Same("custom data", a.GetCustomData(), b.GetCustomData());
        CompareLists(a.GetFaceList(), b.GetFaceList(), a.GetPointList(), b.GetPointList());
    }

    // Lists

    void CompareLists(const CFaceList* facesA, const CFaceList* facesB, const CPointList* pointsA, const CPointList* pointsB)
    {
        if (Both("face list", facesA, facesB))
            CompareFaces(*facesA, *facesB);
        if (Both("point list", pointsA, pointsB))
            ComparePoints(*pointsA, *pointsB);
    }
    void CompareFaces(const CFaceList& a, const CFaceList& b)
    {
        SameClass(a, b);
        Same("number of faces", a.GetSize(), b.GetSize());
        Same("list flag", a.IsFlagSet(FACELIST_STORED), b.IsFlagSet(FACELIST_STORED));
        for (int i = 0; i < a.GetSize() && !IsOver(); i++) {
            int countA, countB;
            const int *const cornersA = a.GetIndexes(static_cast<unsigned int>(i), countA), *const cornersB = b.GetIndexes(
                                                                                                static_cast<unsigned int>(i), countB);
            if (countA != countB || (countA && std::memcmp(cornersA, cornersB, static_cast<std::size_t>(countA) * sizeof(int)) != 0))
                Differ("corners of face " + std::to_string(i));
        }
        CompareChunks(a.GetDataChunks(), b.GetDataChunks());
    }
    void ComparePoints(const CPointList& a, const CPointList& b)
    {
        SameClass(a, b);
        SameClass(*a.GetMethods(), *b.GetMethods());
        Same("number of points", a.GetSize(), b.GetSize());
        CompareElements("point", *a.GetMethods(), a.GetBase(), b.GetBase(), IsOver() ? 0 : a.GetSize());
        CompareChunks(a.GetDataChunks(), b.GetDataChunks());
    }
    void CompareChunks(const CDataChunk& a, const CDataChunk& b)
    {
        Same("number of chunks", a.GetChunksNbr(), b.GetChunksNbr());
        Same("size of chunks", a.GetDataSize(), b.GetDataSize());
        Same("growth of chunks", a.GetGrowFactor(), b.GetGrowFactor());
        unsigned int posA = a.GetFirstChunk(), posB = b.GetFirstChunk();
        for (unsigned int i = 0; i < a.GetChunksNbr() && !IsOver(); i++) {
            unsigned int idA = 0, idB = 0;
            const CElementArray &first = *a.GetNextChunk(posA, idA), &second = *b.GetNextChunk(posB, idB);
            const CStep step(*this, "chunk " + std::to_string(i));
            Same("id", idA, idB);
            Same("flags", a.GetChunkFlags(idA), b.GetChunkFlags(idB));
            Same("main", a.GetMainArray() == &first, b.GetMainArray() == &second);
            SameClass(*first.GetMethods(), *second.GetMethods());
            Same("size", first.GetSize(), second.GetSize());
            CompareElements("element", *first.GetMethods(), first.GetBase(), second.GetBase(), IsOver() ? 0 : first.GetSize());
        }
    }
    void CompareElements(const char* what, const CElementMethods& methods, const void* a, const void* b, int count)
    {
        const auto [offset, size] = methods.GetStoredBytes();
        const auto *first = static_cast<const char*>(a) + offset, *second = static_cast<const char*>(b) + offset;
        for (int i = 0; i < count; i++, first += methods.GetSizeof(), second += methods.GetSizeof())
            if (std::memcmp(first, second, size) != 0)
                return Differ(what + (" " + std::to_string(i)));
    }

    std::vector<std::string> m_path;
    std::string m_difference;
    std::map<const C3DBaseObject*, const C3DBaseObject*> m_objects, m_partners;
};

/// Where two scenes differ first; empty when they are equal.
inline std::string FirstDifference(const C3DScene& a, const C3DScene& b) { return CSceneComparison(a, b).GetDifference(); }

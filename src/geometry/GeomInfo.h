#pragma once

#include "tools/Api.h"

class C3DBaseObject;
class C3DFaceList;
class C3DGeomObject;
class C3DPointList;
class C3DScene;
class C3DSceneNode;
class C3DVectorList;
class CDependentChannels;
class CFaceList;
class CInstanciatedObject;
class CNormalFaceList;
class CPointList;
class CUVWFaceList;
class CUVWPointList;
class CVCFaceList;
class CVCPointList;
class CWeightFaceList;
class CWeightPointList;

/// What a mesh operation works on and what it writes to: lists and channels of a source and of a destination, with the object, node
/// and scene they belong to. Each may be null.
///
/// Nothing is owned but what SetPointList, SetFaceList and SetChannels were told to; that is released with the record. A copy owns
/// nothing. What concerns scenes is defined in scene/, what concerns channels in channels/.
class ZEL_API CGeomInfo {
public:
    CGeomInfo() = default;
    /// Of a geometric object the lists and channels are the source. Also takes the object's effective smooth mode and angle.
    explicit CGeomInfo(C3DBaseObject* object);
    CGeomInfo(C3DSceneNode* node, C3DBaseObject* object);
    CGeomInfo(CFaceList* faces, CPointList* points) : m_srcPoints(points), m_srcFaces(faces) {}
    CGeomInfo(const CGeomInfo& other);
    CGeomInfo& operator=(const CGeomInfo&) = delete;
    virtual ~CGeomInfo();

    C3DScene* GetScene() const { return m_scene; }
    void SetScene(C3DScene* scene) { m_scene = scene; }
    C3DSceneNode* GetNode() const { return m_node; }
    C3DBaseObject* GetBaseObject() const { return m_object; }
    /// The object when it is geometric, else null.
    C3DGeomObject* GetGeomObject() const;

    /// `own` & 1: the source is released with the record; & 2: the destination. Bits are added, never taken away.
    void SetPointList(CPointList* source, CPointList* destination, unsigned int own);
    void SetFaceList(CFaceList* source, CFaceList* destination, unsigned int own);
    void SetChannels(CDependentChannels* source, CDependentChannels* destination, unsigned int own);

    /// With `take` the record forgets what it gives, which then is the caller's if the record owned it.
    CPointList* GetSrcPointList(bool take = false) const { return Give(m_srcPoints, OWNS_SRC_POINTS, take); }
    CPointList* GetDstPointList(bool take = false) const { return Give(m_dstPoints, OWNS_DST_POINTS, take); }
    CFaceList* GetSrcFaceList(bool take = false) const { return Give(m_srcFaces, OWNS_SRC_FACES, take); }
    CFaceList* GetDstFaceList(bool take = false) const { return Give(m_dstFaces, OWNS_DST_FACES, take); }
    CDependentChannels* GetSrcChannels(bool take = false) const { return Give(m_srcChannels, OWNS_SRC_CHANNELS, take); }
    CDependentChannels* GetDstChannels(bool take = false) const { return Give(m_dstChannels, OWNS_DST_CHANNELS, take); }

    /// The same lists as what they are in geometry ...
    C3DPointList* GetSrc3DPointList(bool take = false) const;
    C3DFaceList* GetSrc3DFaceList(bool take = false) const;
    C3DPointList* GetDst3DPointList(bool take = false) const;
    C3DFaceList* GetDst3DFaceList(bool take = false) const;
    /// ... and in a record over a channel's lists.
    CNormalFaceList* GetSrcNormalFaceList() const;
    C3DVectorList* GetSrcNormalPointList() const;
    CUVWFaceList* GetSrcUVWFaceList() const;
    CUVWPointList* GetSrcUVWPointList() const;
    CVCFaceList* GetSrcVCFaceList() const;
    CVCPointList* GetSrcVCPointList() const;
    CWeightFaceList* GetSrcWeightFaceList() const;
    CWeightPointList* GetSrcWeightPointList() const;

    /// Number of source channels; 0 without.
    int GetChannelSize() const;
    /// Lists of channel `i` in the source and in the destination; null where there are none.
    void GetChannelFaceList(int i, CFaceList*& source, CFaceList*& destination) const;
    void GetChannelPointList(int i, CPointList*& source, CPointList*& destination) const;

    /// How normals are smoothed: _NormalSmoothMode, and the angle in radians. Set by the constructors that take an object, so that
    /// channels need not ask upward; otherwise 2 (area) and 30 degrees.
    int GetSmoothMode() const { return m_smoothMode; }
    void SetSmoothMode(int mode) { m_smoothMode = mode; }
    float GetSmoothAngle() const { return m_smoothAngle; }
    void SetSmoothAngle(float angle) { m_smoothAngle = angle; }

private:
    enum Owned : unsigned int {
        OWNS_SRC_POINTS = 1,
        OWNS_DST_POINTS = 2,
        OWNS_SRC_FACES = 4,
        OWNS_DST_FACES = 8,
        OWNS_SRC_CHANNELS = 16,
        OWNS_DST_CHANNELS = 32,
    };

    template <class LIST> LIST* Give(LIST*& list, Owned bit, bool take) const
    {
        LIST* given = list;
        if (take) {
            list = nullptr;
            m_owned &= ~bit;
        }
        return given;
    }

    mutable unsigned int m_owned = 0;    // Owned
    C3DScene* m_scene = nullptr;
    C3DSceneNode* m_node = nullptr;
    C3DBaseObject* m_object = nullptr;
    mutable CPointList* m_srcPoints = nullptr;
    mutable CPointList* m_dstPoints = nullptr;
    mutable CFaceList* m_srcFaces = nullptr;
    mutable CFaceList* m_dstFaces = nullptr;
    mutable CDependentChannels* m_srcChannels = nullptr;
    mutable CDependentChannels* m_dstChannels = nullptr;
    CInstanciatedObject* m_srcChannelsOwner = nullptr;    // the same objects: their class is not known here
    CInstanciatedObject* m_dstChannelsOwner = nullptr;
    int m_smoothMode = 2;
    float m_smoothAngle = 0.5235988f;
};

#pragma once

#include "scene/Forward.h"
#include "viewer/InfoPages.h"

class CFaceList;
class CPointList;

/// The points or the faces of an object, or of one of its channels; a cell is worked out when it shows.
class CElementTable : public CCustomList {
public:
    /// `faces` null: the points; else the faces, whose corners are among the points.
    void Show(const C3DScene* scene, const CPointList* points, const CFaceList* faces);
    CXTString<wchar_t> GetCellText(int row, int column) const override;

private:
    CXTString<wchar_t> GetPointText(int row, int coordinate) const;
    CXTString<wchar_t> GetCornersText(int row) const;
    CXTString<wchar_t> GetMaterialsText(int row) const;

    const C3DScene* m_scene = nullptr;
    const CPointList* m_points = nullptr;
    const CFaceList* m_faces = nullptr;
    CXTString<wchar_t> m_unused;
};

/// Page of an object's points and faces, and those of its channels.
class CNodeInfoChannels : public CDialogTable {
public:
    CNodeInfoChannels(const C3DScene* scene, const C3DSceneNode* node);
    ~CNodeInfoChannels() override;
    void OnControl(unsigned int id) override;

private:
    struct Array {
        CReference<CPointList> points;
        CReference<CFaceList> faces;    ///< null: the points are shown
    };
    void AddArray(const CXTString<wchar_t>& text, CPointList* points, CFaceList* faces);
    void ShowArray();

    const C3DScene* m_scene;
    std::vector<Array> m_arrays;    ///< of the entries
    std::vector<CXTString<wchar_t>> m_texts;
    CElementTable m_elements;
};

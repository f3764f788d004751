#pragma once

// What there is to know of a material, to look at and to change.

#include "scene/MaterialMap.h"
#include "tools/Color.h"
#include "viewer/InfoPages.h"

class C3DFrameViewer;
struct CMaterialColorField;
struct CMaterialNumberField;

/// Page of a material's values and maps. Colours and files of maps are written at once, what is typed with OK. Cancel takes back what was written.
class CMaterialInfo : public CDialogTable {
public:
    /// `frame`, which may be null, shows each change, and keeps that there was one.
    CMaterialInfo(C3DScene* scene, unsigned int material, C3DFrameViewer* frame, CWnd* parent);
    ~CMaterialInfo() override;
    void OnControl(unsigned int id) override;
    bool OnOk() override;
    void OnCancel() override;

private:
    C3DMaterial* GetMaterial() const;
    void AddColor(const CMaterialColorField& field);
    void AddMaps();
    /// The selected one; null for none.
    CMaterialMap* GetMap();
    void ShowMap();
    void ShowColor(const CMaterialColorField& field);
    void ModifyFile();
    void OpenBitmap();
    bool WriteName(C3DMaterial& material);
    bool WriteNumber(C3DMaterial& material, const CMaterialNumberField& field);
    void Changed(unsigned int news);

    C3DScene* m_scene;
    const unsigned int m_id;
    C3DFrameViewer* m_frame;
    CWnd* m_parent;
    std::unique_ptr<Bitmap> m_picture;

    // As it was

    struct FormerColor {
        const CMaterialColorField* field;
        CRGBColor color;
    };
    struct FormerFile {
        MapType map;
        CXTString<wchar_t> name;
    };
    std::vector<CXTString<wchar_t>> m_shown;    ///< texts of the fields, by CMaterialNumberField
    std::vector<FormerColor> m_formerColors;
    std::vector<FormerFile> m_formerFiles;
    bool m_wasModified = false;
};

/// The sheet. All fields are empty when there is no such material.
class ZEL_API CMaterialInfoSheet {
public:
    /// With a C3DFrameViewer as parent changes show there at once.
    CMaterialInfoSheet(C3DScene* scene, unsigned int material, CWnd* parent);
    ~CMaterialInfoSheet();
    void DoModal();

private:
    CWnd* m_parent;
    CReference<C3DScene> m_scene;
    std::unique_ptr<CMaterialInfo> m_settings;
    std::unique_ptr<CNodeAdditionalData> m_additional;
};

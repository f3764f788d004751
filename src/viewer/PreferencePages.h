#pragma once

// The sheet of preferences: how scenes are drawn, and where their files are looked for.

#include <memory>
#include <vector>

#include "windows/Dialog.h"

class C3DFrameViewer;
class C3DView;
class CRenderSheet;

/// A page of the sheet. What its user leaves alone it leaves alone too, so that pages can be applied in any order, and commands that change the
/// same things meanwhile keep their effect.
class ZEL_API CPreferencePage : public CDialogTable {
public:
    bool OnOk() override { return OnApply(); }
    /// The two boxes of VIEWFLAG_ECONOMY, on two pages, are one.
    virtual void ShowEconomy(bool on);

protected:
    /// A check box of a view flag, or of its inverse.
    struct FlagBox {
        unsigned int id;
        unsigned int flag;
        bool inverse = false;
    };

    CPreferencePage(CRenderSheet& sheet, unsigned int title, std::vector<FlagBox> boxes);
    /// Its text has the control's number.
    CControl& AddText(ControlKind kind, unsigned int id) { return Add(kind, id, GetText(id)); }
    static CXTString<wchar_t> GetText(unsigned int id);
    void ShowFlags();
    /// The view's flags with what the boxes change of those shown last.
    unsigned int GetFlags();
    bool IsChecked(unsigned int id) { return Find(id)->checked; }
    /// Stores them and gives them to the view, which is drawn anew where something has changed. `work`: _GLSET_FLAGS besides.
    void ApplyFlags(unsigned int flags, unsigned int work = 0);

    CRenderSheet& m_sheet;

private:
    const std::vector<FlagBox> m_boxes;
    unsigned int m_shownFlags = 0;
};

class ZEL_API CRenderGeneralPrefs : public CPreferencePage {
public:
    enum Control : unsigned int {
        ID_DOUBLE_SIDED = 9905,
        ID_HIDDEN_STIPPLED,
        ID_SELECTED_FACES,
        ID_VERTEX_COLORS,
        ID_TRANSPARENCY,
        ID_ALPHA_CUT,
        ID_EXTENSIONS,
        ID_SMALL_ICONS,
        ID_PATCH_LEVEL,
    };
    explicit CRenderGeneralPrefs(CRenderSheet& sheet);
    void OnInit() override;
    bool OnApply() override;

private:
    /// True when something of it shows in the next view only.
    bool ApplyProfile();
    void ApplyPatchLevel();

    bool m_alphaCut = false, m_extensions = false, m_smallIcons = false;    ///< as shown last
    int m_patchLevel = 0;
};

class ZEL_API CRenderColorPrefs : public CPreferencePage {
public:
    enum Control : unsigned int { ID_BACKGROUND = 9914, ID_SELECTION, ID_WIREFRAME, ID_LIGHT, ID_ECONOMY };
    explicit CRenderColorPrefs(CRenderSheet& sheet);
    void OnInit() override;
    void OnControl(unsigned int id) override;
    bool OnApply() override;
    void ShowEconomy(bool on) override;
};

class ZEL_API CRenderTexturePrefs : public CPreferencePage {
public:
    enum Control : unsigned int { ID_TEXTURES = 9919, ID_ECONOMY, ID_LARGEST, ID_PERSPECTIVE, ID_SMOOTH };
    explicit CRenderTexturePrefs(CRenderSheet& sheet);
    void OnInit() override;
    void OnControl(unsigned int id) override;
    bool OnApply() override;
    void ShowEconomy(bool on) override;

private:
    void UpdateEnabled();
};

/// Folders in which files of scenes are looked for.
class ZEL_API CPathPage : public CPreferencePage {
public:
    /// The three controls follow each other.
    void OnInit() override;
    void OnControl(unsigned int id) override;
    bool OnApply() override;

protected:
    CPathPage(CRenderSheet& sheet, unsigned int title, unsigned int firstId);
    virtual std::vector<CXTString<wchar_t>> GetPaths() = 0;
    virtual void SetPaths(const std::vector<CXTString<wchar_t>>& paths) = 0;

private:
    void AddFolders();
    void RemoveFolder();

    unsigned int m_list;    ///< the buttons have the next two numbers
    std::vector<CXTString<wchar_t>> m_shown;
};

class ZEL_API CRenderTexturePath : public CPathPage {
public:
    enum Control : unsigned int { ID_LIST = 9930, ID_ADD, ID_REMOVE };
    explicit CRenderTexturePath(CRenderSheet& sheet);

private:
    std::vector<CXTString<wchar_t>> GetPaths() override;
    void SetPaths(const std::vector<CXTString<wchar_t>>& paths) override;
};

class ZEL_API CRenderLWPath : public CPathPage {
public:
    enum Control : unsigned int { ID_LIST = 9933, ID_ADD, ID_REMOVE };
    explicit CRenderLWPath(CRenderSheet& sheet);

private:
    std::vector<CXTString<wchar_t>> GetPaths() override;
    void SetPaths(const std::vector<CXTString<wchar_t>>& paths) override;
};

/// The sheet of a frame. Pages of textures are there when the view has textures.
class ZEL_API CRenderSheet {
public:
    CRenderSheet(C3DFrameViewer& frame, C3DView& view);
    ~CRenderSheet();

    /// Until it is closed; then the preferences are saved in any case. True on OK.
    bool DoModal();

    C3DFrameViewer& GetFrame() { return m_frame; }
    C3DView& GetView() { return m_view; }
    /// Of all pages.
    void ShowEconomy(bool on);

private:
    C3DFrameViewer& m_frame;
    C3DView& m_view;
    std::vector<std::unique_ptr<CPreferencePage>> m_pages;
};

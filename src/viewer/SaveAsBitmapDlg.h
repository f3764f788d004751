#pragma once

#include "viewer/ImageSettings.h"
#include "windows/CommandDlg.h"

class C3DSaveAsBitmap;

/// Asks for the parameters of C3DSaveAsBitmap.
class ZEL_API C3DSaveAsBitmapDlg : public CCommandDlg {
public:
    enum Control : unsigned int {
        ID_AMPLITUDE = 9023,
        ID_ANIMATED = 9024,
        ID_BACKGROUND = 9025,
        ID_HEIGHT = 9026,
        ID_COUNT = 9027,
        ID_MOVEMENT = 9028,
        ID_POINT_OF_VIEW = 9030,
        ID_RENDER_MODE = 9031,
        ID_SMOOTH = 9032,
        ID_ANGLE = 9033,
        ID_WIDTH = 9034,
    };

    explicit C3DSaveAsBitmapDlg(C3DSaveAsBitmap* command);
    void OnInit() override;
    void OnControl(unsigned int id) override;
    bool OnOk() override;

private:
    void AddNumber(unsigned int id, unsigned int text, int minimum, int maximum, bool sameRow = false);
    void AddCombo(unsigned int id, unsigned int text, const std::vector<CXTString<wchar_t>>& names);
    void AddPointsOfView();
    void UpdateEnabled();

    C3DSaveAsBitmap& m_owner;
    CImageSettings m_params;
};

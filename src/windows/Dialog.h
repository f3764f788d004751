#pragma once

// Dialogs and property sheets: tables of controls and the logic behind them. The window system lays them out.

#include <limits>
#include <vector>

#include "tools/Api.h"
#include "tools/Color.h"
#include "tools/String.h"

class Bitmap;
class CCustomList;
class CDialogTable;
class CWnd;

enum ControlKind {
    CONTROL_LABEL,
    CONTROL_CHECK,
    CONTROL_CHECK3,    ///< with a third state: CControl::mixed
    CONTROL_RADIO,
    CONTROL_EDIT,
    CONTROL_MEMO,    ///< several lines
    CONTROL_BUTTON,
    CONTROL_LIST,      ///< entries, one of them selected
    CONTROL_COMBO,     ///< the same, folded up
    CONTROL_SLIDER,    ///< `number` in `minimum` to `maximum`
    CONTROL_SPIN,      ///< a whole number in that range, in a field
    CONTROL_COLOR,     ///< button of `color`
    CONTROL_PICTURE,
    CONTROL_TABLE,    ///< `table`
    CONTROL_GROUP,    ///< frame with a title around the rows up to the next group
};

/// One control of a dialog. Controls stand below each other in the order of their rows, those of one row side by side.
struct CControl {
    unsigned int id = 0;
    ControlKind kind = CONTROL_LABEL;
    CXTString<wchar_t> text;    ///< '&' before its access key. Of an edit field, a list, a slider: what stands in front
    int row = 0;
    unsigned int group = 0;    ///< radio buttons of one group exclude each other
    bool visible = true, enabled = true, readOnly = false;
    bool checked = false;        ///< check box, radio button
    bool mixed = false;          ///< CONTROL_CHECK3: neither
    CXTString<wchar_t> value;    ///< edit field, memo
    std::vector<CXTString<wchar_t>> items;
    std::vector<unsigned long long> itemData;    ///< parallel to `items`, or empty
    int selected = -1;
    int number = 0, minimum = 0, maximum = std::numeric_limits<int>::max();    ///< slider, spin
    CRGBColor color;
    const Bitmap* picture = nullptr;    ///< the caller's
    CCustomList* table = nullptr;       ///< the caller's
    int height = 0;                     ///< lines of text of a list, memo, table; pixels of a picture; 0: as usual
};

/// Asks the shown dialog to read its controls again. Given by the window system while the dialog shows.
class ZEL_API IDialogPeer {
public:
    virtual ~IDialogPeer();
    virtual void ControlsChanged() = 0;
    /// Ends the dialog as its buttons would; `ok` false cancels.
    virtual void EndDialog(bool ok) = 0;
};

/// A dialog, or a page of a property sheet. The window system shows it, writes what the user does into the controls, calls the handlers, and
/// shows the controls as each handler leaves them.
class ZEL_API CDialogTable {
public:
    CDialogTable();
    virtual ~CDialogTable();

    /// Runs before the dialog shows.
    virtual void OnInit();
    /// A button was pressed, or a control's value changed.
    virtual void OnControl(unsigned int id);
    /// A slider was let go of: its value is final.
    virtual void OnSliderEnd(unsigned int id);
    /// True when the key was used.
    virtual bool OnKey(unsigned int id, unsigned int key, unsigned int state);
    /// False keeps the dialog open.
    virtual bool OnOk();
    /// The Apply button of a sheet with `hasApply`; false leaves it to be pressed again.
    virtual bool OnApply();
    virtual void OnCancel();

    /// Adds a control in a row of its own, or with `sameRow` beside the former one. The reference holds until the next one.
    CControl& Add(ControlKind kind, unsigned int id, const CXTString<wchar_t>& text, bool sameRow = false);
    CControl* Find(unsigned int id);
    /// From outside of the handlers.
    void Refresh();

    CXTString<wchar_t> title;
    std::vector<CControl> controls;
    bool hasApply = false;
    bool hasCancel = true;
    IDialogPeer* peer = nullptr;    ///< set while it shows
};

/// Runs pages through the window system: each page's OnInit first; true on OK.
ZEL_API bool RunDialog(CWnd* parent, const CXTString<wchar_t>& title, const std::vector<CDialogTable*>& pages);

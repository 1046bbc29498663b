#pragma once

#include <QtGlobal>

#include <span>

namespace tidebrook {

/// What a control of a dialog is.
enum class ControlKind : quint8 {
    Label, ///< a text; it wraps
    Image, ///< an icon of `res/icons.h`
    PushButton,
    CheckBox,    ///< its text wraps
    RadioButton, ///< exclusive among those of its dialog; its text wraps
    Edit,        ///< one line of text
    DropDownList,
    ListBox,
    ListView,
    Tabs,  ///< the tabs of a property sheet
    Pages, ///< where a property sheet shows its pages
    Page,  ///< a page of formatted text
};

/// A control that nothing refers to.
inline constexpr quint16 anonymousControl = 0xFFFF;

/// A rectangle in dialog units. A screen is 240 by 320 of them, or 320 by 240 when it is wide,
/// whatever its size in pixels; a template's origin is the upper left corner of the dialog's own
/// area, which lies under the title strip and above the menu bar. For a page of a property sheet
/// that area is the sheet's `Pages`.
struct UnitRect {
    int x = 0;
    int y = 0;
    int cx = 0;
    int cy = 0;
};

inline constexpr int titleStripUnits = 18;
inline constexpr int menuBarUnits = 34;
/// What a header bar takes of the dialog's own area, besides the title strip.
inline constexpr int headerBarUnits = 23;
/// Where in its own area a dialog with a title label draws the line under that.
inline constexpr int titleLineUnits = 23;

struct ControlTemplate {
    quint16 id = anonymousControl;
    ControlKind kind = ControlKind::Label;
    UnitRect rect;
    const char16_t *text = nullptr; // none: the dialog itself puts it in, and it stays at a turn
    const char *icon = nullptr;     // its name in res/icons
    int styleBits = 0;              // see TemplateStyle
};

/// Details of how a control looks or behaves.
enum TemplateStyle : int {
    StyleNone = 0,
    StyleEditLabels = 1, ///< list view: the labels can be edited in place
    StyleCheckBoxes = 2, ///< list view: every row has a check box
    StyleHighlight = 4,  ///< label: in the highlight colour, as the title of a dialog
    StyleCentred = 8,    ///< label: in the middle
};

/// A dialog in one orientation.
struct DialogTemplate {
    int id = 0;
    int width = 0; // of the whole screen, in dialog units
    int height = 0;
    const char16_t *title = nullptr; // of a page: the text of its tab
    int fontPoints = 0;
    std::span<const ControlTemplate> controls; // in the order of the Tab key
};

/// The template of an id: even for a screen that is taller than wide, and the next odd one
/// otherwise. Both have the same controls. nullptr when there is none.
const DialogTemplate *dialogTemplate(int id);

} // namespace tidebrook

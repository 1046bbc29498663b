#pragma once

#include <QtGlobal>

#include <span>

namespace tidebrook {

enum class ControlKind : quint8 {
    Label,       ///< a text; it wraps
    Image,       ///< an icon of `res/icons.h`
    CheckBox,    ///< its text wraps
    RadioButton, ///< exclusive among those of its dialog; its text wraps
    Edit,        ///< one line of text
    DropDownList,
    ListView,
    Tabs,  ///< the tabs of a property sheet
    Pages, ///< where a property sheet shows its pages
    Page,  ///< a page of formatted text
};

/// The id of a control without one of its own.
inline constexpr quint16 anonymousControl = 0xFFFF;

/// A rectangle in dialog units. A screen is 240 by 320 of them, or 320 by 240 when it is wide. The
/// origin is the upper left corner of the area between the title strip and the menu bar; for a page
/// of a property sheet, that of the sheet's `Pages`.
struct UnitRect {
    int x = 0;
    int y = 0;
    int cx = 0;
    int cy = 0;
};

inline constexpr int titleStripUnits = 18;
inline constexpr int menuBarUnits = 34;
inline constexpr int headerBarUnits = 23; ///< the height of a header bar below the title strip
inline constexpr int titleLineUnits = 23; ///< the y of the line under a title label

/// A control of a dialog, on a tall and on a wide screen.
struct ControlTemplate {
    quint16 id = anonymousControl;
    ControlKind kind = ControlKind::Label;
    UnitRect tall;
    UnitRect wide;
    const char16_t *text = nullptr; ///< none: the dialog sets it, and a turn keeps it
    const char16_t *wideText = nullptr;
    const char *icon = nullptr; ///< its name in res/icons
    int styleBits = 0;          ///< see TemplateStyle
};

/// Details of how a control looks or behaves.
enum TemplateStyle : int {
    StyleNone = 0,
    StyleEditLabels = 1, ///< list view: the labels can be edited in place
    StyleCheckBoxes = 2, ///< list view: every row has a check box
    StyleHighlight = 4,  ///< label: in the highlight colour, as the title of a dialog
    StyleCentred = 8,    ///< label: in the middle
    StyleQuiet = 16,     ///< label: in grey, as a remark
};

struct DialogTemplate {
    int id = 0;                                ///< the even one
    const char16_t *title = nullptr;           ///< of a page: the text of its tab
    std::span<const ControlTemplate> controls; ///< in the order of the Tab key
};

inline constexpr int dialogFontPoints = 9;

/// A template has two ids: an even one for a screen that is taller than wide, and the next odd one
/// for any other screen.
inline bool isWideTemplate(int id) { return id % 2 != 0; }

/// The template of either id; nullptr when there is none.
const DialogTemplate *dialogTemplate(int id);

} // namespace tidebrook

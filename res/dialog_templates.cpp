#include "res/dialog_templates.h"

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

constexpr ControlTemplate control(quint16 id, ControlKind kind, UnitRect rect,
                                  const char16_t *text = nullptr, int styleBits = StyleNone) {
    return {id, kind, rect, text, nullptr, styleBits};
}

constexpr ControlTemplate image(const char *icon, UnitRect rect) {
    return {anonymousControl, ControlKind::Image, rect, nullptr, icon, StyleNone};
}

constexpr ControlTemplate label(quint16 id, UnitRect rect, const char16_t *text) {
    return control(id, ControlKind::Label, rect, text);
}

// Under it, at `titleLineUnits`, the dialogs draw a line.
constexpr ControlTemplate titleLabel(quint16 id, const char16_t *text, int width) {
    return control(id, ControlKind::Label, {8, 1, width - 16, 21}, text, StyleHighlight);
}

// The About box: its text comes from `aboutText`.
constexpr std::array about{
    image("tidebrook", {88, 36, 64, 64}),
    control(1030, ControlKind::Label, {8, 108, 224, 152}, nullptr, StyleCentred),
};
constexpr std::array aboutWide{
    image("tidebrook", {16, 74, 64, 64}),
    control(1030, ControlKind::Label, {92, 28, 220, 156}, nullptr, StyleCentred),
};

// The lists, below their header bar.
constexpr std::array categoryList{
    control(801, ControlKind::ListView, {0, 23, 240, 245}, nullptr, StyleEditLabels),
};
constexpr std::array categoryListWide{
    control(801, ControlKind::ListView, {0, 23, 320, 165}, nullptr, StyleEditLabels),
};
constexpr std::array channelList{
    control(802, ControlKind::ListView, {0, 23, 240, 245}),
};
constexpr std::array channelListWide{
    control(802, ControlKind::ListView, {0, 23, 320, 165}),
};

constexpr std::array articleView{control(1029, ControlKind::Page, {0, 0, 240, 268})};
constexpr std::array articleViewWide{control(1029, ControlKind::Page, {0, 0, 320, 188})};

// The settings: the sheet, whose header bar covers as much of it as it does of a list, and its
// pages.
constexpr std::array sheet{
    control(1032, ControlKind::Pages, {0, 23, 240, 211}),
    control(1031, ControlKind::Tabs, {0, 234, 240, 34}),
};
constexpr std::array sheetWide{
    control(1032, ControlKind::Pages, {0, 23, 320, 131}),
    control(1031, ControlKind::Tabs, {0, 154, 320, 34}),
};

constexpr std::array todaySetting{
    control(1001, ControlKind::CheckBox, {8, 6, 224, 34}, u"Enable Today Plugin."),
    label(1002, {8, 54, 120, 18}, u"Time Interval"),
    control(1003, ControlKind::DropDownList, {132, 46, 100, 34}),
};
constexpr std::array todaySettingWide{
    control(1001, ControlKind::CheckBox, {8, 7, 304, 34}, u"Enable Today Plugin."),
    label(1002, {8, 56, 120, 18}, u"Time Interval"),
    control(1003, ControlKind::DropDownList, {132, 48, 100, 34}),
};

constexpr std::array autoUpdate{
    control(1004, ControlKind::RadioButton, {8, 6, 224, 34}, u"Never Auto Update"),
    control(1005, ControlKind::RadioButton, {8, 46, 122, 34}, u"Update Interval"),
    control(1008, ControlKind::DropDownList, {132, 46, 100, 34}),
    control(1006, ControlKind::RadioButton, {8, 86, 122, 34}, u"Update Time"),
    control(1007, ControlKind::DropDownList, {132, 86, 100, 34}),
    control(1009, ControlKind::CheckBox, {8, 126, 224, 34},
            u"Only update when ActiveSync available"),
    control(1010, ControlKind::CheckBox, {8, 166, 224, 34}, u"Never update when roaming"),
};
constexpr std::array autoUpdateWide{
    control(1004, ControlKind::RadioButton, {8, 7, 186, 34}, u"Never Auto Update"),
    control(1005, ControlKind::RadioButton, {8, 48, 84, 34}, u"Update Interval"),
    control(1008, ControlKind::DropDownList, {94, 48, 100, 34}),
    control(1006, ControlKind::RadioButton, {8, 89, 84, 34}, u"Update Time"),
    control(1007, ControlKind::DropDownList, {94, 89, 100, 34}),
    control(1009, ControlKind::CheckBox, {200, 7, 116, 75},
            u"Only Update when ActiveSync available"),
    control(1010, ControlKind::CheckBox, {200, 89, 116, 34}, u"Never update when roaming"),
};

constexpr std::array properties{
    titleLabel(1011, u"Properties", 240),
    label(1012, {8, 28, 224, 18}, u"Channel Name:"),
    control(1013, ControlKind::Edit, {8, 46, 224, 34}),
    label(1014, {8, 88, 224, 18}, u"Channel URL:"),
    control(1015, ControlKind::Edit, {8, 106, 224, 34}),
    label(1016, {8, 148, 224, 18}, u"Category:"),
    control(1017, ControlKind::DropDownList, {8, 166, 224, 34}),
    control(1018, ControlKind::CheckBox, {8, 208, 224, 34}, u"Auto update this channel"),
};
constexpr std::array propertiesWide{
    titleLabel(1011, u"Properties", 320),
    label(1012, {8, 36, 108, 18}, u"Channel Name:"),
    control(1013, ControlKind::Edit, {120, 28, 192, 34}),
    label(1014, {8, 76, 108, 18}, u"Channel URL:"),
    control(1015, ControlKind::Edit, {120, 68, 192, 34}),
    label(1016, {8, 116, 108, 18}, u"Category:"),
    control(1017, ControlKind::DropDownList, {120, 108, 192, 34}),
    control(1018, ControlKind::CheckBox, {120, 148, 192, 34}, u"Auto update this channel"),
};

// The pages of the new channel wizard: how to add it, the channels of a list, the category.
constexpr std::array howToAdd{
    titleLabel(1019, u"New Channel", 240),
    label(1020, {8, 28, 224, 32}, u"How should the new channel be added?"),
    control(1021, ControlKind::RadioButton, {8, 62, 224, 34}, u"Input from URL"),
    control(1022, ControlKind::RadioButton, {8, 98, 224, 34}, u"Import from a file"),
    label(1023, {8, 140, 224, 18}, u"Enter the URL:"),
    control(1024, ControlKind::Edit, {8, 158, 224, 34}),
};
constexpr std::array howToAddWide{
    titleLabel(1019, u"New Channel", 320),
    label(1020, {8, 28, 304, 18}, u"How should the new channel be added?"),
    control(1021, ControlKind::RadioButton, {8, 50, 148, 34}, u"Input from URL"),
    control(1022, ControlKind::RadioButton, {164, 50, 148, 34}, u"Import from a file"),
    label(1023, {8, 92, 304, 18}, u"Enter the URL:"),
    control(1024, ControlKind::Edit, {8, 110, 304, 34}),
};

constexpr std::array channelChoice{
    titleLabel(1019, u"New Channel", 240),
    label(1025, {8, 34, 150, 18}, u"Choose the channel:"),
    control(1027, ControlKind::ListView, {0, 62, 240, 206}, nullptr, StyleCheckBoxes),
    control(1038, ControlKind::CheckBox, {162, 26, 70, 34}, u"All"),
};
constexpr std::array channelChoiceWide{
    titleLabel(1019, u"New Channel", 320),
    label(1025, {8, 34, 200, 18}, u"Choose the channel:"),
    control(1027, ControlKind::ListView, {0, 62, 320, 126}, nullptr, StyleCheckBoxes),
    control(1038, ControlKind::CheckBox, {242, 26, 70, 34}, u"All"),
};

constexpr std::array categoryChoice{
    titleLabel(1019, u"New Channel", 240),
    label(1028, {8, 28, 224, 18}, u"Category Name:"),
    control(1017, ControlKind::DropDownList, {8, 46, 224, 34}),
};
constexpr std::array categoryChoiceWide{
    titleLabel(1019, u"New Channel", 320),
    label(1028, {8, 36, 108, 18}, u"Category Name:"),
    control(1017, ControlKind::DropDownList, {120, 28, 192, 34}),
};

constexpr std::array help{control(1033, ControlKind::Page, {0, 23, 240, 245})};
constexpr std::array helpWide{control(1033, ControlKind::Page, {0, 23, 320, 165})};

// The file dialogs: the folder and the kind of files, a name to save under, and what is there.
constexpr std::array openFile{
    control(1034, ControlKind::Label, {8, 25, 126, 18}),
    control(1035, ControlKind::Label, {138, 25, 94, 18}),
    control(1037, ControlKind::ListView, {0, 45, 240, 223}),
};
constexpr std::array openFileWide{
    control(1034, ControlKind::Label, {8, 25, 202, 18}),
    control(1035, ControlKind::Label, {214, 25, 98, 18}),
    control(1037, ControlKind::ListView, {0, 45, 320, 143}),
};
constexpr std::array saveFile{
    control(1034, ControlKind::Label, {8, 25, 126, 18}),
    control(1035, ControlKind::Label, {138, 25, 94, 18}),
    control(1036, ControlKind::Edit, {8, 45, 224, 34}),
    control(1037, ControlKind::ListView, {0, 83, 240, 185}),
};
constexpr std::array saveFileWide{
    control(1034, ControlKind::Label, {8, 25, 202, 18}),
    control(1035, ControlKind::Label, {214, 25, 98, 18}),
    control(1036, ControlKind::Edit, {8, 45, 304, 34}),
    control(1037, ControlKind::ListView, {0, 83, 320, 105}),
};

constexpr DialogTemplate tall(int id, const char16_t *title,
                              std::span<const ControlTemplate> controls) {
    return {id, 240, 320, title, 9, controls};
}

constexpr DialogTemplate wide(int id, const char16_t *title,
                              std::span<const ControlTemplate> controls) {
    return {id, 320, 240, title, 9, controls};
}

constexpr std::array templates{
    tall(130, u"About", about),
    wide(131, u"About", aboutWide),
    tall(132, u"Tidebrook", categoryList),
    wide(133, u"Tidebrook", categoryListWide),
    tall(134, u"Tidebrook", channelList),
    wide(135, u"Tidebrook", channelListWide),
    tall(136, u"Tidebrook", articleView),
    wide(137, u"Tidebrook", articleViewWide),
    tall(138, u"Today Setting", todaySetting),
    wide(139, u"Today Setting", todaySettingWide),
    tall(140, u"Auto Update", autoUpdate),
    wide(141, u"Auto Update", autoUpdateWide),
    tall(142, u"Tidebrook", properties),
    wide(143, u"Tidebrook", propertiesWide),
    tall(144, u"Tidebrook", howToAdd),
    wide(145, u"Tidebrook", howToAddWide),
    tall(146, u"Tidebrook", categoryChoice),
    wide(147, u"Tidebrook", categoryChoiceWide),
    tall(148, u"Tidebrook", channelChoice),
    wide(149, u"Tidebrook", channelChoiceWide),
    tall(150, u"Setting", sheet),
    wide(151, u"Setting", sheetWide),
    tall(152, u"Help", help),
    wide(153, u"Help", helpWide),
    tall(154, u"Tidebrook", openFile),
    wide(155, u"Tidebrook", openFileWide),
    tall(156, u"Tidebrook", saveFile),
    wide(157, u"Tidebrook", saveFileWide),
};

} // namespace

const DialogTemplate *dialogTemplate(int id) {
    const auto *found =
        std::find_if(templates.begin(), templates.end(),
                     [id](const DialogTemplate &candidate) { return candidate.id == id; });
    return found == templates.end() ? nullptr : found;
}

} // namespace tidebrook

#include "res/dialog_templates.h"

#include "res/ids.h"

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
    control(AboutLabel, ControlKind::Label, {8, 108, 224, 152}, nullptr, StyleCentred),
};
constexpr std::array aboutWide{
    image("tidebrook", {16, 74, 64, 64}),
    control(AboutLabel, ControlKind::Label, {92, 28, 220, 156}, nullptr, StyleCentred),
};

// The lists, below their header bar.
constexpr std::array categoryList{
    control(CategoryListViewControl, ControlKind::ListView, {0, 23, 240, 245}, nullptr,
            StyleEditLabels),
};
constexpr std::array categoryListWide{
    control(CategoryListViewControl, ControlKind::ListView, {0, 23, 320, 165}, nullptr,
            StyleEditLabels),
};
constexpr std::array channelList{
    control(ListViewControl, ControlKind::ListView, {0, 23, 240, 245}),
};
constexpr std::array channelListWide{
    control(ListViewControl, ControlKind::ListView, {0, 23, 320, 165}),
};

constexpr std::array articleView{control(ArticlePageControl, ControlKind::Page, {0, 0, 240, 268})};
constexpr std::array articleViewWide{
    control(ArticlePageControl, ControlKind::Page, {0, 0, 320, 188})};

// The settings: the sheet, whose header bar covers as much of it as it does of a list, and its
// pages.
constexpr std::array sheet{
    control(SheetPages, ControlKind::Pages, {0, 23, 240, 211}),
    control(SheetTabs, ControlKind::Tabs, {0, 234, 240, 34}),
};
constexpr std::array sheetWide{
    control(SheetPages, ControlKind::Pages, {0, 23, 320, 131}),
    control(SheetTabs, ControlKind::Tabs, {0, 154, 320, 34}),
};

constexpr std::array todaySetting{
    control(TodayEnabledBox, ControlKind::CheckBox, {8, 6, 224, 34}, u"Enable Today Plugin."),
    label(TodayTimerLabel, {8, 54, 120, 18}, u"Time Interval"),
    control(TodayTimerList, ControlKind::DropDownList, {132, 46, 100, 34}),
};
constexpr std::array todaySettingWide{
    control(TodayEnabledBox, ControlKind::CheckBox, {8, 7, 304, 34}, u"Enable Today Plugin."),
    label(TodayTimerLabel, {8, 56, 120, 18}, u"Time Interval"),
    control(TodayTimerList, ControlKind::DropDownList, {132, 48, 100, 34}),
};

constexpr std::array autoUpdate{
    control(NeverUpdateButton, ControlKind::RadioButton, {8, 6, 224, 34}, u"Never Auto Update"),
    control(UpdateIntervalButton, ControlKind::RadioButton, {8, 46, 122, 34}, u"Update Interval"),
    control(UpdateIntervalList, ControlKind::DropDownList, {132, 46, 100, 34}),
    control(UpdateTimeButton, ControlKind::RadioButton, {8, 86, 122, 34}, u"Update Time"),
    control(UpdateTimeList, ControlKind::DropDownList, {132, 86, 100, 34}),
    control(NeedsCradleBox, ControlKind::CheckBox, {8, 126, 224, 34},
            u"Only update when ActiveSync available"),
    control(NoRoamingBox, ControlKind::CheckBox, {8, 166, 224, 34}, u"Never update when roaming"),
};
constexpr std::array autoUpdateWide{
    control(NeverUpdateButton, ControlKind::RadioButton, {8, 7, 186, 34}, u"Never Auto Update"),
    control(UpdateIntervalButton, ControlKind::RadioButton, {8, 48, 84, 34}, u"Update Interval"),
    control(UpdateIntervalList, ControlKind::DropDownList, {94, 48, 100, 34}),
    control(UpdateTimeButton, ControlKind::RadioButton, {8, 89, 84, 34}, u"Update Time"),
    control(UpdateTimeList, ControlKind::DropDownList, {94, 89, 100, 34}),
    control(NeedsCradleBox, ControlKind::CheckBox, {200, 7, 116, 75},
            u"Only Update when ActiveSync available"),
    control(NoRoamingBox, ControlKind::CheckBox, {200, 89, 116, 34}, u"Never update when roaming"),
};

constexpr std::array properties{
    titleLabel(PropertiesTitle, u"Properties", 240),
    label(ChannelNameLabel, {8, 28, 224, 18}, u"Channel Name:"),
    control(ChannelNameEdit, ControlKind::Edit, {8, 46, 224, 34}),
    label(ChannelLinkLabel, {8, 88, 224, 18}, u"Channel URL:"),
    control(ChannelLinkEdit, ControlKind::Edit, {8, 106, 224, 34}),
    label(CategoryLabel, {8, 148, 224, 18}, u"Category:"),
    control(CategoryDropDown, ControlKind::DropDownList, {8, 166, 224, 34}),
    control(AutoUpdateBox, ControlKind::CheckBox, {8, 208, 224, 34}, u"Auto update this channel"),
};
constexpr std::array propertiesWide{
    titleLabel(PropertiesTitle, u"Properties", 320),
    label(ChannelNameLabel, {8, 36, 108, 18}, u"Channel Name:"),
    control(ChannelNameEdit, ControlKind::Edit, {120, 28, 192, 34}),
    label(ChannelLinkLabel, {8, 76, 108, 18}, u"Channel URL:"),
    control(ChannelLinkEdit, ControlKind::Edit, {120, 68, 192, 34}),
    label(CategoryLabel, {8, 116, 108, 18}, u"Category:"),
    control(CategoryDropDown, ControlKind::DropDownList, {120, 108, 192, 34}),
    control(AutoUpdateBox, ControlKind::CheckBox, {120, 148, 192, 34}, u"Auto update this channel"),
};

// The pages of the new channel wizard: how to add it, the channels of a list, the category.
constexpr std::array howToAdd{
    titleLabel(WizardTitle, u"New Channel", 240),
    label(HowToAddLabel, {8, 28, 224, 32}, u"How should the new channel be added?"),
    control(FromUrlButton, ControlKind::RadioButton, {8, 62, 224, 34}, u"Input from URL"),
    control(FromFileButton, ControlKind::RadioButton, {8, 98, 224, 34}, u"Import from a file"),
    label(AddressLabel, {8, 140, 224, 18}, u"Enter the URL:"),
    control(AddressEdit, ControlKind::Edit, {8, 158, 224, 34}),
};
constexpr std::array howToAddWide{
    titleLabel(WizardTitle, u"New Channel", 320),
    label(HowToAddLabel, {8, 28, 304, 18}, u"How should the new channel be added?"),
    control(FromUrlButton, ControlKind::RadioButton, {8, 50, 148, 34}, u"Input from URL"),
    control(FromFileButton, ControlKind::RadioButton, {164, 50, 148, 34}, u"Import from a file"),
    label(AddressLabel, {8, 92, 304, 18}, u"Enter the URL:"),
    control(AddressEdit, ControlKind::Edit, {8, 110, 304, 34}),
};

constexpr std::array channelChoice{
    titleLabel(WizardTitle, u"New Channel", 240),
    label(ChannelChoiceLabel, {8, 34, 150, 18}, u"Choose the channel:"),
    control(ChannelChoiceList, ControlKind::ListView, {0, 62, 240, 206}, nullptr, StyleCheckBoxes),
    control(AllChannelsBox, ControlKind::CheckBox, {162, 26, 70, 34}, u"All"),
};
constexpr std::array channelChoiceWide{
    titleLabel(WizardTitle, u"New Channel", 320),
    label(ChannelChoiceLabel, {8, 34, 200, 18}, u"Choose the channel:"),
    control(ChannelChoiceList, ControlKind::ListView, {0, 62, 320, 126}, nullptr, StyleCheckBoxes),
    control(AllChannelsBox, ControlKind::CheckBox, {242, 26, 70, 34}, u"All"),
};

constexpr std::array categoryChoice{
    titleLabel(WizardTitle, u"New Channel", 240),
    label(CategoryNameLabel, {8, 28, 224, 18}, u"Category Name:"),
    control(CategoryDropDown, ControlKind::DropDownList, {8, 46, 224, 34}),
};
constexpr std::array categoryChoiceWide{
    titleLabel(WizardTitle, u"New Channel", 320),
    label(CategoryNameLabel, {8, 36, 108, 18}, u"Category Name:"),
    control(CategoryDropDown, ControlKind::DropDownList, {120, 28, 192, 34}),
};

constexpr std::array help{control(HelpPageControl, ControlKind::Page, {0, 23, 240, 245})};
constexpr std::array helpWide{control(HelpPageControl, ControlKind::Page, {0, 23, 320, 165})};

// The file dialogs: the folder and the kind of files, a name to save under, and what is there.
constexpr std::array openFile{
    control(FolderLabel, ControlKind::Label, {8, 25, 126, 18}),
    control(FilterLabel, ControlKind::Label, {138, 25, 94, 18}),
    control(FilesListViewControl, ControlKind::ListView, {0, 45, 240, 223}),
};
constexpr std::array openFileWide{
    control(FolderLabel, ControlKind::Label, {8, 25, 202, 18}),
    control(FilterLabel, ControlKind::Label, {214, 25, 98, 18}),
    control(FilesListViewControl, ControlKind::ListView, {0, 45, 320, 143}),
};
constexpr std::array saveFile{
    control(FolderLabel, ControlKind::Label, {8, 25, 126, 18}),
    control(FilterLabel, ControlKind::Label, {138, 25, 94, 18}),
    control(FileNameEdit, ControlKind::Edit, {8, 45, 224, 34}),
    control(FilesListViewControl, ControlKind::ListView, {0, 83, 240, 185}),
};
constexpr std::array saveFileWide{
    control(FolderLabel, ControlKind::Label, {8, 25, 202, 18}),
    control(FilterLabel, ControlKind::Label, {214, 25, 98, 18}),
    control(FileNameEdit, ControlKind::Edit, {8, 45, 304, 34}),
    control(FilesListViewControl, ControlKind::ListView, {0, 83, 320, 105}),
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
    tall(AboutTemplate, u"About", about),
    wide(AboutTemplate + 1, u"About", aboutWide),
    tall(CategoryListTemplate, u"Tidebrook", categoryList),
    wide(CategoryListTemplate + 1, u"Tidebrook", categoryListWide),
    tall(ListTemplate, u"Tidebrook", channelList),
    wide(ListTemplate + 1, u"Tidebrook", channelListWide),
    tall(ArticleViewTemplate, u"Tidebrook", articleView),
    wide(ArticleViewTemplate + 1, u"Tidebrook", articleViewWide),
    tall(TodayPageTemplate, u"Today Setting", todaySetting),
    wide(TodayPageTemplate + 1, u"Today Setting", todaySettingWide),
    tall(AutoUpdatePageTemplate, u"Auto Update", autoUpdate),
    wide(AutoUpdatePageTemplate + 1, u"Auto Update", autoUpdateWide),
    tall(PropertiesTemplate, u"Tidebrook", properties),
    wide(PropertiesTemplate + 1, u"Tidebrook", propertiesWide),
    tall(HowToAddTemplate, u"Tidebrook", howToAdd),
    wide(HowToAddTemplate + 1, u"Tidebrook", howToAddWide),
    tall(CategoryChoiceTemplate, u"Tidebrook", categoryChoice),
    wide(CategoryChoiceTemplate + 1, u"Tidebrook", categoryChoiceWide),
    tall(ChannelChoiceTemplate, u"Tidebrook", channelChoice),
    wide(ChannelChoiceTemplate + 1, u"Tidebrook", channelChoiceWide),
    tall(SettingsSheetTemplate, u"Setting", sheet),
    wide(SettingsSheetTemplate + 1, u"Setting", sheetWide),
    tall(HelpTemplate, u"Help", help),
    wide(HelpTemplate + 1, u"Help", helpWide),
    tall(OpenFileTemplate, u"Tidebrook", openFile),
    wide(OpenFileTemplate + 1, u"Tidebrook", openFileWide),
    tall(SaveFileTemplate, u"Tidebrook", saveFile),
    wide(SaveFileTemplate + 1, u"Tidebrook", saveFileWide),
};

} // namespace

const DialogTemplate *dialogTemplate(int id) {
    const auto *found =
        std::find_if(templates.begin(), templates.end(),
                     [id](const DialogTemplate &candidate) { return candidate.id == id; });
    return found == templates.end() ? nullptr : found;
}

} // namespace tidebrook

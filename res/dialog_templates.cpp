#include "res/dialog_templates.h"

#include "res/ids.h"

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

constexpr ControlTemplate control(quint16 id, ControlKind kind, UnitRect tall, UnitRect wide,
                                  const char16_t *text = nullptr, int styleBits = StyleNone) {
    return {id, kind, tall, wide, text, text, nullptr, styleBits};
}

constexpr ControlTemplate label(quint16 id, UnitRect tall, UnitRect wide, const char16_t *text) {
    return control(id, ControlKind::Label, tall, wide, text);
}

// The dialog draws a line under it, at `titleLineUnits`.
constexpr ControlTemplate titleLabel(quint16 id, const char16_t *text) {
    return control(id, ControlKind::Label, {8, 1, 224, 21}, {8, 1, 304, 21}, text, StyleHighlight);
}

constexpr std::array about{
    ControlTemplate{.kind = ControlKind::Image,
                    .tall = {88, 36, 64, 64},
                    .wide = {16, 74, 64, 64},
                    .icon = "tidebrook"},
    control(AboutLabel, ControlKind::Label, {8, 108, 224, 152}, {92, 28, 220, 156}, nullptr,
            StyleCentred),
};

// The lists lie below their header bar.
constexpr std::array categoryList{
    control(CategoryListViewControl, ControlKind::ListView, {0, 23, 240, 245}, {0, 23, 320, 165},
            nullptr, StyleEditLabels),
};
constexpr std::array list{
    control(ListViewControl, ControlKind::ListView, {0, 23, 240, 245}, {0, 23, 320, 165}),
};

constexpr std::array articleView{
    control(ArticlePageControl, ControlKind::Page, {0, 0, 240, 268}, {0, 0, 320, 188}),
};

constexpr std::array settingsSheet{
    control(SheetPages, ControlKind::Pages, {0, 23, 240, 211}, {0, 23, 320, 131}),
    control(SheetTabs, ControlKind::Tabs, {0, 234, 240, 34}, {0, 154, 320, 34}),
};

constexpr std::array todayPage{
    control(TodayEnabledBox, ControlKind::CheckBox, {8, 6, 224, 34}, {8, 7, 304, 34},
            u"Enable Today Plugin."),
    label(TodayTimerLabel, {8, 54, 120, 18}, {8, 56, 120, 18}, u"Time Interval"),
    control(TodayTimerList, ControlKind::DropDownList, {132, 46, 100, 34}, {132, 48, 100, 34}),
};

constexpr std::array autoUpdatePage{
    control(NeverUpdateButton, ControlKind::RadioButton, {8, 0, 224, 33}, {8, 0, 186, 33},
            u"Never Auto Update"),
    control(UpdateIntervalButton, ControlKind::RadioButton, {8, 33, 122, 33}, {8, 34, 84, 33},
            u"Update Interval"),
    control(UpdateIntervalList, ControlKind::DropDownList, {132, 33, 100, 33}, {94, 34, 100, 33}),
    control(UpdateTimeButton, ControlKind::RadioButton, {8, 67, 122, 33}, {8, 68, 84, 33},
            u"Update Time"),
    control(UpdateTimeList, ControlKind::DropDownList, {132, 67, 100, 33}, {94, 68, 100, 33}),
    ControlTemplate{.id = NeedsCradleBox,
                    .kind = ControlKind::CheckBox,
                    .tall = {8, 100, 224, 33},
                    .wide = {200, 0, 116, 67},
                    .text = u"Only update when ActiveSync available",
                    .wideText = u"Only Update when ActiveSync available"},
    control(NoRoamingBox, ControlKind::CheckBox, {8, 133, 224, 33}, {200, 68, 116, 33},
            u"Never update when roaming"),
    control(AutoUpdateCountLabel, ControlKind::Label, {8, 166, 224, 45}, {8, 101, 304, 30}, nullptr,
            StyleQuiet),
};

constexpr std::array properties{
    titleLabel(PropertiesTitle, u"Properties"),
    label(ChannelNameLabel, {8, 28, 224, 18}, {8, 36, 108, 18}, u"Channel Name:"),
    control(ChannelNameEdit, ControlKind::Edit, {8, 46, 224, 34}, {120, 28, 192, 34}),
    label(ChannelLinkLabel, {8, 88, 224, 18}, {8, 76, 108, 18}, u"Channel URL:"),
    control(ChannelLinkEdit, ControlKind::Edit, {8, 106, 224, 34}, {120, 68, 192, 34}),
    label(CategoryLabel, {8, 148, 224, 18}, {8, 116, 108, 18}, u"Category:"),
    control(CategoryDropDown, ControlKind::DropDownList, {8, 166, 224, 34}, {120, 108, 192, 34}),
    control(AutoUpdateBox, ControlKind::CheckBox, {8, 208, 224, 34}, {120, 148, 192, 34},
            u"Auto update this channel"),
};

// The pages of the new channel wizard.
constexpr std::array howToAdd{
    titleLabel(WizardTitle, u"New Channel"),
    label(HowToAddLabel, {8, 28, 224, 32}, {8, 28, 304, 18},
          u"How should the new channel be added?"),
    control(FromUrlButton, ControlKind::RadioButton, {8, 62, 224, 34}, {8, 50, 148, 34},
            u"Input from URL"),
    control(FromFileButton, ControlKind::RadioButton, {8, 98, 224, 34}, {164, 50, 148, 34},
            u"Import from a file"),
    label(AddressLabel, {8, 140, 224, 18}, {8, 92, 304, 18}, u"Enter the URL:"),
    control(AddressEdit, ControlKind::Edit, {8, 158, 224, 34}, {8, 110, 304, 34}),
};

constexpr std::array channelChoice{
    titleLabel(WizardTitle, u"New Channel"),
    label(ChannelChoiceLabel, {8, 34, 150, 18}, {8, 34, 200, 18}, u"Choose the channel:"),
    control(ChannelChoiceList, ControlKind::ListView, {0, 62, 240, 206}, {0, 62, 320, 126}, nullptr,
            StyleCheckBoxes),
    control(AllChannelsBox, ControlKind::CheckBox, {162, 26, 70, 34}, {242, 26, 70, 34}, u"All"),
};

constexpr std::array categoryChoice{
    titleLabel(WizardTitle, u"New Channel"),
    label(CategoryNameLabel, {8, 28, 224, 18}, {8, 36, 108, 18}, u"Category Name:"),
    control(CategoryDropDown, ControlKind::DropDownList, {8, 46, 224, 34}, {120, 28, 192, 34}),
};

constexpr std::array help{
    control(HelpPageControl, ControlKind::Page, {0, 23, 240, 245}, {0, 23, 320, 165}),
};

constexpr ControlTemplate folderLabel =
    control(FolderLabel, ControlKind::Label, {8, 25, 126, 18}, {8, 25, 202, 18});
constexpr ControlTemplate filterLabel =
    control(FilterLabel, ControlKind::Label, {138, 25, 94, 18}, {214, 25, 98, 18});
constexpr std::array openFile{
    folderLabel,
    filterLabel,
    control(FilesListViewControl, ControlKind::ListView, {0, 45, 240, 223}, {0, 45, 320, 143}),
};
constexpr std::array saveFile{
    folderLabel,
    filterLabel,
    control(FileNameEdit, ControlKind::Edit, {8, 45, 224, 34}, {8, 45, 304, 34}),
    control(FilesListViewControl, ControlKind::ListView, {0, 83, 240, 185}, {0, 83, 320, 105}),
};

constexpr std::array templates{
    DialogTemplate{AboutTemplate, u"About", about},
    DialogTemplate{CategoryListTemplate, u"Tidebrook", categoryList},
    DialogTemplate{ListTemplate, u"Tidebrook", list},
    DialogTemplate{ArticleViewTemplate, u"Tidebrook", articleView},
    DialogTemplate{TodayPageTemplate, u"Today Setting", todayPage},
    DialogTemplate{AutoUpdatePageTemplate, u"Auto Update", autoUpdatePage},
    DialogTemplate{PropertiesTemplate, u"Tidebrook", properties},
    DialogTemplate{HowToAddTemplate, u"Tidebrook", howToAdd},
    DialogTemplate{CategoryChoiceTemplate, u"Tidebrook", categoryChoice},
    DialogTemplate{ChannelChoiceTemplate, u"Tidebrook", channelChoice},
    DialogTemplate{SettingsSheetTemplate, u"Setting", settingsSheet},
    DialogTemplate{HelpTemplate, u"Help", help},
    DialogTemplate{OpenFileTemplate, u"Tidebrook", openFile},
    DialogTemplate{SaveFileTemplate, u"Tidebrook", saveFile},
};

} // namespace

const DialogTemplate *dialogTemplate(int id) {
    const int tallId = isWideTemplate(id) ? id - 1 : id;
    const auto *found = std::ranges::find(templates, tallId, &DialogTemplate::id);
    return found == templates.end() ? nullptr : found;
}

} // namespace tidebrook

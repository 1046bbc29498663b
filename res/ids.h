#pragma once

#include <QtGlobal>

namespace tidebrook {

/// The dialog templates for a screen that is taller than wide. That for a wide one has the next id.
enum TemplateId : int {
    AboutTemplate = 130,
    CategoryListTemplate = 132,
    ListTemplate = 134,
    ArticleViewTemplate = 136,
    TodayPageTemplate = 138,
    AutoUpdatePageTemplate = 140,
    PropertiesTemplate = 142,
    HowToAddTemplate = 144,
    CategoryChoiceTemplate = 146,
    ChannelChoiceTemplate = 148,
    SettingsSheetTemplate = 150,
    HelpTemplate = 152,
    OpenFileTemplate = 154,
    SaveFileTemplate = 156,
};

/// The controls of the templates. An id is unique within its dialog.
enum ControlId : quint16 {
    // lists and pages of the screens
    CategoryListViewControl = 801,
    ListViewControl = 802,
    ArticlePageControl = 1029,
    HelpPageControl = 1033,
    AboutLabel = 1030,

    // the settings
    SheetTabs = 1031,
    SheetPages = 1032,
    TodayEnabledBox = 1001,
    TodayTimerLabel = 1002,
    TodayTimerList = 1003,
    NeverUpdateButton = 1004,
    UpdateIntervalButton = 1005,
    UpdateTimeButton = 1006,
    UpdateTimeList = 1007,
    UpdateIntervalList = 1008,
    NeedsCradleBox = 1009,
    NoRoamingBox = 1010,
    AutoUpdateCountLabel = 1039,

    // a channel's properties, and the wizard
    PropertiesTitle = 1011,
    ChannelNameLabel = 1012,
    ChannelNameEdit = 1013,
    ChannelLinkLabel = 1014,
    ChannelLinkEdit = 1015,
    CategoryLabel = 1016,
    CategoryDropDown = 1017,
    AutoUpdateBox = 1018,
    WizardTitle = 1019,
    HowToAddLabel = 1020,
    FromUrlButton = 1021,
    FromFileButton = 1022,
    AddressLabel = 1023,
    AddressEdit = 1024,
    ChannelChoiceLabel = 1025,
    ChannelChoiceList = 1027,
    AllChannelsBox = 1038,
    CategoryNameLabel = 1028,

    // the file dialogs
    FolderLabel = 1034,
    FilterLabel = 1035,
    FileNameEdit = 1036,
    FilesListViewControl = 1037,
};

/// The pairs of soft keys.
enum MenuBarId : int {
    CategoryListMenuBar = 402,
    ChannelListMenuBar = 403,
    ArticleListMenuBar = 404,
    ArticleViewMenuBar = 405,
    SettingsSheetMenuBar = 406,
    HowToAddMenuBar = 407,
    CategoryChoiceMenuBar = 408,
    ChannelChoiceMenuBar = 409,
    PropertiesMenuBar = 410,
    TextMenuBar = 411,
    OpenFileMenuBar = 412,
    SaveFileMenuBar = 413,
    AboutMenuBar = 414,
};

} // namespace tidebrook

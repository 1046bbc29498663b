#include "res/menus.h"

#include "res/commands.h"
#include "res/ids.h"
#include "res/strings.h"

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

constexpr MenuEntry command(int id, const char16_t *text) { return {id, text, {}}; }

constexpr MenuEntry submenu(const char16_t *text, std::span<const MenuEntry> entries) {
    return {0, text, entries};
}

constexpr MenuEntry separator{};

constexpr std::array fontSizes{
    command(CommandFontSmall, u"Small"),
    command(CommandFontNormal, u"Normal"),
    command(CommandFontBig, u"Big"),
};

constexpr std::array sortOrders{
    command(CommandSortByDate, u"Date"),
    command(CommandSortByStatus, u"Status"),
};

constexpr std::array categoryMenu{
    command(CommandUpdateCategory, u"Update"),
    command(CommandNewCategory, u"New Category"),
    command(CommandDeleteCategory, u"Delete"),
    command(CommandRenameCategory, u"Rename"),
    submenu(u"Font Size", fontSizes),
    separator,
    command(CommandExportCategory, u"Export Category"),
    command(CommandSettings, u"Setting"),
    command(CommandAbout, u"About"),
    separator,
    command(CommandExit, u"Exit"),
};

constexpr std::array channelMenu{
    command(CommandUpdateChannel, u"Update"),   command(CommandUpdateAll, u"Update All"),
    command(CommandNewChannel, u"New Channel"), command(CommandDeleteChannel, u"Delete Channel"),
    submenu(u"Font Size", fontSizes),           command(CommandExportChannel, u"Export Channel"),
    command(CommandProperties, u"Properties"),
};

constexpr std::array articleMenu{
    command(CommandUpdateArticles, u"Update"),
    command(CommandMarkAllRead, u"Mark all as Read"),
    command(CommandMarkAllUnread, u"Mark all as Unread"),
    separator,
    command(CommandUnreadOnly, u"Show Unread Only"),
    submenu(u"Sort by", sortOrders),
    separator,
    submenu(u"Font Size", fontSizes),
};

constexpr std::array viewMenu{
    submenu(u"Font Size", fontSizes),
    separator,
    command(CommandSaveLink, u"Save Link"),
    command(CommandSaveArticle, u"Save Article"),
    separator,
    command(CommandSendByMail, u"Send Link via email"),
    command(CommandSendBySms, u"Send Link via SMS"),
};

constexpr SoftKey blankKey{};

constexpr SoftKey key(int commandId, int textId) { return {commandId, textId, {}}; }

constexpr SoftKey menuKey(std::span<const MenuEntry> menu) { return {0, menuString, menu}; }

constexpr std::array menuBars{
    MenuBarResource{CategoryListMenuBar, blankKey, menuKey(categoryMenu)},
    MenuBarResource{ChannelListMenuBar, key(CommandBackToCategories, categoryListString),
                    menuKey(channelMenu)},
    MenuBarResource{ArticleListMenuBar, key(CommandBackToChannels, channelListString),
                    menuKey(articleMenu)},
    MenuBarResource{ArticleViewMenuBar, key(CommandBackToArticles, articleListString),
                    menuKey(viewMenu)},
    MenuBarResource{SettingsSheetMenuBar, key(CommandDone, doneString),
                    key(CommandCancelSettings, cancelString)},
    MenuBarResource{HowToAddMenuBar, key(CommandCancelWizard, cancelString),
                    key(CommandWizardNext, nextString)},
    MenuBarResource{CategoryChoiceMenuBar, key(CommandWizardBack, backString),
                    key(CommandFinish, finishString)},
    MenuBarResource{ChannelChoiceMenuBar, key(CommandWizardBack, backString),
                    key(CommandWizardNext, nextString)},
    MenuBarResource{PropertiesMenuBar, key(CommandPropertiesDone, doneString),
                    key(CommandCancelProperties, cancelString)},
    MenuBarResource{TextMenuBar, key(CommandDone, doneString), blankKey},
    MenuBarResource{AboutMenuBar, key(CommandDone, doneString), key(CommandHelp, helpString)},
    MenuBarResource{OpenFileMenuBar, key(CommandCancel, cancelString), key(CommandOk, openString)},
    MenuBarResource{SaveFileMenuBar, key(CommandCancel, cancelString), key(CommandOk, saveString)},
};

} // namespace

const MenuBarResource &menuBarResource(MenuBarId id) {
    return *std::ranges::find(menuBars, id, &MenuBarResource::id);
}

} // namespace tidebrook

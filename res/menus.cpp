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

constexpr int categoryMenuId = 40003;
constexpr int viewMenuId = 40004;
constexpr int channelMenuId = 40005;
constexpr int articleMenuId = 40006;

constexpr SoftKey blankKey{};

constexpr SoftKey key(int commandId, int textId) { return {commandId, textId, 0}; }

constexpr SoftKey menuKey(int menuId) { return {0, menuString, menuId}; }

constexpr std::array menuBars{
    MenuBarResource{MainMenuBar, key(CommandMainMenu, menuString), blankKey},
    MenuBarResource{CategoryListMenuBar, blankKey, menuKey(categoryMenuId)},
    MenuBarResource{ChannelListMenuBar, key(CommandBackToCategories, categoryListString),
                    menuKey(channelMenuId)},
    MenuBarResource{ArticleListMenuBar, key(CommandBackToChannels, channelListString),
                    menuKey(articleMenuId)},
    MenuBarResource{ArticleViewMenuBar, key(CommandBackToArticles, articleListString),
                    menuKey(viewMenuId)},
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
    MenuBarResource{TextMenuBar, key(CommandDone, doneString),
                    blankKey}, // the help and the About box
    MenuBarResource{OpenFileMenuBar, key(CommandCancel, cancelString), key(CommandOk, openString)},
    MenuBarResource{SaveFileMenuBar, key(CommandCancel, cancelString), key(CommandOk, saveString)},
};

} // namespace

std::span<const MenuEntry> menuEntries(int id) {
    switch (id) {
    case categoryMenuId:
        return categoryMenu;
    case viewMenuId:
        return viewMenu;
    case channelMenuId:
        return channelMenu;
    case articleMenuId:
        return articleMenu;
    default:
        return {};
    }
}

const MenuBarResource *menuBarResource(int id) {
    const auto *bar =
        std::find_if(menuBars.begin(), menuBars.end(),
                     [id](const MenuBarResource &candidate) { return candidate.id == id; });
    return bar == menuBars.end() ? nullptr : bar;
}

} // namespace tidebrook

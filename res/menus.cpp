#include "res/menus.h"

#include "res/commands.h"
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
    MenuBarResource{401, key(CommandMainMenu, menuString), blankKey},
    MenuBarResource{402, blankKey, menuKey(categoryMenuId)},
    MenuBarResource{403, key(CommandBackToCategories, categoryListString), menuKey(channelMenuId)},
    MenuBarResource{404, key(CommandBackToChannels, channelListString), menuKey(articleMenuId)},
    MenuBarResource{405, key(CommandBackToArticles, articleListString), menuKey(viewMenuId)},
    MenuBarResource{406, key(CommandDone, doneString), key(CommandCancelSettings, cancelString)},
    MenuBarResource{407, key(CommandCancelWizard, cancelString),
                    key(CommandWizardNext, nextString)},
    MenuBarResource{408, key(CommandWizardBack, backString), key(CommandFinish, finishString)},
    MenuBarResource{409, key(CommandWizardBack, backString), key(CommandWizardNext, nextString)},
    MenuBarResource{410, key(CommandPropertiesDone, doneString),
                    key(CommandCancelProperties, cancelString)},
    MenuBarResource{411, key(CommandDone, doneString), blankKey}, // the help and the About box
    MenuBarResource{412, key(CommandCancel, cancelString), key(CommandOk, openString)},
    MenuBarResource{413, key(CommandCancel, cancelString), key(CommandOk, saveString)},
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

#pragma once

namespace tidebrook {

/// The commands of menus, soft keys and keys, and those that screens post.
enum Command : int {
    CommandOk = 1,
    CommandCancel = 2,

    // header bar
    CommandHideChoices = 1445,
    CommandNext = 32330,
    CommandShowChoices = 32331,
    CommandPrevious = 32332,

    // category list
    CommandNewCategory = 32772,
    CommandDeleteCategory = 32773,
    CommandRenameCategory = 32774,
    CommandExportCategory = 32776,
    CommandSettings = 32777,
    CommandAbout = 32778,
    CommandExit = 32779,
    CommandUpdateCategory = 32814,

    // channel list
    CommandUpdateChannel = 32780,
    CommandNewChannel = 32781,
    CommandDeleteChannel = 32782,
    CommandUpdateAll = 32783,
    CommandExportChannel = 32785,
    CommandProperties = 32786,
    CommandBackToCategories = 32804,

    // article list
    CommandBackToChannels = 32787,
    CommandUpdateArticles = 32788,
    CommandMarkAllRead = 32789,
    CommandMarkAllUnread = 32790,
    CommandSortByDate = 32791,
    CommandSortByStatus = 32792,
    CommandUnreadOnly = 32793,

    // article view
    CommandBackToArticles = 32795,
    CommandSaveLink = 32797,
    CommandSaveArticle = 32798,
    CommandSendByMail = 32799,
    CommandSendBySms = 32800,

    // every list, in the order of the sizes
    CommandFontSmall = 32801,
    CommandFontNormal = 32802,
    CommandFontBig = 32803,
    CommandFontBigger = 32830,
    CommandFontSmaller = 32831,

    // posted by the screens
    CommandOpenChannels = 32805,
    CommandOpenArticles = 32806,
    CommandOpenArticle = 32807,
    CommandRefreshCategories = 32817,
    CommandRefreshChannels = 32818,
    CommandRefreshArticles = 32819,
    CommandWizardGoOn = 32820,

    // soft keys of dialogs
    CommandDone = 32808,
    CommandCancelSettings = 32809,
    CommandCancelWizard = 32810,
    CommandWizardNext = 32811,
    CommandWizardBack = 32812,
    CommandFinish = 32813,
    CommandCancelProperties = 32815,
    CommandPropertiesDone = 32816,

    CommandHelp = 32821,

    // file dialogs, besides OK and Cancel
    CommandFolderAbove = 32840,
    CommandTakeFile = 32841,
};

} // namespace tidebrook

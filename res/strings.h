#pragma once

#include <QString>
#include <QStringList>

namespace tidebrook {

/// The text of an entry of the string table; empty when there is no such entry.
QString resourceString(int id);

/// `count` entries with successive ids.
QStringList resourceStrings(int firstId, int count);

/// The message for an error code (1000 to 1014); any other number is an unidentified problem.
QString errorMessage(quint32 code);

// the program
inline constexpr int programNameString = 1; // the title of its window
inline constexpr int todayItemNameString = 60;

// soft keys and buttons
inline constexpr int menuString = 5;
inline constexpr int doneString = 9;
inline constexpr int cancelString = 10;
inline constexpr int nextString = 11;
inline constexpr int backString = 12;
inline constexpr int finishString = 13;
inline constexpr int categoryListString = 39;
inline constexpr int channelListString = 40;
inline constexpr int articleListString = 41;
inline constexpr int previousString = 42;
inline constexpr int openString = 61;
inline constexpr int helpString = 70;

// titles
inline constexpr int aboutString = 4;
inline constexpr int exportCategoryString = 6;
inline constexpr int exportChannelString = 7;
inline constexpr int saveString = 14;
inline constexpr int newChannelString = 26;
inline constexpr int allCategoriesString = 33;

// names for what is new, and the kinds of files
inline constexpr int newCategoryNameString = 3;
inline constexpr int newChannelNameString = 8;
inline constexpr int opmlFilterString = 43;
inline constexpr int htmlFilterString = 59;

// file dialogs: the kind of a row, and the accessible names of the controls
inline constexpr int folderAboveString = 62;
inline constexpr int fileNameString = 63;
inline constexpr int filesString = 64;

// what a screen reader says
inline constexpr int atWorkString = 90;
inline constexpr int unreadString = 91;
inline constexpr int unreadOfString = 92;
inline constexpr int notUpdatedString = 93;

// choices, with successive ids
inline constexpr int firstIntervalString = 17;
inline constexpr int intervalCount = 6;
inline constexpr int firstSpeedString = 23;
inline constexpr int speedCount = 3;
inline constexpr int noCategoryString = 29; // stands for the categories when there are none

// how many channels are updated automatically
inline constexpr int noneAutomaticString = 71;
inline constexpr int oneAutomaticString = 72;
inline constexpr int manyAutomaticString = 73;
inline constexpr int automaticUnknownString = 74;

// questions
inline constexpr int confirmDeletionString = 16; // their caption
inline constexpr int deleteCategoryString = 15;
inline constexpr int deleteChannelString = 31;
inline constexpr int replaceFileString = 65;

// warnings
inline constexpr int warningString = 30; // their caption
inline constexpr int nameExistsString = 34;
inline constexpr int noCategorySelectedString = 36;
inline constexpr int noChannelSelectedString = 37;
inline constexpr int noArticleSelectedString = 38;

// what empty lists say, and the header of one that leaves articles out
inline constexpr int noCategoryYetString = 80;
inline constexpr int noChannelYetString = 81;
inline constexpr int noArticleYetString = 82;
inline constexpr int nothingUnreadString = 83;
inline constexpr int unreadOnlyString = 84;

// the Today item: in the place of a headline, in its menu, and of what it was asked to do
inline constexpr int todayNoDeviceString = 100;
inline constexpr int todayUnreadableString = 101;
inline constexpr int todayNoChannelString = 102;
inline constexpr int todayNothingUnreadString = 103;
inline constexpr int todayUnreadString = 104;
inline constexpr int todayOpenString = 105;
inline constexpr int todayUpdateString = 106;
inline constexpr int todayMarkString = 107;
inline constexpr int todaySettingsString = 108;
inline constexpr int todayHideString = 109;
inline constexpr int todayUpdatingString = 110;
inline constexpr int todayNotUpdatedString = 111;
inline constexpr int todayNotMarkedString = 112;
inline constexpr int todayNotOpenedString = 113;
inline constexpr int todayOneNewString = 114;
inline constexpr int todayManyNewString = 115;
inline constexpr int todayOneChannelString = 116;
inline constexpr int todayManyChannelsString = 117;

// errors
inline constexpr int errorString = 28; // the caption of every error
inline constexpr int wrongUrlString = 27;
inline constexpr int noFileNameString = 66;
inline constexpr int noFolderString = 67;
inline constexpr int noFileString = 68;
inline constexpr int longFileNameString = 69;
inline constexpr int databaseProblemString = 45;
inline constexpr int fileProblemString = 50;
inline constexpr int memoryProblemString = 54;
inline constexpr int unidentifiedProblemString = 56;

} // namespace tidebrook

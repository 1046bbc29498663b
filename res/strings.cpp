#include "res/strings.h"

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

struct Entry {
    int id;
    const char16_t *text;
};

constexpr char16_t databaseProblem[] = u"Encountering Problem when Accessing Database";
constexpr char16_t feedProblem[] = u"Encountering Problem when Reading Feed information";
constexpr char16_t fileProblem[] = u"Encountering Problem when Accessing Crucial File";
constexpr char16_t internetProblem[] = u"Encountering Internet Problem";
constexpr char16_t memoryProblem[] = u"Encountering Memory Problem";

constexpr std::array table{
    Entry{programNameString, u"Tidebrook"},
    Entry{2, u"FEEDLARK"},
    Entry{newCategoryNameString, u"New Category"},
    Entry{aboutString, u"About"},
    Entry{menuString, u"Menu"},
    Entry{exportCategoryString, u"Export Category"},
    Entry{exportChannelString, u"Export Channel"},
    Entry{newChannelNameString, u"New Channel"},
    Entry{doneString, u"Done"},
    Entry{cancelString, u"Cancel"},
    Entry{nextString, u"Next"},
    Entry{backString, u"Back"},
    Entry{finishString, u"Finish"},
    Entry{saveString, u"Save"},
    Entry{deleteCategoryString, u"Are you sure you want to delete this category?"},
    Entry{confirmDeletionString, u"Confirm Deletion"},
    Entry{firstIntervalString, u"30 minutes"},
    Entry{firstIntervalString + 1, u"1 hour"},
    Entry{firstIntervalString + 2, u"2 hours"},
    Entry{firstIntervalString + 3, u"4 hours"},
    Entry{firstIntervalString + 4, u"8 hours"},
    Entry{firstIntervalString + 5, u"16 hours"},
    Entry{firstSpeedString, u"Slow"},
    Entry{firstSpeedString + 1, u"Normal"},
    Entry{firstSpeedString + 2, u"Fast"},
    Entry{newChannelString, u"New Channel"},
    Entry{wrongUrlString, u"The URL format is wrong!"},
    Entry{errorString, u"Error"},
    Entry{noCategoryString, u"No Category Exist!"},
    Entry{warningString, u"Warning"},
    Entry{deleteChannelString, u"Are you sure you want to delete this channel?"},
    Entry{32, u"Properties"},
    Entry{allCategoriesString, u"All Categories"},
    Entry{nameExistsString, u"The name is exist!"},
    Entry{35, u"Please connect the device to the network."},
    Entry{noCategorySelectedString, u"No category selected!"},
    Entry{noChannelSelectedString, u"No channel selected!"},
    Entry{noArticleSelectedString, u"No article selected!"},
    Entry{categoryListString, u"Category List"},
    Entry{channelListString, u"Channel List"},
    Entry{articleListString, u"Article List"},
    Entry{previousString, u"Previous"},
    Entry{opmlFilterString, u"OPML (*.opml)"},
    Entry{44, databaseProblem},
    Entry{45, databaseProblem},
    Entry{46, feedProblem},
    Entry{47, feedProblem},
    Entry{48, fileProblem},
    Entry{49, fileProblem},
    Entry{fileProblemString, fileProblem},
    Entry{51, internetProblem},
    Entry{52, internetProblem},
    Entry{53, internetProblem},
    Entry{memoryProblemString, memoryProblem},
    Entry{55, memoryProblem},
    Entry{unidentifiedProblemString, u"Encountering Unidentified Problem"},
    Entry{57, u"ActiveSync unavailable"},
    Entry{58, u"Your device is roaming."},
    Entry{htmlFilterString, u"html (*.html)"},
    Entry{todayItemNameString, u"Tidebrook"},
    Entry{openString, u"Open"},
    Entry{folderAboveString, u"Folder above"},
    Entry{fileNameString, u"File name"},
    Entry{filesString, u"Files"},
    Entry{replaceFileString, u"%1 is there already. Replace it?"},
    Entry{noFileNameString, u"Please enter a file name."},
    Entry{noFolderString, u"There is no folder %1."},
    Entry{noFileString, u"%1 is not a file."},
    Entry{longFileNameString, u"The file name is too long."},
    Entry{noCategoryYetString, u"No category yet.\n\"Menu\", \"New Category\" makes one."},
    Entry{noChannelYetString,
          u"No channel in this category yet.\n\"Menu\", \"New Channel\" adds one."},
    Entry{noArticleYetString, u"No article yet.\n\"Menu\", \"Update\" fetches what there is."},
    Entry{nothingUnreadString, u"Nothing unread.\n\"Menu\", \"Show Unread Only\" shows all."},
    Entry{unreadOnlyString, u"unread only"},
    Entry{helpString, u"Help"},
    Entry{noneAutomaticString,
          u"No channel takes part. Tick \"Auto update this channel\" in a channel's Properties."},
    Entry{oneAutomaticString, u"1 channel takes part."},
    Entry{manyAutomaticString, u"%1 channels take part."},
    Entry{automaticUnknownString, u"The list of the channels that take part cannot be read."},
    Entry{atWorkString, u"At work"},
    Entry{unreadString, u"unread"},
    Entry{unreadOfString, u"%1 unread of %2"},
    Entry{notUpdatedString, u"not updated yet"},
    Entry{todayNoDeviceString, u"Open Tidebrook to begin."},
    Entry{todayUnreadableString, u"The articles cannot be read now."},
    Entry{todayNoChannelString, u"No channel yet. Open Tidebrook to add one."},
    Entry{todayNothingUnreadString, u"Nothing unread."},
    Entry{todayUnreadString, u"%1 unread"},
    Entry{todayOpenString, u"Open Tidebrook"},
    Entry{todayUpdateString, u"Update Now"},
    Entry{todayMarkString, u"Mark as Read"},
    Entry{todaySettingsString, u"Setting"},
    Entry{todayHideString, u"Hide"},
    Entry{todayUpdatingString, u"The channels of the automatic updates are being updated."},
    Entry{todayNotUpdatedString, u"The downloader could not be started."},
    Entry{todayNotMarkedString, u"The article could not be marked."},
    Entry{todayNotOpenedString, u"Tidebrook could not be opened."},
    Entry{todayOneNewString, u"1 new article in %1"},
    Entry{todayManyNewString, u"%1 new articles in %2"},
    Entry{todayOneChannelString, u"1 channel"},
    Entry{todayManyChannelsString, u"%1 channels"},
};

constexpr quint32 firstErrorCode = 1000;
constexpr quint32 errorCodeCount = 15;
constexpr int firstErrorString = 44; // the others follow in the order of the codes

} // namespace

QString resourceString(int id) {
    const auto *entry = std::ranges::find(table, id, &Entry::id);
    return entry == table.end() ? QString() : QString::fromUtf16(entry->text);
}

QStringList resourceStrings(int firstId, int count) {
    QStringList texts;
    texts.reserve(count);
    for (int i = 0; i < count; ++i)
        texts.append(resourceString(firstId + i));
    return texts;
}

QString errorMessage(quint32 code) {
    const quint32 index = code - firstErrorCode;
    if (code < firstErrorCode || index >= errorCodeCount)
        return resourceString(unidentifiedProblemString);
    return resourceString(firstErrorString + static_cast<int>(index));
}

} // namespace tidebrook

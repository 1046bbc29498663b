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
    Entry{1, u"Tidebrook"},
    Entry{wrongUrlString, u"The URL format is wrong!"},
    Entry{28, u"Error"},
    Entry{29, u"No Category Exist!"},
    Entry{nameExistsString, u"The name is exist!"},
    Entry{44, databaseProblem},
    Entry{45, databaseProblem},
    Entry{46, feedProblem},
    Entry{47, feedProblem},
    Entry{48, fileProblem},
    Entry{49, fileProblem},
    Entry{50, fileProblem},
    Entry{51, internetProblem},
    Entry{52, internetProblem},
    Entry{53, internetProblem},
    Entry{54, memoryProblem},
    Entry{55, memoryProblem},
    Entry{56, u"Encountering Unidentified Problem"},
    Entry{57, u"ActiveSync unavailable"},
    Entry{58, u"Your device is roaming."},
    Entry{todayItemNameString, u"Tidebrook"},
};

struct ErrorText {
    quint32 code;
    int stringId;
};

constexpr std::array errorTexts{
    ErrorText{1000, 44}, ErrorText{1001, 45}, ErrorText{1002, 46}, ErrorText{1003, 47},
    ErrorText{1004, 48}, ErrorText{1005, 49}, ErrorText{1006, 50}, ErrorText{1007, 51},
    ErrorText{1008, 52}, ErrorText{1009, 53}, ErrorText{1010, 54}, ErrorText{1011, 55},
    ErrorText{1012, 56}, ErrorText{1013, 57}, ErrorText{1014, 58},
};

constexpr int unidentifiedProblem = 56;

} // namespace

QString resourceString(int id) {
    const auto *entry = std::find_if(table.begin(), table.end(),
                                     [id](const Entry &candidate) { return candidate.id == id; });
    return entry == table.end() ? QString() : QString::fromUtf16(entry->text);
}

QString errorMessage(quint32 code) {
    const auto *row =
        std::find_if(errorTexts.begin(), errorTexts.end(),
                     [code](const ErrorText &candidate) { return candidate.code == code; });
    return resourceString(row == errorTexts.end() ? unidentifiedProblem : row->stringId);
}

} // namespace tidebrook

#include "res/icons.h"
#include "res/strings.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <tuple>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

TEST(Messages, EachErrorCodeIsToldAsTheProblemThatItIs) {
    const QString unknown = u"Encountering Unidentified Problem"_s;
    const std::tuple<quint32, quint32, QString> rows[]{
        {999, 999, unknown},
        {1000, 1001, u"Encountering Problem when Accessing Database"_s},
        {1002, 1003, u"Encountering Problem when Reading Feed information"_s},
        {1004, 1006, u"Encountering Problem when Accessing Crucial File"_s},
        {1007, 1009, u"Encountering Internet Problem"_s},
        {1010, 1011, u"Encountering Memory Problem"_s},
        {1012, 1012, unknown},
        {1013, 1013, u"ActiveSync unavailable"_s},
        {1014, 1014, u"Your device is roaming."_s},
    };
    for (const auto &[first, last, text] : rows) {
        for (quint64 code = first; code <= last; ++code)
            EXPECT_EQ(errorMessage(static_cast<quint32>(code)), text) << code;
    }
}

TEST(Help, LeadsToEveryPlaceThatItNames) {
    const QString page = QString::fromUtf8(helpPage());
    const QRegularExpression link(u"href=\"#?([^\"]*)\""_s);
    QStringList places{u"FeedlarkHelp"_s};
    for (const QRegularExpressionMatch &match : link.globalMatch(page))
        places.append(match.captured(1));
    EXPECT_GT(places.size(), 1);
    for (const QString &place : places)
        EXPECT_TRUE(page.contains(u"<a name=\"" + place + u"\">")) << place.toStdString();
}

} // namespace
} // namespace tidebrook

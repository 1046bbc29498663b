#include "res/icons.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

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

#include "res/dialog_templates.h"
#include "res/icons.h"
#include "res/strings.h"

#include <gtest/gtest.h>

#include <QRect>
#include <QRegularExpression>

#include <map>
#include <set>

namespace tidebrook {
namespace {

QRect toRect(const UnitRect &rect) { return {rect.x, rect.y, rect.cx, rect.cy}; }

// Those of the settings.
bool isPage(int id) { return id >= 138 && id <= 141; }

QRect area(const DialogTemplate &dialog) {
    if (!isPage(dialog.id))
        return {0, 0, dialog.width, dialog.height - titleStripUnits - menuBarUnits};
    for (const ControlTemplate &control : dialogTemplate(150 + dialog.id % 2)->controls) {
        if (control.kind == ControlKind::Pages)
            return {0, 0, control.rect.cx, control.rect.cy};
    }
    return {};
}

bool isTouched(ControlKind kind) {
    return kind != ControlKind::Label && kind != ControlKind::Image;
}

void expectRoomForEach(const DialogTemplate &dialog) {
    SCOPED_TRACE(dialog.id);
    std::set<quint16> ids;
    for (const ControlTemplate &control : dialog.controls) {
        SCOPED_TRACE(control.id);
        const QRect rect = toRect(control.rect);
        EXPECT_TRUE(ids.insert(control.id).second) << "a turn could not tell two of one id apart";
        EXPECT_TRUE(area(dialog).contains(rect)) << "cut at the edge of the screen";
        EXPECT_EQ(control.kind == ControlKind::Image, !iconSvg(control.icon).isEmpty());
        EXPECT_GE(rect.height(), isTouched(control.kind) ? 34 : 14) << "too low";
        for (const ControlTemplate &other : dialog.controls) {
            EXPECT_TRUE(&other == &control || !toRect(other.rect).intersects(rect))
                << "lies over " << other.id;
        }
    }
}

using Kinds = std::map<quint16, std::pair<ControlKind, int>>;

Kinds kinds(const DialogTemplate &dialog) {
    Kinds result;
    for (const ControlTemplate &control : dialog.controls)
        result[control.id] = {control.kind, control.styleBits};
    return result;
}

TEST(Templates, KeepTheirControlsWhenTheScreenTurnsAndShowEachOfThemWhole) {
    int found = 0;
    for (int id = 0; id < 1000; id += 2) {
        const DialogTemplate *tall = dialogTemplate(id);
        const DialogTemplate *wide = dialogTemplate(id + 1);
        ASSERT_EQ(tall == nullptr, wide == nullptr) << id;
        if (tall == nullptr)
            continue;
        ++found;
        EXPECT_LT(tall->width, tall->height) << id;
        EXPECT_GT(wide->width, wide->height) << id;
        EXPECT_EQ(kinds(*tall), kinds(*wide)) << id;
        expectRoomForEach(*tall);
        expectRoomForEach(*wide);
    }
    EXPECT_EQ(found, 14);
}

TEST(Messages, EachErrorCodeIsToldAsTheProblemThatItIs) {
    struct Row {
        quint32 first;
        quint32 last;
        QString text;
    };
    const QString unknown = QStringLiteral("Encountering Unidentified Problem");
    const Row rows[]{
        {0, 0, unknown},
        {999, 999, unknown},
        {1000, 1001, QStringLiteral("Encountering Problem when Accessing Database")},
        {1002, 1003, QStringLiteral("Encountering Problem when Reading Feed information")},
        {1004, 1006, QStringLiteral("Encountering Problem when Accessing Crucial File")},
        {1007, 1009, QStringLiteral("Encountering Internet Problem")},
        {1010, 1011, QStringLiteral("Encountering Memory Problem")},
        {1012, 1012, unknown},
        {1013, 1013, QStringLiteral("ActiveSync unavailable")},
        {1014, 1014, QStringLiteral("Your device is roaming.")},
        {1015, 1015, unknown},
        {0xFFFFFFFF, 0xFFFFFFFF, unknown},
    };
    for (const Row &row : rows) {
        for (quint64 code = row.first; code <= row.last; ++code)
            EXPECT_EQ(errorMessage(static_cast<quint32>(code)), row.text) << code;
    }
}

TEST(Help, LeadsToEveryPlaceThatItNames) {
    const QString page = QString::fromUtf8(helpPage());
    const QRegularExpression link(QStringLiteral("href=\"#?([^\"]*)\""));
    QStringList places{QStringLiteral("FeedlarkHelp")};
    for (const QRegularExpressionMatch &match : link.globalMatch(page))
        places.append(match.captured(1));
    EXPECT_GT(places.size(), 1);
    for (const QString &place : places)
        EXPECT_TRUE(page.contains(u"<a name=\"" + place + u"\">")) << place.toStdString();
}

} // namespace
} // namespace tidebrook

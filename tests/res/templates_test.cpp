#include "res/dialog_templates.h"
#include "res/icons.h"
#include "res/menus.h"
#include "res/strings.h"

#include <gtest/gtest.h>

#include <QRect>
#include <QRegularExpression>
#include <QXmlStreamReader>

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

void expectEntries(std::span<const MenuEntry> entries) {
    EXPECT_FALSE(entries.empty());
    for (const MenuEntry &entry : entries) {
        if (!entry.isSeparator()) {
            EXPECT_FALSE(QString::fromUtf16(entry.text).isEmpty()) << entry.command;
        }
        EXPECT_EQ(entry.command != 0, !entry.isSeparator() && entry.entries.empty())
            << "an entry is a command, or a menu, or a line: " << entry.command;
        if (!entry.entries.empty())
            expectEntries(entry.entries);
    }
}

void expectKey(const SoftKey &key) {
    const bool isBlank = key.command == 0 && key.menuId == 0;
    EXPECT_EQ(isBlank, resourceString(key.textId).isEmpty()) << key.command << " " << key.menuId;
    if (key.menuId != 0)
        expectEntries(menuEntries(key.menuId));
}

TEST(MenuBars, TellTheTextOfEveryKeyAndOpenTheirMenus) {
    for (int id = 401; id <= 413; ++id) {
        SCOPED_TRACE(id);
        const MenuBarResource *bar = menuBarResource(id);
        ASSERT_NE(bar, nullptr);
        expectKey(bar->left);
        expectKey(bar->right);
    }
}

QString faultOf(const QByteArray &xml) {
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    return reader.errorString();
}

TEST(Icons, CanAllBeDrawn) {
    for (const char *name :
         {"article-read", "article-unread", "category", "channel", "choices", "error", "file",
          "folder", "folder-up", "header", "next", "previous", "warning"})
        EXPECT_EQ(faultOf(iconSvg(name)), QString()) << name;
}

TEST(Help, LeadsToEveryPlaceThatItNames) {
    const QString page = QString::fromUtf8(helpPage());
    EXPECT_TRUE(page.contains(QStringLiteral("<a name=\"FeedlarkHelp\">")));
    static const QRegularExpression link(QStringLiteral("href=\"#?([^\"]*)\""));
    int links = 0;
    for (const QRegularExpressionMatch &match : link.globalMatch(page)) {
        ++links;
        EXPECT_TRUE(page.contains(u"<a name=\"" + match.captured(1) + u"\">"))
            << match.captured(1).toStdString();
    }
    EXPECT_GT(links, 0);
}

} // namespace
} // namespace tidebrook

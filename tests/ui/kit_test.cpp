#include "kit/form.h"
#include "kit/menu_bar.h"
#include "kit/page/contrast.h"
#include "res/commands.h"
#include "res/ids.h"
#include "res/strings.h"
#include "ui/reading_test.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTest>

namespace tidebrook {
namespace {

constexpr QSize tall(240, 320); // in which a pixel is a unit

/// The texts of the labels and buttons that have no room for them.
QStringList cutTexts(const QWidget &whole) {
    QStringList cut;
    for (const auto *part : whole.findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(part);
        const auto *button = qobject_cast<const QAbstractButton *>(part);
        const QString text = label ? label->text() : button ? button->text() : QString();
        QRect room = part->rect();
        if (button != nullptr && button->isCheckable()) {
            QStyleOptionButton option;
            option.initFrom(part);
            room.setLeft(
                part->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, part).left());
        }
        const QRect needed =
            part->fontMetrics().boundingRect(room, Qt::TextWordWrap | Qt::TextShowMnemonic, text);
        if (!text.isEmpty() &&
            (!room.contains(needed) || !part->parentWidget()->rect().contains(part->geometry())))
            cut.append(text);
    }
    return cut;
}

/// What on the screen on top, or in the menu over it, is too low for a finger.
QStringList tooLow(User &user) {
    QStringList found;
    const auto note = [&](const QString &what, int height) {
        if (height < user.stack().units().pixels(34))
            found.append(u"%1: %2"_s.arg(what).arg(height));
    };
    const QWidget &top = *user.stack().top();
    for (const auto *button : top.findChildren<QAbstractButton *>()) {
        if (button->isVisible() && !button->text().isEmpty())
            note(button->text(), button->height());
    }
    for (const auto *tabs : top.findChildren<QTabBar *>())
        note(tabs->tabText(0), std::min(tabs->height(), tabs->tabRect(0).height()));
    for (auto *box : top.findChildren<QComboBox *>()) {
        if (box->count() > 0)
            note(box->itemText(0), std::min(box->height(), box->view()->sizeHintForRow(0)));
    }
    if (user.list() != nullptr)
        note(u"row"_s, user.list()->rowHeight());
    if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
        for (QAction *entry : menu->actions()) {
            if (!entry->isSeparator() && menu->actionGeometry(entry).height() < 28)
                found.append(entry->text());
        }
    }
    return found;
}

TEST(Templates, HaveRoomForTheirTextsHoweverTheScreenIsTurned) {
    for (const QSize &screen : {tall, tall.transposed(), tall * 2}) {
        ScreenStack stack;
        stack.resize(screen);
        const QSize before = screen.transposed();
        for (int id = 0; id < 1000; id += 2) {
            Form form(id, &stack);
            form.resize(screen);
            RelayoutFromTemplate(form, templateForShape(id, before), DialogUnits(before));
            RelayoutFromTemplate(form, templateForShape(id, screen), stack.units());
            EXPECT_EQ(cutTexts(form), QStringList()) << id;
        }
    }
}

TEST(Colours, AreReadableWhateverTheThemeHas) {
    for (const auto &[window, highlight] :
         {std::pair<QColor, QColor>{0xefefef, 0x308cc6}, {0x2b2d30, 0x2a6f97}, {0x808080, 0x777}}) {
        QPalette palette(window);
        palette.setColor(QPalette::Highlight, highlight);
        QApplication::style()->polish(palette);
        EXPECT_GE(contrastOf(palette.highlight().color(), palette.highlightedText().color()), 4.5);
        ScreenStack stack;
        stack.setPalette(palette);
        Form form(PropertiesTemplate, &stack);
        RelayoutFromTemplate(form, PropertiesTemplate, stack.units());
        const QImage title = form.control(PropertiesTitle)->grab().toImage();
        qreal highest = 1;
        for (int i = 0; i < title.width() * title.height(); ++i) {
            const QColor colour = title.pixelColor(i % title.width(), i / title.width());
            highest = std::max(highest, contrastOf(colour, title.pixelColor(0, 0)));
        }
        EXPECT_GE(highest, 4.5) << highlight.name().toStdString();
    }
}

using EveryScreen = ReadingTest;

TEST_F(EveryScreen, ShowsItsTextsWholeAndIsTouchedByAFinger) {
    QString longest;
    for (int id = 1; id <= 69; ++id)
        longest = std::max(longest, resourceString(id),
                           [](auto &one, auto &other) { return one.size() < other.size(); });
    device.registry->write(testTodayKey, u"TodayTimer", 1U);
    const auto use = [&](User &user) {
        const auto check = [&user] {
            ASSERT_TRUE(user.seesQuiet());
            user.look([&user] {
                EXPECT_EQ(tooLow(user) + cutTexts(*user.stack().top()), QStringList());
            });
        };
        check();
        user.choose({u"Font Size"_s});
        check();
        user.press(Qt::Key_Escape);
        user.press(Qt::Key_Escape);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"News"_s));
        check();
        user.act([&] {
            MessageBox::ask(user.stack(), MessageBox::Kind::Question, longest, longest,
                            u"<b>\u202E\n"_s + QString(45, u'W'));
        });
        ASSERT_TRUE(user.seesBox(longest));
        user.look([&] {
            const QString spoken = user.stack().top()->accessibleDescription();
            EXPECT_TRUE(spoken.endsWith(u"\n<b>  " + QString(45, u'W')));
        });
        check();
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesNoBox());
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
        user.choose({u"Setting"_s});
        ASSERT_TRUE(user.seesCaption(u"Today Setting"_s));
        check();
    };
    for (const QSize &screen : {tall, tall.transposed(), tall * 2, QSize(1080, 1920)})
        run(use, screen);
}

const QMenu *openMenu() { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }

TEST_F(EveryScreen, HasAMenuThatIsNeverUnderTheFinger) {
    // The last two leave as little room as the Menu key of a low screen.
    const QRect places[]{{0, 0, 240, 40},     {0, 400, 240, 40},  {0, 760, 240, 40},
                         {120, 286, 120, 34}, {0, 230, 240, 370}, {160, 206, 160, 594}};
    run([&](User &user) {
        for (const QRect &place : places) {
            const auto expectBeside = [&] {
                const QRect shown = openMenu()->geometry();
                EXPECT_TRUE(openMenu()->screen()->geometry().contains(shown));
                EXPECT_FALSE(shown.intersects(place)) << place.y();
            };
            user.look([&] { user.stack().top()->findChild<MenuBar *>()->openMenu(place); });
            for (const int key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Up, Qt::Key_Home}) {
                user.look(expectBeside);
                user.press(key);
                user.look([&] {
                    const QRect entry = openMenu()->actionGeometry(openMenu()->activeAction());
                    EXPECT_TRUE(entry.height() >= 28 && openMenu()->rect().contains(entry)) << key;
                });
            }
            user.press(Qt::Key_F);
            user.press(Qt::Key_Right);
            user.look(expectBeside);
            user.press(Qt::Key_Escape);
            user.look([] {
                QWidget *menu = QApplication::activePopupWidget();
                QTest::mousePress(menu, Qt::LeftButton, {}, {20, menu->height() + 20});
                EXPECT_EQ(openMenu(), nullptr) << "and it is not scrolled";
            });
        }
        user.tap(u"Menu"_s);
        ASSERT_TRUE(user.seesPopup());
        user.look([] { EXPECT_EQ(openMenu()->activeAction(), nullptr); });
        user.tap(u"Menu"_s);
        EXPECT_TRUE(user.sees([] { return openMenu() == nullptr; }));

        const std::pair<QString, QString> typings[]{
            {u""_s, u"Delete"_s},    {u"e"_s, u"Export Category"_s},   {u"EE"_s, u"Exit"_s},
            {u"xs"_s, u"Setting"_s}, {u"eee"_s, u"Export Category"_s}, {u"a"_s, u"About"_s}};
        for (const int command : {CommandUpdateCategory, CommandNewCategory})
            user.look([&] { user.stack().top()->findChild<MenuBar *>()->enable(command, false); });
        for (const auto &typing : typings) {
            user.press(Qt::Key_F10);
            user.type(typing.first);
            user.look([&] { EXPECT_EQ(openMenu()->activeAction()->text(), typing.second); });
            user.press(typing.second == u"About" ? Qt::Key_Return : Qt::Key_Escape);
        }
        EXPECT_TRUE(user.seesCaption(u"About"_s));
    });
}

} // namespace
} // namespace tidebrook

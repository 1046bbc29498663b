#include "kit/form.h"
#include "res/strings.h"
#include "ui/reading_test.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QStyleOptionButton>
#include <QTabBar>

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
            if (!entry->isSeparator())
                note(entry->text(), menu->actionGeometry(entry).height());
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

} // namespace
} // namespace tidebrook

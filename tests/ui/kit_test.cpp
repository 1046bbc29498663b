#include "res/strings.h"
#include "support/test_device.h"
#include "ui/kit/form.h"
#include "ui/kit/label_editor.h"
#include "ui/kit/list_view.h"
#include "ui/kit/message_box.h"
#include "ui/session.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTimer>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize tall(240, 320); // in which a pixel is a unit
constexpr QSize wide(320, 240);

QList<int> portraitTemplates() {
    QList<int> ids;
    for (int id = 0; id < 1000; id += 2) {
        if (dialogTemplate(id) != nullptr)
            ids.append(id);
    }
    return ids;
}

QString shownText(const QWidget *control) {
    if (const auto *label = qobject_cast<const QLabel *>(control))
        return label->text();
    const auto *button = qobject_cast<const QAbstractButton *>(control);
    return button != nullptr ? button->text().replace(u"&&"_s, u"&"_s) : QString();
}

QRect roomForText(QWidget *control) {
    QStyleOptionButton option;
    option.initFrom(control);
    QStyle::SubElement contents = QStyle::SE_PushButtonContents;
    if (qobject_cast<QCheckBox *>(control) != nullptr)
        contents = QStyle::SE_CheckBoxContents;
    else if (qobject_cast<QRadioButton *>(control) != nullptr)
        contents = QStyle::SE_RadioButtonContents;
    else
        return control->rect();
    const int left = control->style()->subElementRect(contents, &option, control).left();
    return control->rect().adjusted(left, 0, 0, 0);
}

TEST(Templates, EveryControlIsWhereItBelongsAndHasRoomForItsTextHoweverItIsTurned) {
    for (const QSize &screen : {tall, wide, tall * 2, tall}) {
        ScreenStack stack;
        stack.resize(screen);
        stack.show();
        for (const int id : portraitTemplates()) {
            Form form(id, &stack);
            const int templateId = templateForShape(id, screen);
            RelayoutFromTemplate(form, templateForShape(id, screen.transposed()),
                                 DialogUnits(screen.transposed()));
            ASSERT_TRUE(RelayoutFromTemplate(form, templateId, stack.units()));
            const int scale = stack.width() / std::min(stack.width(), screen == wide ? 320 : 240);
            for (const ControlTemplate &item : dialogTemplate(templateId)->controls) {
                QWidget *control = form.control(item.id);
                const UnitRect &at = item.rect;
                EXPECT_EQ(control->geometry(),
                          QRect(at.x * scale, at.y * scale, at.cx * scale, at.cy * scale))
                    << templateId << ": " << item.id;
                const QRect room = roomForText(control);
                const QRect text = control->fontMetrics().boundingRect(
                    room, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, shownText(control));
                EXPECT_TRUE(room.contains(text) || shownText(control).isEmpty())
                    << templateId << ": " << item.id << " has " << room.width() << "x"
                    << room.height() << " for " << text.width() << "x" << text.height();
            }
        }
    }
}

TEST(LabelEditor, CutsNoCharacterInHalves) {
    const QString smile = u"\U0001F600"_s;
    const struct {
        QString before;
        int cursor;
        QString pasted;
        QString after;
    } cases[]{
        {u""_s, 0, smile.repeated(3), smile.repeated(2)},
        {u"abcd"_s, 2, smile, u"abcd"_s},
        {u"abc"_s, 1, smile, u"a"_s + smile + u"bc"_s},
    };
    for (const auto &one : cases) {
        LabelEditor editor(5, nullptr);
        editor.setText(one.before);
        editor.setCursorPosition(one.cursor);
        QApplication::clipboard()->setText(one.pasted);
        editor.paste();
        EXPECT_EQ(editor.text(), one.after);
        EXPECT_EQ(editor.text().mid(editor.cursorPosition()), one.before.mid(one.cursor))
            << "the cursor stands behind what was pasted";
    }
}

TEST(MessageBox, ShowsTheLongestTextWhole) {
    QString longest;
    for (int id = 1; id <= 69; ++id) {
        if (resourceString(id).size() > longest.size())
            longest = resourceString(id);
    }
    for (const QSize &screen : {tall, wide, tall * 2}) {
        for (const auto kind : {MessageBox::Kind::Question, MessageBox::Kind::Error}) {
            ScreenStack stack;
            stack.resize(screen);
            stack.show();
            QTimer::singleShot(0, &stack, [&stack] {
                for (auto *part : stack.top()->findChildren<QWidget *>()) {
                    EXPECT_TRUE(part->parentWidget()->rect().contains(part->geometry()));
                    const auto *label = qobject_cast<QLabel *>(part);
                    EXPECT_TRUE(label == nullptr ||
                                label->rect().contains(label->fontMetrics().boundingRect(
                                    label->rect(), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                                    label->text())));
                }
                stack.close();
            });
            EXPECT_FALSE(MessageBox::ask(stack, kind, longest, longest));
        }
    }
}

/// What on the screen on top is too low for a finger: a text for each.
QStringList tooLow(User &user) {
    QStringList found;
    const auto note = [&](const QString &what, int height) {
        if (height < user.stack().units().height(34))
            found.append(u"%1: %2"_s.arg(what).arg(height));
    };
    user.look([&] {
        for (const auto *button : user.stack().top()->findChildren<QAbstractButton *>()) {
            if (button->isVisible() && !button->text().isEmpty())
                note(button->text(), button->height());
        }
        for (const auto *tabs : user.stack().top()->findChildren<QTabBar *>())
            note(tabs->tabText(0), std::min(tabs->height(), tabs->tabRect(0).height()));
        for (auto *box : user.stack().top()->findChildren<QComboBox *>()) {
            if (box->count() > 0)
                note(box->itemText(0), std::min(box->height(), box->view()->sizeHintForRow(0)));
        }
        if (user.list() != nullptr)
            note(u"row"_s, user.list()->rowHeight());
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (menu == nullptr)
            return;
        for (QAction *entry : menu->actions()) {
            if (!entry->isSeparator())
                note(entry->text(), menu->actionGeometry(entry).height());
        }
    });
    return found;
}

TEST(TouchTargets, AreAsHighAsAFingerOnEveryScreen) {
    const Hand steps[]{
        [](User &user) { ASSERT_TRUE(user.seesRows({u"Science"_s})); },
        [](User &user) {
            user.choose({u"Font Size"_s});
            ASSERT_TRUE(user.seesPopup());
        },
        pressing(Qt::Key_Escape),
        [](User &user) {
            user.press(Qt::Key_Escape);
            user.press(Qt::Key_Delete);
            ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
        },
        [](User &user) {
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesNoBox());
            user.press(Qt::Key_Return);
            ASSERT_TRUE(user.seesRows({u"Moon"_s}));
        },
        [](User &user) {
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
            user.choose({u"Setting"_s});
            ASSERT_TRUE(user.seesCaption(u"Today Setting"_s) && user.seesQuiet());
        },
    };
    for (const QSize &screen : {tall, wide, QSize(480, 640), QSize(1080, 1920)}) {
        const TestDevice device(u"Moon\thttp://example.org/b\tScience\n"_s);
        device.registry->write(testTodayKey, u"TodayTimer", 1U);
        Session session(device.root, screen);
        EXPECT_TRUE(session.run([&](User &user) {
            for (const Hand &step : steps) {
                step(user);
                EXPECT_EQ(tooLow(user), QStringList());
            }
        }));
    }
}

} // namespace
} // namespace tidebrook

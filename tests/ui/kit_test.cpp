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

void expectLaidOut(const Form &form, int templateId, int scale) {
    for (const ControlTemplate &item : dialogTemplate(templateId)->controls) {
        const QWidget *control = form.control(item.id);
        ASSERT_NE(control, nullptr) << templateId << ": " << item.id;
        const UnitRect &units = item.rect;
        EXPECT_EQ(control->geometry(),
                  QRect(units.x * scale, units.y * scale, units.cx * scale, units.cy * scale))
            << templateId << ": " << item.id;
        if (item.text != nullptr) {
            EXPECT_EQ(shownText(control), QString::fromUtf16(item.text)) << templateId;
        }
    }
}

TEST(Relayout, TurningThereAndBackPutsEverythingWhereTheTemplateHasIt) {
    for (const int id : portraitTemplates()) {
        QWidget window;
        Form form(id, &window);
        for (const int scale : {1, 2, 1}) {
            EXPECT_TRUE(RelayoutFromTemplate(form, id, DialogUnits(tall * scale)));
            expectLaidOut(form, id, scale);
            EXPECT_TRUE(RelayoutFromTemplate(form, id + 1, DialogUnits(wide * scale)));
            expectLaidOut(form, id + 1, scale);
        }
    }
}

TEST(Relayout, KeepsWhatIsChosenAndInSight) {
    QWidget window;
    Form page(140, &window);
    auto *box = page.control<QComboBox>(1008);
    box->addItems({u"a"_s, u"b"_s, u"c"_s});
    box->setCurrentIndex(2);
    Form screen(132, &window);
    auto *list = screen.control<ListView>(801);
    list->setRows(QList<ListRow>(60, {u"row"_s}));
    window.show();
    screen.resize(wide);
    RelayoutFromTemplate(screen, 132, DialogUnits(tall));
    list->selectRow(30);
    RelayoutFromTemplate(page, 141, DialogUnits(wide));
    RelayoutFromTemplate(screen, 133, DialogUnits(wide));
    EXPECT_EQ(box->currentIndex(), 2);
    EXPECT_EQ(SelectedRow(list), 30);
    EXPECT_TRUE(list->viewport()->rect().contains(list->visualRect(list->currentIndex())));
}

TEST(Relayout, StopsAtAControlThatIsNotThere) {
    QWidget window;
    Form form(146, &window);
    ASSERT_TRUE(RelayoutFromTemplate(form, 146, DialogUnits(tall)));
    EXPECT_FALSE(RelayoutFromTemplate(form, 143, DialogUnits(wide))) << "its first is missing";
    EXPECT_FALSE(RelayoutFromTemplate(form, 999, DialogUnits(wide)));
    expectLaidOut(form, 146, 1);
    EXPECT_FALSE(RelayoutFromTemplate(form, 145, DialogUnits(wide))) << "its second is missing";
    EXPECT_EQ(form.control(1019)->width(), 304);
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

TEST(Templates, EveryTextFitsItsControl) {
    for (const QSize &screen : {tall, wide}) {
        ScreenStack stack;
        stack.resize(screen);
        stack.show();
        for (const int id : portraitTemplates()) {
            const int templateId = templateForShape(id, screen);
            Form form(templateId, &stack);
            RelayoutFromTemplate(form, templateId, stack.units());
            for (const ControlTemplate &item : dialogTemplate(templateId)->controls) {
                QWidget *control = form.control(item.id);
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

TEST(ScreenShape, IsTallOnlyWhenHigherThanWide) {
    struct Case {
        QSize screen;
        int shape;
        int templateId;
    };
    for (const Case &one :
         {Case{{240, 320}, 1, 132}, Case{{319, 320}, 1, 132}, Case{{320, 320}, 0, 133},
          Case{{321, 320}, -1, 133}, Case{{4000, 3000}, -1, 133}, Case{{0, 0}, 0, 133}}) {
        EXPECT_EQ(ScreenShape(one.screen), one.shape) << one.screen.width();
        EXPECT_EQ(templateForShape(132, one.screen), one.templateId) << one.screen.width();
    }
}

TEST(LabelEditor, CutsNoCharacterInHalves) {
    struct Case {
        QString before;
        int cursor;
        QString pasted;
        QString after;
    };
    const QString smile = u"\U0001F600"_s;
    const Case cases[]{
        {u""_s, 0, u"abcdefg"_s, u"abcde"_s},   {u""_s, 0, smile.repeated(3), smile.repeated(2)},
        {u"abcd"_s, 0, smile, u"abcd"_s},       {u"abcd"_s, 2, smile, u"abcd"_s},
        {u"abcd"_s, 4, smile, u"abcd"_s},       {u"abc"_s, 1, smile, u"a"_s + smile + u"bc"_s},
        {u"ab"_s, 1, u"x\ty\nz"_s, u"ax yb"_s},
    };
    for (const Case &one : cases) {
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

QString longestText() {
    QString longest;
    for (int id = 1; id <= 69; ++id) {
        if (resourceString(id).size() > longest.size())
            longest = resourceString(id);
    }
    return longest;
}

void expectWholeBox(const QWidget &box) {
    for (const auto *label : box.findChildren<QLabel *>()) {
        const QRect text = label->fontMetrics().boundingRect(
            label->rect(), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, label->text());
        EXPECT_TRUE(label->rect().contains(text)) << label->text().toStdString();
    }
    for (const auto *part : box.findChildren<QWidget *>())
        EXPECT_TRUE(part->parentWidget()->rect().contains(part->geometry()));
}

TEST(MessageBox, ShowsTheLongestTextWhole) {
    for (const QSize &screen : {tall, wide, tall * 2}) {
        for (const auto kind : {MessageBox::Kind::Question, MessageBox::Kind::Error}) {
            ScreenStack stack;
            stack.resize(screen);
            stack.show();
            QTimer::singleShot(0, &stack, [&stack] {
                expectWholeBox(*stack.top());
                stack.close();
            });
            EXPECT_FALSE(MessageBox::ask(stack, kind, longestText(), longestText()));
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
    for (const QSize &screen : {tall, wide, QSize(480, 640), QSize(1080, 1920)}) {
        const TestDevice device(u"Moon\thttp://example.org/b\tScience\n"_s);
        device.registry->write(testTodayKey, u"TodayTimer", 1U);
        Session session(device.root, screen);
        EXPECT_TRUE(session.run([&](User &user) {
            ASSERT_TRUE(user.seesRows({u"Science"_s}));
            user.press(Qt::Key_F10);
            ASSERT_TRUE(user.seesPopup());
            EXPECT_EQ(tooLow(user), QStringList());
            user.press(Qt::Key_Escape);
            user.choose({u"Font Size"_s});
            EXPECT_EQ(tooLow(user), QStringList());
            user.press(Qt::Key_Escape);
            user.press(Qt::Key_Escape);
            user.press(Qt::Key_Delete);
            ASSERT_TRUE(user.seesBox(u"Are you sure you want to delete this category?"_s));
            EXPECT_EQ(tooLow(user), QStringList());
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesNoBox());
            user.press(Qt::Key_Return);
            ASSERT_TRUE(user.seesRows({u"Moon"_s}));
            EXPECT_EQ(tooLow(user), QStringList());
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
            user.choose({u"Setting"_s});
            ASSERT_TRUE(user.seesCaption(u"Today Setting"_s) && user.seesQuiet());
            EXPECT_EQ(tooLow(user), QStringList());
        }));
    }
}

} // namespace
} // namespace tidebrook

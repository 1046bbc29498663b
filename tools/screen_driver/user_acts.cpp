#include "screen_driver/session.h"

#include "kit/layer.h"
#include "kit/page/text_page.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

QMenu *openMenu() { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }

QWidget *keyTarget(ScreenStack &stack) {
    QWidget *popup = QApplication::activePopupWidget();
    QWidget *focus = popup != nullptr ? popup : stack.focusWidget();
    return focus != nullptr ? focus : &stack;
}

QPoint middleOf(const ListView &list, int row) {
    return list.visualRect(list.model()->index(row, 0)).center();
}

QPointingDevice *finger() {
    static QPointingDevice *device = QTest::createTouchDevice();
    return device;
}

QAbstractButton *buttonOf(const QWidget *layer, const QString &text) {
    for (auto *button : layer->findChildren<QAbstractButton *>()) {
        QString shown = button->text().isEmpty() ? button->accessibleName() : button->text();
        if (button->isVisible() && shown.remove(u'&') == text)
            return button;
    }
    return nullptr;
}

void moveFinger(const QPointer<QWidget> &area, const QPoint &start, const QPoint &way) {
    constexpr int moves = 8;
    auto touches = QTest::touchEvent(area, finger(), false);
    touches.press(0, start, area).commit(false);
    for (int i = 1; !way.isNull() && i <= moves; ++i)
        touches.move(0, start + way * i / moves, area).commit(false);
    touches.release(0, start + way, area).commit(false);
}

} // namespace

void User::press(int key, Qt::KeyboardModifiers modifiers) {
    for (const QTest::KeyAction action : {QTest::Press, QTest::Release}) {
        act([this, action, key, modifiers] {
            QTest::keyEvent(action, keyTarget(stack_), static_cast<Qt::Key>(key), modifiers);
        });
    }
}

void User::type(const QString &text) {
    act([this, text] { QTest::keyClicks(keyTarget(stack_), text); });
}

void User::paste(const QString &text) {
    act([text] { QApplication::clipboard()->setText(text); });
    press(Qt::Key_V, Qt::ControlModifier);
}

void User::tapRow(int row) {
    act([this, row] {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, middleOf(*list(), row));
    });
}

void User::tapBelowRows() {
    act([this] {
        QWidget *area = list()->viewport();
        QTest::mouseClick(area, Qt::LeftButton, {}, {area->width() / 2, area->height() - 2});
    });
}

// What Qt makes of a touch for the mouse comes behind it.
void User::touchBy(std::function<void()> action) {
    act(std::move(action));
    look([] {});
}

void User::touchRow(int row, int way) {
    touchBy([this, row, way] { moveFinger(list()->viewport(), middleOf(*list(), row), {0, way}); });
}

void User::touchPage(const QPoint &way) {
    touchBy([this, way] {
        QWidget *area = stack_.top()->findChild<TextPage *>()->viewport();
        moveFinger(area, area->rect().center(), way);
    });
}

void User::holdRow(int row) {
    act([this, row] {
        QWidget *area = list()->viewport();
        QTest::touchEvent(area, finger(), false)
            .press(0, middleOf(*list(), row), area)
            .commit(false);
    });
    if (!seesPopup())
        return fail_(u"there is no menu"_s);
    touchBy([this, row] {
        QWidget *area = list()->viewport();
        QTest::touchEvent(area, finger(), false)
            .release(0, middleOf(*list(), row), area)
            .commit(false);
    });
}

void User::clickRight(int row) {
    act([this, row] {
        QWidget *area = list()->viewport();
        const QPoint place = middleOf(*list(), row);
        QTest::mouseClick(area, Qt::RightButton, {}, place);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, area->mapToGlobal(place));
        QApplication::sendEvent(area, &event);
    });
}

void User::touch(const QString &text) {
    touchBy([this, text] {
        QMenu *menu = openMenu();
        const auto entries = menu != nullptr ? menu->actions() : QList<QAction *>();
        const auto entry = std::ranges::find(entries, text, &QAction::text);
        QWidget *button = buttonOf(stack_.top(), text);
        if (menu != nullptr && entry != entries.end()) {
            // The window system makes a finger's touch of a popup a click.
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(*entry).center());
        } else if (menu == nullptr && button != nullptr) {
            moveFinger(button, button->rect().center(), {});
        } else {
            fail_(u"there is no " + text);
        }
    });
}

void User::turnWheel(int steps) {
    act([this, steps] { turnWheelOver(*list(), steps); });
}

void turnWheelOver(ListView &list, int steps) {
    QWidget *area = list.viewport();
    const QPoint place = area->rect().center();
    QWheelEvent event(place, area->mapToGlobal(place), {}, QPoint(0, -120 * steps), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(area, &event);
}

void User::tap(const QString &buttonText) {
    act([this, buttonText] {
        if (QAbstractButton *button = buttonOf(stack_.top(), buttonText))
            return QTest::mouseClick(button, Qt::LeftButton);
        fail_(u"there is no " + buttonText);
    });
}

void User::tapLink(const QString &text) {
    act([this, text] {
        auto *page = stack_.top()->findChild<TextPage *>();
        QTextCursor place = page->document()->find(text);
        if (place.isNull())
            return fail_(u"there is no " + text);
        place.setPosition(place.selectionStart());
        page->setTextCursor(place); // which brings it into sight
        const QPoint inside = page->cursorRect().center() + QPoint(4, 0);
        QTest::mouseClick(page->viewport(), Qt::LeftButton, {}, inside);
    });
}

void User::choose(const QStringList &path) {
    press(Qt::Key_F10);
    for (const QString &text : path) {
        if (!seesPopup())
            return fail_(u"there is no menu for " + text);
        act([this, text] {
            QMenu *menu = openMenu();
            const auto entries = menu != nullptr ? menu->actions() : QList<QAction *>();
            const auto entry = std::ranges::find(entries, text, &QAction::text);
            if (menu == nullptr || entry == entries.end())
                return fail_(u"there is no " + text);
            menu->setActiveAction(*entry);
            QTest::keyClick(menu, (*entry)->menu() != nullptr ? Qt::Key_Right : Qt::Key_Return);
        });
    }
}

void User::leaveAndReturn() {
    act([this] {
        QEvent event(QEvent::WindowActivate);
        QApplication::sendEvent(&stack_, &event);
    });
}

QStringList User::entries(const QString &within) {
    choose(within.isEmpty() ? QStringList() : QStringList{within});
    QStringList texts;
    if (!seesPopup()) {
        fail_(u"there is no menu"_s);
        return texts;
    }
    look([&] {
        for (const QAction *entry : openMenu()->actions()) {
            if (!entry->isSeparator())
                texts.append((entry->isEnabled() ? u""_s : u"-"_s) %
                             (entry->isChecked() ? u"+"_s : u""_s) % entry->text());
        }
    });
    for (int open = within.isEmpty() ? 1 : 2; open > 0; --open)
        press(Qt::Key_Escape);
    return texts;
}

} // namespace tidebrook

#include "ui/session.h"

#include "support/blocked_time.h"
#include "ui/category_list_screen.h"
#include "ui/kit/dialog.h"
#include "ui/kit/header_bar.h"
#include "ui/kit/layer.h"
#include "ui/kit/list_view.h"
#include "ui/kit/message_box.h"
#include "ui/kit/progress_line.h"
#include "ui/kit/text_page.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <semaphore>
#include <thread>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 10s;
constexpr auto lookAgainAfter = 2ms;

QWidget *keyTarget(ScreenStack &stack) {
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup;
    QWidget *focus = stack.focusWidget();
    return focus != nullptr ? focus : &stack;
}

// As keyboards send it: keys that write nothing have a text too.
QString keyText(int key, Qt::KeyboardModifiers modifiers) {
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("\r");
    case Qt::Key_Escape:
        return QStringLiteral("\x1b");
    case Qt::Key_Delete:
        return QStringLiteral("\x7f");
    default:
        break;
    }
    const bool isLetter = key >= Qt::Key_A && key <= Qt::Key_Z && modifiers == Qt::NoModifier;
    return key == Qt::Key_Space || isLetter ? QString(QChar(key)).toLower() : QString();
}

QPointingDevice *finger() {
    static QPointingDevice *device = QTest::createTouchDevice();
    return device;
}

QAction *findEntry(QMenu &menu, const QString &text) {
    for (QAction *entry : menu.actions()) {
        if (entry->text() == text)
            return entry;
    }
    return nullptr;
}

QAbstractButton *findButton(QWidget &widget, const QString &text) {
    for (auto *button : widget.findChildren<QAbstractButton *>()) {
        QString shown = button->text();
        if (shown.isEmpty())
            shown = button->accessibleName();
        if (button->isVisible() && shown.remove(u'&') == text)
            return button;
    }
    return nullptr;
}

QString checkText(bool isChecked, const QString &text) {
    return (isChecked ? u"x "_s : u"- "_s) + text;
}

QString choicesText(const QComboBox &box) {
    QStringList texts;
    for (int i = 0; i < box.count(); ++i)
        texts.append(i == box.currentIndex() ? u'[' + box.itemText(i) + u']' : box.itemText(i));
    return texts.join(u' ');
}

QString checksText(const ListView &list) {
    QStringList texts;
    for (int i = 0; i < list.rowCount(); ++i)
        texts.append(checkText(list.isChecked(i), list.rowText(i)));
    return texts.join(u", ");
}

/// Null for what is no control of a user.
QString controlText(const QObject *control) {
    if (const auto *edit = qobject_cast<const QLineEdit *>(control))
        return edit->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(control))
        return checkText(button->isChecked(), button->text());
    if (const auto *box = qobject_cast<const QComboBox *>(control))
        return choicesText(*box);
    const auto *list = qobject_cast<const ListView *>(control);
    return list != nullptr && list->isCheckable() ? checksText(*list) + u'.' : QString();
}

} // namespace

void User::act(std::function<void()> action) { mailbox_.post(std::move(action)); }

void User::look(const std::function<void()> &view) {
    std::binary_semaphore isDone(0);
    mailbox_.post([&] {
        view();
        isDone.release();
    });
    isDone.acquire();
}

bool User::sees(const std::function<bool()> &condition) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (true) {
        bool isTrue = false;
        look([&] { isTrue = condition(); });
        if (isTrue || std::chrono::steady_clock::now() > end)
            return isTrue;
        std::this_thread::sleep_for(lookAgainAfter);
    }
}

void User::press(int key, Qt::KeyboardModifiers modifiers) {
    for (const QTest::KeyAction action : {QTest::Press, QTest::Release}) {
        act([this, action, key, modifiers] {
            QTest::sendKeyEvent(action, keyTarget(stack_), static_cast<Qt::Key>(key),
                                keyText(key, modifiers), modifiers);
        });
    }
}

void User::type(const QString &text) {
    act([this, text] { QTest::keyClicks(keyTarget(stack_), text); });
}

void User::tapAt(const std::function<QWidget *()> &find, const QPoint &position) {
    act([find, position] {
        if (QWidget *target = find())
            QTest::mouseClick(target, Qt::LeftButton, {}, position);
    });
}

void User::paste(const QString &text) {
    act([text] { QApplication::clipboard()->setText(text); });
    press(Qt::Key_V, Qt::ControlModifier);
}

void User::tapRow(int row) {
    act([this, row] {
        const QRect place = list()->visualRect(list()->model()->index(row, 0));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place.center());
    });
}

void User::tapBelowRows() {
    act([this] {
        const QWidget *area = list()->viewport();
        const QPoint place(area->width() / 2, area->height() - 2);
        ASSERT_FALSE(list()->indexAt(place).isValid());
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
    });
}

void User::touchRow(int row, int way) {
    constexpr int moves = 8;
    auto area = std::make_shared<QPointer<QWidget>>();
    auto start = std::make_shared<QPoint>();
    act([this, row, area, start] {
        *area = list()->viewport();
        *start = list()->visualRect(list()->model()->index(row, 0)).center();
        QTest::touchEvent(*area, finger(), false).press(0, *start, *area).commit(false);
    });
    for (int i = 1; way != 0 && i <= moves; ++i) {
        act([area, start, way, i] {
            const QPoint place = *start + QPoint(0, way * i / moves);
            QTest::touchEvent(*area, finger(), false).move(0, place, *area).commit(false);
        });
    }
    act([area, start, way] {
        const QPoint place = *start + QPoint(0, way);
        QTest::touchEvent(*area, finger(), false).release(0, place, *area).commit(false);
    });
}

void User::turnWheel(int steps) {
    act([this, steps] {
        QWidget *area = list()->viewport();
        const QPoint place = area->rect().center();
        QWheelEvent event(place, area->mapToGlobal(place), {}, QPoint(0, -120 * steps),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(area, &event);
    });
}

void User::tap(const QString &buttonText) {
    act([this, buttonText] {
        QAbstractButton *button = findButton(*stack_.top(), buttonText);
        ASSERT_NE(button, nullptr) << "there is no " << buttonText.toStdString();
        QTest::mouseClick(button, Qt::LeftButton);
    });
}

void User::tapLink(const QString &text) {
    act([this, text] {
        auto *page = stack_.top()->findChild<TextPage *>();
        ASSERT_NE(page, nullptr);
        QTextCursor place = page->document()->find(text);
        ASSERT_FALSE(place.isNull()) << "there is no " << text.toStdString();
        place.setPosition(place.selectionStart());
        page->setTextCursor(place);
        page->ensureCursorVisible();
        const QPoint inside = page->cursorRect(place).center() + QPoint(4, 0);
        QTest::mouseClick(page->viewport(), Qt::LeftButton, {}, inside);
    });
}

void User::choose(const QStringList &path) {
    press(Qt::Key_F10);
    for (const QString &text : path) {
        ASSERT_TRUE(seesPopup());
        act([text] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QAction *entry = menu != nullptr ? findEntry(*menu, text) : nullptr;
            ASSERT_NE(entry, nullptr) << "there is no " << text.toStdString();
            menu->setActiveAction(entry);
            QTest::keyClick(menu, entry->menu() != nullptr ? Qt::Key_Right : Qt::Key_Return);
        });
    }
}

void User::resize(const QSize &size) {
    act([this, size] { stack_.resize(size); });
}

void User::closeWindow() {
    act([this] { stack_.close(); });
}

void User::leaveAndReturn() {
    act([this] {
        for (const QEvent::Type type : {QEvent::WindowDeactivate, QEvent::WindowActivate}) {
            QEvent event(type);
            QApplication::sendEvent(&stack_, &event);
        }
    });
}

ListView *User::list() const {
    const QList<ListView *> lists = stack_.findChildren<ListView *>();
    const auto seen = std::find_if(lists.begin(), lists.end(),
                                   [](const ListView *list) { return list->isVisible(); });
    return seen == lists.end() ? nullptr : *seen;
}

QStringList User::rows() {
    QStringList names;
    look([&] { names = list() != nullptr ? list()->rowTexts() : QStringList(); });
    return names;
}

bool User::seesList(const std::function<QStringList()> &seen, const QStringList &expected) {
    const auto end = std::chrono::steady_clock::now() + patience;
    QStringList last;
    while ((last = seen()) != expected) {
        if (std::chrono::steady_clock::now() > end) {
            ADD_FAILURE() << "sees " << last.join(u" | ").toStdString();
            return false;
        }
        std::this_thread::sleep_for(lookAgainAfter);
    }
    return true;
}

bool User::seesRows(const QStringList &names) {
    return seesList([this] { return rows(); }, names);
}

bool User::seesLines(const QStringList &lines) {
    return seesList([this] { return this->lines(); }, lines);
}

QStringList User::lines() {
    QStringList lines;
    look([&] {
        for (int i = 0; list() != nullptr && i < list()->rowCount(); ++i) {
            const ListRow row = list()->row(i);
            const bool isUnread = qstrcmp(list()->image(row.image), "article-unread") == 0;
            lines.append((isUnread ? u"*%1: %2"_s : u"%1: %2"_s).arg(row.text, row.detail));
        }
    });
    return lines;
}

QStringList User::controls() {
    QStringList texts;
    look([&] {
        const auto *dialog = qobject_cast<Dialog *>(stack_.top());
        if (dialog == nullptr)
            return;
        if (!dialog->form().isEnabled())
            texts.append(u"waiting"_s);
        else
            for (const QObject *control : dialog->form().children())
                texts.append(controlText(control));
        texts.removeAll(QString());
    });
    return texts;
}

bool User::seesControls(const QStringList &controls) {
    return seesList([this] { return this->controls(); }, controls);
}

QStringList User::entries(const QString &within) {
    choose(within.isEmpty() ? QStringList() : QStringList{within});
    EXPECT_TRUE(seesPopup());
    QStringList texts;
    sees([&] {
        const auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        for (const QAction *entry : menu != nullptr ? menu->actions() : QList<QAction *>()) {
            if (!entry->isSeparator())
                texts.append((entry->isEnabled() ? u""_s : u"-"_s) %
                             (entry->isChecked() ? u"+"_s : u""_s) % entry->text());
        }
        return true;
    });
    for (int open = within.isEmpty() ? 1 : 2; open > 0; --open)
        press(Qt::Key_Escape);
    return texts;
}

bool User::seesSelected(int row) {
    return sees([this, row] { return list() != nullptr && SelectedRow(list()) == row; });
}

bool User::seesEditor(const QString &text) {
    return sees([this, text] {
        return list() != nullptr && list()->labelEditor() != nullptr &&
               list()->labelEditor()->text() == text;
    });
}

bool User::seesNoEditor() {
    return sees([this] { return list() == nullptr || !list()->isEditingLabel(); });
}

bool User::seesBox(const QString &text) {
    return sees([this, text] {
        const auto *box = qobject_cast<MessageBox *>(stack_.top());
        return box != nullptr && box->accessibleDescription() == text;
    });
}

bool User::seesNoBox() {
    return sees([this] { return qobject_cast<MessageBox *>(stack_.top()) == nullptr; });
}

bool User::seesPopup() {
    return sees([] { return QApplication::activePopupWidget() != nullptr; });
}

bool User::seesCaption(const QString &caption) {
    return sees([this, caption] {
        const auto *dialog = qobject_cast<Dialog *>(stack_.top());
        return dialog != nullptr && dialog->headerBar() != nullptr &&
               dialog->headerBar()->caption() == caption;
    });
}

bool User::seesChoices() {
    return sees([this] {
        const auto *header = stack_.top()->findChild<HeaderBar *>();
        return header != nullptr && header->areChoicesVisible();
    });
}

bool User::seesPage(const QString &text) {
    return sees([this, text] {
        const auto *page = stack_.top()->findChild<TextPage *>();
        return page != nullptr && page->toPlainText().contains(text);
    });
}

bool User::seesQuiet() {
    constexpr int looks = 3; // what is done may have posted a command that begins more
    int quiet = 0;
    return sees([&] {
        quiet = stack_.progressLine().isAtWork() ? 0 : quiet + 1;
        return quiet == looks;
    });
}

QPixmap User::picture() {
    QPixmap pixmap;
    look([&] {
        pixmap = stack_.grab();
        QPainter painter(&pixmap);
        const auto draw = [&](QWidget &popup) {
            painter.drawPixmap(stack_.mapFromGlobal(popup.pos()), popup.grab());
        };
        QWidget *last = QApplication::activePopupWidget();
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget != last && widget->isVisible() && widget->windowType() == Qt::Popup)
                draw(*widget);
        }
        if (last != nullptr)
            draw(*last);
    });
    return pixmap;
}

Session::Session(const DeviceRoot &device, const QSize &screen) : device_(device) {
    device_.open();
    stack_.resize(screen);
    stack_.show();
    state_ = std::make_unique<AppState>(device_, stack_);
}

Session::~Session() {
    state_.reset();
    device_.close();
}

bool Session::run(const std::function<void(User &)> &user) {
    User someone(stack_);
    bool isUserDone = false;
    std::thread hands([&] {
        user(someone);
        bool isClosing = false;
        someone.look([&] { isClosing = stack_.isClosing(); });
        if (!isClosing)
            someone.seesQuiet(); // what was asked last is not overtaken
        someone.closeWindow();
        someone.act([&] { isUserDone = true; });
    });
    {
        BlockedTime blocked;
        OpenCategoryList(*state_);
        longestBlocked_ = std::chrono::ceil<std::chrono::milliseconds>(blocked.longest());
    }
    while (!isUserDone) // who has left the screens may still want to look
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    hands.join();
    state_->finish();
    return stack_.top() == nullptr;
}

QStringList storedCategories(const DeviceRoot &device) {
    Registry registry(device);
    return CategoryListStore(registry).listedCategories().value_or(QStringList());
}

} // namespace tidebrook

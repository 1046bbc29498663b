#include "screen_driver/session.h"

#include "kit/dialog.h"
#include "kit/layer.h"
#include "kit/page/text_page.h"
#include "kit/progress_line.h"
#include "ui/category_list_screen.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <semaphore>
#include <thread>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto timeout = 30s; // which only a test that fails needs
constexpr auto lookAgainAfter = 2ms;

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

QString checkText(bool isChecked, const QString &text) {
    return (isChecked ? u"x "_s : u"- "_s) + text;
}

/// Null for what is no control of a user.
QString controlText(const QObject *control) {
    QStringList texts;
    if (const auto *edit = qobject_cast<const QLineEdit *>(control))
        return edit->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(control))
        return checkText(button->isChecked(), button->text());
    if (const auto *box = qobject_cast<const QComboBox *>(control)) {
        for (int i = 0; i < box->count(); ++i)
            texts.append((i == box->currentIndex() ? u"[%1]"_s : u"%1"_s).arg(box->itemText(i)));
        return texts.join(u' ');
    }
    const auto *list = qobject_cast<const ListView *>(control);
    if (list == nullptr || !list->isCheckable())
        return {};
    for (int i = 0; i < list->rowCount(); ++i)
        texts.append(checkText(list->isChecked(i), list->rowText(i)));
    return texts.join(u", ") + u'.';
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
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (true) {
        bool isTrue = false;
        look([&] { isTrue = condition(); });
        if (isTrue || std::chrono::steady_clock::now() > end)
            return isTrue;
        std::this_thread::sleep_for(lookAgainAfter);
    }
}

QStringList User::seen(Texts texts) {
    QStringList seen;
    look([&] { seen = (this->*texts)(); });
    return seen;
}

bool User::seesSame(Texts texts, const QStringList &expected) {
    const bool isSame = sees([&] { return (this->*texts)() == expected; });
    if (!isSame)
        fail_(u"sees " + seen(texts).join(u" | "));
    return isSame;
}

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

void User::touchRow(int row, int way) {
    act([this, row, way] { moveFinger(list()->viewport(), middleOf(*list(), row), {0, way}); });
}

void User::touchPage(const QPoint &way) {
    act([this, way] {
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
    act([this, row] {
        QWidget *area = list()->viewport();
        QTest::touchEvent(area, finger(), false)
            .release(0, middleOf(*list(), row), area)
            .commit(false);
    });
}

void User::touch(const QString &text) {
    act([this, text] {
        const QMenu *menu = openMenu();
        const auto entries = menu != nullptr ? menu->actions() : QList<QAction *>();
        const auto entry = std::ranges::find(entries, text, &QAction::text);
        QWidget *button = buttonOf(stack_.top(), text);
        if (entry != entries.end()) {
            // The window system makes a finger's touch of a popup a click.
            QTest::mouseClick(openMenu(), Qt::LeftButton, {},
                              menu->actionGeometry(*entry).center());
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
            if (entry == entries.end())
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

ListView *User::list() const {
    for (ListView *list : stack_.findChildren<ListView *>()) {
        if (list->isVisible())
            return list;
    }
    return nullptr;
}

QStringList User::headingNow() const {
    const auto *dialog = qobject_cast<Dialog *>(stack_.top());
    if (dialog != nullptr && dialog->headerBar() != nullptr)
        return {dialog->headerBar()->caption()};
    const QString box = stack_.top() != nullptr ? stack_.top()->accessibleDescription() : QString();
    return {box.section(u'\n', 0, 0)};
}

QStringList User::rowsNow() const { return list() != nullptr ? list()->rowTexts() : QStringList(); }

QStringList User::linesNow() const {
    QStringList lines;
    for (int i = 0; list() != nullptr && i < list()->rowCount(); ++i) {
        const ListRow row = list()->row(i);
        const bool isUnread = qstrcmp(list()->image(row.image), "article-unread") == 0;
        lines.append((isUnread ? u"*%1: %2"_s : u"%1: %2"_s).arg(row.text, row.detail));
    }
    return lines;
}

QStringList User::controlsNow() const {
    const auto *dialog = qobject_cast<Dialog *>(stack_.top());
    if (dialog == nullptr)
        return {};
    if (!dialog->form().isEnabled())
        return {u"waiting"_s};
    QStringList texts;
    for (const QObject *control : dialog->form().children())
        texts.append(controlText(control));
    texts.removeAll(QString());
    return texts;
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

bool User::seesBox(const QString &text, const QString &subject) {
    if (!seesSame(&User::headingNow, {text}))
        return false;
    const auto isSubject = [&](const QLabel &label) {
        return label.text().remove(u'\n') == subject &&
               stack_.top()->accessibleDescription().endsWith(u'\n' + subject);
    };
    return subject.isNull() || seesPart<QLabel>(isSubject);
}

bool User::seesPage(const QString &text) {
    return seesPart<TextPage>([&](auto &page) { return page.toPlainText().contains(text); });
}

bool User::seesQuiet() {
    constexpr int looks = 3; // what is done may have posted a command that begins more
    int quiet = 0;
    return sees([&] {
        quiet = stack_.progressLine().isAtWork() ? 0 : quiet + 1;
        return quiet == looks || stack_.isClosing();
    });
}

Session::Session(const DeviceRoot &device, const QSize &screen, User::Failure fail)
    : device_(device), user_(stack_, std::move(fail)) {
    device_.open(5s);
    stack_.resize(screen);
    stack_.show();
    state_ = std::make_unique<AppState>(device_, stack_);
}

Session::~Session() {
    state_.reset();
    device_.close();
}

bool Session::run(const std::function<void(User &)> &work) {
    bool isUserDone = false;
    std::thread hands([&] {
        work(user_);
        user_.seesQuiet(); // what was asked last is not overtaken
        user_.closeWindow();
        user_.act([&] { isUserDone = true; });
    });
    show();
    while (!isUserDone) // who has left the screens may still want to look
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    hands.join();
    state_->finish();
    return stack_.top() == nullptr;
}

void Session::show() { OpenCategoryList(*state_); }

} // namespace tidebrook

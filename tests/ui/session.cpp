#include "ui/session.h"

#include "ui/category_list_screen.h"
#include "ui/kit/dialog.h"
#include "ui/kit/header_bar.h"
#include "ui/kit/layer.h"
#include "ui/kit/list_view.h"
#include "ui/kit/message_box.h"
#include "ui/kit/progress_line.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QTest>

#include <chrono>
#include <thread>

namespace tidebrook {

using namespace std::chrono_literals;

namespace {

constexpr auto patience = 20s;
constexpr auto lookAgainAfter = 2ms;

QWidget *keyTarget(ScreenStack &stack) {
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup;
    QWidget *focus = stack.focusWidget();
    return focus != nullptr ? focus : &stack;
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
        if (button->isVisible() && shown.remove(u'&') == text)
            return button;
    }
    return nullptr;
}

} // namespace

void User::act(std::function<void()> action) {
    QMetaObject::invokeMethod(qApp, std::move(action), Qt::QueuedConnection);
}

void User::look(const std::function<void()> &view) {
    QMetaObject::invokeMethod(qApp, view, Qt::BlockingQueuedConnection);
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
    act([this, key, modifiers] {
        QTest::keyClick(keyTarget(stack_), static_cast<Qt::Key>(key), modifiers);
    });
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

void User::tapRow(int row) {
    act([this, row] {
        const QRect place = list()->visualRect(list()->model()->index(row, 0));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place.center());
    });
}

void User::tap(const QString &buttonText) {
    act([this, buttonText] {
        if (QAbstractButton *button = findButton(*stack_.top(), buttonText))
            QTest::mouseClick(button, Qt::LeftButton);
    });
}

void User::choose(const QStringList &path) {
    press(Qt::Key_F10);
    for (const QString &text : path) {
        if (!sees([] { return QApplication::activePopupWidget() != nullptr; }))
            return;
        act([text] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QAction *entry = menu != nullptr ? findEntry(*menu, text) : nullptr;
            if (entry == nullptr)
                return;
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

ListView *User::list() const {
    return stack_.top() != nullptr ? stack_.top()->findChild<ListView *>() : nullptr;
}

QStringList User::rows() {
    QStringList names;
    look([&] {
        for (int i = 0; list() != nullptr && i < list()->rowCount(); ++i)
            names.append(list()->rowText(i));
    });
    return names;
}

bool User::seesRows(const QStringList &names) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (rows() != names) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(lookAgainAfter);
    }
    return true;
}

bool User::seesSelected(int row) {
    return sees([this, row] { return list() != nullptr && SelectedRow(list()) == row; });
}

bool User::seesEditor(const QString &text) {
    return sees([this, text] {
        return list() != nullptr && list()->isEditingLabel() &&
               list()->labelEditor()->text() == text;
    });
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

bool User::seesCaption(const QString &caption) {
    return sees([this, caption] {
        const auto *dialog = qobject_cast<Dialog *>(stack_.top());
        return dialog != nullptr && dialog->headerBar() != nullptr &&
               dialog->headerBar()->caption() == caption;
    });
}

bool User::seesQuiet() {
    return sees([this] { return !stack_.progressLine().isAtWork(); });
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
    std::thread hands([&] {
        user(someone);
        someone.closeWindow();
    });
    OpenCategoryList(*state_);
    hands.join();
    state_->fills.finish();
    state_->settings.finish();
    state_->changes.finish();
    return stack_.top() == nullptr;
}

} // namespace tidebrook

#include "kit/screen_menu.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int leastEntryHeight = 28; // pixels
constexpr QMargins edge(2, 2, 2, 2); // of the screen, which some platforms keep free

// The keys move the highlight without opening the menu within an entry.
void press(QMenu &menu, Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&menu, &event);
}

/// Whether an entry that can be chosen begins so. The next one is highlighted.
bool goTo(QMenu &menu, const QString &beginning) {
    const auto isMeant = [&beginning](const QAction *entry) {
        return entry != nullptr && entry->isEnabled() && !beginning.isEmpty() &&
               entry->text().startsWith(beginning, Qt::CaseInsensitive);
    };
    const QList<QAction *> entries = menu.actions();
    if (std::none_of(entries.begin(), entries.end(), isMeant))
        return false;
    qsizetype left = entries.size();
    do
        press(menu, Qt::Key_Down);
    while (--left > 0 && !isMeant(menu.activeAction()));
    return true;
}

} // namespace

ScreenMenu::ScreenMenu(std::span<const MenuEntry> entries, QWidget *parent) : QMenu(parent) {
    setAttribute(Qt::WA_NoMouseReplay);
    fill(*this, entries);
}

void ScreenMenu::fill(QMenu &menu, std::span<const MenuEntry> entries) {
    menu.installEventFilter(this);
    for (const MenuEntry &entry : entries) {
        if (entry.text == nullptr) {
            menu.addSeparator();
        } else if (!entry.entries.empty()) {
            fill(*menu.addMenu(QString::fromUtf16(entry.text)), entry.entries);
        } else {
            QAction *action = menu.addAction(QString::fromUtf16(entry.text));
            const int command = entry.command;
            connect(action, &QAction::triggered, this, [this, command] {
                close(); // which a choice through a screen reader leaves out
                Q_EMIT chosen(command);
            });
            actions_.insert(command, action);
        }
    }
}

void ScreenMenu::check(int command, bool isChecked) {
    if (QAction *action = actions_.value(command)) {
        action->setCheckable(true);
        action->setChecked(isChecked);
    }
}

void ScreenMenu::radioCheck(int first, int last, int command) {
    auto *group = new QActionGroup(this); // makes the style draw radio marks
    for (int id = first; id <= last; ++id) {
        group->addAction(actions_.value(id));
        check(id, id == command);
    }
}

void ScreenMenu::openBeside(const QRect &place) {
    const QRect screen = parentWidget()->screen()->availableGeometry() - edge;
    // The window may reach beyond the screen.
    const int top = std::clamp(place.top(), screen.top(), screen.bottom() + 1);
    const int bottom = std::clamp(place.bottom(), screen.top() - 1, screen.bottom());
    const QRect above(screen.topLeft(), QPoint(screen.right(), top - 1));
    const QRect below(QPoint(screen.left(), bottom + 1), screen.bottomRight());
    ensurePolished();
    const int wanted = sizeHint().height();
    const bool isAbove =
        wanted <= above.height() || (wanted > below.height() && above.height() >= below.height());
    room_ = isAbove ? above : below;
    fitInto(room_.height());
    const QSize size(std::min(sizeHint().width(), room_.width()),
                     std::min(sizeHint().height(), room_.height()));
    isScrolled_ = size.height() < sizeHint().height();
    if (isScrolled_)
        setFixedSize(size);
    const int rightmost = room_.right() - size.width() + 1;
    place_ = {std::clamp(place.right() - size.width() + 1, room_.left(), rightmost),
              isAbove ? room_.bottom() - size.height() + 1 : room_.top()};
    popup(place_);
}

void ScreenMenu::fitInto(int height) {
    const int excess = sizeHint().height() - height;
    const QList<QAction *> entries = actions();
    const auto count =
        static_cast<int>(std::count_if(entries.begin(), entries.end(),
                                       [](const QAction *entry) { return !entry->isSeparator(); }));
    if (excess <= 0 || count == 0)
        return;
    const int present = actionGeometry(entries.front()).height();
    mostEntryHeight_ = std::max(leastEntryHeight, present - (excess + count - 1) / count);
    QEvent change(QEvent::StyleChange); // has the entries measured anew
    QCoreApplication::sendEvent(this, &change);
}

void ScreenMenu::highlightFirst() { press(*this, Qt::Key_Home); }

// Qt would scroll a menu by what is done above or below it.
bool ScreenMenu::handleBeside(const QEvent &event) {
    if (!isScrolled_ || !event.isSinglePointEvent())
        return false;
    const QPointF place = static_cast<const QSinglePointEvent &>(event).position();
    if (rect().contains(place.toPoint()))
        return false;
    if (event.type() == QEvent::MouseButtonPress)
        close();
    return true;
}

bool ScreenMenu::eventFilter(QObject *watched, QEvent *event) {
    auto &menu = *static_cast<QMenu *>(watched);
    if (event->type() == QEvent::KeyPress)
        return goTo(menu, static_cast<QKeyEvent *>(event)->text());
    if (event->type() == QEvent::Show) { // of which Qt knows only where the desktop ends
        QRect shown = menu.geometry();
        const int lowest = std::max(room_.top(), room_.bottom() - shown.height() + 1);
        shown.moveTop(std::clamp(shown.top(), room_.top(), lowest));
        if (watched == this)
            shown.moveTopLeft(place_);
        menu.setGeometry(shown);
    }
    return (watched == this && handleBeside(*event)) || QMenu::eventFilter(watched, event);
}

void ScreenMenu::enable(int command, bool isEnabled) {
    if (QAction *action = actions_.value(command))
        action->setEnabled(isEnabled);
}

} // namespace tidebrook

#include "moc_screen_menu.cpp"

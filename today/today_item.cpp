#include "today/today_item.h"

#include "platform/desktop/own_program.h"
#include "res/strings.h"
#include "today/desktop/dock.h"
#include "update/round_request.h"

#include <QCoreApplication>
#include <QEvent>
#include <QProcess>
#include <QSocketNotifier>

namespace tidebrook {

namespace {

constexpr QStringView instanceName = u"TODAY";
constexpr int markTime = 20'000; // ms; another process may be changing the database

QString counted(quint32 count, int oneString, int manyString) {
    return count == 1 ? resourceString(oneString) : resourceString(manyString).arg(count);
}

// By the command line, for this program changes nothing by itself.
bool markRead(const DeviceRoot &device, const Headline &headline) {
    const QString program = ownProgram(QStringLiteral("tidebrookctl"));
    QProcess command;
    command.setStandardInputFile(QProcess::nullDevice());
    command.setStandardOutputFile(QProcess::nullDevice());
    command.setStandardErrorFile(QProcess::nullDevice());
    command.start(program,
                  {QStringLiteral("--home"), device.path(), QStringLiteral("mark"),
                   QStringLiteral("--"), headline.channel, QStringLiteral("read"), headline.title});
    return !program.isEmpty() && command.waitForFinished(markTime) &&
           command.exitStatus() == QProcess::NormalExit && command.exitCode() == 0;
}

} // namespace

TodayItem::TodayItem(const TodayArguments &arguments)
    : device_(arguments.device), place_(arguments.place), news_(device_), reader_(device_) {
    claimDevice();
    if (isSecond_)
        return;
    if (place_ == Place::Everywhere || place_ == Place::Tray) {
        tray_.emplace();
        connectMenu(tray_->menu());
        connect(&*tray_, &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger)
                        reader_.open();
                });
    }
    connectStrip();
    connect(&news_, &TodayNews::changed, this, &TodayItem::show);
    connect(&news_, &TodayNews::moved, this, &TodayItem::claimDevice);
    connect(&news_, &TodayNews::arrived, this, &TodayItem::notify);
    connect(&reader_, &ReaderStart::failed, this,
            [this] { strip_.showNote(resourceString(todayNotOpenedString)); });
}

TodayItem::~TodayItem() = default;

// A device that is put in the place of the one before has its own lock.
void TodayItem::claimDevice() {
    requests_.reset();
    single_.reset();
    if (!device_.isDevice())
        return;
    single_.emplace(device_, instanceName);
    const auto claim = single_->claim(std::chrono::seconds(1));
    isSecond_ =
        claim == SingleInstance::Claim::BroughtForward || claim == SingleInstance::Claim::NoAnswer;
    if (isSecond_)
        return QCoreApplication::quit();
    if (single_->requestDescriptor() < 0)
        return;
    requests_ =
        std::make_unique<QSocketNotifier>(single_->requestDescriptor(), QSocketNotifier::Read);
    connect(requests_.get(), &QSocketNotifier::activated, this, &TodayItem::comeBack);
}

void TodayItem::connectStrip() {
    strip_.installEventFilter(this);
    connectMenu(menu_);
    connect(&strip_, &HeadlineStrip::clicked, this, &TodayItem::openHeadline);
    connect(&strip_, &HeadlineStrip::menuWanted, this, [this](const QPoint &position) {
        markable_ = strip_.headline(); // the strip may step on while the menu is open
        if (place_ == Place::Window)
            menu_.popup(position);
        else
            popUpFrom(strip_, menu_, position);
    });
}

void TodayItem::connectMenu(ItemMenu &menu) {
    connect(&menu, &ItemMenu::headlineChosen, &reader_,
            qOverload<const Headline &>(&ReaderStart::open));
    connect(&menu, &ItemMenu::openChosen, &reader_, qOverload<>(&ReaderStart::open));
    connect(&menu, &ItemMenu::updateChosen, this, &TodayItem::updateChannels);
    connect(&menu, &ItemMenu::markChosen, this, &TodayItem::markHeadline);
    connect(&menu, &ItemMenu::settingsChosen, &reader_, &ReaderStart::openSettings);
    connect(&menu, &ItemMenu::hideChosen, this, &TodayItem::hide);
}

void TodayItem::show() {
    const TodayState &state = news_.state();
    const bool isShown = state.isEnabled && !isHidden_;
    if (isShown) {
        strip_.setState(state);
        menu_.setState(state);
    }
    if (tray_) {
        if (isShown)
            tray_->setState(state);
        tray_->setVisible(isShown);
    }
    showStrip(isShown && place_ != Place::Tray);
    followSight();
}

void TodayItem::showStrip(bool isShown) {
    if (!isShown)
        return undock(strip_);
    if (strip_.isVisible())
        return;
    if (place_ == Place::Window)
        strip_.show();
    else
        dockAtTop(strip_);
    if (!sight_) {
        sight_.emplace(strip_);
        connect(&*sight_, &Sight::changed, this, &TodayItem::followSight);
    }
}

// What cannot be seen is neither stepped nor read.
void TodayItem::followSight() {
    const bool isSeen = sight_ && sight_->isSeen();
    strip_.setStepping(isSeen);
    // At login the item may come before the tray.
    const bool isInTray = tray_ && tray_->isVisible() &&
                          (place_ == Place::Tray || QSystemTrayIcon::isSystemTrayAvailable());
    news_.setShown(isSeen || isInTray);
}

void TodayItem::hide() {
    isHidden_ = true;
    show();
}

void TodayItem::comeBack() {
    if (!single_->takeRequest())
        return;
    isHidden_ = false;
    show();
}

// The window that is closed is put away like the strip.
bool TodayItem::eventFilter(QObject *object, QEvent *event) {
    if (event->type() != QEvent::Close)
        return QObject::eventFilter(object, event);
    event->ignore();
    hide();
    return true;
}

void TodayItem::openHeadline() {
    if (const std::optional<Headline> headline = strip_.headline())
        reader_.open(*headline);
    else
        reader_.open();
}

void TodayItem::updateChannels() {
    strip_.showNote(resourceString(todayUpdatingString));
    errands_.ask(
        this, [device = device_] { return requestRound(device); },
        [this](bool isRequested) {
            if (!isRequested)
                strip_.showNote(resourceString(todayNotUpdatedString));
        });
}

void TodayItem::markHeadline() {
    if (!markable_)
        return;
    errands_.ask(
        this, [device = device_, headline = *markable_] { return markRead(device, headline); },
        [this](bool isMarked) {
            if (!isMarked)
                strip_.showNote(resourceString(todayNotMarkedString));
        });
}

void TodayItem::notify(quint32 articles, quint32 channels) {
    if (isHidden_)
        return;
    if (!notifications_) {
        notifications_.emplace();
        connect(&*notifications_, &Notifications::tapped, &reader_,
                qOverload<>(&ReaderStart::open));
    }
    const QString where = counted(channels, todayOneChannelString, todayManyChannelsString);
    notifications_->show(resourceString(programNameString),
                         (articles == 1
                              ? resourceString(todayOneNewString).arg(where)
                              : resourceString(todayManyNewString).arg(articles).arg(where)));
}

} // namespace tidebrook

#include "moc_today_item.cpp"

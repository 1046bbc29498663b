// touchscreen SOCKET WIDTH HEIGHT [desk]: a Wayland compositor whose seat has fingers alone, for
// the window of the reader, which fills the screen. By "desk" its windows have the size they choose
// and the keyboard of a desk. What the fingers do, and what the screen shows, comes and goes by
// lines on standard input and output.

#include <QtWaylandCompositor/QWaylandBufferRef>
#include <QtWaylandCompositor/QWaylandCompositor>
#include <QtWaylandCompositor/QWaylandOutputMode>
#include <QtWaylandCompositor/QWaylandSeat>
#include <QtWaylandCompositor/QWaylandSurface>
#include <QtWaylandCompositor/QWaylandView>
#include <QtWaylandCompositor/QWaylandXdgShell>

#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

using namespace Qt::StringLiterals;

constexpr int frameTime = 16; // ms
constexpr int refreshRate = 60'000;

class Compositor : public QWaylandCompositor {
public:
    explicit Compositor(QWaylandSeat::CapabilityFlags devices) : devices_(devices) {}

protected:
    QWaylandSeat *createSeat() override { return new QWaylandSeat(this, devices_); }

private:
    QWaylandSeat::CapabilityFlags devices_;
};

/// A surface of the reader, and where its upper left corner is.
struct Place {
    QPointer<QWaylandSurface> surface;
    QPoint corner;
};

class TouchScreen : public QObject {
public:
    TouchScreen(const QByteArray &socket, const QSize &size, bool isDesk);

    /// Does what a line says, and returns the answer.
    QByteArray obey(const QByteArray &line);

private:
    void addSurface(QWaylandSurface *surface);
    void addWindow(QWaylandXdgToplevel *window);
    void addMenu(QWaylandXdgPopup *menu);
    void turn(const QSize &size);
    void showFrames();

    QWaylandXdgToplevel *reader() const; // its window; nullptr without one
    QList<Place> places() const;         // the window's, and those of its menus
    QImage picture() const;
    QByteArray state() const;
    bool touch(const QString &act, int finger, const QPoint &point);
    bool hasInk(const QRect &area) const;

    const bool isDesk_; // with a keyboard, and windows that do not fill the screen
    Compositor compositor_{isDesk_ ? QWaylandSeat::DefaultCapabilities : QWaylandSeat::Touch};
    QWaylandOutput output_;
    QWaylandXdgShell shell_{&compositor_};
    QSize size_;
    QList<QPointer<QWaylandXdgToplevel>> windows_;
    QList<Place> menus_;
    QHash<int, Place> touched_; // by the finger
    bool isShown_ = false;      // since the window has this title
    QTimer frames_;
};

TouchScreen::TouchScreen(const QByteArray &socket, const QSize &size, bool isDesk)
    : isDesk_(isDesk), size_(size) {
    compositor_.setSocketName(socket);
    compositor_.setUseHardwareIntegrationExtension(false);
    connect(&compositor_, &QWaylandCompositor::surfaceCreated, this, &TouchScreen::addSurface);
    connect(&shell_, &QWaylandXdgShell::toplevelCreated, this, &TouchScreen::addWindow);
    connect(&shell_, &QWaylandXdgShell::popupCreated, this, &TouchScreen::addMenu);
    connect(&frames_, &QTimer::timeout, this, &TouchScreen::showFrames);
    output_.setCompositor(&compositor_);
    compositor_.create();
    turn(size);
    frames_.start(frameTime);
}

void TouchScreen::addSurface(QWaylandSurface *surface) {
    auto *view = new QWaylandView(nullptr, surface);
    view->setSurface(surface);
    view->setOutput(&output_);
    connect(surface, &QWaylandSurface::redraw, view, [this, view] {
        view->advance();
        isShown_ = true;
    });
}

void TouchScreen::addWindow(QWaylandXdgToplevel *window) {
    windows_.append(window);
    connect(window, &QWaylandXdgToplevel::titleChanged, this, [this] { isShown_ = false; });
    turn(size_);
    // A menu that no device opened is a window too, which takes the keyboard from none.
    QWaylandSeat *seat = compositor_.defaultSeat();
    if (isDesk_ && seat->keyboardFocus() == nullptr)
        seat->setKeyboardFocus(window->xdgSurface()->surface());
}

void TouchScreen::addMenu(QWaylandXdgPopup *menu) {
    QPoint corner = menu->unconstrainedPosition();
    for (const Place &place : places()) {
        if (place.surface == menu->parentXdgSurface()->surface())
            corner += place.corner;
    }
    menus_.append(Place{menu->xdgSurface()->surface(), corner});
}

void TouchScreen::turn(const QSize &size) {
    size_ = size;
    const QWaylandOutputMode mode(size, refreshRate);
    output_.addMode(mode, true);
    output_.setCurrentMode(mode);
    QList states{QWaylandXdgToplevel::ActivatedState};
    if (!isDesk_)
        states.append(QWaylandXdgToplevel::MaximizedState);
    for (const auto &window : windows_) {
        if (window)
            window->sendConfigure(isDesk_ ? QSize(0, 0) : size, states);
    }
}

void TouchScreen::showFrames() {
    output_.frameStarted();
    output_.sendFrameCallbacks();
}

QWaylandXdgToplevel *TouchScreen::reader() const {
    const auto window = std::find_if(windows_.cbegin(), windows_.cend(), [](const auto &candidate) {
        return candidate && candidate->appId() == u"tidebrook"_s;
    });
    return window == windows_.cend() ? nullptr : window->data();
}

QList<Place> TouchScreen::places() const {
    QList<Place> places;
    if (const auto *window = reader())
        places.append(Place{window->xdgSurface()->surface(), QPoint()});
    for (const Place &menu : menus_) {
        if (menu.surface && menu.surface->hasContent())
            places.append(menu);
    }
    return places;
}

QImage TouchScreen::picture() const {
    QImage picture(size_, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    for (const Place &place : places())
        painter.drawImage(place.corner, place.surface->primaryView()->currentBuffer().image());
    return picture;
}

QByteArray TouchScreen::state() const {
    const QList<Place> places = this->places();
    QJsonObject state;
    if (const auto *window = reader())
        state.insert(u"title"_s, window->title());
    QJsonArray areas;
    for (const Place &place : places) {
        const QSize size = place.surface->destinationSize();
        areas.append(QJsonArray{place.corner.x(), place.corner.y(), size.width(), size.height()});
    }
    state.insert(u"areas"_s, areas);
    const QImage picture = this->picture();
    state.insert(u"picture"_s,
                 QString::number(
                     qHashBits(picture.constBits(), static_cast<size_t>(picture.sizeInBytes()))));
    return QJsonDocument(state).toJson(QJsonDocument::Compact);
}

bool TouchScreen::touch(const QString &act, int finger, const QPoint &point) {
    if (act == u"down"_s) {
        for (const Place &place : places()) {
            const QRect area(place.corner, place.surface->destinationSize());
            if (!touched_.contains(finger) || area.contains(point))
                touched_.insert(finger, place);
        }
    }
    const Place place = touched_.value(finger);
    if (!place.surface)
        return false;
    const auto state = act == u"down"_s ? Qt::TouchPointPressed
                       : act == u"up"_s ? Qt::TouchPointReleased
                                        : Qt::TouchPointMoved;
    QWaylandSeat *seat = compositor_.defaultSeat();
    seat->sendTouchPointEvent(place.surface, finger, point - place.corner, state);
    seat->sendTouchFrameEvent(place.surface->client());
    if (act == u"up"_s)
        touched_.remove(finger);
    return true;
}

bool TouchScreen::hasInk(const QRect &area) const {
    const QImage image = picture().copy(area);
    QImage plain = image;
    plain.fill(image.pixelColor(0, 0));
    return isShown_ && image != plain;
}

QByteArray TouchScreen::obey(const QByteArray &line) {
    const QStringList words = QString::fromLocal8Bit(line).split(u' ');
    const auto number = [&](int place) { return words.value(place).toInt(); };
    const QString &act = words.first();
    bool isDone = true;
    if (act == u"state"_s)
        return state();
    if (act == u"size"_s)
        turn({number(1), number(2)});
    else if (act == u"grab"_s)
        isDone = picture().save(words.value(1));
    else if (act == u"ink"_s)
        isDone = hasInk({number(1), number(2), number(3), number(4)});
    else if (act == u"close"_s && reader() != nullptr)
        reader()->sendClose();
    else
        isDone = touch(act, number(1), {number(2), number(3)});
    return isDone ? "yes" : "no";
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    TouchScreen screen(words.value(1).toLocal8Bit(),
                       {words.value(2).toInt(), words.value(3).toInt()}, words.contains(u"desk"_s));
    QByteArray said;
    QSocketNotifier lines(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&lines, &QSocketNotifier::activated, &application, [&] {
        std::array<char, 1024> buffer{};
        const ssize_t length = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (length <= 0)
            return QGuiApplication::quit();
        said.append(buffer.data(), length);
        for (qsizetype end = said.indexOf('\n'); end >= 0; end = said.indexOf('\n')) {
            std::puts(screen.obey(said.first(end)).constData());
            said.remove(0, end + 1);
        }
        std::fflush(stdout);
    });
    return QGuiApplication::exec();
}

// Pictures of every screen and dialog, light and dark, in a window as large as the platform's
// screen.

#include "kit/files/file_dialog.h"
#include "kit/touch_style.h"
#include "screen_driver/session.h"
#include "test_device/home.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QStyle>

#include <algorithm>
#include <cstdio>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

const QString seed =
    u"a\thttp://a\tNews\nSmall Machines\thttp://b\tTechnology\nc\thttp://c\tScience\n"
    "d\thttp://d\tFood and drink\ne\thttp://e\tTravel\nf\thttp://f\tSport\n"_s;

const QByteArray list = R"(<opml version="2.0"><body>
    <outline text="Night Trains" type="rss" xmlUrl="http://example.org/trains"/>
    <outline text="The Paper Boat" type="rss" xmlUrl="http://example.org/boat"/>
    <outline text="Radio Garden" type="rss" xmlUrl="http://example.org/radio"/>
    </body></opml>)";

const QList<TestArticle> exampleArticles{
    {.title = u"A radio the size of a matchbox, built over one long winter"_s,
     .description =
         u"<p>It began with a drawer of <b>old parts</b> and a box of matches. What came of it "
         "receives three stations, <i>one of them well</i>, and runs for a week on a coin cell.</p>"
         "<h3>What is in it</h3><ul><li>a coil, wound by hand</li><li>two transistors</li>"
         "<li>patience</li></ul><blockquote>Make it small, and then make it smaller.</blockquote>"
         "<p>The <a href=\"http://example.org/plans\">plans</a> are free.</p>"_s,
     .date = u"2026-11-20"_s},
    {.title = u"Why pocket computers had keys"_s, .date = u"2026-11-19"_s},
    {.title =
         u"Letters: your smallest workshop, and how you keep it tidy when somebody is at the door"_s,
     .date = u"2026-11-18"_s},
    {.title = u"Soldering by candlelight"_s, .date = u"2026-11-17"_s},
};

QPalette darkPalette() {
    const QColor window(0x2b, 0x2d, 0x30);
    QPalette palette(QColor(0x3c, 0x3f, 0x43), window);
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    palette.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x6f, 0x97));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb8, 0xe0));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x82, 0x86));
    return palette;
}

/// Those that are open, with the one in front behind the others.
QWidgetList popups() {
    QWidgetList popups = QApplication::topLevelWidgets();
    popups.removeIf([](const QWidget *widget) {
        return !widget->isVisible() || widget->windowType() != Qt::Popup;
    });
    std::ranges::sort(popups, {},
                      [](auto *popup) { return popup == QApplication::activePopupWidget(); });
    return popups;
}

bool savePicture(ScreenStack &stack, const QString &path) {
    QPixmap picture = stack.grab();
    for (QWidget *popup : popups())
        QPainter(&picture).drawPixmap(stack.mapFromGlobal(popup->pos()), popup->grab());
    return picture.save(path);
}

/// What the user does, what box or caption is to be seen then, the name of its picture, if one is
/// taken, and how often the user goes back afterwards.
struct Step {
    Hand act;
    QString heading;
    QString picture = {};
    int back = 0;
    int popups = 0; ///< that are to be seen
};

Hand tappingRows(const QList<int> &rows) {
    return [rows](User &user) {
        for (const int row : rows)
            user.tapRow(row);
    };
}
Hand choosingFile(QString (*choose)(ScreenStack &, const FileRequest &)) {
    return [choose](User &user) {
        user.act([&user, choose] {
            choose(user.stack(),
                   {u"Export Category"_s, u"OPML (*.opml)"_s, u"*.opml"_s, u"News"_s});
        });
    };
}
const Hand enter = pressing(Qt::Key_Return);
const QString categories = u"All Categories"_s;
const QString channels = u"Technology"_s;
const QString articles = u"Planet of Small Things"_s;
const QString file = u"Export Category"_s;
const QString program = u"Tidebrook"_s;

const Step steps[]{
    {pressing(Qt::Key_Home), categories, u"categories"_s},
    {pressing(Qt::Key_F10), categories, u"menu"_s, 1, 1},
    {choosing({u"Font Size"_s}), categories, u"font-sizes"_s, 2, 2},
    {pressing(Qt::Key_Down), categories},
    {pressing(Qt::Key_F2), categories, u"label-edit"_s},
    {[](User &user) { user.type(u"News"_s); }, categories},
    {enter, u"The name is exist!"_s, u"warning"_s, 1},
    {pressing(Qt::Key_Delete), u"Are you sure you want to delete this category?"_s, u"question"_s,
     1},

    {choosing({u"Setting"_s}), u"Today Setting"_s, u"settings-today"_s},
    {pressing(Qt::Key_Tab, Qt::ControlModifier), u"Auto Update"_s, u"settings-update"_s},
    {tapping(u"Update Interval"_s), u"Auto Update"_s},
    {pressing(Qt::Key_F4), u"Auto Update"_s, u"settings-intervals"_s, 2, 1},
    {pressing(Qt::Key_F1), program, u"help"_s, 1},
    {choosing({u"About"_s}), u"About"_s, u"about"_s, 1},
    {choosingFile(chooseFileToOpen), file},
    {pressing(Qt::Key_Down), file, u"file-open"_s, 1},
    {choosingFile(chooseFileToSave), file, u"file-save"_s},
    {enter, u"News.opml is there already. Replace it?"_s, u"file-replace"_s, 2},

    {tappingRows({1}), channels, u"channels"_s},
    {choosing({u"Properties"_s}), program, u"properties"_s, 1},
    {choosing({u"New Channel"_s}), program, u"wizard-address"_s},
    {tapping(u"Import from a file"_s), program},
    {enter, u"New Channel"_s},
    {tappingRows({5}), program},
    {tappingRows({0, 2, 1, 1}), program, u"wizard-channels"_s},
    {enter, program, u"wizard-category"_s, 3},

    {tappingRows({1}), articles, u"articles"_s},
    {enter, articles, u"article"_s},
    {choosing({u"Font Size"_s, u"Big"_s}), articles, u"article-big"_s},
    {tapping(u"Article List"_s), articles, u"articles-big"_s},
    {choosing({u"Font Size"_s, u"Small"_s}), articles},
    {choosing({u"Show Unread Only"_s}), articles, u"articles-unread"_s, 1},
    {pressing(Qt::Key_F4), channels, u"choices"_s, 1},
};

/// Whether what is to be seen came, and its picture was taken.
bool take(User &user, const Step &step, const QString &path) {
    step.act(user);
    bool isRight = user.seesQuiet() && user.seesCaption(step.heading) &&
                   user.sees([&] { return popups().size() == step.popups; });
    if (!step.picture.isNull())
        user.look([&] { isRight = savePicture(user.stack(), path) && isRight; });
    if (!isRight)
        std::fprintf(stderr, "%s\n", qUtf8Printable(path));
    for (int i = 0; i < step.back; ++i) {
        user.press(Qt::Key_Escape);
        isRight = user.seesQuiet() && isRight;
    }
    return isRight;
}

bool photographAll(const QDir &folder, bool isDark) {
    QPalette palette = isDark ? darkPalette() : QApplication::style()->standardPalette();
    QApplication::style()->polish(palette); // as that of a desktop is
    QApplication::setPalette(palette);
    const Home home({u"Saved articles/"_s, u"Old devices/"_s, u"Channels 2.opml"_s,
                     u"Channels 10.opml"_s, u"News.opml"_s},
                    list, u"Documents"_s);
    TestDevice device(seed);
    for (const QStringView name : {u"UpdateInterval", u"UpdateMode"})
        device.registry->write(programKey, name, 1U);
    for (const QStringView name : {u"UpdateTime", u"ACTOPTION", u"NoRoaming"})
        device.registry->write(programKey, name, 0U);
    for (const QStringView name : {u"Enabled", u"TodayTimer"})
        device.registry->write(testTodayKey, name, 1U);
    device.store->Open();
    device.addChannel(channels, articles, exampleArticles);
    device.addChannel(channels, u"The Slow Web, with a name that is rather long"_s, {u"One"_s});
    device.addChannel(channels, u"Open Bench"_s, QStringList{});
    device.store->Close();
    const QSize screen = QGuiApplication::primaryScreen()->size();
    const QString ending = u"-%1x%2-"_s.arg(screen.width()).arg(screen.height()) +
                           (isDark ? u"dark.png"_s : u"light.png"_s);
    Session session(device.root, screen, [](const QString &missing) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(missing));
    });
    bool isRight = false;
    session.run([&](User &user) {
        isRight = std::ranges::all_of(steps, [&](const Step &step) {
            return take(user, step, folder.filePath(step.picture + ending));
        });
    });
    return isRight;
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    tidebrook::installTouchStyle();
    const QDir folder(QCoreApplication::arguments().value(1));
    folder.mkpath(QStringLiteral("."));
    return tidebrook::photographAll(folder, false) && tidebrook::photographAll(folder, true) ? 0
                                                                                             : 1;
}

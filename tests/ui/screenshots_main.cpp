// Pictures of every screen and dialog, light and dark, on a device whose screen is that of the
// platform.

#include "ui/home.h"
#include "ui/kit/file_dialog.h"
#include "ui/kit/list_view.h"
#include "ui/kit/touch_style.h"
#include "ui/session.h"

#include <QApplication>
#include <QPalette>
#include <QPixmap>
#include <QScreen>
#include <QStyle>

#include <algorithm>
#include <cstdio>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

const QString seed = u"The Harbour Post\thttp://example.org/1\tNews\n"
                     u"Evening Ferry\thttp://example.org/2\tNews\n"
                     u"Small Machines\thttp://example.org/3\tTechnology\n"
                     u"Tide Tables Weekly\thttp://example.org/4\tScience\n"
                     u"Long Waves\thttp://example.org/5\tScience\n"
                     u"Kitchen by the Sea\thttp://example.org/6\tFood and drink\n"
                     u"Lighthouse Keepers\thttp://example.org/7\tTravel\n"
                     u"Row, Row\thttp://example.org/8\tSport\n"_s;

QPalette darkPalette() {
    const QColor window(0x2b, 0x2d, 0x30);
    const QColor text(0xe6, 0xe6, 0xe6);
    QPalette palette(QColor(0x3c, 0x3f, 0x43), window);
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x6f, 0x97));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb8, 0xe0));
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x82, 0x86));
    return palette;
}

const QStringList documentRows{u".."_s,
                               u"Old devices"_s,
                               u"Saved articles"_s,
                               u"Channels 2.opml"_s,
                               u"Channels 10.opml"_s,
                               u"News.opml"_s};

const QByteArray list = R"(<opml version="2.0"><body>
    <outline text="Night Trains" type="rss" xmlUrl="http://example.org/trains"/>
    <outline text="The Paper Boat" type="rss" xmlUrl="http://example.org/boat"/>
    <outline text="Radio Garden" type="rss" xmlUrl="http://example.org/radio"/>
    </body></opml>)";

bool areOpen(int count) {
    const QWidgetList widgets = QApplication::topLevelWidgets();
    return count == std::count_if(widgets.begin(), widgets.end(), [](const QWidget *widget) {
               return widget->isVisible() && widget->windowType() == Qt::Popup;
           });
}

/// What the user does, what is to be seen then, and the name of its picture, if one is taken.
struct Step {
    Hand act;
    std::function<bool(User &)> isSeen;
    QString picture = {};
};
using Seen = decltype(Step::isSeen);

Hand keys(const QList<int> &keys) {
    return [keys](User &user) {
        for (const int key : keys)
            user.press(key);
    };
}
Seen selected(int row) {
    return [row](User &user) { return user.seesSelected(row); };
}
Seen caption(const QString &text) {
    return [text](User &user) { return user.seesCaption(text); };
}
Seen box(const QString &text) {
    return [text](User &user) { return user.seesBox(text); };
}
Seen controls(const QStringList &texts) {
    return [texts](User &user) { return user.seesControls(texts); };
}
Seen menus(int count) {
    return [count](User &user) { return user.sees([&] { return areOpen(count); }); };
}
Seen rows(const QStringList &texts, int row = 0) {
    return [=](User &user) { return user.seesRows(texts) && user.seesSelected(row); };
}
Hand choosingFile(QString (*choose)(ScreenStack &, const FileRequest &)) {
    return [choose](User &user) {
        user.act([&user, choose] {
            choose(user.stack(),
                   {u"Export Category"_s, u"OPML (*.opml)"_s, u"*.opml"_s, u"News"_s, 260, {}});
        });
    };
}
const Hand nothing = [](User &) {};
const Hand back = pressing(Qt::Key_Escape);
const Seen channels = [](User &user) {
    return user.seesCaption(u"Technology"_s) &&
           user.sees([&user] { return user.list()->rowCount() == 3; });
};
const Seen articles = [](User &user) {
    return user.seesCaption(u"Planet of Small Things"_s) && user.seesSelected(0);
};
const Seen article = [](User &user) { return user.seesPage(u"matchbox"_s); };
const QString program = u"Tidebrook"_s;
const QString categories = u"All Categories"_s;

const Step steps[]{
    {nothing, selected(0), u"categories"_s},
    {pressing(Qt::Key_F10), menus(1), u"menu"_s},
    {keys({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right}),
     menus(2), u"font-sizes"_s},
    {keys({Qt::Key_Escape, Qt::Key_Escape}), menus(0)},
    {keys({Qt::Key_Down, Qt::Key_F2}), [](User &user) { return user.seesEditor(u"Technology"_s); },
     u"label-edit"_s},
    {[](User &user) {
         user.type(u"News"_s);
         user.press(Qt::Key_Return);
     },
     box(u"The name is exist!"_s), u"warning"_s},
    {pressing(Qt::Key_Return), caption(categories)},
    {pressing(Qt::Key_Delete), box(u"Are you sure you want to delete this category?"_s),
     u"question"_s},
    {back, caption(categories)},

    {choosing({u"Setting"_s}), caption(u"Today Setting"_s), u"settings-today"_s},
    {pressing(Qt::Key_Tab, Qt::ControlModifier), caption(u"Auto Update"_s), u"settings-update"_s},
    {[](User &user) {
         user.tap(u"Update Interval"_s);
         user.press(Qt::Key_F4);
     },
     menus(1), u"settings-intervals"_s},
    {back, menus(0)},
    {tapping(u"Cancel"_s), caption(categories)},

    {pressing(Qt::Key_F1), caption(program), u"help"_s},
    {tapping(u"Done"_s), caption(categories)},
    {choosing({u"About"_s}), caption(u"About"_s), u"about"_s},
    {tapping(u"Done"_s), caption(categories)},

    {choosingFile(chooseFileToOpen), rows(documentRows)},
    {pressing(Qt::Key_Down), selected(1), u"file-open"_s},
    {tapping(u"Cancel"_s), caption(categories)},
    {choosingFile(chooseFileToSave), caption(u"Export Category"_s), u"file-save"_s},
    {pressing(Qt::Key_Return), box(u"News.opml is there already. Replace it?"_s),
     u"file-replace"_s},
    {back, caption(u"Export Category"_s)},
    {back, caption(categories)},

    {[](User &user) { user.tapRow(1); }, channels},
    {nothing, selected(0), u"channels"_s},
    {choosing({u"Properties"_s}),
     controls({u"Open Bench"_s, u"http://example.org/feed"_s,
               u"News [Technology] Science Food and drink Travel Sport"_s,
               u"- Auto update this channel"_s}),
     u"properties"_s},
    {back, channels},
    {choosing({u"New Channel"_s}),
     controls({u"x Input from URL"_s, u"- Import from a file"_s, u"http://"_s}),
     u"wizard-address"_s},
    {[](User &user) {
         user.tap(u"Import from a file"_s);
         user.press(Qt::Key_Return);
     },
     rows(documentRows)},
    {pressing(Qt::Key_End), selected(5)},
    {pressing(Qt::Key_Return),
     controls({u"- Night Trains, - The Paper Boat, - Radio Garden."_s, u"- All"_s})},
    {[](User &user) {
         user.tapRow(0);
         user.tapRow(2);
         user.press(Qt::Key_Up);
     },
     selected(1), u"wizard-channels"_s},
    {pressing(Qt::Key_Return),
     controls({u"News Technology Science [Food and drink] Travel Sport"_s}), u"wizard-category"_s},
    {back, controls({u"x Night Trains, - The Paper Boat, x Radio Garden."_s, u"- All"_s})},
    {back, controls({u"- Input from URL"_s, u"x Import from a file"_s, u"http://"_s})},
    {back, channels},

    {[](User &user) { user.tapRow(1); }, articles, u"articles"_s},
    {pressing(Qt::Key_Return), article, u"article"_s},
    {choosing({u"Font Size"_s, u"Big"_s}), article, u"article-big"_s},
    {tapping(u"Article List"_s), articles, u"articles-big"_s},
    {choosing({u"Font Size"_s, u"Small"_s}), articles},
    {choosing({u"Show Unread Only"_s}), selected(0), u"articles-unread"_s},
    {back, channels},
    {pressing(Qt::Key_F4), [](User &user) { return user.seesChoices(); }, u"choices"_s},
};

/// How many steps did not lead to what is to be seen.
int takePictures(User &user, const QDir &folder, const QString &ending) {
    int failures = 0;
    for (const auto &[act, isSeen, picture] : steps) {
        act(user);
        const QString path = folder.filePath(picture + ending);
        if (isSeen(user) && user.seesQuiet() && (picture.isNull() || user.picture().save(path)))
            continue;
        std::fprintf(stderr, "on the way to %s: not seen\n", qUtf8Printable(path));
        ++failures;
    }
    user.press(Qt::Key_Escape);
    return failures;
}

QList<TestArticle> exampleArticles() {
    const QString link = u"http://example.org/planet"_s;
    return {
        {u"A radio the size of a matchbox, built over one long winter"_s, link,
         u"<p>It began with a drawer of <b>old parts</b> and a box of matches. What came of it "
         "receives three stations, <i>one of them well</i>, and runs for a week on a coin cell.</p>"
         "<h3>What is in it</h3><ul><li>a coil, wound by hand</li><li>two transistors</li>"
         "<li>patience</li></ul><blockquote>Make it small, and then make it smaller.</blockquote>"
         "<p>The <a href=\"http://example.org/plans\">plans</a> are free.</p>"_s,
         u"2026-11-20"_s},
        {u"Why pocket computers had keys"_s, link, u"Because fingers know where they are."_s,
         u"2026-11-19"_s},
        {u"Letters: your smallest workshop, and how you keep it tidy when somebody is at the door"_s,
         link, u"DEFAULT"_s, u"2026-11-18"_s},
        {u"Soldering by candlelight"_s, link, u"Please do not."_s, u"2026-11-17"_s},
    };
}

void furnish(TestDevice &device) {
    for (const QStringView name : {u"UpdateInterval", u"UpdateMode"})
        device.registry->write(programKey, name, 1U);
    for (const QStringView name : {u"UpdateTime", u"ACTOPTION", u"NoRoaming"})
        device.registry->write(programKey, name, 0U);
    for (const QStringView name : {u"Enabled", u"TodayTimer"})
        device.registry->write(testTodayKey, name, 1U);
    device.store->Open();
    device.addChannel(u"Technology"_s, u"Planet of Small Things"_s, exampleArticles());
    device.addChannel(u"Technology"_s, u"The Slow Web, with a name that is rather long"_s,
                      {u"One"_s, u"Two"_s});
    device.addChannel(u"Technology"_s, u"Open Bench"_s, QStringList{});
    device.store->Close();
}

int photographAll(const QDir &folder, bool isDark) {
    QApplication::setPalette(isDark ? darkPalette() : QApplication::style()->standardPalette());
    const Home home({u"Saved articles/"_s, u"Old devices/"_s, u"Channels 2.opml"_s,
                     u"Channels 10.opml"_s, u"News.opml"_s},
                    list, u"Documents"_s);
    TestDevice device(seed);
    furnish(device);
    const QSize screen = QGuiApplication::primaryScreen()->size();
    Session session(device.root, screen);
    const QString ending = (screen.height() > screen.width() ? u"-portrait"_s : u"-landscape"_s) +
                           (isDark ? u"-dark"_s : u"-light"_s) +
                           (qApp->devicePixelRatio() > 1 ? u"@2x.png"_s : u".png"_s);
    int failures = 0;
    session.run([&](User &user) { failures = takePictures(user, folder, ending); });
    return failures;
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("Usage: screenshots FOLDER\n", stderr);
        return 2;
    }
    QApplication::setQuitOnLastWindowClosed(false);
    tidebrook::installTouchStyle();
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    int failures = folder.mkpath(QStringLiteral(".")) ? 0 : 1;
    for (const bool isDark : {false, true})
        failures += tidebrook::photographAll(folder, isDark);
    return failures == 0 ? 0 : 1;
}

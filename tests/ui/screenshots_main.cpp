// Pictures of every screen and dialog, light and dark, on a device whose screen is that of the
// platform.

#include "support/test_device.h"
#include "ui/kit/file_dialog.h"
#include "ui/kit/touch_style.h"
#include "ui/session.h"

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QPixmap>
#include <QScreen>
#include <QStyle>
#include <QTemporaryDir>

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

class Photographer {
public:
    Photographer(User &user, const QDir &folder, const QString &ending)
        : user_(user), folder_(folder), ending_(ending) {}

    /// Takes a picture of what is there once this is true.
    void take(const QString &name, bool isThere) {
        const QString path = folder_.filePath(name + ending_);
        if (!isThere || !user_.seesQuiet() || !user_.picture().save(path)) {
            std::fprintf(stderr, "%s: not seen\n", qUtf8Printable(path));
            failures_ += 1;
        }
    }
    int failures() const { return failures_; }

private:
    User &user_;
    QDir folder_;
    QString ending_;
    int failures_ = 0;
};

bool seesMenus(User &user, int count) {
    return user.sees([count] {
        int open = 0;
        for (const QWidget *widget : QApplication::topLevelWidgets())
            open += widget->isVisible() && widget->windowType() == Qt::Popup;
        return open == count;
    });
}

void photographMenus(User &user, Photographer &photographer) {
    user.press(Qt::Key_F10);
    photographer.take(u"menu"_s, seesMenus(user, 1));
    for (int i = 0; i < 5; ++i)
        user.press(Qt::Key_Down);
    user.press(Qt::Key_Right);
    photographer.take(u"font-sizes"_s, seesMenus(user, 2));
    user.press(Qt::Key_Escape);
    user.press(Qt::Key_Escape);
    seesMenus(user, 0);
}

void photographCategories(User &user, Photographer &photographer) {
    photographer.take(u"categories"_s, user.seesSelected(0));
    photographMenus(user, photographer);
    user.press(Qt::Key_Down);
    user.press(Qt::Key_F2);
    photographer.take(u"label-edit"_s, user.seesEditor(u"Technology"_s));
    user.type(u"News"_s);
    user.press(Qt::Key_Return);
    photographer.take(u"warning"_s, user.seesBox(u"The name is exist!"_s));
    user.press(Qt::Key_Return);
    user.seesNoBox();
    user.press(Qt::Key_Delete);
    photographer.take(u"question"_s,
                      user.seesBox(u"Are you sure you want to delete this category?"_s));
    user.press(Qt::Key_Escape);
    user.seesNoBox();
}

void photographSettings(User &user, Photographer &photographer) {
    user.choose({u"Setting"_s});
    photographer.take(u"settings-today"_s, user.seesCaption(u"Today Setting"_s));
    user.press(Qt::Key_Tab, Qt::ControlModifier);
    photographer.take(u"settings-update"_s, user.seesCaption(u"Auto Update"_s));
    user.tap(u"Update Interval"_s);
    user.press(Qt::Key_F4);
    photographer.take(u"settings-intervals"_s, seesMenus(user, 1));
    user.press(Qt::Key_Escape);
    seesMenus(user, 0);
    user.tap(u"Cancel"_s);
    user.seesCaption(u"All Categories"_s);
}

void photographArticles(User &user, Photographer &photographer) {
    photographer.take(u"articles"_s,
                      user.seesCaption(u"Planet of Small Things"_s) && user.seesSelected(0));
    user.press(Qt::Key_Return);
    photographer.take(u"article"_s, user.seesPage(u"matchbox"_s));
    user.choose({u"Font Size"_s, u"Big"_s});
    photographer.take(u"article-big"_s, user.seesPage(u"matchbox"_s));
    user.tap(u"Article List"_s);
    photographer.take(u"articles-big"_s,
                      user.seesCaption(u"Planet of Small Things"_s) && user.seesSelected(0));
    user.choose({u"Font Size"_s, u"Small"_s});
    user.choose({u"Show Unread Only"_s});
    photographer.take(u"articles-unread"_s, user.seesSelected(0));
    user.press(Qt::Key_Escape);
    user.seesCaption(u"Technology"_s);
}

void photographWizard(User &user, Photographer &photographer) {
    user.choose({u"New Channel"_s});
    photographer.take(
        u"wizard-address"_s,
        user.seesControls({u"x Input from URL"_s, u"- Import from a file"_s, u"http://"_s}));
    user.tap(u"Import from a file"_s);
    user.press(Qt::Key_Return);
    user.seesCaption(u"New Channel"_s);
    user.tapRow(user.seesRows(documentRows) ? static_cast<int>(documentRows.size()) - 1 : 0);
    const QString channels = u"- Night Trains, - The Paper Boat, - Radio Garden"_s;
    user.seesControls({channels + u'.', u"- All"_s});
    user.tapRow(0);
    user.tapRow(2);
    user.press(Qt::Key_Up);
    photographer.take(u"wizard-channels"_s, user.seesSelected(1));
    user.press(Qt::Key_Return);
    photographer.take(
        u"wizard-category"_s,
        user.seesControls({u"News Technology Science [Food and drink] Travel Sport"_s}));
    user.press(Qt::Key_Escape);
    user.seesControls({u"x Night Trains, - The Paper Boat, x Radio Garden."_s, u"- All"_s});
    user.press(Qt::Key_Escape);
    user.seesControls({u"- Input from URL"_s, u"x Import from a file"_s, u"http://"_s});
    user.press(Qt::Key_Escape);
    user.seesCaption(u"Technology"_s);
}

void photographProperties(User &user, Photographer &photographer) {
    user.choose({u"Properties"_s});
    photographer.take(u"properties"_s,
                      user.seesControls({u"Open Bench"_s, u"http://example.org/feed"_s,
                                         u"News [Technology] Science Food and drink Travel Sport"_s,
                                         u"- Auto update this channel"_s}));
    user.press(Qt::Key_Escape);
    user.seesCaption(u"Technology"_s);
}

void photographChannels(User &user, Photographer &photographer) {
    user.tapRow(1);
    photographer.take(u"channels"_s, user.seesCaption(u"Technology"_s) && user.seesSelected(0));
    photographProperties(user, photographer);
    photographWizard(user, photographer);
    user.tapRow(1);
    photographArticles(user, photographer);
    user.press(Qt::Key_F4);
    photographer.take(u"choices"_s, user.seesChoices());
    user.press(Qt::Key_Escape);
    user.seesQuiet();
}

void photographTexts(User &user, Photographer &photographer) {
    user.press(Qt::Key_F1);
    photographer.take(u"help"_s, user.seesCaption(u"Tidebrook"_s));
    user.tap(u"Done"_s);
    user.seesCaption(u"All Categories"_s);
    user.choose({u"About"_s});
    photographer.take(u"about"_s, user.seesCaption(u"About"_s));
    user.tap(u"Done"_s);
    user.seesCaption(u"All Categories"_s);
}

void photographFiles(User &user, Photographer &photographer) {
    const FileRequest request{
        u"Export Category"_s, u"OPML (*.opml)"_s, u"*.opml"_s, u"News"_s, 260, {}};
    user.act([&] { chooseFileToOpen(user.stack(), request); });
    user.seesCaption(request.title);
    user.seesRows(documentRows);
    user.press(Qt::Key_Down);
    photographer.take(u"file-open"_s, user.seesSelected(1));
    user.tap(u"Cancel"_s);
    user.seesCaption(u"All Categories"_s);
    user.act([&] { chooseFileToSave(user.stack(), request); });
    photographer.take(u"file-save"_s, user.seesCaption(request.title));
    user.press(Qt::Key_Return);
    photographer.take(u"file-replace"_s,
                      user.seesBox(u"News.opml is there already. Replace it?"_s));
    user.press(Qt::Key_Escape);
    user.seesNoBox();
    user.press(Qt::Key_Escape);
    user.seesCaption(u"All Categories"_s);
}

/// A home with documents in it, for as long as this is there.
std::unique_ptr<QTemporaryDir> makeHome() {
    auto home = std::make_unique<QTemporaryDir>();
    const QDir documents(home->filePath(u"Documents"_s));
    for (const QString &name : {u"Saved articles"_s, u"Old devices"_s})
        documents.mkpath(name);
    for (const QString &name : {u"Channels 2.opml"_s, u"Channels 10.opml"_s, u"News.opml"_s})
        writeFile(documents.filePath(name), list);
    qputenv("HOME", home->path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home->path().toLocal8Bit());
    return home;
}

QList<TestArticle> articles() {
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
    device.addChannel(u"Technology"_s, u"Planet of Small Things"_s, articles());
    device.addChannel(u"Technology"_s, u"The Slow Web, with a name that is rather long"_s,
                      {u"One"_s, u"Two"_s});
    device.addChannel(u"Technology"_s, u"Open Bench"_s, QStringList{});
    device.store->Close();
}

int photographAll(const QDir &folder, bool isDark) {
    QApplication::setPalette(isDark ? darkPalette() : QApplication::style()->standardPalette());
    const auto home = makeHome();
    TestDevice device(seed);
    furnish(device);
    const QSize screen = QGuiApplication::primaryScreen()->size();
    Session session(device.root, screen);
    const QString ending = (screen.height() > screen.width() ? u"-portrait"_s : u"-landscape"_s) +
                           (isDark ? u"-dark"_s : u"-light"_s) +
                           (qApp->devicePixelRatio() > 1 ? u"@2x.png"_s : u".png"_s);
    int failures = 0;
    session.run([&](User &user) {
        Photographer photographer(user, folder, ending);
        photographCategories(user, photographer);
        photographSettings(user, photographer);
        photographTexts(user, photographer);
        photographFiles(user, photographer);
        photographChannels(user, photographer);
        failures = photographer.failures();
    });
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

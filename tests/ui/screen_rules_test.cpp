#include "app/base/data_jobs.h"
#include "platform/sqlite_database.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/seeding.h"
#include "support/fake_opener.h"
#include "ui/kit/layer.h"
#include "ui/sharing_test.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QInputMethod>
#include <QLineEdit>

#include <array>
#include <semaphore>

namespace {

QRect inputPanel; // on the screen; empty while it is down

} // namespace

// No desktop is here that has an input panel: these stand for the ones that Qt asks it through.
bool QInputMethod::isVisible() const { return !inputPanel.isEmpty(); }
QRectF QInputMethod::keyboardRectangle() const { return inputPanel; }

namespace tidebrook {
namespace {

class ScreenRules : public SharingTest {
protected:
    ScreenRules() {
        SettingsStore(*device.registry).setDword(programKey, u"CategoryNumber", 0);
        seedCategories(device.root, *device.registry);
    }
};

QLineEdit *edit(const User &user) { return user.stack().top()->findChild<QLineEdit *>(); }
bool seesEdit(User &user, const QString &text) {
    return user.sees([&] { return edit(user) != nullptr && edit(user)->text() == text; });
}

TEST_F(ScreenRules, AFailureThatIsToldLeavesItsCode) {
    const Hand saveNowhere = [](User &user) {
        ASSERT_TRUE(user.sees([&] { return edit(user) != nullptr; }));
        user.press(Qt::Key_A, Qt::ControlModifier);
        user.paste(u"/proc/x"_s);
        user.press(Qt::Key_Return);
    };
    const Hand exportChannel = [&](User &user) {
        user.choose({u"Export Channel"_s});
        saveNowhere(user);
    };
    const Hand saveLink = [&](User &user) {
        user.choose({u"Save Link"_s});
        saveNowhere(user);
    };
    struct Case {
        const char *what;
        int screen;
        const char *lostTable;
        Hand act;
        QString told;
        quint32 code;
    };
    const std::array cases{
        Case{"channels", 1, "RSSCHRecord", pressing(Qt::Key_Right), databaseProblem,
             DatabaseFailed},
        Case{"properties", 1, "RSSCHRecord", choosing({u"Properties"_s}), databaseProblem,
             DatabaseFailed},
        Case{"articles", 2, "RSSRecord", pressing(Qt::Key_Right), databaseProblem, DatabaseFailed},
        Case{"a page", 2, "RSSRecord", pressing(Qt::Key_Return), databaseProblem, DatabaseFailed},
        Case{"an export", 1, nullptr, exportChannel, fileProblem, FileNotWritten},
        Case{"saving", 3, nullptr, saveLink, fileProblem, FileNotWritten},
        Case{"sending", 3, nullptr, choosing({u"Send Link via email"_s}),
             resourceString(unidentifiedProblemString), NothingKnown},
    };
    FakeOpener opener;
    opener.refuse();
    const auto other = SqliteDatabase::open(device.root.filePath(u"\\RSSVault.sdf"), {});
    const auto rename = [&other](const char *table, const char *from, const char *to) {
        if (table == nullptr)
            return;
        EXPECT_EQ(
            other->run(QByteArray("ALTER TABLE ") + table + from + " RENAME TO " + table + to),
            SqliteStep::Done);
    };
    for (const Case &failing : cases) {
        SCOPED_TRACE(failing.what);
        run([&](User &user) {
            go(user, failing.screen);
            SetLastErrorCode(*device.registry, FeedNotDownloaded); // of long ago
            rename(failing.lostTable, "", "Gone");
            failing.act(user);
            expectBox(user, failing.told);
            EXPECT_EQ(device.lastErrorCode(), failing.code);
            rename(failing.lostTable, "Gone", "");
        });
    }
}

TEST_F(ScreenRules, WhatIsDeletedGoesAtOnceWhateverIsAtWork) {
    const auto rename = [](User &user, const QString &name) {
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.sees([&] { return user.list()->isEditingLabel(); }));
        user.type(name);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesNoEditor());
    };
    const auto remove = [](User &user) {
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(deleteCategory));
        user.tap(u"Yes"_s);
    };
    for (const bool isLeftAtOnce : {false, true}) {
        SCOPED_TRACE(isLeftAtOnce);
        device.store->InsertChannel({u"Science"_s, u"Quark"_s, u"http://example.org/q"_s});
        device.store->InsertChannel({u"Travel"_s, u"Train"_s, u"http://example.org/t"_s});
        for (const QString &name : {u"Science"_s, u"Travel"_s}) {
            CategoryListStore(*device.registry).DeleteCategory(name);
            CategoryListStore(*device.registry).AddCategory(name);
        }
        std::counting_semaphore<> gate(0);
        run([&](User &user) {
            user.look([&] {
                session->state().changes.tell(
                    [&] { gate.try_acquire_for(isLeftAtOnce ? 1s : 30s); });
            });
            user.press(Qt::Key_Down);
            remove(user);
            EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s}) && user.seesSelected(1));
            rename(user, u"Trip"_s);
            rename(user, u"Tour"_s);
            remove(user);
            EXPECT_TRUE(user.seesRows({u"News"_s}) && user.seesNoBox());
            user.choose({u"New Category"_s});
            ASSERT_TRUE(user.seesEditor(u"New Category"_s));
            user.type(u"Travel"_s);
            user.press(Qt::Key_Return);
            ASSERT_TRUE(user.seesRows({u"Travel"_s, u"News"_s}));
            if (isLeftAtOnce)
                return user.closeWindow();
            gate.release();
            EXPECT_TRUE(user.seesRows({u"News"_s, u"Travel"_s}));
            EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        });
        session.reset();
        EXPECT_EQ(storedCategories(device.root), QStringList({u"News"_s, u"Travel"_s}));
        QStringList categories;
        EXPECT_TRUE(device.store->ListChannelCategories(categories));
        EXPECT_EQ(categories, QStringList{u"News"_s});
    }
}

TEST_F(ScreenRules, AFontSizeChosenBeforeTheStoredOneWasReadStays) {
    SettingsStore(*device.registry).RegWriteDword(programKey, u"FontSize", 11);
    Session own(device.root);
    std::binary_semaphore gate(0);
    own.state().settings.tell([&gate] { gate.acquire(); });
    EXPECT_TRUE(own.run([&](User &user) {
        ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() == 3; }));
        user.choose({u"Font Size"_s, u"Big"_s});
        EXPECT_TRUE(user.sees([&] { return user.list()->font().pointSize() == 13; }));
        gate.release();
        EXPECT_TRUE(user.seesQuiet());
        EXPECT_EQ(user.entries(u"Font Size"_s), QStringList({u"Small"_s, u"Normal"_s, u"+Big"_s}));
        EXPECT_TRUE(user.sees([&] { return user.list()->font().pointSize() == 13; }));
    }));
    EXPECT_EQ(setting(u"FontSize"), 13U);
}

TEST_F(ScreenRules, AnOrderOfAnotherTypeIsStoredAgainLikeAnyOther) {
    for (const auto &[way, stored] :
         {std::pair(QStringList(), 0U), {QStringList{u"Sort by"_s, u"Status"_s}, 1U}}) {
        device.registry->write(programKey, u"SortMode", u"1"_s);
        run([&](User &user) {
            go(user, 2);
            if (!way.isEmpty())
                user.choose(way);
            EXPECT_TRUE(user.seesQuiet());
            user.press(Qt::Key_Escape);
            EXPECT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
        });
        EXPECT_EQ(device.registry->read(programKey, u"SortMode"), RegistryValue(stored));
    }
}

TEST_F(ScreenRules, AWizardIsReadyToBeTypedInAndLeavesTheRowWhenItIsCancelled) {
    const auto expectReady = [](User &user) {
        EXPECT_TRUE(user.sees([&user] {
            const QLineEdit &line = *edit(user);
            return line.hasFocus() && !line.isReadOnly() && !line.hasSelectedText() &&
                   line.cursorPosition() == line.text().size();
        }));
    };
    runInScience([&](User &user) {
        for (const Hand &cancel : {Hand(pressing(Qt::Key_Escape)),
                                   Hand([](User &someone) { someone.tap(u"Cancel"_s); })}) {
            user.press(Qt::Key_Home);
            user.press(Qt::Key_Down);
            user.choose({u"New Channel"_s});
            ASSERT_TRUE(seesEdit(user, u"http://"_s));
            user.type(u"feeds"_s);
            user.press(Qt::Key_A, Qt::ControlModifier);
            user.tap(u"Input from URL"_s);
            expectReady(user);
            user.tap(u"Import from a file"_s);
            EXPECT_TRUE(user.sees([&user] { return edit(user)->isReadOnly(); }));
            user.tap(u"Input from URL"_s);
            expectReady(user);
            cancel(user);
            EXPECT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
            user.look([&] { EXPECT_EQ(SelectedRow(user.list()), 1); });
        }
    });
}

TEST_F(ScreenRules, APathIsLimitedWithItsEnding) {
    const QString name(60, u'n');
    CategoryListStore(*device.registry).AddCategory(u"A"_s + name.left(38));
    device.store->InsertChannel({u"Science"_s, u"A"_s + name.left(49), u"http://example.org"_s});
    device.addChannel(u"News"_s, u"A"_s, {QString(u"A"_s + name.repeated(5).left(253))});
    struct Case {
        QString entry;
        QString ending;
        qsizetype limit;
        Hand go;
    };
    const std::array cases{
        Case{u"Export Category"_s, u".opml"_s, 39, pressing(Qt::Key_End)},
        Case{u"Export Channel"_s, u".opml"_s, 49, [](User &user) { go(user, 1); }},
        Case{u"Save Link"_s, u".html"_s, 254, [](User &user) { go(user, 3, 0); }},
    };
    for (const Case &one : cases) {
        SCOPED_TRACE(one.entry.toStdString());
        const QString folder(150, u'f');
        QDir(home.documents()).mkpath(folder);
        // What is too long by one, with the ending that is put on or one that is typed.
        const QString stem =
            one.limit == 254 ? folder + u'/' + QString(99, u'x') : QString(35, u'x');
        const QString tooLong = stem + QString(one.limit - 4 - stem.size(), u'x');
        run([&](User &user) {
            one.go(user);
            user.choose({one.entry});
            const auto isProposed = [&] {
                return edit(user) != nullptr && edit(user)->text().startsWith(u'A') &&
                       edit(user)->text().size() == qMin(one.limit, qsizetype{248}) - 5;
            };
            EXPECT_TRUE(user.sees(isProposed));
            for (const QString &typed : {tooLong, QString(tooLong + one.ending)}) {
                user.press(Qt::Key_A, Qt::ControlModifier);
                user.paste(typed);
                user.press(Qt::Key_Return);
                expectBox(user, fileProblem);
            }
            user.press(Qt::Key_A, Qt::ControlModifier);
            user.paste(tooLong.chopped(1));
            user.press(Qt::Key_Return);
            EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        });
        EXPECT_TRUE(QFile::exists(path(tooLong.chopped(1) + one.ending)));
    }
}

TEST_F(ScreenRules, TheCategoriesMakeRoomForTheInputPanel) {
    for (int i = 0; i < 20; ++i)
        CategoryListStore(*device.registry).AddCategory(QString::number(i));
    run([&](User &user) {
        const auto bottom = [&] {
            return user.list()->mapTo(&user.stack(), user.list()->rect().bottomLeft()).y();
        };
        int before = 0;
        user.look([&] {
            before = bottom();
            const QRect place = user.list()->viewport()->rect();
            for (int row = 22; user.list()->currentIndex().row() == 0; --row) {
                const auto index = user.list()->model()->index(row, 0);
                if (place.contains(user.list()->visualRect(index)))
                    user.list()->selectRow(row); // the last that is in sight
            }
        });
        const auto set = [&](const QRect &place) {
            user.act([place] {
                inputPanel = place;
                Q_EMIT QGuiApplication::inputMethod()->visibleChanged();
            });
        };
        set({0, 180, 240, 140});
        EXPECT_TRUE(user.sees([&] {
            const QRect row = user.list()->visualRect(user.list()->currentIndex());
            return bottom() == 179 && user.list()->viewport()->rect().contains(row);
        }));
        set({});
        EXPECT_TRUE(user.sees([&] { return bottom() == before; }));
    });
}

} // namespace
} // namespace tidebrook

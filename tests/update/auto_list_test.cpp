#include "support/full_disk.h"
#include "support/test_device.h"
#include "update/auto_list.h"

#include <QFile>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class AutoListTest : public testing::Test {
protected:
    QByteArray content() {
        QFile file(path_);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }

    bool set(const QString &name, bool add) {
        return setAutoUpdate(device_.root, {u"http://x/"_s + name, name, u"C"_s}, add);
    }

    TestDevice device_;
    const QString path_ = device_.root.filePath(u"\\windows\\UpdateChannel.list");
};

TEST_F(AutoListTest, ComesIntoBeingWhenItIsAskedFor) {
    EXPECT_TRUE(set(u"a"_s, true));
    EXPECT_EQ(content(), "none");
    EXPECT_FALSE(isAutoUpdated(device_.root, u"a"_s));
    EXPECT_EQ(content(), "");
    EXPECT_TRUE(set(u"a"_s, true));
    EXPECT_TRUE(set(u"b"_s, true));
    EXPECT_TRUE(set(u"a"_s, true));
    EXPECT_EQ(content(), utf16(u"a\thttp://x/a\tC\nb\thttp://x/b\tC\na\thttp://x/a\tC\n"_s));
    EXPECT_TRUE(isAutoUpdated(device_.root, u"a"_s));
    EXPECT_EQ(autoUpdatedChannels(device_.root).size(), 2);
    EXPECT_TRUE(set(u"a"_s, false));
    EXPECT_EQ(content(), utf16(u"b\thttp://x/b\tC\n"_s));
}

TEST_F(AutoListTest, NamesAreComparedOverFiftyCharacters) {
    isAutoUpdated(device_.root, u""_s);
    const QString name = QString(50, u'n');
    set(name, true);
    EXPECT_TRUE(isAutoUpdated(device_.root, name + u"longer"));
    EXPECT_FALSE(isAutoUpdated(device_.root, name.chopped(1)));
    set(name + u"other", false);
    EXPECT_EQ(content(), "");
}

TEST_F(AutoListTest, WhatWouldBreakALineIsRefused) {
    isAutoUpdated(device_.root, u""_s);
    set(u"a"_s, true);
    const QByteArray before = content();
    for (const QString &name : {u"t\tab"_s, u"line\nfeed"_s, u""_s})
        EXPECT_FALSE(set(name, true));
    EXPECT_FALSE(setAutoUpdate(device_.root, {u""_s, u"n"_s, u"C"_s}, true));
    EXPECT_TRUE(setAutoUpdate(device_.root, {u"u"_s, QString(), u"C"_s}, true));
    EXPECT_EQ(content(), before);
}

TEST_F(AutoListTest, AListEditedByHandIsReadAsFarAsItGoes) {
    struct Case {
        QByteArray content;
        QStringList channels;
    };
    const Case cases[] = {
        {utf16(u"\uFEFFa\tu\tC\r\n\r\nb\tu\tC"_s), {u"a"_s, u"b"_s}},
        {utf16(u"note\nb\tu\tC\nb\tv\tD\n\tu\tC\nc\tu\tC\n"_s), {u"b"_s, u"c"_s}},
        {utf16(u"a\nu\nC\nb\tu\nC\n"_s), {u"a"_s, u"b"_s}},
        {utf16(u"a\tu\tC\nb\tu\tC\n"_s).chopped(1), {u"a"_s, u"b"_s}},
        {"a\tu\tC\nb\tu\tC\n", {}},
        {QByteArray(5'000'000, '\0'), {}},
        {utf16(QString(100, u'n') + u'\t' + QString(600, u'u') + u'\t' + QString(99, u'c') + u'\n'),
         {QString(50, u'n')}},
    };
    for (const Case &test : cases) {
        ASSERT_TRUE(writeFile(path_, test.content));
        QStringList names;
        for (const RefreshJob &job : autoUpdatedChannels(device_.root))
            names.append(job.channelName);
        EXPECT_EQ(names, test.channels);
    }
}

TEST_F(AutoListTest, WhatSomebodyHasSpoiltByHandSpoilsNoMore) {
    ASSERT_TRUE(writeFile(path_, utf16(u"# mine\na\tu\tC\nnote\nb\tu\tC\nc\tu\n"_s)));
    EXPECT_TRUE(isAutoUpdated(device_.root, u"a"_s));
    EXPECT_TRUE(isAutoUpdated(device_.root, u"b"_s));
    EXPECT_TRUE(set(u"a"_s, false));
    EXPECT_EQ(content(), utf16(u"# mine\nnote\nb\tu\tC\nc\tu\n"_s));
    EXPECT_TRUE(set(u"d"_s, true));
    EXPECT_TRUE(isAutoUpdated(device_.root, u"d"_s));
    EXPECT_TRUE(isAutoUpdated(device_.root, u"b"_s));
}

TEST_F(AutoListTest, AddingBehindAnUnendedLineSpoilsNeither) {
    ASSERT_TRUE(writeFile(path_, utf16(u"a\tu\tC"_s)));
    EXPECT_TRUE(set(u"b"_s, true));
    EXPECT_EQ(content(), utf16(u"a\tu\tC\nb\thttp://x/b\tC\n"_s));
}

TEST_F(AutoListTest, ARenamedChannelKeepsItsPlaceAndTheRestOfItsLine) {
    EXPECT_TRUE(renameAutoUpdated(device_.root, u"b"_s, u"new"_s)) << "there is no list yet";
    ASSERT_TRUE(writeFile(path_, utf16(u"a\tu\tC\nb\tv\tD\nnote\nbc\tw\tE\n"_s)));
    EXPECT_TRUE(renameAutoUpdated(device_.root, u"b"_s, u"It's new"_s));
    const QByteArray renamed = utf16(u"a\tu\tC\nIt's new\tv\tD\nnote\nbc\tw\tE\n"_s);
    EXPECT_EQ(content(), renamed);
    EXPECT_TRUE(renameAutoUpdated(device_.root, u"b"_s, u"c"_s)) << "it is not on the list";
    {
        const FullDisk disk;
        EXPECT_FALSE(renameAutoUpdated(device_.root, u"a"_s, u"c"_s));
    }
    EXPECT_EQ(content(), renamed);
    EXPECT_TRUE(renameAutoUpdated(device_.root, u"a"_s, u"t\tab"_s))
        << "which is no name of a line";
    EXPECT_EQ(content(), renamed.sliced(12));
}

TEST_F(AutoListTest, AFullDiskIsToldAndLeavesTheListAsItWas) {
    isAutoUpdated(device_.root, u""_s);
    set(u"a"_s, true);
    const QByteArray before = content();
    {
        const FullDisk disk;
        EXPECT_FALSE(set(u"b"_s, true));
    }
    EXPECT_EQ(content(), before);
}

TEST_F(AutoListTest, ManyAtOnceLoseNothing) {
    isAutoUpdated(device_.root, u""_s);
    std::vector<std::jthread> threads(4);
    for (int i = 0; i < 4; ++i)
        threads[static_cast<std::size_t>(i)] = std::jthread([this, i] {
            for (int k = 0; k < 10; ++k) {
                set(u"%1 %2"_s.arg(i).arg(k), true);
                if (k % 2 == 1)
                    set(u"%1 %2"_s.arg(i).arg(k - 1), false);
            }
        });
    threads.clear();
    EXPECT_EQ(autoUpdatedChannels(device_.root).size(), 4 * 5);
}

} // namespace
} // namespace tidebrook

#include "subscriptions/locked_subscriptions.h"
#include "support/full_disk.h"
#include "test_device/test_device.h"
#include "update/auto_list.h"

#include <QFile>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class AutoListTest : public testing::Test {
protected:
    AutoListTest() {
        device_.store->Open();
        for (const QString &name : {u"a"_s, u"b"_s, u"bc"_s, u"d"_s})
            device_.addChannel(u"C"_s, name);
        opened_.open({});
    }

    QByteArray content() const { return contentOf(path_); }
    void put(const QString &text) { ASSERT_TRUE(writeFile(path_, utf16(text))); }

    bool set(const QString &name, bool add) {
        return setAutoUpdate(device_.root, *device_.store, {u"http://x/"_s + name, name, u"C"_s},
                             add);
    }
    ChangeEnd rename(const QString &old, const QString &name) {
        return LockedSubscriptions(opened_).renameChannel(old, name);
    }
    std::optional<bool> has(const QString &name) { return isAutoUpdated(device_.root, name); }
    QStringList names() {
        QStringList names;
        const auto channels = autoUpdatedChannels(device_.root);
        for (const RefreshJob &job : channels.value_or(QList<RefreshJob>{{{}, u"none"_s, {}}}))
            names.append(job.channelName);
        return names;
    }

    TestDevice device_;
    Device opened_{device_.root};
    const QString path_ = device_.root.filePath(u"\\windows\\UpdateChannel.list");
};

TEST_F(AutoListTest, ComesIntoBeingWhenItIsAskedFor) {
    EXPECT_TRUE(set(u"a"_s, true));
    EXPECT_EQ(rename(u"d"_s, u"e"_s), ChangeEnd::Done);
    EXPECT_FALSE(QFile::exists(path_));
    EXPECT_EQ(has(u"a"_s), false);
    EXPECT_TRUE(QFile::exists(path_));
    for (const QString &name : {u"a"_s, u"b"_s, u"a"_s})
        EXPECT_TRUE(set(name, true));
    EXPECT_EQ(content(), utf16(u"a\thttp://x/a\tC\nb\thttp://x/b\tC\na\thttp://x/a\tC\n"_s));
    EXPECT_EQ(has(u"a"_s), true);
    EXPECT_EQ(names(), QStringList({u"a"_s, u"b"_s}));
    EXPECT_TRUE(set(u"a"_s, false));
    EXPECT_EQ(content(), utf16(u"b\thttp://x/b\tC\n"_s));
    for (const QString &name : {u"t\tab"_s, u"line\nfeed"_s, u""_s})
        EXPECT_FALSE(set(name, true)) << "it would spoil the lines";
    EXPECT_FALSE(setAutoUpdate(device_.root, *device_.store, {u""_s, u"n"_s, u"C"_s}, true));
    EXPECT_TRUE(setAutoUpdate(device_.root, *device_.store, {u"u"_s, {}, u"C"_s}, true));
    EXPECT_EQ(content(), utf16(u"b\thttp://x/b\tC\n"_s));
}

TEST_F(AutoListTest, NamesAreComparedOverFiftyCharactersWithoutTheBlanksAtTheirEnds) {
    const QString name = QString(50, u'n');
    device_.addChannel(u"C"_s, name);
    put(name + u"longer\tu\tC\nb  \tv\tC\n");
    EXPECT_EQ(has(name + u"other"), true);
    EXPECT_EQ(has(name.chopped(1)), false);
    EXPECT_EQ(has(u"b"_s), true);
    EXPECT_EQ(has(u"b "_s), true);
    EXPECT_EQ(names(), QStringList({name, u"b"_s}));
    EXPECT_EQ(rename(u"b"_s, u"B"_s), ChangeEnd::Done);
    EXPECT_EQ(names(), QStringList({name, u"B"_s}));
    put(name + u"longer\tu\tC\nB  \tv\tC\n");
    EXPECT_TRUE(set(u"B"_s, false));
    EXPECT_TRUE(set(name + u"other", false));
    EXPECT_EQ(content(), "");
}

TEST_F(AutoListTest, AListEditedByHandIsReadAsFarAsItGoesAndSpoiltNoMore) {
    struct Case {
        QByteArray content;
        QStringList channels;
        QString withoutA = u"none"_s;
    };
    const Case cases[] = {
        {utf16(u"\uFEFFa\tu\tC\r\n\r\nb\tu\tC"_s), {u"a"_s, u"b"_s}, u"b\tu\tC\n"_s},
        {utf16(u"note\nb\tu\tC\nb\tv\tD\n\tu\tC\nbc\tu\tC\n"_s), {u"b"_s, u"bc"_s}},
        {utf16(u"a\nu\nC\nb\tu\nC\n"_s), {u"a"_s, u"b"_s}, u"b\tu\tC\n"_s},
        {utf16(u"a\nu\na\tv\tC\nC\nb\tu\tC\n"_s), {u"a"_s, u"b"_s}, u"b\tu\tC\n"_s},
        {utf16(u"a\tu\tC\nb\tu\tC\n"_s).chopped(1), {u"a"_s, u"b"_s}, u"b\tu\tC\n"_s},
        {utf16(u"# mine\na\tu\tC\nnote\nb\tu\tC\nd\tu\n"_s),
         {u"a"_s, u"b"_s},
         u"# mine\nnote\nb\tu\tC\nd\tu\n"_s},
        {"a\tu\tC\nb\tu\tC\n", {}},
        {QByteArray(5'000'000, '\0'), {}},
        {utf16(QString(100, u'n') + u'\t' + QString(600, u'u') + u'\t' + QString(99, u'c') + u'\n'),
         {QString(50, u'n')}},
    };
    for (const Case &test : cases) {
        ASSERT_TRUE(writeFile(path_, test.content));
        EXPECT_EQ(names(), test.channels);
        if (test.withoutA == u"none")
            continue;
        EXPECT_TRUE(set(u"a"_s, false));
        EXPECT_EQ(content(), utf16(test.withoutA));
        EXPECT_TRUE(set(u"a"_s, true));
        EXPECT_EQ(has(u"a"_s), true) << "also behind a line that is not ended";
        EXPECT_EQ(has(u"b"_s), true);
    }
}

TEST_F(AutoListTest, OneThatCannotBeWrittenStaysAsItIs) {
    put(u"a\tu\tC\n"_s);
    {
        const FullDisk disk;
        EXPECT_FALSE(set(u"b"_s, true));
        EXPECT_EQ(rename(u"a"_s, u"new"_s), ChangeEnd::AutoListFailed);
    }
    EXPECT_EQ(content(), utf16(u"a\tu\tC\n"_s));
}

} // namespace
} // namespace tidebrook

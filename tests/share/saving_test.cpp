#include "share/article_sharing.h"
#include "share/opml_reader.h"
#include "share/opml_writer.h"
#include "support/fake_opener.h"
#include "support/full_disk.h"
#include "support/open_store.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class SavingTest : public OpenStore {
protected:
    bool save(SaveKind kind, const QString &title) {
        return saveArticleHtml(*device_.store, u"ch"_s, title, file_, kind);
    }

    const QString file_ = device_.root.filePath(u"out");
};

TEST_F(SavingTest, AnExportedCategoryIsReadBackWhole) {
    const QString link = u"http://x/?a=1&b=\"2\""_s;
    QStringList expected;
    for (const QString &name : {u"Tom & \"Jerry's\" <x>"_s, u"t\tab"_s, u"\U0001F600 Нов"_s}) {
        device_.store->InsertChannel({u"C & D's"_s, name, link});
        expected.append(name + u'=' + link);
    }
    // What XML cannot hold does not spoil it.
    device_.store->InsertChannel({u"C & D's"_s, u"n\x1F\x7F"_s, u"http://x/a\x01z\uFFFE"_s});
    expected.append(u"n \x7F=http://x/a z\uFFFD"_s);
    device_.store->InsertChannel({u"Other"_s, u"o"_s, u"http://o/"_s});
    ASSERT_TRUE(exportOpml(*device_.store, u"C & D's"_s, {}, file_));
    OpmlReader reader(device_.root, *device_.registry);
    EXPECT_TRUE(reader.open(AddMode::ListFromFile, file_));
    QStringList read;
    for (const ChannelRecord &channel : reader.takeChannels())
        read.append(channel.channelName + u'=' + channel.channelLink);
    read.sort();
    expected.sort();
    EXPECT_EQ(read, expected);

    ASSERT_TRUE(exportOpml(*device_.store, u"Other"_s, u"o"_s, file_));
    EXPECT_EQ(contentOf(file_).simplified().replace("> <", "><"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><opml version=\"2.0\">"
              "<head><title>Other</title></head><body><outline text=\"Other\">"
              "<outline text=\"o\" type=\"link\" url=\"http://o/\"/>"
              "</outline></body></opml>");
}

TEST_F(SavingTest, APageIsTheArticleAsItIsAndZerosBehindIt) {
    const QString title = u"A <b> & 'c'"_s;
    device_.addChannel(u"C"_s, u"ch"_s,
                       {{.title = title, .link = u"http://x/?a&b"_s, .description = u"<p>É</p>"_s},
                        {.title = u"long"_s, .description = QString(1500, u'€') + u"é€"}});
    const QByteArray head = "<html>\n<head><meta http-equiv=\"Content-Type\" "
                            "content=\"text/html; charset=UTF-8\">\n";
    ASSERT_TRUE(save(SaveKind::Link, title));
    const auto padded = [](QByteArray page) { return page.append(65'536 - page.size(), '\0'); };
    EXPECT_EQ(contentOf(file_),
              padded(head + "</head>\n<body><a href=\"http://x/?a&b\">A <b> & 'c'</a>\n"
                            "</body>\n</html>"));
    ASSERT_TRUE(save(SaveKind::Article, title));
    EXPECT_EQ(contentOf(file_),
              padded(head + "<title>A <b> & 'c'</title>\n</head>\n<body><h4><a href =\""
                            "http://x/?a&b\">A <b> & 'c'</a></h4>\n<p><p>É</p></p>\n<br><br>"
                            "<a href=\"http://x/?a&b\">more</a>\n</body>\n</html>"));
    ASSERT_TRUE(save(SaveKind::Article, u"long"_s));
    const QByteArray cut = QString(1322, u'€').toUtf8(); // 3,966 of 3,967 bytes
    EXPECT_TRUE(contentOf(file_).contains(QByteArray("<p>" + cut + "</p>\n")));
    EXPECT_EQ(contentOf(file_).size(), 65'536);
    EXPECT_EQ(device_.counts(u"C"_s, u"ch"_s), u"2/2") << "saving is not reading";
}

TEST_F(SavingTest, AFullDiskLeavesTheOldFileWhole) {
    device_.addChannel(u"C"_s, u"ch"_s, {u"kept"_s});
    ASSERT_TRUE(writeFile(file_, "old"));
    {
        const FullDisk disk;
        EXPECT_FALSE(exportOpml(*device_.store, u"C"_s, {}, file_));
        EXPECT_FALSE(save(SaveKind::Link, u"kept"_s));
    }
    EXPECT_EQ(device_.store->error(), 1004u);
    EXPECT_EQ(contentOf(file_), "old");
}

TEST_F(SavingTest, ALinkIsHandedToTheComposerAsOneArgument) {
    const QString title = u"50% off\nfür & \"you\"?"_s;
    device_.addChannel(u"C"_s, u"ch"_s,
                       {{.title = title, .link = u"http://x/?a=1&b"_s},
                        {.title = QString(255, u't'), .link = QString(512, u'k')}});
    FakeOpener opener;
    const auto send = [&](SendKind kind, const QString &which) {
        const qsizetype before = opener.calls().size();
        EXPECT_TRUE(sendArticleLink(*device_.store, u"ch"_s, which, kind));
        return opener.calls().sliced(before);
    };
    EXPECT_EQ(send(SendKind::Email, title),
              "1 mailto:?subject=50%25%20off%20f%C3%BCr%20%26%20%22you%22%3F&body="
              "Title%3A%2050%25%20off%0D%0Af%C3%BCr%20%26%20%22you%22%3F%0D%0A"
              "Date%3A%202026-01-28%0D%0A%20http%3A%2F%2Fx%2F%3Fa%3D1%26b\n");
    EXPECT_EQ(send(SendKind::Sms, title),
              "1 sms:?body=Title%3A%2050%25%20off%0Af%C3%BCr%20%26%20%22you%22%3F%0A"
              "Date%3A%202026-01-28%0A%20http%3A%2F%2Fx%2F%3Fa%3D1%26b\n");
    EXPECT_EQ(send(SendKind::Sms, QString(255, u't')).count('k'), 602 - 7 - 255 - 7 - 10 - 2);
}

} // namespace
} // namespace tidebrook

#include "platform/base/text.h"
#include "platform/desktop/shell.h"
#include "support/fake_opener.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

TEST(Shell, ALinkIsOpenedAsItIsMeantAndTellsAComposerNothingMore) {
    FakeOpener opener;
    const std::tuple<QString, QByteArray> cases[] = {
        {u"www.example.org/x?a=b&c#d"_s, "http://www.example.org/x?a=b&c#d"},
        {u" //example.org/x"_s, "http://example.org/x"},
        {u"mailto:a@example.org"_s, "mailto:a@example.org"},
        {u"mailto:a@example.org,attach='/etc/passwd'&attach=/etc/passwd#&attach=/x"_s,
         "mailto:a@example.org%2Cattach%3D%27%2Fetc%2Fpasswd%27%26attach%3D%2Fetc%2Fpasswd"},
        {u"mailto:a%26b%3D%27%2C@example.org?Subject=x',attach='/x'%26y&attach=/x&cc=b@c.org"_s,
         "mailto:a%26b%3D%27%2C@example.org?Subject=x%27%2Cattach%3D%27%2Fx%27%26y&cc=b@c.org"},
    };
    QByteArray calls;
    for (const auto &[link, opened] : cases) {
        EXPECT_TRUE(openLink(link)) << link.toUtf8().constData();
        calls += "1 " + opened + '\n';
        EXPECT_EQ(opener.calls(), calls);
    }
    for (const QString &link : {u"//"_s, u"wwwx.org"_s, u"/etc/passwd"_s, u"mailto:"_s})
        EXPECT_FALSE(openLink(link)) << link.toUtf8().constData();
}

TEST(Text, WhatShowsNothingIsBlankedAndWhatIsSeenStays) {
    const std::tuple<QString, QString> cases[] = {
        {u"a\tb\u0007c\u0085d"_s, u"a b c d"_s},
        {u"x\u202Egnp.exe\u2066y\u2069\u061C"_s, u"x gnp.exe y  "_s},
        {u"a\u200Bb\u2060c\uFEFFd\u00ADe\u200D"_s, u"a b c d e "_s},
        {u"a\u2028b\u2029c\U000E0041"_s, u"a b c  "_s},
        {u"👩\u200D💻 🏳\uFE0F\u200D🌈 é ٢ \u0600"_s,
         u"👩\u200D💻 🏳\uFE0F\u200D🌈 é ٢ \u0600"_s},
    };
    for (const auto &[text, printed] : cases)
        EXPECT_EQ(withoutHidden(text), printed);
    EXPECT_EQ(withoutHidden(u"a\n\tb\u202E"_s, u"\n\t"), u"a\n\tb ");
}

} // namespace
} // namespace tidebrook

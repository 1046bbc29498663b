#include "ctl/ctl_process.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_event.h"
#include "store/settings_store.h"
#include "update/update_settings.h"

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

using SettingTest = CtlTest;

TEST_F(SettingTest, ASettingOfTheTodayItemHasItReadItsSettingsAgain) {
    ok(u"init"_s);
    NamedEvent reload(root_, todayItemsEvent, NamedEvent::Reset::Auto);
    const std::pair<QString, bool> calls[]{{u"setting SortMode 1"_s, false},
                                           {u"setting TodayTimer 2 --today"_s, true},
                                           {u"setting todaytimer 0"_s, true},
                                           {u"setting TodayTimer --today"_s, false}};
    for (const auto &[call, isRead] : calls) {
        ok(call);
        EXPECT_EQ(reload.test(), isRead) << qPrintable(call);
    }
}

TEST_F(SettingTest, TheSettingsAreListedAsTheyAreStored) {
    ok(u"init"_s);
    Registry(root_).write(programKey, u"SortMode", quint32{77});
    ok(u"setting notify 1"_s);
    for (const QString &line : {u"SortMode\t77\t"_s, u"FontSize\tnot set\t"_s, u"Notify\t1\t"_s})
        EXPECT_TRUE(QString(u'\n' + ok(u"setting"_s)).contains(u'\n' + line)) << qPrintable(line);
    EXPECT_FALSE(ok(u"setting --today"_s).contains(u"SortMode"));
    EXPECT_EQ(ok(u"setting sortMODE"_s), u"77\n");
    fails(u"setting FontSize 14"_s, u"from 9 to 13"_s, 2);
    fails(u"setting Channel %1"_s.arg(QString(51, u'x')), u"50 characters"_s, 2);
    fails(u"setting Sort"_s, u"SortMode, FontSize"_s, 2);
}

} // namespace
} // namespace tidebrook

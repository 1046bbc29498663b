#include "app/update_jobs.h"
#include "platform/desktop/service.h"
#include "platform/sync/process_lock.h"
#include "platform/sync/wait_any.h"
#include "support/no_threads.h"
#include "support/waiting.h"
#include "test_device/test_device.h"

#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Stands in the downloader's place and does with each request what a character of its script
/// says: d is done and f fails with 1007; v deletes the channel b and x closes the database first,
/// and s is done with a newer request. The others it leaves without an answer.
class Downloader {
public:
    Downloader(Device &device, std::string script)
        : device_(device), script_(std::move(script)), thread_([this] {
              while (WaitAny({&told_}, stop_.descriptor(), 1h).kind == WaitResult::Kind::Event)
                  serve();
          }) {}
    ~Downloader() { stop_.raise(); }

    char last() const { return last_; }
    /// All that was requested; nothing is served any more.
    QString requested() {
        stop_.raise();
        thread_.join();
        return requested_;
    }

private:
    void serve() {
        told_.reset();
        requested_ += RequestFile(device_.root).job()->channelName;
        const char step = script_.at(static_cast<std::size_t>(requested_.size() - 1));
        if (step == 's') {
            requestDownload(device_.root, {u"http://o"_s, u"o"_s, u"O"_s}, others_);
            told_.reset();
        } else if (step == 'v')
            device_.store.DeleteChannel(u"b"_s);
        else if (step == 'x')
            device_.store.ReleaseSession();
        last_ = step;
        if (std::string("dfvxs").find(step) != std::string::npos)
            answerDownload(device_.root, device_.registry, RequestFile(device_.root),
                           step == 'f' ? 1007 : 0);
    }

    Device &device_;
    const std::string script_;
    const ProcessLock lock_{serviceLockPath(device_.root)};
    NamedEvent told_{device_.root, requestEvent, NamedEvent::Reset::Manual};
    DownloadAnswers others_{device_.root};
    QString requested_;
    std::atomic<char> last_ = 0;
    StopSignal stop_;
    std::jthread thread_;
};

class UpdateJobsTest : public testing::Test {
protected:
    UpdateJobsTest() {
        parts_.open(5s);
        device_.store->Open();
        device_.addChannel(u"C"_s, u"b"_s);
        device_.addChannel(u"C"_s, u"c"_s, {u"3"_s});
        device_.addChannel(u"C"_s, u"a"_s, {u"1"_s, u"2"_s});
        widget_.setAttribute(Qt::WA_AcceptTouchEvents);
        widget_.show();
        const auto see = [this](const QString &what) { seen_ += what; };
        jobs_.connect(&jobs_, &UpdateJobs::begun, [=] { see(u"("_s); });
        jobs_.connect(&jobs_, &UpdateJobs::done, [=] { see(u")"_s); });
        jobs_.connect(&jobs_, &UpdateJobs::failed,
                      [=](auto category, auto channel) { see(u'!' + category + channel); });
        jobs_.connect(&jobs_, &UpdateJobs::stepped,
                      [=](int index, int count) { see(u"%1/%2 "_s.arg(index).arg(count)); });
        jobs_.connect(&jobs_, &UpdateJobs::channelUpdated, [=, this](auto category, auto channel) {
            const auto today = parts_.settings.dword(parts_.todayItemKey, u"UnreadItems");
            see(category + channel + u" of " + QString::number(today));
        });
        jobs_.connect(&jobs_, &UpdateJobs::channelCounted, [=](auto of, auto name, int n, int all) {
            see(u"%1%2:%3/%4 "_s.arg(of, name).arg(n).arg(all));
        });
    }
    void act(char kind) {
        if (kind == 'k')
            QTest::keyPress(&widget_, Qt::Key_A);
        else if (kind == 'm' || kind == 'w') // the second press of two
            QTest::mouseEvent(kind == 'm' ? QTest::MousePress : QTest::MouseDClick, &widget_,
                              Qt::LeftButton, {}, {1, 1});
        else if (kind == 't')
            QTest::touchEvent(&widget_, finger_.get()).press(0, {1, 1}, &widget_);
        else if (kind == 'r') { // what is no input
            QTest::keyRelease(&widget_, Qt::Key_A);
            QTest::mouseRelease(&widget_, Qt::LeftButton);
            QTest::mouseMove(&widget_);
        }
    }
    TestDevice device_;
    Device parts_{device_.root};
    const std::unique_ptr<QPointingDevice> finger_{QTest::createTouchDevice()};
    QWidget widget_;
    QString seen_;
    UpdateJobs jobs_{parts_};
};

TEST_F(UpdateJobsTest, WhatComesOfAnUpdateIsTold) {
    struct Case {
        std::string script;
        QString channel; // none: the whole category
        QString seen;
        quint32 errorCode;
        QString requested = u"a"_s;
        QString category = u"C"_s;
    };
    std::vector<Case> cases{
        {"s", u"a"_s, u"()!Ca"_s, 1012},
        {"f", u"a"_s, u"()!Ca"_s, 1007},
        {"r", u"a"_s, u"()!Ca"_s, 1012},
        {"", u"none"_s, u"()"_s, 0, u""_s},
        {"", {}, u"()"_s, 0, u""_s, u"Empty"_s},
        {"ddd", {}, u"(0/3 Ca:2/2 1/3 Cb:0/0 2/3 Cc:1/1 )"_s, 0, u"abc"_s},
        {"df", {}, u"(0/3 Ca:2/2 1/3 )!Cb"_s, 1007, u"ab"_s},
        {"dkk", {}, u"(0/3 Ca:2/2 1/3 2/3 )"_s, 0, u"abc"_s}, // only the counts are left out
        {"vd", {}, u"(0/3 Ca:2/2 1/3 2/3 Cc:1/1 )"_s, 0, u"ac"_s},
    };
    for (const char *script : {"d", "k", "m", "w", "t"})
        cases.push_back({script, u"a"_s, u"(Ca of 3)"_s, 0});
    cases.push_back({"x", {}, u"(0/2 1/2 )!Cc"_s, 1001}); // counts that cannot be had end nothing
    cases.push_back({"", {}, u"()!C"_s, 1001, u""_s});
    cases.push_back({"", u"a"_s, u"()!Ca"_s, 1001, u""_s});
    for (const Case &expected : cases) {
        SCOPED_TRACE(expected.script + " for " + expected.channel.toStdString());
        parts_.settings.setDword(programKey, u"ERRORNO", 0);
        parts_.settings.setDword(parts_.todayItemKey, u"UnreadItems", 99);
        seen_.clear();
        Downloader downloader(parts_, expected.script);
        jobs_.setAnswerTimeout(expected.script.find('r') != std::string::npos ? 300ms : 60s);
        ASSERT_TRUE(expected.channel.isNull()
                        ? jobs_.startUpdateCategory(expected.category)
                        : jobs_.startUpdateChannel(expected.category, expected.channel));
        EXPECT_FALSE(jobs_.startUpdateChannel(u"C"_s, u"a"_s)) << "one at a time";
        const auto isOver = [&] {
            act(jobs_.isUpdating() ? downloader.last() : '\0');
            return !jobs_.isUpdating();
        };
        ASSERT_TRUE(QTest::qWaitFor(isOver, patienceLimit));
        EXPECT_EQ(seen_, expected.seen);
        EXPECT_EQ(parts_.settings.dword(programKey, u"ERRORNO"), expected.errorCode);
        EXPECT_EQ(downloader.requested(), expected.requested);
    }
    const NoThreads noThreads;
    EXPECT_FALSE(jobs_.startUpdateCategory(u"C"_s) || jobs_.isUpdating());
}

} // namespace
} // namespace tidebrook

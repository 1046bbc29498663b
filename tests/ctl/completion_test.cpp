#include "ctl/ctl_process.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QByteArray completedFeed =
    "<rss><channel><title>Feed</title>"
    "<item><title>First</title><link>http://example.org/1</link></item>"
    "<item><title>Don't \"panic\"!</title><link>http://example.org/2</link></item>"
    "<item><title>Last</title><link>http://example.org/3</link></item></channel></rss>";

const QString hardName = u"Tom's $5 & more ü"_s;

/// The shells themselves, in a terminal, and what their users type.
class CompletionTest : public CtlTest {
protected:
    CompletionTest() {
        server_.serve(u"/feed"_s, completedFeed);
        ok(u"add --create \"New: this\" Anna http://x/0"_s);
        ok(u"add --create C \"%1\" %2"_s.arg(hardName, server_.url(u"/feed")));
        ok(u"add C \"Zeit: \"\"\"das\"\"\"\" http://x/0"_s);
        ok(u"update C \"%1\""_s.arg(hardName));
        const QString programs = QFileInfo(QStringLiteral(TIDEBROOKCTL)).path();
        environment_.insert(u"PATH"_s, programs + u':' + environment_.value(u"PATH"_s));
        environment_.insert(u"HOME"_s, folder_.path());
        environment_.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        environment_.insert(u"TERM"_s, u"dumb"_s);
    }

    /// Types lines into a shell, each when the one before has been run. What the terminal showed.
    QString type(const QString &shell, const QStringList &lines) {
        QProcess terminal;
        terminal.setProcessEnvironment(environment_);
        terminal.setWorkingDirectory(folder_.path());
        terminal.start(u"script"_s, {u"-qfec"_s, u"PS1='ready> ' exec "_s + shell, u"/dev/null"_s});
        QByteArray shown;
        const auto awaitNext = [&](const char *mark, qsizetype before) {
            while (shown.count(mark) == before && terminal.waitForReadyRead(20'000))
                shown += terminal.readAllStandardOutput();
        };
        awaitNext("ready> ", 0);
        for (const QString &line : lines) {
            const auto before = shown.count("done");
            terminal.write(line.toUtf8() + "; echo do''ne\r");
            awaitNext("done", before);
        }
        terminal.write("exit\r");
        EXPECT_TRUE(terminal.waitForFinished(20'000)) << shown.constData();
        return QString::fromUtf8(shown);
    }

    /// Whether commands, options, categories, channels and articles are completed, quoted as the
    /// shell needs it, and nothing is where there is no device.
    void completes(const QString &shell, const QString &setup) {
        if (QStandardPaths::findExecutable(shell.section(u' ', 0, 0)).isEmpty())
            GTEST_SKIP() << "the shell is not installed";
        const QString nowhere = folder_.filePath(u"nowhere"_s);
        const QString shown = type(
            shell, {setup, u"feedlarkd --vers\t"_s, u"tidebrookctl reli\tTom\thttp://x/1"_s,
                    u"tidebrookctl relink \"Zei\thttp://x/2"_s, u"tidebrookctl move An\tC"_s,
                    u"tidebrookctl rename-category 'New: th\tNews"_s,
                    u"tidebrookctl mark Tom\tread Do\t"_s, u"tidebrookctl setting UpdateM\t2"_s,
                    u"cd "_s + QFileInfo(QStringLiteral(TIDEBROOKCTL)).path(),
                    u"TIDEBROOK_HOME="_s + nowhere + u" ./tidebrookctl --hom\t"_s + nowhere +
                        u" show An\t Last"_s});
        expectChanges(shown);
        EXPECT_TRUE(shown.contains(QRegularExpression(u"feedlarkd \\d"_s))) << qPrintable(shown);
        EXPECT_EQ(shown.count(u"there is no device at "_s + nowhere), 1) << qPrintable(shown);
        EXPECT_FALSE(QFileInfo::exists(nowhere));
    }
    void expectChanges(const QString &shown) {
        const QString channels = ok(u"channels"_s);
        EXPECT_TRUE(channels.contains(hardName + u"\thttp://x/1\tC\n")) << qPrintable(shown);
        EXPECT_TRUE(channels.contains(u"Zeit: \"das\"\thttp://x/2\tC\n")) << qPrintable(shown);
        EXPECT_TRUE(channels.contains(u"Anna\thttp://x/0\tC\n")) << qPrintable(shown);
        EXPECT_TRUE(ok(u"categories"_s).contains(u"News\n")) << qPrintable(shown);
        EXPECT_TRUE(ok(u"articles \"%1\" --order unread"_s.arg(hardName)).count(u'\n') == 2 &&
                    ok(u"articles \"%1\""_s.arg(hardName)).contains(u"\nr\t"))
            << qPrintable(shown);
        EXPECT_EQ(ok(u"setting UpdateMode"_s), u"2\n") << qPrintable(shown);
    }

    /// Has a shell read the files of its kind.
    static QString sourcing(const QString &kind) {
        return u"source %1/tidebrookctl.%2; source %1/options.%2"_s.arg(QStringLiteral(COMPLETIONS),
                                                                        kind);
    }
};

TEST_F(CompletionTest, BashCompletesCommandsAndNames) {
    completes(u"bash --norc --noprofile -i"_s, sourcing(u"bash"_s));
}

TEST_F(CompletionTest, ZshCompletesCommandsAndNames) {
    completes(u"zsh -f -i"_s, u"fpath+=(%1); autoload -Uz compinit; compinit -D -u"_s.arg(
                                  QStringLiteral(COMPLETIONS)));
}

TEST_F(CompletionTest, FishCompletesCommandsAndNames) {
    completes(u"fish --private -C 'function fish_prompt; echo -n \"ready> \"; end'"_s,
              sourcing(u"fish"_s));
}

} // namespace
} // namespace tidebrook

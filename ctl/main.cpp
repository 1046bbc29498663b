#include "ctl/commands.h"
#include "ctl/completion.h"
#include "ctl/output.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

/// What a command needs before it runs: the lock of the channels (Files, Channels), and the
/// store open (Store, Channels).
enum class Needs { Nothing, Root, Registry, Files, Store, Channels };

constexpr qsizetype mostWords = 1000;

struct Command {
    QStringView name;
    qsizetype leastOperands;
    qsizetype mostOperands;
    QStringView options; // its own, divided by blanks
    Needs needs;
    int (*run)(CommandDevice &, const Arguments &);
    const char16_t *usage;
    const char16_t *help;
};

constexpr std::array commands{
    Command{u"help", 0, 1, u"", Needs::Nothing, nullptr, u"help [COMMAND]",
            u"print this, or what one command does"},
    Command{u"init", 0, 0, u"", Needs::Root, nullptr, u"init",
            u"make the device where nothing or an empty folder is, and what it lacks; says which"},
    Command{u"categories", 0, 0, u"json header", Needs::Channels, runCategories,
            u"categories [--json|--header]", u"list the categories"},
    Command{u"add-category", 1, 1, u"", Needs::Channels, runAddCategory, u"add-category NAME",
            u"add a category"},
    Command{u"rename-category", 2, 2, u"", Needs::Channels, runRenameCategory,
            u"rename-category CATEGORY NAME", u"rename a category; its channels go with it"},
    Command{
        u"delete-category", 1, 1, u"dry-run yes", Needs::Channels, runDeleteCategory,
        u"delete-category CATEGORY [--dry-run] [--yes]",
        u"delete a category, its channels and their articles, and say how many; on a terminal it "
        "asks before, unless --yes; --dry-run: only say how many"},
    Command{u"channels", 0, 1, u"json header", Needs::Channels, runChannels,
            u"channels [CATEGORY] [--json|--header]",
            u"list channels: unread/total, name, address, category"},
    Command{
        u"add", 3, 3, u"create feed", Needs::Channels, runAdd,
        u"add CATEGORY NAME URL [--create] [--feed N]",
        u"subscribe to a feed, and make its category where it is missing (--create); prints the "
        "name that was stored; of a web page, to the feed that it names, or where it names several "
        "to the Nth: without --feed they are listed; --feed 0: to URL itself, unseen"},
    Command{u"rename", 2, 2, u"", Needs::Channels, runRename, u"rename CHANNEL NAME",
            u"rename a channel"},
    Command{u"move", 2, 2, u"", Needs::Channels, runMove, u"move CHANNEL CATEGORY",
            u"move a channel to another category"},
    Command{u"relink", 2, 2, u"", Needs::Channels, runRelink, u"relink CHANNEL URL",
            u"give a channel another address"},
    Command{u"delete", 1, 1, u"", Needs::Channels, runDelete, u"delete CHANNEL",
            u"delete a channel and its articles"},
    Command{u"articles", 1, 1, u"order json header", Needs::Store, runArticles,
            u"articles CHANNEL [--order date|status|unread] [--json|--header]",
            u"list a channel's articles: r(ead) or u(nread), date, title, number (its place in "
            "the order by date)"},
    Command{u"search", 1, mostWords, u"unread category json header", Needs::Store, runSearch,
            u"search WORD... [--unread] [--category CATEGORY] [--json|--header]",
            u"list the articles with all these words in title or text, in any case, the newest "
            "first: r(ead) or u(nread), date, title, channel, number"},
    Command{u"show", 2, 2, u"html link json", Needs::Store, runShow,
            u"show CHANNEL ARTICLE [--html|--link|--json]",
            u"print an article as text or as HTML, on a terminal in a pager, and mark it read; or "
            "print its link, or all of it as JSON, and leave it as it is"},
    Command{u"mark", 2, 3, u"", Needs::Store, runMark, u"mark CHANNEL read|unread [ARTICLE]",
            u"mark all articles of a channel, or one of them"},
    Command{u"save", 4, 4, u"", Needs::Store, runSave, u"save CHANNEL ARTICLE link|article FILE",
            u"save an article, or its link alone, as a page of HTML"},
    Command{
        u"import", 2, 2, u"", Needs::Store, runImport, u"import FILE|URL|- CATEGORY",
        u"subscribe to the feeds of an OPML list (-: standard input); prints the names that were "
        "stored"},
    Command{
        u"export", 2, 3, u"", Needs::Channels, runExport, u"export CATEGORY [CHANNEL] FILE|-",
        u"write a category's channels, or one of them, as an OPML list (-: to standard output)"},
    Command{u"update", 0, 2, u"full jobs pauses", Needs::Store, runUpdate,
            u"update [CATEGORY [CHANNEL]] [--full] [--jobs N] [--pauses]",
            u"refresh channels, N at a time (8) and one of a host, as the downloader does: what is "
            "unchanged is not sent again, and a feed that failed or whose server asks for it waits "
            "(later); a CHANNEL waits for its server alone; --full: everything again, and now; "
            "--pauses: the same one by one, as for the screens"},
    Command{u"request", 2, 2, u"timeout", Needs::Store, runRequest,
            u"request CATEGORY CHANNEL [--timeout SECONDS]",
            u"have the downloader refresh a channel, as the reader does (waits 60 seconds)"},
    Command{
        u"auto", 1, 2, u"all category json header", Needs::Channels, runAuto,
        u"auto list [--json|--header] | add CHANNEL|--all|--category CATEGORY | remove CHANNEL | "
        "run",
        u"the channels that are updated automatically; run: have the downloader update them now"},
    Command{u"updates", 0, 0, u"json header", Needs::Channels, runUpdates,
            u"updates [--json|--header]",
            u"list channels: name, last success, last result, next automatic try, and which "
            "channel has the same feed"},
    Command{u"service", 1, 1, u"", Needs::Registry, runService,
            u"service status|start|stop|restart", u"the background downloader of the device"},
    Command{u"setting", 0, 2, u"today json header", Needs::Registry, runSetting,
            u"setting [SETTING [VALUE]] [--today] [--json|--header]",
            u"list the settings: name, value, meaning; or read or write one (--today: those of the "
            "Today item alone, which reads them at once)"},
    Command{
        u"check", 0, 0, u"json header", Needs::Files, runCheck, u"check [--json|--header]",
        u"examine what is stored; a line for each fault, and for each feed that is there twice"},
    Command{u"complete", 0, mostWords, u"", Needs::Nothing, nullptr, u"complete -- [WORD]...",
            u"print what the last of the words may be, with its meaning: for the completion of "
            "shells"},
};

void printHelp() {
    printText(QStringLiteral("Usage: tidebrookctl [--home DIR] [--quiet] COMMAND [...]\n\n"
                             "Works on the feeds, articles and settings of a Tidebrook device.\n"));
    for (const Command &command : commands)
        printText(QStringLiteral("  %1\n      %2")
                      .arg(QStringView(command.usage), QStringView(command.help)));
    printText(QStringLiteral(
        "\nOptions:\n"
        "  --home DIR      the device root; else $TIDEBROOK_HOME or $XDG_DATA_HOME/tidebrook\n"
        "  -q, --quiet     print no lines but errors\n"
        "  -h, --help      print this, or what the command does\n"
        "  -V, --version   print the version\n\n"
        "ARTICLE is a title, a guid, a number of the list, or a title's beginning that is the "
        "only\n"
        "one. Lists are fields with tabs between; --header puts the names of the columns above, "
        "and\n"
        "--json makes the list one JSON document.\n\n"
        "Of the commands' options these have a letter: -a (--all), -c (--category), -j (--jobs),\n"
        "-l (--link), -n (--dry-run), -o (--order), -t (--timeout), -u (--unread), -y (--yes).\n"
        "Names that begin with a dash go behind \"--\".\n"
        "Exit status: 0 done, 1 failed, 2 wrong usage."));
}

const Command *commandOf(const QString &name) {
    const auto *command = std::find_if(commands.begin(), commands.end(),
                                       [&](const Command &each) { return each.name == name; });
    return command == commands.end() ? nullptr : command;
}

int failUnknown(const QString &name) {
    return failUsage(name.isEmpty() ? QStringLiteral("no command")
                                    : QStringLiteral("there is no command \"%1\"").arg(name));
}

int help(const QString &name) {
    if (name.isEmpty()) {
        printHelp();
        return ExitDone;
    }
    const Command *command = commandOf(name);
    if (!command)
        return failUnknown(name);
    printText(QStringLiteral("Usage: tidebrookctl %1\n\n  %2")
                  .arg(QStringView(command->usage), QStringView(command->help)));
    return ExitDone;
}

// What a shell offers in the place of the last word.
int complete(const QStringList &words) {
    QList<CommandSyntax> known;
    for (const Command &command : commands) {
        const QString about = QStringView(command.help).toString();
        known.append(
            {command.name.toString(), QStringView(command.usage).toString(),
             command.options.toString().split(u' ', Qt::SkipEmptyParts),
             about.first(about.indexOf(QRegularExpression(QStringLiteral("[:;(]|$")))).trimmed()});
    }
    for (const Completion &each : completionsOf(known, words))
        printFields({each.text, each.about});
    return ExitDone;
}

bool isUsedRight(const Command &command, const Arguments &arguments) {
    const QStringList own = command.options.toString().split(u' ');
    const qsizetype operands = arguments.operands.size();
    return operands >= command.leastOperands && operands <= command.mostOperands &&
           std::all_of(arguments.options.begin(), arguments.options.end(),
                       [&](const QString &option) { return own.contains(option); });
}

int runCommand(const Command &command, const Arguments &arguments) {
    const DeviceRoot root =
        arguments.home.isEmpty() ? DeviceRoot::standard() : DeviceRoot(arguments.home);
    if (command.needs == Needs::Root)
        return runInit(root);
    if (!root.isDevice())
        return fail(QStringLiteral("there is no device at %1; 'tidebrookctl init' makes one")
                        .arg(root.path()));
    if (!root.makeFolders())
        return fail(foldersFailure(root));
    CommandDevice device(root);
    const bool needsChannels = command.needs == Needs::Channels || command.needs == Needs::Files;
    if (needsChannels && !device.lock())
        return ExitFailed;
    const bool needsStore = command.needs == Needs::Channels || command.needs == Needs::Store;
    if (needsStore && !device.openStore())
        return ExitFailed;
    return command.run(device, arguments);
}

int run(const QStringList &commandLine) {
    QString error;
    const std::optional<Arguments> arguments = parseArguments(commandLine, &error);
    if (!arguments)
        return failUsage(error);
    if (arguments->wantsHelp)
        return help(arguments->command);
    if (arguments->wantsVersion) {
        printLine(QStringLiteral("tidebrookctl " TIDEBROOK_VERSION));
        return ExitDone;
    }
    const Command *command = commandOf(arguments->command);
    if (!command)
        return failUnknown(arguments->command);
    if (!isUsedRight(*command, *arguments))
        return failUse(arguments->command);
    if (command->name == u"help")
        return help(arguments->operands.value(0));
    if (command->name == u"complete")
        return complete(arguments->operands);
    if (arguments->isQuiet)
        beQuiet();
    return runCommand(*command, *arguments);
}

} // namespace

int failUse(const QString &command) {
    return failUsage(
        QStringLiteral("usage: tidebrookctl %1").arg(QStringView(commandOf(command)->usage)));
}

} // namespace tidebrook

int main(int argc, char **argv) {
    QStringList commandLine;
    for (int i = 0; i < argc; ++i)
        commandLine.append(QString::fromUtf8(argv[i]));
    const int code = tidebrook::run(commandLine);
    return tidebrook::flushOutput() || code != tidebrook::ExitDone
               ? code
               : tidebrook::fail(QStringLiteral("standard output cannot be written"));
}

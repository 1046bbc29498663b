#include "ctl/completion.h"

#include "ctl/arguments.h"
#include "ctl/known_settings.h"
#include "ctl/output.h"
#include "platform/base/device_root.h"
#include "store/category_list.h"
#include "store/feed_store.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace tidebrook {

namespace {

/// An operand of a usage.
struct Operand {
    QStringList names; // one of these
    bool isOptional = false;
};

/// The names that the device holds; empty lists where they cannot be read.
class StoredNames {
public:
    explicit StoredNames(const DeviceRoot &root)
        : registry_(root, Registry::Access::ReadOnly), store_(root, registry_, {}),
          isThere_(root.isDevice()) {}

    QStringList categories() {
        return isThere_ ? CategoryListStore(registry_).listedCategories().value_or(QStringList())
                        : QStringList();
    }

    /// Of one category, or of all.
    QStringList channels(const std::optional<QString> &category) {
        QStringList names;
        QList<ChannelRecord> feeds;
        if (isThere_ && store_.OpenExisting() && store_.ListFeeds(feeds)) {
            for (const ChannelRecord &feed : std::as_const(feeds)) {
                if (!category || feed.category == *category)
                    names.append(feed.channelName);
            }
        }
        return names;
    }

    QStringList articles(const QString &channel) {
        QStringList titles;
        QList<ArticleRow> rows;
        if (isThere_ && store_.OpenExisting() &&
            store_.ListArticles(channel, SortMode::Date, rows)) {
            for (const ArticleRow &row : std::as_const(rows))
                titles.append(printable(row.title));
        }
        return titles;
    }

private:
    Registry registry_;
    FeedStore store_;
    const bool isThere_;
};

QStringList wordsOf(const QString &text) { return text.split(u' ', Qt::SkipEmptyParts); }

QString withoutBrackets(QString token) { return token.remove(u'[').remove(u']'); }

// The operands of one form of a usage; options, and the words that are their values, are none.
QList<Operand> operandsOf(const QString &form) {
    QList<Operand> operands;
    bool isValue = false;
    for (const QString &token : wordsOf(form)) {
        Operand operand{{}, token.startsWith(u'[')};
        bool isOption = false;
        for (const QString &name : withoutBrackets(token).split(u'|')) {
            isOption = name.startsWith(QLatin1String("--"));
            if (!isOption && !isValue)
                operand.names.append(name);
        }
        isValue = isOption && !token.endsWith(u']');
        if (!operand.names.isEmpty())
            operands.append(operand);
    }
    return operands;
}

// What the usage names in the place behind these operands.
QStringList namesBehind(const CommandSyntax &command, const QStringList &operands) {
    QStringList names;
    const QStringList forms =
        command.usage.sliced(command.name.size()).split(QStringLiteral(" | "));
    for (const QString &form : forms) {
        const QList<Operand> expected = operandsOf(form);
        const bool isThis = forms.size() == 1 || operands.isEmpty() ||
                            expected.value(0).names.contains(operands.first());
        if (!isThis || operands.size() >= expected.size())
            continue;
        const Operand &next = expected[operands.size()];
        names += next.names;
        // What may be missing leaves its place to the next one.
        if (next.isOptional && operands.size() + 1 < expected.size() &&
            !expected[operands.size() + 1].isOptional)
            names += expected[operands.size() + 1].names;
    }
    return names;
}

// What the usage names as the value of an option.
QStringList valueNames(const QString &usage, const QString &option) {
    const QRegularExpression value(QString(u"--" + option + u" ([^\\s\\]]+)"));
    return value.match(usage).captured(1).split(u'|', Qt::SkipEmptyParts);
}

/// Completes the words behind `arguments`.
class Completer {
public:
    Completer(const QList<CommandSyntax> &commands, const Arguments &arguments)
        : commands_(commands), arguments_(arguments),
          stored_(arguments.home.isEmpty() ? DeviceRoot::standard() : DeviceRoot(arguments.home)) {
        const auto found =
            std::find_if(commands.begin(), commands.end(),
                         [&](const CommandSyntax &each) { return each.name == arguments.command; });
        command_ = found == commands.end() ? nullptr : &*found;
    }

    QList<Completion> options() const {
        QList<Completion> completions;
        for (const QString &name :
             (command_ ? command_->options : QStringList()) + optionsOfAllCommands())
            completions.append({u"--" + name, {}});
        return completions;
    }

    QList<Completion> operands() {
        if (arguments_.command.isEmpty())
            return namedBy(QStringLiteral("COMMAND"));
        return command_ ? namedByAll(namesBehind(*command_, arguments_.operands))
                        : QList<Completion>();
    }

    QList<Completion> valuesOf(const QString &option) {
        if (option == u"home")
            return namedBy(QStringLiteral("DIR"));
        return command_ ? namedByAll(valueNames(command_->usage, option)) : QList<Completion>();
    }

private:
    QList<Completion> namedByAll(const QStringList &names) {
        QList<Completion> completions;
        for (const QString &name : names)
            completions += namedBy(name);
        return completions;
    }

    QList<Completion> namedBy(const QString &name);

    const QList<CommandSyntax> &commands_;
    const Arguments &arguments_;
    const CommandSyntax *command_;
    StoredNames stored_;
};

QList<Completion> texts(const QStringList &names) {
    QList<Completion> completions;
    for (const QString &name : names)
        completions.append({name, {}});
    return completions;
}

QList<Completion> Completer::namedBy(const QString &name) {
    const QStringList &operands = arguments_.operands;
    QList<Completion> completions;
    if (name == u"COMMAND") {
        for (const CommandSyntax &command : commands_)
            completions.append({command.name, command.summary});
    } else if (name == u"SETTING") {
        const bool isTodayAlone = arguments_.options.contains(QStringLiteral("today"));
        for (const KnownSetting &setting : knownSettings(isTodayAlone))
            completions.append({setting.name.toString(), setting.meaning.toString()});
    } else if (name == u"CATEGORY") {
        completions = texts(stored_.categories());
    } else if (name == u"CHANNEL") {
        const bool isOfCategory =
            operands.size() == 1 &&
            operandsOf(command_->usage).value(1).names.contains(QStringLiteral("CATEGORY"));
        completions =
            texts(stored_.channels(isOfCategory ? std::optional(operands.first()) : std::nullopt));
    } else if (name == u"ARTICLE") {
        completions = texts(stored_.articles(operands.value(0)));
    } else if (name == u"FILE" || name == u"DIR") {
        completions.append({{}, name});
    } else if (name.at(0).isLower()) {
        completions.append({name, {}});
    }
    return completions;
}

} // namespace

QList<Completion> completionsOf(const QList<CommandSyntax> &commands, QStringList words) {
    const QString current = words.isEmpty() ? QString() : words.takeLast();
    const bool takesOptions = !words.contains(QStringLiteral("--"));
    QString option; // whose value is completed
    QString prefix; // of that value, in the same word
    if (takesOptions && !words.isEmpty())
        option = optionBeforeValue(words.last());
    if (!option.isEmpty()) {
        words.removeLast();
    } else if (const auto sign = current.indexOf(u'='); takesOptions && sign > 0) {
        option = optionBeforeValue(current.first(sign));
        prefix = current.first(sign + 1);
    }
    QString error;
    words.prepend(QString()); // the program's name
    const auto arguments = parseArguments(words, &error);
    if (!arguments)
        return {};
    Completer completer(commands, *arguments);
    if (option.isEmpty() && takesOptions && current.startsWith(u'-'))
        return completer.options();
    QList<Completion> completions =
        option.isEmpty() ? completer.operands() : completer.valuesOf(option);
    // A name that would be taken for an option goes behind "--".
    completions.removeIf([&](const Completion &each) {
        return takesOptions && option.isEmpty() && each.text.startsWith(u'-');
    });
    for (Completion &each : completions)
        each.text = each.text.isEmpty() ? QString() : prefix + each.text;
    return completions;
}

} // namespace tidebrook

#include "feed_server/generated_feed.h"
#include "service/running_service.h"
#include "ui/test_session.h"

#include <QAccessible>
#include <QRegularExpression>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

/// A user who knows the screens by what they tell a screen reader, and acts through that alone.
/// Names are patterns for all of a name.
class Listener {
public:
    using Action = std::function<void(QAccessibleInterface &)>;

    explicit Listener(User &user) : user_(user) {}

    /// Waits for a part that can be seen and used, and acts on it.
    void hears(QAccessible::Role role, const QString &name, const Action &act = {}) {
        const QRegularExpression pattern(u"^(%1)( selected)?$"_s.arg(name));
        const auto isThere = [&](const Action &does) {
            auto *part = find(QAccessible::queryAccessibleInterface(qApp), role, pattern);
            if (part != nullptr && does)
                does(*part);
            return part != nullptr;
        };
        // What is to be acted on is not about to be replaced.
        const bool isHeard = user_.sees([&] { return isThere({}); }) && user_.seesQuiet() &&
                             user_.sees([&] { return isThere(act); });
        EXPECT_TRUE(isHeard) << name.toStdString();
    }
    void press(QAccessible::Role role, const QString &name,
               const QString &action = QAccessibleActionInterface::pressAction()) {
        hears(role, name, [&](auto &part) { part.actionInterface()->doAction(action); });
    }
    void select(const QString &row) {
        press(QAccessible::ListItem, row, QAccessibleActionInterface::setFocusAction());
        hears(QAccessible::ListItem, row + u" selected");
    }
    void choose(const QString &entry) {
        press(QAccessible::Button, u"Menu"_s);
        press(QAccessible::MenuItem, entry);
        EXPECT_TRUE(user_.sees([] { return QApplication::activePopupWidget() == nullptr; }));
    }
    void write(const QString &edit, const QString &text) {
        hears(QAccessible::EditableText, edit, [&](auto &part) {
            const int end = part.textInterface()->characterCount();
            part.editableTextInterface()->replaceText(0, end, text);
        });
    }

private:
    static QAccessibleInterface *find(QAccessibleInterface *part, QAccessible::Role role,
                                      const QRegularExpression &name) {
        if (part == nullptr || part->state().invisible || part->state().disabled)
            return nullptr;
        if (part->role() == role && name.match(said(*part)).hasMatch())
            return part;
        for (int i = 0; i < part->childCount(); ++i) {
            if (auto *found = find(part->child(i), role, name))
                return found;
        }
        return nullptr;
    }

    /// The name, before it the label of a drop-down list, and behind it the state.
    static QString said(QAccessibleInterface &part) {
        QString said;
        if (part.role() == QAccessible::ComboBox) {
            for (const auto &[label, relation] : part.relations(QAccessible::Label))
                said = label->text(QAccessible::Name) + u' ';
        }
        said += part.text(QAccessible::Name);
        const QAccessible::State state = part.state();
        return said + (state.checked ? u" checked"_s : state.selected ? u" selected"_s : u""_s);
    }

    User &user_;
};

using HeardSessionTest = RunningService;

TEST_F(HeardSessionTest, LeadsFromTheFirstStartToADeletedChannel) {
    QString list = u"<opml version=\"1.0\"><body>"_s;
    for (const QString &name : {u"Ant"_s, u"Bee"_s, u"Cat"_s, u"Dog"_s}) {
        const QString path = u'/' + name;
        server_.serve(path, generatedFeed(3, name[0].unicode()));
        list += u"<outline type=\"rss\" text=\"%1\" xmlUrl=\"%2\"/>"_s.arg(name, server_.url(path));
    }
    server_.serve(u"/list.opml"_s, QString(list + u"</body></opml>").toUtf8());
    start();
    TestSession session(root_);
    const bool isEnded = session.run([&](User &user) {
        Listener ear(user);
        ear.hears(QAccessible::Dialog, u"All Categories"_s);
        ear.choose(u"New Category"_s);
        ear.write(u"New Category"_s, u"Animals"_s);
        ear.press(QAccessible::ListItem, u"New Category"_s); // ends the editing, and no more
        ear.press(QAccessible::ListItem, u"Animals"_s);
        ear.hears(QAccessible::Dialog, u"Animals"_s);

        ear.choose(u"New Channel"_s);
        ear.write(u"Enter the URL"_s, server_.url(u"/list.opml"_s));
        ear.press(QAccessible::Button, u"Next"_s);
        ear.press(QAccessible::CheckBox, u"All"_s);
        ear.press(QAccessible::CheckBox, u"Dog checked"_s,
                  QAccessibleActionInterface::toggleAction());
        ear.hears(QAccessible::CheckBox, u"Dog"_s);
        ear.hears(QAccessible::CheckBox, u"Cat checked"_s);
        ear.press(QAccessible::Button, u"Next"_s);
        ear.hears(QAccessible::ComboBox, u"Category Name: Animals"_s);
        ear.press(QAccessible::Button, u"Finish"_s);

        ear.select(u"Bee, not updated yet"_s);
        ear.choose(u"Update"_s);
        ear.press(QAccessible::ListItem, u"Bee, 3 unread of 3"_s);
        ear.press(QAccessible::ListItem, u".*\\(2\\), .*, unread"_s);
        ear.hears(QAccessible::Document, u".+"_s, [](auto &page) {
            const QString text =
                page.textInterface()->text(0, page.textInterface()->characterCount());
            EXPECT_TRUE(text.contains(u"(2)") && text.size() > 500) << text.toStdString();
        });
        ear.press(QAccessible::Button, u"Article List"_s);
        ear.hears(QAccessible::ListItem, u".*\\(2\\), (?!.*unread).+"_s);
        ear.press(QAccessible::Button, u"Channel List"_s);

        ear.select(u"Bee, 2 unread of 3"_s);
        ear.press(QAccessible::ListItem, u"Bee, 2 unread of 3"_s,
                  QAccessibleActionInterface::showMenuAction());
        ear.press(QAccessible::MenuItem, u"Delete Channel"_s);
        ear.hears(QAccessible::AlertMessage, u"Confirm Deletion"_s, [](auto &box) {
            EXPECT_TRUE(box.text(QAccessible::Description).contains(u"delete this channel?"));
        });
        ear.press(QAccessible::ListItem, u"Ant, .*"_s); // which lies below the question
        ear.press(QAccessible::Button, u"Yes"_s);
        EXPECT_TRUE(user.seesLines({u"Ant: 0/0"_s, u"Cat: 0/0"_s}));
    });
    EXPECT_TRUE(isEnded);
    EXPECT_EQ(run(u"channels"_s).lines().size(), 2);
    expectSound();
}

} // namespace
} // namespace tidebrook

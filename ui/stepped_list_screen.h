#pragma once

#include "app/app_state.h"
#include "kit/dialog_procedure.h"
#include "kit/list_rows.h"
#include "res/ids.h"

#include <QList>

#include <functional>
#include <memory>
#include <optional>

namespace tidebrook {

class HeaderBar;
class ListView;

/// What the channel list and the article list have in common: a list that belongs to one of
/// several names, which a job fills, under a header that names it, steps to the previous and the
/// next one, round and round, and drops down all of them to choose from.
class SteppedListScreen : public DialogProcedure {
public:
    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void activated() override;
    bool summoned() override;
    void sized() override;
    void helpRequested() override;
    std::optional<int> backCommand() const override { return kind_.backCommand; }
    std::optional<int> commandOfKey(const QKeyEvent &event) const override;
    void prepareMenu(ScreenMenu &menu) override;

protected:
    /// What is different.
    struct Kind {
        ListScreen screen;
        MenuBarId menuBarId;
        int refreshCommand;
        int backCommand;
        int updateCommand;
        int nothingSelectedString;
        bool stopsByCommand; ///< the commands that step stop the fill, or else the keys for them
        bool keepsPlace;     ///< a refresh leaves the user where he is in the list
        QStringList &names;
        int &index; ///< of the name whose list it is; there is none where it points to nothing
    };
    SteppedListScreen(AppState &state, const Kind &kind) : state_(state), kind_(kind) {}

    /// A row of the list, by its text if that is not null, which may have moved, or else by where
    /// it is.
    struct Place {
        int row;
        QString text;
    };

    /// The rows of a list; nothing when they could not be read.
    using Rows = std::optional<QList<ListRow>>;
    using Collector = std::function<Rows(FillStop &)>;

    AppState &state() const { return state_; }
    Dialog &dialog() const { return *dialog_; }
    ListView &list() const { return *list_; }
    /// Null where there is none: a name may be empty.
    QString name() const { return kind_.names.value(kind_.index); }

    /// Turns to another name, counted round and round.
    void step(int index);
    /// Turns to this name, as far as its capacity goes, if it is there.
    void turnTo(const QString &name, qsizetype capacity);
    void refreshSoon();
    /// Where the user is to find himself after the next refresh.
    void setPlace(const Place &place) { place_ = place; }
    /// The selected row; where none is, the user is told so.
    std::optional<int> selection();
    /// Ends the screen, whose parent is to refresh.
    void leave();

private:
    /// Reads the rows of the present name. It runs on the job's thread, and takes values with it.
    virtual Collector collector() const = 0;
    virtual void open(int row) = 0;
    /// The screen is to lead to a headline.
    virtual void openTapped() = 0;
    /// The list shows all that the job has read.
    virtual void filled() {}

    /// What a job has read.
    struct Filling {
        Rows rows;
        bool isStopped = false; ///< and so may lack the end
    };

    HeaderBar &header() const;
    void refresh();
    void fill(const QString &name);
    void showFilling(const QString &name, Filling &filling);
    void showReadFailure();
    void showRows(const QString &name, QList<ListRow> rows);
    void replaceRows(QList<ListRow> rows);
    void selectPlace(const Place &place);
    void stepByCommand(int index);
    void toggleChoices();
    void hideChoices();
    void handleChoice(int index);
    void handleKey(int key, bool &isTaken);
    void openSelected();

    AppState &state_;
    const Kind kind_;
    Dialog *dialog_ = nullptr;
    ListView *list_ = nullptr;
    std::optional<QString> shown_; // the name whose rows are in the list
    std::optional<Place> place_;
};

/// The rows of what a job has read, as far as it comes before it is stopped.
template <class Item>
QList<ListRow> makeRows(const QList<Item> &items, FillStop &stop,
                        ListRow (*makeRow)(const Item &)) {
    QList<ListRow> rows;
    rows.reserve(items.size());
    for (const Item &item : items) {
        if (stop.isRequested())
            break;
        rows.append(makeRow(item));
    }
    return rows;
}

/// The name that is this one, as far as its capacity goes; -1 without one, and for an empty one.
int findName(const QStringList &names, const QString &name, qsizetype capacity);

} // namespace tidebrook

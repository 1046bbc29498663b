#pragma once

#include "app/app_state.h"
#include "kit/dialog_procedure.h"
#include "kit/list_rows.h"
#include "res/ids.h"
#include "ui/kept_place.h"

#include <QList>

#include <functional>
#include <memory>
#include <optional>

namespace tidebrook {

class HeaderBar;
class ListView;

/// The common part of the channel list and the article list: the list of one of several names,
/// filled by a job. The header steps to the previous and the next name, round and round, and drops
/// down all of them.
class SteppedListScreen : public DialogProcedure {
public:
    void command(int id) override;
    void activated() override;
    bool summoned() override;
    void sized() override;
    void prepareMenu(ScreenMenu &menu) override;

protected:
    struct Kind {
        ListScreen screen;
        MenuBarId menuBarId;
        int refreshCommand;
        int backCommand;
        int updateCommand;
        int nothingSelectedString;
        bool stopsByCommand; ///< the commands that step stop the fill, else their keys do
        bool keepsPlace;     ///< a refresh keeps the selection and the scroll position
        QStringList &names;
        int &index; ///< of the present name; out of range when there is none
    };
    SteppedListScreen(AppState &state, const Kind &kind) : state_(state), kind_(kind) {}

    /// The rows of a list; nothing when they could not be read.
    using Rows = std::optional<QList<ListRow>>;
    using Collector = std::function<Rows(FillStop &)>;

    void initialise() override;

    AppState &state() const { return state_; }
    ListView &list() const { return *list_; }
    /// Null when there is none: a name may be empty.
    QString name() const { return kind_.names.value(kind_.index); }

    /// Turns to another name, counted round and round.
    void step(int index);
    /// Turns to this name, compared within its capacity; false when it is not there.
    bool turnTo(const QString &name, qsizetype capacity);
    void refreshSoon();
    /// The row to select after the next refresh.
    void setPlace(const Place &place) { place_ = place; }
    /// The selected row; shows a warning when there is none.
    std::optional<int> selection();
    /// Ends the screen with 1, on which its parent refreshes.
    void leave();

private:
    /// Reads the rows of the present name on the job's thread, from values that it holds.
    virtual Collector collector() const = 0;
    virtual void open(int row) = 0;
    /// Leads to the tapped headline.
    virtual void openTapped() = 0;
    /// The text of a list without rows.
    virtual int emptyString() const = 0;
    /// The list shows all rows.
    virtual void filled() {}

    /// What a job has read.
    struct Filling {
        Rows rows;
        bool isStopped = false; ///< the end may be missing
    };

    HeaderBar &header() const;
    void refresh();
    void fill(const QString &name);
    void showFilling(const QString &name, Filling &filling);
    void showReadFailure();
    void showRows(const QString &name, QList<ListRow> rows);
    void replaceRows(QList<ListRow> rows);
    void follow();
    void showFollowed(const Rows &rows, int fills);
    void stepByCommand(int index);
    void toggleChoices();
    void hideChoices();
    void handleChoice(int index);
    void handleKey(int key, bool &isTaken);
    void openSelected();

    AppState &state_;
    const Kind kind_;
    ListView *list_ = nullptr;
    std::optional<QString> shown_; // the name whose rows are in the list
    std::optional<Place> place_;
    int fills_ = 0;             // begun, and shown
    bool isFollowOwed_ = false; // what was noticed could not be followed at the time
};

/// The rows of what a job has read, up to where it is stopped.
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

/// The index of a name, compared within its capacity; -1 when it is missing or empty.
int findName(const QStringList &names, const QString &name, qsizetype capacity);

} // namespace tidebrook

#pragma once

#include "kit/screen_shape.h"

#include <QStringList>
#include <QWidget>

class QToolButton;

namespace tidebrook {

class ListView;

/// The bar across the top of a screen: a caption, and on screens that can be stepped through, keys
/// for the previous and the next and a drop-down list of all that can be chosen. They send the
/// commands of `res/commands.h`.
class HeaderBar : public QWidget {
    Q_OBJECT

public:
    explicit HeaderBar(QWidget *dialog);

    /// The caption is shown on one line, its end left out if need be.
    void setCaption(const QString &caption);
    QString caption() const { return caption_; }

    /// Gives the bar its keys, and the caption a list to choose from.
    void setSteppable();

    /// What can be chosen. It is shown below the bar, over the dialog; a tap beside it, which does
    /// nothing else, asks for its being hidden.
    void setChoices(const QStringList &names, int current);
    void showChoices();
    void hideChoices();
    bool areChoicesVisible() const;
    ListView *choices() const { return choices_; }

    void setUnits(const DialogUnits &units);

Q_SIGNALS:
    void chosen(int command);
    /// A name of the drop-down list was chosen.
    void choiceTaken(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void prepareKey(QToolButton &key, const QString &name, int command);
    void handleChoice(int row);
    bool isBesideChoices(const QObject *watched) const;
    void arrange();
    QRect captionPlace() const;
    QRect mirrored(const QRect &place) const;

    QString caption_;
    QToolButton *previous_ = nullptr;
    QToolButton *next_ = nullptr;
    QToolButton *captionKey_ = nullptr;
    ListView *choices_ = nullptr;
    DialogUnits units_;
};

} // namespace tidebrook

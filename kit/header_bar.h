#pragma once

#include "kit/screen_shape.h"

#include <QStringList>
#include <QWidget>

class QToolButton;

namespace tidebrook {

class ListView;

/// The bar across the top of a screen: a caption and, on screens that step through several names,
/// keys for the previous and the next one and a drop-down list of all.
class HeaderBar : public QWidget {
    Q_OBJECT

public:
    explicit HeaderBar(QWidget *dialog);

    /// Shown on one line, and elided if it is too long.
    void setCaption(const QString &caption);
    QString caption() const { return caption_; }
    /// A remark below the caption, such as what a list leaves out; none by default.
    void setNote(const QString &note);

    /// Adds the keys and the drop-down list.
    void setSteppable();

    /// The choices appear below the bar, over the dialog. A tap outside of them, or Tab, only
    /// sends `CommandHideChoices`.
    void setChoices(const QStringList &names, int current);
    void showChoices();
    void hideChoices();
    bool areChoicesVisible() const;
    ListView *choices() const { return choices_; }

    /// Lays the bar out for the size of the dialog.
    void arrange();

Q_SIGNALS:
    void chosen(int command);
    void choiceTaken(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void nameAll();
    void paintCaption(QPainter &painter, const QRect &place) const;
    void prepareKey(QToolButton &key, const QString &name, int command);
    void handleChoice(int row);
    bool isBesideChoices(const QObject *watched) const;
    DialogUnits units() const;
    QRect captionPlace() const;
    QRect mirrored(const QRect &place) const;

    QString caption_;
    QString note_;
    QToolButton *previous_ = nullptr;
    QToolButton *next_ = nullptr;
    QToolButton *captionKey_ = nullptr;
    ListView *choices_ = nullptr;
};

} // namespace tidebrook

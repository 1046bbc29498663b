#pragma once

#include <QStringList>
#include <QTextBrowser>

#include <functional>

namespace tidebrook {

/// Shows a page of formatted text that comes as HTML, from whomever. Nothing is loaded for it,
/// neither from the network nor from files, pictures are left out, no script runs, and no page
/// takes longer to show, or more memory, than others of its length. It is as wide as the screen:
/// long words are broken. Colours are changed where they could not be read.
///
/// It has the keys that move up and down, those that go to the next link and take it, and those
/// that select all and copy; all others are left to the dialog.
class TextPage : public QTextBrowser {
    Q_OBJECT

public:
    explicit TextPage(QWidget *parent);

    /// Shows a page from its top; any HTML, however bad.
    void setPage(const QString &html);

    /// How big the page is: 2, 3 or 4, in which text without a size of its own has 9, 11 or 13
    /// points and any other size is in proportion. The place in the page is kept roughly.
    void setZoom(int level);

    QVariant loadResource(int type, const QUrl &name) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;

Q_SIGNALS:
    /// A link was taken: its target as the page has it, also one that is no address.
    void linkTapped(const QString &target);

    /// It was brought to show something else than its page: the owner sets the page again.
    void left();

private:
    void build();
    void buildKeepingPlace();
    void keepPlace(const std::function<void()> &change);
    void follow(const QUrl &link);

    QString html_;
    QStringList links_; // what the page's links lead to
    int zoom_ = 2;
};

} // namespace tidebrook

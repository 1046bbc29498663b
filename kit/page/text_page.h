#pragma once

#include <QStringList>
#include <QTextBrowser>

#include <functional>

namespace tidebrook {

/// Shows a page of formatted text from any HTML. Nothing is loaded, from the network or from files,
/// there are no pictures and no scripts, and the time and the memory grow with the length of the
/// page alone. Lines have a readable length, and a margin at both sides. Long words are broken to
/// the width of the screen. Unreadable colours are changed.
///
/// It handles the keys that scroll, go to links and take them, select all and copy; all others go
/// to the dialog.
class TextPage : public QTextBrowser {
    Q_OBJECT

public:
    explicit TextPage(QWidget *parent);

    /// Shows a page from its top.
    void setPage(const QString &html);

    /// At level 2, 3 or 4, text without a size of its own has 9, 11 or 13 points, and other sizes
    /// are in proportion. The page stays scrolled to about the same place.
    void setZoom(int level);

    QVariant loadResource(int type, const QUrl &name) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;

Q_SIGNALS:
    /// A link was taken. The target is that of the page, also if it is no address.
    void linkTapped(const QString &target);

    /// The browser shows another document: the owner sets the page again.
    void left();

    /// A finger moved sideways over the page: by 1 to what follows in the direction of reading, or
    /// by -1.
    void turned(int by);

private:
    void build();
    void setMargins();
    void endTouch(const QMouseEvent &release);
    void buildKeepingPlace();
    void keepPlace(const std::function<void()> &change);
    void follow(const QUrl &link);

    QString html_;
    QStringList links_; // the targets of the page's links
    int zoom_ = 2;
    QPointF pressedAt_;
};

} // namespace tidebrook

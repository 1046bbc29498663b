#pragma once

#include <QTextBrowser>

namespace tidebrook {

/// Shows a page of formatted text that comes as HTML. Nothing is loaded for it, neither from the
/// network nor from files, no script runs, and it never leaves the page: a link to an anchor of
/// the page goes there, and any other is handed out by `linkTapped`.
class TextPage : public QTextBrowser {
    Q_OBJECT

public:
    explicit TextPage(QWidget *parent);

    QVariant loadResource(int type, const QUrl &name) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

Q_SIGNALS:
    void linkTapped(const QString &target);

private:
    void follow(const QUrl &link);
};

} // namespace tidebrook

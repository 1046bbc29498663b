#pragma once

#include <QColor>
#include <QFont>
#include <QStringList>
#include <QTextDocument>

namespace tidebrook {

/// A document that loads nothing: no file, no address, no data.
class PageDocument : public QTextDocument {
public:
    using QTextDocument::QTextDocument;

protected:
    QVariant loadResource(int type, const QUrl &name) override;
};

/// The look of a page where the page does not set it.
struct PageLook {
    QFont body;     ///< of text without a size of its own
    qreal zoom = 1; ///< the factor of the page's own sizes
    QColor base;    ///< the background
    QColor link;
};

/// Replaces the contents of a document by a page of any HTML. Elements that take long to lay out,
/// or are wider than the screen, are left out or made small, and colours too near to `base` are
/// changed. Returns the targets of the page's links. The anchor of a link is "link:" and its index
/// there.
QStringList showPage(QTextDocument &document, const QString &html, const PageLook &look);

} // namespace tidebrook

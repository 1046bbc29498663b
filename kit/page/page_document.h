#pragma once

#include <QColor>
#include <QFont>
#include <QStringList>
#include <QTextDocument>

namespace tidebrook {

/// A document that loads nothing, whatever it is told to show: no file, no address, no data.
class PageDocument : public QTextDocument {
public:
    using QTextDocument::QTextDocument;

protected:
    QVariant loadResource(int type, const QUrl &name) override;
};

/// What a page looks like where it leaves that open.
struct PageLook {
    QFont body;     ///< its size is that of text which the page gives none
    qreal zoom = 1; ///< by how much the page's own sizes are bigger than they say
    QColor base;    ///< what the text stands on
    QColor link;
};

/// Puts a page into a document, in place of what it shows. Any HTML will do: what a device could
/// not lay out in a moment, or show in the width of its screen, is left out or made small, and
/// colours that could not be told from `base` are moved away from it. A link's anchor in the
/// document is what `linkAnchor` gives for the target's place in the list returned.
QStringList showPage(QTextDocument &document, const QString &html, const PageLook &look);

QString linkAnchor(qsizetype link);

} // namespace tidebrook

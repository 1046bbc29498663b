#include "feed/formats/inline_markup.h"

#include "feed/formats/scoped_element.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

class MarkupWriter {
public:
    explicit MarkupWriter(const QUrl &base) : base_(base) {}

    void writeChildren(XmlNode element) {
        for (XmlNode node = element.firstChild(); !node.isNull() && !isFull();
             node = node.nextSibling()) {
            if (node.name() == "#text")
                html_ += decoded(node.wholeText(), descriptionCapacity).toHtmlEscaped();
            else
                writeElement(node);
        }
    }
    QString html() && { return std::move(html_); }

private:
    bool isFull() const { return html_.size() > descriptionCapacity; }

    // The document's prefix for HTML means nothing in HTML.
    void writeElement(XmlNode element) {
        const QByteArrayView written = element.name();
        const QString name = QString::fromUtf8(written.sliced(written.lastIndexOf(':') + 1));
        html_ += u'<' + name;
        for (std::uint32_t place = 0; place < element.attributeCount() && !isFull(); ++place)
            writeAttribute(element.attributeAt(place));
        html_ += u'>';
        writeChildren(element);
        // HTML takes an end tag of a break for another break.
        if (!element.firstChild().isNull() || name != u"br")
            html_ += u"</" + name + u'>';
        const QChar space = element.spaceBehind();
        if (!space.isNull())
            html_ += space;
    }

    void writeAttribute(const std::pair<QByteArrayView, QByteArrayView> &attribute) {
        const QByteArrayView name = attribute.first;
        if (name.contains(':') || name == "xmlns")
            return;
        QString value = decoded(attribute.second, descriptionCapacity);
        if (name == "href" || name == "src")
            value = wholeLink(base_, value);
        html_ += u' ' + QString::fromUtf8(name) + u"=\"" + value.toHtmlEscaped() + u'"';
    }

    const QUrl &base_;
    QString html_;
};

} // namespace

QString inlineMarkup(XmlNode element, const QUrl &base) {
    MarkupWriter writer(base);
    writer.writeChildren(element);
    return std::move(writer).html();
}

} // namespace tidebrook

// An article's page as it is shown and as readable text. Byte 1 to 7 in front chooses the size of
// the text and of the screen, and texts of any UTF-16.

#include "fuzz/fuzz.h"
#include "kit/page/text_page.h"
#include "platform/base/text.h"
#include "platform/html/readable_text.h"

#include <QApplication>
#include <QScrollBar>

namespace tidebrook {

using namespace Qt::StringLiterals;

static void checkPage(const QString &html, std::size_t choice) {
    static TextPage &page = *new TextPage(nullptr); // Qt's own statics end first
    page.resize((choice & 1) != 0 ? QSize(320, 240) : QSize(240, 320));
    page.setZoom((choice & 2) != 0 ? 4 : 2);
    page.setPage(u"First.<div>"_s + html + u"</div>Last."_s);
    page.grab();
    const QString text = page.toPlainText();
    require(text.startsWith(u"First."_s), "what stands before a text is shown", text);
    require(text.isValidUtf16(), "what is shown are whole characters");
    require(page.horizontalScrollBar()->maximum() == 0, "a page is as wide as the screen");
    require(page.verticalScrollBar()->maximum() < 150'000, "a page has an end");
}

static void checkReadable(const QString &html) {
    const ReadableText text = readableText(html);
    for (const ReadableLine &line : text.lines)
        require(!line.text.contains(u'\n') && !line.lead.contains(u'\n'), "a line is one line",
                line.text);
    const QString joined = text.joined();
    for (qsizetype i = 1; i <= text.links.size(); ++i)
        require(joined.contains(u"[%1]"_s.arg(i)), "a link has its mark", joined);
}

void fuzz(const QByteArray &input) {
    QByteArray bytes = input;
    const std::size_t choice = takeChoice(bytes);
    const auto *units = reinterpret_cast<const QChar *>(bytes.constData());
    const QString html = choice < 4 ? QString::fromUtf8(bytes) : QString(units, bytes.size() / 2);
    const QString description = cutText(html, 3000).toString();
    checkReadable(description);
    checkPage(description, choice);
}

} // namespace tidebrook

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    static const auto *application = new QApplication(*argc, *argv);
    return application == nullptr ? 1 : 0;
}

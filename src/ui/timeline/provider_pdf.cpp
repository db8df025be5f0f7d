#include "ui/timeline/provider_pdf.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

/// Opens nothing, whatever the text names.
class ClosedDocument final : public QTextDocument {
protected:
    QVariant loadResource(int /*type*/, const QUrl& /*name*/) override { return {}; }
};

void spreadTables(QTextFrame& root)
{
    for (auto* frame : root.childFrames()) {
        auto* table = qobject_cast<QTextTable*>(frame);
        if (!table)
            continue;
        QTextTableFormat format = table->format();
        format.setBorder(0.5);
        format.setBorderCollapse(true);
        format.setCellPadding(3);
        format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
        table->setFormat(format);
    }
}

} // namespace

QByteArray pdfOf(const QString& markdown)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(150);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(18, 18, 18, 18), QPageLayout::Millimeter);
    writer.setTitle(u"Internet connection"_s);
    writer.setCreator(u"Netvane"_s);
    ClosedDocument document;
    QFont font = document.defaultFont();
    font.setPointSize(10);
    document.setDefaultFont(font);
    document.setMarkdown(markdown,
        QTextDocument::MarkdownFeatures(
            QTextDocument::MarkdownDialectGitHub | QTextDocument::MarkdownNoHTML));
    spreadTables(*document.rootFrame());
    document.print(&writer);
    return buffer.data();
}

} // namespace netvane::ui

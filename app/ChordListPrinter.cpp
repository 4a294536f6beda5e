#include "app/ChordListPrinter.h"

#include "app/MessageBoxes.h"
#include "app/PartChordMime.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QTextDocument>
#include <QToolBar>

namespace app {

namespace {

QString cell(const QString& text, const char* align = "left")
{
    return QStringLiteral("<td align=\"%1\">%2</td>")
        .arg(QLatin1String(align), text.toHtmlEscaped());
}

} // namespace

ChordListPrinter::ChordListPrinter(const part::Part& part, QString title)
    : m_part(part), m_title(std::move(title))
{}

std::unique_ptr<QTextDocument> ChordListPrinter::document() const
{
    QString html = QStringLiteral("<h2>%1</h2>").arg(m_title.toHtmlEscaped());
    html += QStringLiteral("<p>%1</p>")
                .arg((m_part.count() == 1 ? QObject::tr("1 chord")
                                          : QObject::tr("%1 chords").arg(m_part.count())) +
                     QObject::tr(", %1 beats per minute, %2 ticks per beat")
                         .arg(m_part.beatsPerMinute())
                         .arg(m_part.ticksPerBeat()));
    html += QStringLiteral("<table border=\"1\" cellspacing=\"0\" cellpadding=\"4\" "
                           "width=\"100%\"><thead><tr>");
    for (const QString& header : {QObject::tr("#"), QObject::tr("Chord"), QObject::tr("Notes"),
                                  QObject::tr("Pattern"), QObject::tr("Length")})
        html += QStringLiteral("<th align=\"left\">%1</th>").arg(header.toHtmlEscaped());
    html += QStringLiteral("</tr></thead>");
    for (int i = 0; i < m_part.count(); ++i) {
        const part::PartChord& chord = m_part.chord(i);
        const part::Pattern* pattern = m_part.patterns().find(chord.pattern);
        const QString patternName =
            pattern != nullptr ? QString::fromStdString(pattern->name()) : QObject::tr("(missing)");
        html += QStringLiteral("<tr>") + cell(QString::number(i + 1), "right") +
                cell(QString::fromStdString(chord.name)) + cell(PartChordMime::notesText(chord)) +
                cell(QStringLiteral("%1: %2").arg(chord.pattern).arg(patternName)) +
                cell(QString::number(chord.length), "right") + QStringLiteral("</tr>");
    }
    html += QStringLiteral("</table>");
    auto document = std::make_unique<QTextDocument>();
    document->setHtml(html);
    return document;
}

void ChordListPrinter::print(QPrinter& printer) const
{
    document()->print(&printer);
}

bool ChordListPrinter::savePdf(const QString& path) const
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setDocName(m_title);
    print(printer);
    return QFileInfo(path).size() > 0;
}

void ChordListPrinter::preview(QWidget* parent, const QString& folder) const
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(m_title);
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setObjectName(QStringLiteral("chordListPreview"));
    dialog.setWindowTitle(QObject::tr("Print Chord List"));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [this](QPrinter* target) { print(*target); });
    if (auto* bar = dialog.findChild<QToolBar*>()) {
        QAction* pdf = bar->addAction(QObject::tr("Save as PDF..."));
        pdf->setObjectName(QStringLiteral("saveChordListPdf"));
        QObject::connect(pdf, &QAction::triggered, &dialog, [this, &dialog, folder] {
            const QString path = QFileDialog::getSaveFileName(
                &dialog, QObject::tr("Save Chord List as PDF"),
                folder + QLatin1Char('/') + QFileInfo(m_title).completeBaseName() +
                    QStringLiteral(".pdf"),
                QObject::tr("PDF files (*.pdf)"));
            if (!path.isEmpty() && !savePdf(path))
                MessageBoxes::error(&dialog, QObject::tr("unable to open file"));
        });
    }
    dialog.exec();
}

} // namespace app

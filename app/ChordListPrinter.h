#pragma once

#include "part/Part.h"

#include <QString>

#include <memory>

class QPrinter;
class QTextDocument;
class QWidget;

namespace app {

/**
 * "Print List": the part's chords as a printed page, a title and one table row a chord: its
 * number, name, notes, pattern and length. Shown in a print preview from which it is printed or
 * saved as PDF.
 */
class ChordListPrinter
{
public:
    ChordListPrinter(const part::Part& part, QString title);

    /** The page as a text document; the caller owns it. */
    std::unique_ptr<QTextDocument> document() const;
    void print(QPrinter& printer) const;
    /** Writes a PDF file; false when it cannot be written. */
    bool savePdf(const QString& path) const;
    /** The modal print preview, with a button that saves the list as PDF in `folder`. */
    void preview(QWidget* parent, const QString& folder) const;

private:
    const part::Part& m_part;
    QString m_title;
};

} // namespace app

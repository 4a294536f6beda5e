#include "app/ChordTransformDialog.h"

#include "app/PartChordMime.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <set>

namespace app {

ChordTransformDialog::ChordTransformDialog(const QString& title, const part::Part& part,
                                           part::ChordSelection chords, QWidget* parent)
    : QDialog(parent), m_part(part), m_chords(std::move(chords))
{
    setWindowTitle(title);
    m_form = new QFormLayout;

    m_scope = new QLabel(this);
    m_scope->setObjectName(QStringLiteral("transformScope"));
    m_scope->setAccessibleName(tr("Chords changed"));
    const std::set<int> distinct(m_chords.begin(), m_chords.end());
    const auto count = static_cast<int>(distinct.size());
    m_scope->setText(count == m_part.count()
                         ? tr("Acts on all %1 of the part.").arg(chordCount(count))
                         : tr("Acts on the %1 selected.").arg(chordCount(count)));

    m_preview = new QLabel(this);
    m_preview->setObjectName(QStringLiteral("transformPreview"));
    m_preview->setAccessibleName(tr("Preview"));
    m_preview->setTextFormat(Qt::PlainText);
    m_preview->setWordWrap(true);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setMinimumWidth(360);
    m_preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_preview->setMargin(4);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_form);
    layout->addWidget(m_scope);
    layout->addWidget(m_preview, 1);
    layout->addWidget(m_buttons);
}

QString ChordTransformDialog::chordCount(int count)
{
    return count == 1 ? tr("1 chord") : tr("%1 chords").arg(count);
}

QPushButton* ChordTransformDialog::okButton() const
{
    return m_buttons->button(QDialogButtonBox::Ok);
}

void ChordTransformDialog::refresh()
{
    if (const QString reason = invalidReason(); !reason.isEmpty()) {
        m_preview->setText(reason);
        okButton()->setEnabled(false);
        return;
    }
    const part::ChordEdit edit = transformed();
    okButton()->setEnabled(static_cast<bool>(edit));
    if (!edit) {
        m_preview->setText(QString::fromStdString(edit.result.message()));
        return;
    }
    // The chords that change, as "Am  A0 C1 E1  ->  Bm  B0 D1 F#1".
    QStringList lines;
    int changed = 0;
    for (int index : std::set<int>(m_chords.begin(), m_chords.end())) {
        if (index < 0 || index >= m_part.count())
            continue;
        const part::PartChord& before = m_part.chord(index);
        const part::PartChord& after = edit.part.chord(index);
        if (before == after)
            continue;
        if (++changed > kPreviewChords)
            continue;
        lines << tr("%1  %2  \u2192  %3  %4")
                     .arg(QString::fromStdString(before.name), PartChordMime::notesText(before),
                          QString::fromStdString(after.name), PartChordMime::notesText(after));
    }
    if (changed > kPreviewChords)
        lines << tr("and %1 more.").arg(chordCount(changed - kPreviewChords));
    m_preview->setText(changed == 0 ? tr("No chord changes.") : lines.join(QLatin1Char('\n')));
}

} // namespace app

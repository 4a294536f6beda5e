#include "app/NoteLimitsDialog.h"

#include "app/NoteSpinBox.h"

#include <QFormLayout>
#include <QSettings>

namespace app {

namespace {

const QString kLowKey = QStringLiteral("transforms/limitLow");
const QString kHighKey = QStringLiteral("transforms/limitHigh");
constexpr int kOctave = 12;

} // namespace

NoteLimitsDialog::NoteLimitsDialog(const part::Part& part, part::ChordSelection chords,
                                   QWidget* parent)
    : ChordTransformDialog(tr("Note Limits"), part, std::move(chords), parent)
{
    setObjectName(QStringLiteral("noteLimitsDialog"));
    setAccessibleName(tr("Note limits"));
    const auto box = [this](const char* name, const QString& accessible, const QString& key,
                            int fallback) {
        auto* spin = new NoteSpinBox(this);
        spin->setObjectName(QString::fromLatin1(name));
        spin->setAccessibleName(accessible);
        spin->setValue(QSettings().value(key, fallback).toInt());
        connect(spin, &QSpinBox::valueChanged, this, [this] { refresh(); });
        return spin;
    };
    // Octaves count from the part's base octave: C0 is its C.
    m_low = box("limitLow", tr("Lowest note"), kLowKey, 0);
    m_low->setToolTip(tr("No note lies below this one. Octave 0 is the part's base octave."));
    m_high = box("limitHigh", tr("Highest note"), kHighKey, 2 * kOctave - 1);
    m_high->setToolTip(tr("No note lies above this one. The range spans at least an octave."));
    form()->addRow(tr("&Lowest note:"), m_low);
    form()->addRow(tr("&Highest note:"), m_high);
    refresh();
}

int NoteLimitsDialog::low() const
{
    return m_low->value();
}

int NoteLimitsDialog::high() const
{
    return m_high->value();
}

void NoteLimitsDialog::accept()
{
    QSettings().setValue(kLowKey, low());
    QSettings().setValue(kHighKey, high());
    ChordTransformDialog::accept();
}

part::ChordEdit NoteLimitsDialog::transformed() const
{
    return part::limitChordNotes(part(), chords(), low(), high());
}

QString NoteLimitsDialog::invalidReason() const
{
    if (high() - low() < kOctave - 1)
        return tr("The highest note must lie at least eleven half-notes above the lowest, so "
                  "that every note has a place in the range.");
    return {};
}

} // namespace app

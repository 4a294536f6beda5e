#include "app/MirrorDialog.h"

#include "app/NoteNames.h"

#include <QComboBox>
#include <QFormLayout>
#include <QSettings>

#include <algorithm>

namespace app {

namespace {

const QString kLastKey = QStringLiteral("transforms/mirrorAxis");
constexpr int kAxes = 2 * music::kPitchClassCount;
constexpr int kDefaultAxis = 2 * 3 + 1; // between D# and E: major and minor change places

} // namespace

MirrorDialog::MirrorDialog(const part::Part& part, part::ChordSelection chords, QWidget* parent)
    : ChordTransformDialog(tr("Mirror"), part, std::move(chords), parent)
{
    setObjectName(QStringLiteral("mirrorDialog"));
    setAccessibleName(tr("Mirror"));
    m_axis = new QComboBox(this);
    m_axis->setObjectName(QStringLiteral("mirrorAxis"));
    m_axis->setAccessibleName(tr("Axis"));
    m_axis->setToolTip(tr("A note k half-notes above the axis goes k half-notes below it. "
                          "Around the point between D# and E, C major becomes C minor."));
    for (int axis = 0; axis < kAxes; ++axis) {
        const int pitchClass = axis / 2;
        m_axis->addItem(axis % 2 == 0 ? NoteNames::name(pitchClass)
                                      : tr("between %1 and %2")
                                            .arg(NoteNames::name(pitchClass),
                                                 NoteNames::name((pitchClass + 1) % 12)),
                        axis);
    }
    m_axis->setCurrentIndex(
        std::clamp(QSettings().value(kLastKey, kDefaultAxis).toInt(), 0, kAxes - 1));
    form()->addRow(tr("&Axis:"), m_axis);
    connect(m_axis, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    refresh();
}

part::MirrorAxis MirrorDialog::axis() const
{
    const int axis = m_axis->currentData().toInt();
    return {static_cast<music::PitchClass>(axis / 2), axis % 2 == 1};
}

void MirrorDialog::setAxis(part::MirrorAxis axis)
{
    m_axis->setCurrentIndex(m_axis->findData(axis.note * 2 + (axis.halfStepAbove ? 1 : 0)));
}

void MirrorDialog::accept()
{
    QSettings().setValue(kLastKey, m_axis->currentIndex());
    ChordTransformDialog::accept();
}

part::ChordEdit MirrorDialog::transformed() const
{
    return part::mirrorChords(part(), chords(), axis());
}

} // namespace app

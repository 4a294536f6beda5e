#include "app/CTempoBar.h"

#include <QLabel>
#include <QSpinBox>

namespace app {

CTempoBar::CTempoBar(QWidget* parent) : QToolBar(tr("Tempo"), parent)
{
    setObjectName(QStringLiteral("tempoBar"));
    setAllowedAreas(Qt::TopToolBarArea);
    setFloatable(false);
    setMovable(false);

    // Ticks per beat of at least 1 keep the playback interval 60000 / (bpm * tpb) defined.
    m_bpm = new QSpinBox(this);
    m_bpm->setRange(1, 999);
    m_bpm->setValue(kDefaultBeatsPerMinute);
    m_bpm->setToolTip(QStringLiteral("Beats per minute"));
    m_bpm->setAccessibleName(QStringLiteral("Beats per minute"));
    m_tpb = new QSpinBox(this);
    m_tpb->setRange(1, 64);
    m_tpb->setValue(kDefaultTicksPerBeat);
    m_tpb->setToolTip(QStringLiteral("Ticks per beat"));
    m_tpb->setAccessibleName(QStringLiteral("Ticks per beat"));

    auto* bpmLabel = new QLabel(tr("&BPM "), this);
    bpmLabel->setBuddy(m_bpm);
    bpmLabel->setToolTip(m_bpm->toolTip());
    auto* tpbLabel = new QLabel(tr("  &TPB "), this);
    tpbLabel->setBuddy(m_tpb);
    tpbLabel->setToolTip(m_tpb->toolTip());
    addWidget(bpmLabel);
    addWidget(m_bpm);
    addWidget(tpbLabel);
    addWidget(m_tpb);

    connect(m_bpm, &QSpinBox::valueChanged, this, &CTempoBar::tempoChanged);
    connect(m_tpb, &QSpinBox::valueChanged, this, &CTempoBar::tempoChanged);
}

std::uint16_t CTempoBar::beatsPerMinute() const
{
    return static_cast<std::uint16_t>(m_bpm->value());
}

void CTempoBar::setBeatsPerMinute(std::uint16_t value)
{
    m_bpm->setValue(value);
}

std::uint16_t CTempoBar::ticksPerBeat() const
{
    return static_cast<std::uint16_t>(m_tpb->value());
}

void CTempoBar::setTicksPerBeat(std::uint16_t value)
{
    m_tpb->setValue(value);
}

} // namespace app

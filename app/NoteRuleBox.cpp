#include "app/NoteRuleBox.h"

#include "app/NoteNames.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>

namespace app {

namespace {

constexpr const char* kExtendLabel = "Start again an octave higher";
constexpr const char* kOffLabel = "Off-event";
constexpr const char* kIgnoreLabel = "Ignore";
constexpr const char* kExtendTip = "Start again with 1st note, but one octave higher.";
constexpr const char* kOffTip = "The note is interpreted as off-event.";
constexpr const char* kIgnoreTip = "The note is ignored.";

} // namespace

const NoteRuleBox::Texts NoteRuleBox::kSettingsTexts = {
    {kExtendLabel, kOffLabel, kIgnoreLabel},
    {"Chord starts again with first note, but one octave higher.", kOffTip, kIgnoreTip},
    "Upper note limit",
    "If active, no note will be higher than this one.",
};

const NoteRuleBox::Texts NoteRuleBox::kMidiFileTexts = {
    {kExtendLabel, kOffLabel, kIgnoreLabel},
    {kExtendTip, kOffTip, kIgnoreTip},
    "Upper note limit",
    "If active, no note will be higher than the one below.",
};

// Written into a song, option 1 leaves the cell out and option 2 writes a note-off.
const NoteRuleBox::Texts NoteRuleBox::kSongTexts = {
    {kExtendLabel, kIgnoreLabel, "Note-off"},
    {kExtendTip, kIgnoreTip, kOffTip},
    "Upper note limit",
    "Activate upper note limit.",
};

NoteRuleBox::NoteRuleBox(const Texts& texts, QWidget* parent)
    : QGroupBox(tr("Chord notes beyond the chord"), parent)
{
    setObjectName(QStringLiteral("noteRules"));
    setAccessibleName(tr("Note rules"));
    auto* grid = new QGridLayout(this);
    const char* const names[] = {"indexExtend", "indexOption1", "indexOption2"};
    for (std::size_t i = 0; i < m_index.size(); ++i) {
        auto* button = new QRadioButton(tr(texts.indexLabels[i]), this);
        button->setObjectName(QString::fromLatin1(names[i]));
        button->setToolTip(QString::fromLatin1(texts.indexTips[i]));
        button->setAccessibleDescription(button->toolTip());
        grid->addWidget(button, 0, static_cast<int>(i));
        m_index[i] = button;
    }
    m_index[0]->setChecked(true);

    m_limit = new QCheckBox(tr(texts.limitLabel), this);
    m_limit->setObjectName(QStringLiteral("limitActive"));
    m_limit->setToolTip(QString::fromLatin1(texts.limitTip));
    m_limitNote = new QComboBox(this);
    m_limitNote->setObjectName(QStringLiteral("limitNote"));
    m_limitNote->setAccessibleName(tr("Limit note"));
    m_limitNote->setToolTip(m_limit->toolTip());
    NoteNames::fill(m_limitNote);
    m_limitOctave = new QSpinBox(this);
    m_limitOctave->setObjectName(QStringLiteral("limitOctave"));
    m_limitOctave->setAccessibleName(tr("Limit octave"));
    m_limitOctave->setToolTip(m_limit->toolTip());
    m_limitOctave->setRange(0, 9);
    grid->addWidget(m_limit, 1, 0);
    grid->addWidget(m_limitNote, 1, 1);
    grid->addWidget(m_limitOctave, 1, 2);
    connect(m_limit, &QCheckBox::toggled, this, [this] { updateEnabled(); });
    updateEnabled();
}

QRadioButton* NoteRuleBox::indexButton(part::IndexOption option) const
{
    return m_index[static_cast<std::size_t>(option)];
}

void NoteRuleBox::setOptions(const part::RenderOptions& options)
{
    const auto index = static_cast<std::size_t>(options.indexOption);
    m_index[index < m_index.size() ? index : 0]->setChecked(true);
    m_limit->setChecked(options.limitActive);
    m_limitNote->setCurrentIndex(options.limitNote % 12);
    m_limitOctave->setValue(options.limitOctave);
    updateEnabled();
}

part::RenderOptions NoteRuleBox::applyTo(part::RenderOptions options) const
{
    for (std::size_t i = 0; i < m_index.size(); ++i) {
        if (m_index[i]->isChecked())
            options.indexOption = static_cast<part::IndexOption>(i);
    }
    options.limitActive = m_limit->isChecked();
    options.limitNote = static_cast<std::uint8_t>(m_limitNote->currentIndex());
    options.limitOctave = static_cast<std::uint8_t>(m_limitOctave->value());
    return options;
}

void NoteRuleBox::updateEnabled()
{
    m_limitNote->setEnabled(m_limit->isChecked());
    m_limitOctave->setEnabled(m_limit->isChecked());
}

} // namespace app

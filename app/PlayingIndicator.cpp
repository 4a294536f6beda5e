#include "app/PlayingIndicator.h"

#include <QCheckBox>
#include <QLabel>
#include <QSpinBox>

namespace app {

PlayingIndicator::PlayingIndicator(QWidget* parent) : QToolBar(tr("Playing"), parent)
{
    setObjectName(QStringLiteral("playingIndicator"));
    setAccessibleName(tr("Playing"));
    setAllowedAreas(Qt::TopToolBarArea | Qt::BottomToolBarArea);
    setFloatable(false);
    QToolBar::setVisible(false);
}

PlayingIndicator& PlayingIndicator::fields()
{
    if (m_loop != nullptr)
        return *this;
    auto* title = new QLabel(tr("  Playing  "), this);
    title->setObjectName(QStringLiteral("playingTitle"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    addWidget(title);
    m_channel = addField(tr("Ch"), "playingChannel", kChannelTip, 1, midi::MidiSettings::kChannels);
    m_port = addField(tr("Port"), "playingPort", kPortTip, 0, midi::MidiSettings::kPorts - 1);
    m_velocity = addField(tr("Vel"), "playingVelocity", kVelocityTip, 1, 127);
    m_program = addField(tr("Prg"), "playingProgram", kProgramTip, 0, 127);

    m_loop = new QCheckBox(tr("&Loop"), this);
    m_loop->setObjectName(QStringLiteral("playingLoop"));
    m_loop->setAccessibleName(tr("Loop"));
    m_loop->setToolTip(tr("Start again at the first chord of the selected range (or of the "
                          "part), or play the chord again, instead of stopping."));
    m_loop->setChecked(m_looping);
    addSeparator();
    addWidget(m_loop);
    connect(m_loop, &QCheckBox::toggled, this, [this](bool looping) {
        m_looping = looping;
        Q_EMIT loopingChanged(looping);
    });
    return *this;
}

QSpinBox* PlayingIndicator::addField(const QString& label, const char* objectName, const char* tip,
                                     int minimum, int maximum)
{
    auto* box = new QSpinBox(this);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setToolTip(QString::fromLatin1(tip));
    box->setAccessibleName(QString::fromLatin1(tip));
    box->setRange(minimum, maximum);
    auto* text = new QLabel(QStringLiteral(" ") + label + QStringLiteral(" "), this);
    text->setBuddy(box);
    text->setToolTip(box->toolTip());
    addWidget(text);
    addWidget(box);
    connect(box, &QSpinBox::valueChanged, this, [this] {
        if (!m_showing)
            Q_EMIT settingsEdited();
    });
    return box;
}

void PlayingIndicator::setPlaying(bool playing, const midi::MidiSettings& settings)
{
    m_playing = playing;
    if (playing || m_loop != nullptr)
        showSettings(settings);
    setVisible(playing);
}

void PlayingIndicator::showSettings(const midi::MidiSettings& settings)
{
    fields();
    m_showing = true;
    m_channel->setValue((settings.channel() & 0x0F) + 1);
    m_port->setValue(settings.port());
    m_velocity->setValue(settings.velocity());
    m_program->setValue(settings.program());
    m_showing = false;
}

midi::MidiSettings PlayingIndicator::applyTo(midi::MidiSettings settings) const
{
    if (m_loop == nullptr) // never shown: nothing edited
        return settings;
    settings.setChannel(static_cast<std::uint16_t>(m_channel->value() - 1));
    settings.setPort(static_cast<std::uint16_t>(m_port->value()));
    // A setting above 127 (a MIDI file's 128) is kept until the bar is edited.
    if (m_velocity->value() != std::min<int>(settings.velocity(), 127))
        settings.setVelocity(static_cast<std::uint16_t>(m_velocity->value()));
    settings.setProgram(static_cast<std::uint16_t>(m_program->value()));
    return settings;
}

bool PlayingIndicator::isLooping() const
{
    return m_looping;
}

void PlayingIndicator::setLooping(bool looping)
{
    if (m_loop != nullptr) {
        m_loop->setChecked(looping); // reported by the box
    } else if (looping != m_looping) {
        m_looping = looping;
        Q_EMIT loopingChanged(looping);
    }
}

void PlayingIndicator::setVisible(bool visible)
{
    QToolBar::setVisible(visible && m_playing);
}

} // namespace app

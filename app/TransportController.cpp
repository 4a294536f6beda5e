#include "app/TransportController.h"

#include "app/CMainFrame.h"
#include "app/CMidiSettingsDialog.h"
#include "app/CTempoBar.h"
#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "app/PlayingIndicator.h"
#include "midi/MidiInPortList.h"
#include "midi/MidiSettings.h"
#include "player/PartPlayer.h"

#include <QAction>
#include <QSettings>
#include <QShortcut>

namespace app {

namespace {

const QString kLoopKey = QStringLiteral("transport/loop");

std::uint16_t chordIndex(int chord)
{
    return chord < 0 ? part::kNoIndex : static_cast<std::uint16_t>(chord);
}

} // namespace

TransportController::TransportController(CMainFrame& frame, PartSession& session,
                                         midi::MidiSettings& settings,
                                         std::shared_ptr<midi::MidiPortList> ports, QObject* parent)
    : QObject(parent), m_frame(frame), m_session(session), m_settings(settings),
      m_ports(ports ? std::move(ports) : midi::MidiPortList::systemList())
{
    m_player = new player::PartPlayer(m_ports, this);
    m_player->setObjectName(QStringLiteral("partPlayer"));
    m_player->setSettingsRequest([this](midi::MidiSettings& request) {
        // Asked while starting: the dialog works on the view's settings, the player on its copy.
        if (editMidiSettings())
            request = m_settings;
    });

    m_indicator = new PlayingIndicator(&m_frame);
    m_frame.addToolBar(Qt::TopToolBarArea, m_indicator);
    m_indicator->setLooping(QSettings().value(kLoopKey, false).toBool());
    m_player->setLooping(m_indicator->isLooping());
    connect(m_indicator, &PlayingIndicator::loopingChanged, this, [this](bool looping) {
        m_player->setLooping(looping);
        QSettings().setValue(kLoopKey, looping);
    });
    connect(m_indicator, &PlayingIndicator::settingsEdited, this,
            &TransportController::applyIndicatorSettings);

    connect(m_frame.action("part.play"), &QAction::triggered, this, [this] { playPart(); });
    connect(m_frame.action("part.playChord"), &QAction::triggered, this, [this] { playChord(); });
    connect(m_frame.action("part.stop"), &QAction::triggered, this, [this] { stop(); });
    for (const char* id : {"settings.midi", "view.midiSettings"})
        connect(m_frame.action(id), &QAction::triggered, this, [this] { editMidiSettings(); });

    if (CTempoBar* bar = m_frame.tempoBar()) {
        m_player->setTempo(bar->beatsPerMinute(), bar->ticksPerBeat());
        connect(bar, &CTempoBar::tempoChanged, this,
                [this, bar] { m_player->setTempo(bar->beatsPerMinute(), bar->ticksPerBeat()); });
    }
    connectPlayer();
    connectSession();
}

TransportController::~TransportController() = default;

void TransportController::connectPlayer()
{
    connect(m_player, &player::PartPlayer::playingChanged, this,
            [this](bool playing, bool singleChord) {
                m_frame.setPlayingFlags(playing, playing && singleChord);
                if (playing)
                    syncSettingsFromPlayer();
                m_indicator->setPlaying(playing, m_settings);
            });
    connect(m_player, &player::PartPlayer::stepPlayed, &m_session,
            &PartSession::setPlayingPosition);
    connect(m_player, &player::PartPlayer::finished, this, [this] {
        syncSettingsFromPlayer();
        m_session.setPlayingPosition(-1, -1);
    });
    connect(m_player, &player::PartPlayer::failed, this,
            [this](const QString& message) { MessageBoxes::error(&m_frame, message); });
}

void TransportController::connectSession()
{
    connect(&m_session, &PartSession::aboutToEdit, this, [this] { stop(); });
    // Whatever reaches `changed` without `aboutToEdit` first is a live edit.
    connect(&m_session, &PartSession::changed, this,
            [this] { m_player->updatePart(m_session.part()); });
    connect(&m_session, &PartSession::renderOptionsChanged, this,
            [this] { m_player->setRenderOptions(m_session.renderOptions()); });
    m_player->setRenderOptions(m_session.renderOptions());
}

void TransportController::playPart()
{
    m_player->setSettings(m_settings);
    m_player->setRenderOptions(m_session.renderOptions());
    m_player->playPart(m_session.part(), chordIndex(m_session.currentChord()));
}

void TransportController::playChord()
{
    m_player->setSettings(m_settings);
    m_player->setRenderOptions(m_session.renderOptions());
    m_player->playSingleChord(m_session.part(), chordIndex(m_session.currentChord()));
}

void TransportController::stop()
{
    m_player->stop();
}

void TransportController::togglePlay()
{
    if (m_player->isPlaying())
        stop();
    else
        playPart();
}

bool TransportController::isPlaying() const
{
    return m_player->isPlaying();
}

bool TransportController::editMidiSettings()
{
    stop();
    Q_EMIT midiSettingsOpening();
    CMidiSettingsDialog dialog(m_settings, m_session.renderOptions(), m_ports, &m_frame);
    dialog.setInputPorts(m_inputs);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    m_settings = dialog.settings();
    m_session.setRenderOptions(dialog.renderOptions());
    Q_EMIT midiSettingsEdited();
    return true;
}

void TransportController::addSpaceToggle(QWidget* region)
{
    if (region == nullptr)
        return;
    auto* space = new QShortcut(QKeySequence(Qt::Key_Space), region);
    space->setObjectName(QStringLiteral("spaceTogglesPlay"));
    space->setContext(Qt::WidgetWithChildrenShortcut);
    connect(space, &QShortcut::activated, this, [this] { togglePlay(); });
}

void TransportController::applyIndicatorSettings()
{
    m_settings = m_indicator->applyTo(m_settings);
    m_player->setSettings(m_indicator->applyTo(m_player->settings()));
    syncSettingsFromPlayer();
}

void TransportController::syncSettingsFromPlayer()
{
    // Only what playback itself changes: the program table and a velocity lowered to 127.
    m_settings.setProgramTable(m_player->settings().programTable());
    if (m_settings.velocity() > 127)
        m_settings.setVelocity(m_player->settings().velocity());
}

} // namespace app

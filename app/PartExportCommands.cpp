#include "app/PartExportCommands.h"

#include "app/CMainFrame.h"
#include "app/CMidiFileDialog.h"
#include "app/CPartWriteDialog.h"
#include "app/CTempoBar.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTonalmancerView.h"
#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "app/TransportController.h"
#include "app/WaitCursor.h"
#include "midi/MidiFileExporter.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QSettings>
#include <QStatusBar>

namespace app {

namespace {

const QString kWriteOptionsGroup = QStringLiteral("partWriter/");
const QString kMarkersKey = QStringLiteral("midiFile/chordNameMarkers");

} // namespace

PartExportCommands::PartExportCommands(CTonalmancerView& view, CMainFrame& frame,
                                       CTonalmancerDoc& document, PartSession& session,
                                       TransportController& transport, QObject* parent)
    : QObject(parent), m_view(view), m_frame(frame), m_document(document), m_session(session),
      m_transport(transport)
{
    loadWriteOptions();
    connect(m_frame.action("part.createMidiFile"), &QAction::triggered, this,
            [this] { createMidiFile(); });
    for (const char* id : {"part.createBuzzPatterns", "part.createBuzzPatternsButton"}) {
        connect(m_frame.action(id), &QAction::triggered, this, [this] { createBuzzPatterns(); });
    }
}

// ---- MIDI file -------------------------------------------------------------------------------

midi::MidiExportOptions PartExportCommands::midiExportOptions() const
{
    const midi::MidiSettings& settings = m_view.midiSettings();
    midi::MidiExportOptions options;
    options.channel = static_cast<std::uint8_t>(settings.midiFileChannel() & 0x0F);
    options.velocity = settings.velocity();
    options.writeBpm = settings.writeBpm() != 0;
    options.render = m_session.renderOptions();
    if (const CTempoBar* bar = m_frame.tempoBar()) {
        options.beatsPerMinute = bar->beatsPerMinute();
        options.ticksPerBeat = bar->ticksPerBeat();
    } else {
        options.beatsPerMinute = m_session.part().beatsPerMinute();
        options.ticksPerBeat = m_session.part().ticksPerBeat();
    }
    options.rangeFirst = m_session.part().selectionFirst();
    options.rangeLast = m_session.part().selectionLast();
    options.writeChordNames = m_writeChordNames;
    return options;
}

QString PartExportCommands::chooseMidiFile(const QString& suggestedPath) const
{
    if (m_chooseFile)
        return m_chooseFile(suggestedPath);
    QFileDialog dialog(&m_frame, tr("Create Midi File"), suggestedPath,
                       QString::fromLatin1(kMidiFilter));
    dialog.setObjectName(QStringLiteral("midiFileChooser"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("mid"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

void PartExportCommands::createMidiFile()
{
    if (m_session.part().count() == 0)
        return;
    const QDir userFolder(QString::fromStdString(m_document.dataFolder().userFolder().string()));
    const QString name =
        m_session.filePath().isEmpty()
            ? QString()
            : QFileInfo(m_session.filePath()).completeBaseName() + QStringLiteral(".mid");
    const QString path = chooseMidiFile(userFolder.filePath(name));
    if (path.isEmpty())
        return;
    m_transport.stop();

    CMidiFileDialog dialog(m_view.midiSettings(), m_session.renderOptions(), &m_frame);
    dialog.setWriteChordNames(m_writeChordNames);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_writeChordNames = dialog.writeChordNames();
    QSettings().setValue(kMarkersKey, m_writeChordNames);
    m_view.midiSettings() = dialog.settings();
    m_session.setRenderOptions(dialog.renderOptions());
    if (writeMidiFile(path))
        MessageBoxes::show(&m_frame, QString::fromLatin1(kDone), QMessageBox::Information);
}

bool PartExportCommands::writeMidiFile(const QString& path)
{
    midi::MidiFileExporter exporter(midiExportOptions());
    music::Result written;
    {
        WaitCursor wait;
        written = exporter.write(m_session.part(), path.toStdString());
    }
    // A velocity of 128 is used once and is 127 from then on, for playback too.
    m_view.midiSettings().setVelocity(static_cast<std::uint16_t>(exporter.options().velocity));
    if (!written) {
        MessageBoxes::error(&m_frame, QString::fromStdString(written.message()));
        return false;
    }
    return true;
}

// ---- Buzz patterns ---------------------------------------------------------------------------

void PartExportCommands::createBuzzPatterns()
{
    song::BuzzSong* song = m_document.song();
    const QString machineName = m_view.selectedMachineName();
    const part::Part& part = m_session.part();
    if (part.count() == 0)
        return;
    if (song == nullptr || machineName.isEmpty()) {
        m_frame.statusBar()->showMessage(
            tr("Select a machine in the machine view (Show Bmx) to write the part into."), 5000);
        return;
    }
    const std::size_t machine = song->findMachine(machineName.toStdString());
    if (machine == song::BuzzSong::kNameNotFound ||
        song::PartWriter::usedTracks(part, m_session.renderOptions()).empty()) {
        return;
    }
    if (song->machines()[machine].description.findParameter("note") < 0) {
        MessageBoxes::error(&m_frame, QString::fromLatin1(song::PartWriter::kNoNoteParameter));
        return;
    }

    song::PartWriteOptions options = m_writeOptions;
    options.render = m_session.renderOptions();
    options.baseWave = m_session.baseWave();
    CPartWriteDialog dialog(options, &m_frame);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_writeOptions = dialog.options();
    storeWriteOptions();
    m_session.setRenderOptions(m_writeOptions.render);

    // One step of the song's history (Undo in the machine view takes the patterns out again).
    // Patterns made before a failure stay in the song: it has changed either way.
    song::PartWriteResult result;
    {
        WaitCursor wait;
        m_document.edit(tr("Create Buzz Patterns"), [&](song::BuzzSong& target) {
            result = song::PartWriter::write(target, machine, m_session.part(), m_writeOptions);
            return result.status == song::PartWriteStatus::NothingToDo
                       ? music::Result::failure("nothing written")
                       : music::Result::success();
        });
    }
    for (std::size_t i = 0; i < result.messages.size(); ++i) {
        const bool stopped =
            result.status == song::PartWriteStatus::Failed && i + 1 == result.messages.size();
        MessageBoxes::show(&m_frame, QString::fromStdString(result.messages[i]),
                           stopped ? QMessageBox::Critical : QMessageBox::Information);
    }
}

void PartExportCommands::loadWriteOptions()
{
    const QSettings settings;
    m_writeChordNames = settings.value(kMarkersKey, false).toBool();
    m_writeOptions.ignoreWave =
        settings.value(kWriteOptionsGroup + QStringLiteral("ignoreWave"), false).toBool();
    m_writeOptions.append =
        settings.value(kWriteOptionsGroup + QStringLiteral("append"), false).toBool();
    m_writeOptions.nameByNotes =
        settings.value(kWriteOptionsGroup + QStringLiteral("nameByNotes"), false).toBool();
    m_writeOptions.waveMode = static_cast<std::uint8_t>(std::clamp(
        settings.value(kWriteOptionsGroup + QStringLiteral("waveMode"), 0).toInt(), 0, 2));
    m_writeOptions.makeSequence =
        settings.value(kWriteOptionsGroup + QStringLiteral("sequence"), false).toBool();
}

void PartExportCommands::storeWriteOptions() const
{
    QSettings settings;
    settings.setValue(kWriteOptionsGroup + QStringLiteral("ignoreWave"), m_writeOptions.ignoreWave);
    settings.setValue(kWriteOptionsGroup + QStringLiteral("append"), m_writeOptions.append);
    settings.setValue(kWriteOptionsGroup + QStringLiteral("nameByNotes"),
                      m_writeOptions.nameByNotes);
    settings.setValue(kWriteOptionsGroup + QStringLiteral("waveMode"), m_writeOptions.waveMode);
    settings.setValue(kWriteOptionsGroup + QStringLiteral("sequence"), m_writeOptions.makeSequence);
}

} // namespace app

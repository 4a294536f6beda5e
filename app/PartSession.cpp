#include "app/PartSession.h"

#include "part/PartPreset.h"
#include "part/PatternGenerator.h"
#include "part/TrackTransforms.h"

#include <algorithm>

namespace app {

namespace {

/** The part without the state that moves with every click (selection, shown pattern). */
part::Part comparable(part::Part p)
{
    p.setSelection(part::kNoIndex, part::kNoIndex);
    p.setCurrentPattern(0);
    return p;
}

} // namespace

PartSession::PartSession(QObject* parent) : UndoTarget(parent), m_savedPart(m_editor.part())
{}

bool PartSession::edit(const QString& label, Changes what,
                       const std::function<bool(part::Part&)>& change, EditKind kind)
{
    part::Part after = m_editor.part();
    if (!change(after) || after == m_editor.part())
        return false;
    if (kind == EditKind::StopsPlayback)
        Q_EMIT aboutToEdit();
    m_editor.recordUndo(label.toStdString());
    m_editor.part() = std::move(after);
    afterChange(what);
    return true;
}

void PartSession::command(Changes what, const std::function<void(part::PartEditor&)>& run,
                          EditKind kind)
{
    const int before = m_editor.history().size();
    const int position = m_editor.history().position();
    const part::Part previous = m_editor.part();
    if (kind == EditKind::StopsPlayback)
        Q_EMIT aboutToEdit();
    run(m_editor);
    // The library's commands record nothing when they change nothing.
    if (m_editor.history().size() == before && m_editor.history().position() == position &&
        m_editor.part() == previous) {
        return;
    }
    afterChange(what);
}

void PartSession::addPattern()
{
    command(Patterns, [](part::PartEditor& e) { e.addPattern(); });
}

void PartSession::copyPattern()
{
    command(Patterns | CurrentPattern, [](part::PartEditor& e) { e.copyPattern(); });
}

void PartSession::removePattern()
{
    command(Patterns | CurrentPattern | Chords, [](part::PartEditor& e) { e.removePattern(); });
}

void PartSession::removeAllPatterns()
{
    command(Patterns | CurrentPattern | Chords, [](part::PartEditor& e) { e.removeAllPatterns(); });
}

void PartSession::setCurrentPattern(int index)
{
    if (index < 0 || index >= part().patterns().count() || index == part().currentPattern())
        return;
    m_editor.part().setCurrentPattern(static_cast<std::uint16_t>(index));
    Q_EMIT changed(CurrentPattern);
}

void PartSession::setPatternOfSelectedChords(int patternIndex)
{
    if (patternIndex < 0 || patternIndex > 0xFFFF)
        return;
    command(Chords, [this, patternIndex](part::PartEditor& e) {
        e.setPatternOfChords(m_selectedChords, static_cast<std::uint16_t>(patternIndex));
    });
}

void PartSession::nextPatternOfSelectedChords()
{
    command(Chords, [this](part::PartEditor& e) { e.nextPatternOfChords(m_selectedChords); });
}

void PartSession::previousPatternOfSelectedChords()
{
    command(Chords, [this](part::PartEditor& e) { e.previousPatternOfChords(m_selectedChords); });
}

void PartSession::newPart()
{
    command(Everything, [](part::PartEditor& e) { e.newPart(); });
    m_filePath.clear();
    m_savedPart = m_editor.part();
    updateModified();
    Q_EMIT filePathChanged(m_filePath);
}

void PartSession::applyPatternPreset(const part::Pattern& preset)
{
    command(Patterns, [&preset](part::PartEditor& e) { e.applyPatternPreset(preset); });
}

void PartSession::applyPartPreset(const part::PartPreset& preset)
{
    command(Everything, [&preset](part::PartEditor& e) { e.applyPartPreset(preset); });
}

void PartSession::loadPart(part::Part loaded, const QString& path)
{
    Q_EMIT aboutToEdit();
    m_editor.loadPart(std::move(loaded));
    m_filePath = path;
    m_savedPart = m_editor.part();
    afterChange(Everything);
    Q_EMIT filePathChanged(m_filePath);
}

void PartSession::reset(part::Part part, const QString& path)
{
    Q_EMIT aboutToEdit();
    m_editor = part::PartEditor(std::move(part));
    m_filePath = path;
    m_savedPart = m_editor.part();
    m_selectedChords.clear();
    m_currentChord = -1;
    afterChange(Everything);
    Q_EMIT filePathChanged(m_filePath);
}

void PartSession::markSaved(const QString& path)
{
    m_savedPart = m_editor.part();
    if (path != m_filePath) {
        m_filePath = path;
        Q_EMIT filePathChanged(m_filePath);
    }
    updateModified();
}

bool PartSession::canUndo() const
{
    return m_editor.history().canUndo();
}

bool PartSession::canRedo() const
{
    return m_editor.history().canRedo();
}

QString PartSession::undoText() const
{
    return QString::fromStdString(m_editor.history().undoLabel());
}

QString PartSession::redoText() const
{
    return QString::fromStdString(m_editor.history().redoLabel());
}

void PartSession::undo()
{
    if (!canUndo())
        return;
    const QString label = undoText();
    if (!isLiveLabel(label))
        Q_EMIT aboutToEdit();
    if (m_editor.undo()) {
        afterChange(Everything);
        Q_EMIT undone(label);
    }
}

void PartSession::redo()
{
    if (!canRedo())
        return;
    const QString label = redoText();
    if (!isLiveLabel(label))
        Q_EMIT aboutToEdit();
    if (m_editor.redo()) {
        afterChange(Everything);
        Q_EMIT redone(label);
    }
}

bool PartSession::isLiveLabel(const QString& label) const
{
    // Whole tracks and generated patterns are cell edits too.
    for (const char* live : {kEditPattern, kPatternCut, kPatternPaste, part::kUndoMergeTracks,
                             part::kUndoMoveTracks, part::kUndoGeneratePattern}) {
        if (label == QLatin1String(live))
            return true;
    }
    return false;
}

void PartSession::setCurrentChord(int index)
{
    if (index < -1 || index >= part().count())
        index = -1;
    if (index == m_currentChord)
        return;
    m_currentChord = index;
    Q_EMIT currentChordChanged(index);
}

void PartSession::setSelectedChords(std::vector<int> chords)
{
    std::sort(chords.begin(), chords.end());
    chords.erase(std::unique(chords.begin(), chords.end()), chords.end());
    std::erase_if(chords, [this](int c) { return c < 0 || c >= part().count(); });
    std::uint16_t first = part::kNoIndex;
    std::uint16_t last = part::kNoIndex;
    if (chords.size() >= 2) {
        first = static_cast<std::uint16_t>(chords.front());
        last = static_cast<std::uint16_t>(chords.back());
    }
    if (chords == m_selectedChords && first == part().selectionFirst() &&
        last == part().selectionLast()) {
        return;
    }
    m_selectedChords = std::move(chords);
    m_editor.part().setSelection(first, last);
    Q_EMIT selectionChanged();
}

void PartSession::setTempo(std::uint16_t beatsPerMinute, std::uint16_t ticksPerBeat)
{
    if (beatsPerMinute == part().beatsPerMinute() && ticksPerBeat == part().ticksPerBeat())
        return;
    // The tempo bar is not an undo step of its own: undo brings back the tempo of its snapshot.
    m_editor.part().setTempo(beatsPerMinute, ticksPerBeat);
    updateModified();
    Q_EMIT changed(Tempo);
}

void PartSession::setDefaultLength(int rows)
{
    const auto value = static_cast<std::uint8_t>(std::clamp(rows, 1, kMaxLength));
    if (value == m_defaultLength)
        return;
    m_defaultLength = value;
    Q_EMIT editorSettingsChanged();
}

void PartSession::setDefaultOctave(int octave)
{
    const auto value = static_cast<std::uint8_t>(std::clamp(octave, 0, 9));
    if (value == m_defaultOctave)
        return;
    m_defaultOctave = value;
    Q_EMIT editorSettingsChanged();
}

void PartSession::setBaseWave(int wave)
{
    const int value = std::clamp(wave, 1, 200);
    if (value == m_baseWave)
        return;
    m_baseWave = value;
    Q_EMIT editorSettingsChanged();
}

void PartSession::setRenderOptions(const part::RenderOptions& options)
{
    if (options == m_options)
        return;
    m_options = options;
    Q_EMIT renderOptionsChanged();
}

void PartSession::setPlayingPosition(int chord, int row)
{
    if (chord == m_playingChord && row == m_playingRow)
        return;
    m_playingChord = chord;
    m_playingRow = row;
    Q_EMIT playingPositionChanged(chord, row);
}

void PartSession::afterChange(Changes what)
{
    if (what.testFlag(Everything) || what.testFlag(Selection) || what.testFlag(Chords))
        clampViewState();
    updateModified();
    Q_EMIT changed(what);
    Q_EMIT stateChanged();
}

void PartSession::clampViewState()
{
    const part::Part& p = part();
    // The selection follows the part's range (undo and loads bring theirs back).
    std::vector<int> selected;
    if (p.hasSelection() && p.selectionFirst() <= p.selectionLast()) {
        const int last = std::min<int>(p.selectionLast(), p.count() - 1);
        for (int c = p.selectionFirst(); c <= last; ++c)
            selected.push_back(c);
    } else {
        std::erase_if(m_selectedChords, [&p](int c) { return c >= p.count(); });
        if (m_selectedChords.size() <= 1)
            selected = m_selectedChords;
    }
    if (selected != m_selectedChords) {
        m_selectedChords = std::move(selected);
        Q_EMIT selectionChanged();
    }
    if (m_currentChord >= p.count())
        setCurrentChord(p.count() - 1);
}

void PartSession::updateModified()
{
    const bool modified = comparable(m_editor.part()) != comparable(m_savedPart);
    if (modified == m_modified)
        return;
    m_modified = modified;
    Q_EMIT modifiedChanged(modified);
}

} // namespace app

#include "part/PartEditor.h"

#include "part/PartPreset.h"

namespace part {

namespace {

bool isChord(const Part& part, int index)
{
    return index >= 0 && index < part.count();
}

bool anySelected(const Part& part, const std::vector<int>& selection)
{
    for (int index : selection) {
        if (isChord(part, index))
            return true;
    }
    return false;
}

void ensureOnePattern(Part& part)
{
    if (part.patterns().isEmpty())
        part.patterns().append(Pattern());
}

} // namespace

PartEditor::PartEditor() : m_part(Part::makeNew())
{}

void PartEditor::addPattern()
{
    recordUndo(kAddPattern);
    m_part.patterns().append(Pattern());
}

void PartEditor::copyPattern()
{
    const Pattern* current = m_part.patterns().find(m_part.currentPattern());
    if (current == nullptr)
        return;
    recordUndo(kCopyPattern);
    const Pattern copy = *current;
    const int newIndex = m_part.patterns().count();
    if (m_part.patterns().append(copy))
        m_part.setCurrentPattern(static_cast<std::uint16_t>(newIndex));
}

void PartEditor::removePattern()
{
    const int removed = m_part.currentPattern();
    if (removed >= m_part.patterns().count())
        return;
    recordUndo(kRemovePattern);
    m_part.patterns().removeAt(removed);
    ensureOnePattern(m_part);
    // Chords of the removed pattern move to the one before it; later patterns keep their chords.
    for (int i = 0; i < m_part.count(); ++i) {
        PartChord& chord = m_part.chord(i);
        if (chord.pattern >= removed && chord.pattern > 0)
            --chord.pattern;
    }
    if (m_part.currentPattern() > 0)
        m_part.setCurrentPattern(static_cast<std::uint16_t>(m_part.currentPattern() - 1));
}

void PartEditor::removeAllPatterns()
{
    recordUndo(kRemoveAllPatterns);
    m_part.patterns().clear();
    m_part.patterns().append(Pattern());
    m_part.setCurrentPattern(0);
    for (int i = 0; i < m_part.count(); ++i)
        m_part.chord(i).pattern = 0;
}

void PartEditor::setPatternOfChords(const std::vector<int>& selection, std::uint16_t patternIndex)
{
    if (!anySelected(m_part, selection) || patternIndex >= m_part.patterns().count())
        return;
    recordUndo(kChangePattern);
    for (int index : selection) {
        if (isChord(m_part, index))
            m_part.chord(index).pattern = patternIndex;
    }
}

void PartEditor::nextPatternOfChords(const std::vector<int>& selection)
{
    if (!anySelected(m_part, selection))
        return;
    recordUndo(kChangePattern);
    for (int index : selection) {
        if (!isChord(m_part, index))
            continue;
        PartChord& chord = m_part.chord(index);
        if (chord.pattern + 1 < m_part.patterns().count())
            ++chord.pattern;
    }
}

void PartEditor::previousPatternOfChords(const std::vector<int>& selection)
{
    if (!anySelected(m_part, selection))
        return;
    recordUndo(kChangePattern);
    for (int index : selection) {
        if (!isChord(m_part, index))
            continue;
        PartChord& chord = m_part.chord(index);
        if (chord.pattern > 0)
            --chord.pattern;
    }
}

void PartEditor::newPart()
{
    recordUndo(kNewPart);
    m_part.clearChords();
    m_part.patterns().clear();
    m_part.patterns().append(Pattern());
    m_part.setCurrentPattern(0);
    m_part.setSelection(kNoIndex, kNoIndex);
}

void PartEditor::loadPart(Part loaded)
{
    recordUndo(kLoadPart);
    m_part = std::move(loaded);
}

void PartEditor::applyPatternPreset(const Pattern& preset)
{
    recordUndo(kApplyPatternPreset);
    m_part.patterns().append(preset);
}

void PartEditor::applyPartPreset(const PartPreset& preset)
{
    recordUndo(kApplyPartPreset);
    m_part = preset.part;
    m_part.setCurrentPattern(0);
    ensureOnePattern(m_part);
}

bool PartEditor::undo()
{
    std::optional<Part> restored = m_history.undo(m_part);
    if (!restored)
        return false;
    m_part = std::move(*restored);
    return true;
}

bool PartEditor::redo()
{
    std::optional<Part> restored = m_history.redo();
    if (!restored)
        return false;
    m_part = std::move(*restored);
    return true;
}

} // namespace part

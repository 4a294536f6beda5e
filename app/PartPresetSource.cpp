#include "app/PartPresetSource.h"

#include "app/PartSession.h"
#include "part/PartEditor.h"

#include <algorithm>

namespace app {

const char* PartPresetSource::defaultFileName() const
{
    return part::PartPresetList::kDefaultFileName;
}

const char* PartPresetSource::fileFilter() const
{
    return part::PartPresetList::kFileFilter;
}

QString PartPresetSource::name(int index) const
{
    return QString::fromStdString(m_list.preset(index).name);
}

QString PartPresetSource::summary(int index) const
{
    const part::Part& p = m_list.preset(index).part;
    const int patterns = p.patterns().count();
    return (p.count() == 1 ? tr("1 chord") : tr("%1 chords").arg(p.count())) +
           QStringLiteral(", ") +
           (patterns == 1 ? tr("1 pattern") : tr("%1 patterns").arg(patterns)) +
           QStringLiteral(", ") +
           tr("%1 BPM, %2 TPB").arg(p.beatsPerMinute()).arg(p.ticksPerBeat());
}

music::Result PartPresetSource::load(const std::filesystem::path& path)
{
    return m_list.load(path);
}

music::Result PartPresetSource::save(const std::filesystem::path& path) const
{
    return m_list.save(path);
}

music::Result PartPresetSource::rename(int index, const std::string& name,
                                       const std::filesystem::path& file)
{
    return m_list.rename(index, name, file);
}

music::Result PartPresetSource::remove(int index, const std::filesystem::path& file)
{
    return m_list.remove(index, file);
}

music::Result PartPresetSource::sortByName(bool upwards, const std::filesystem::path& file)
{
    return m_list.sortByName(upwards, file);
}

music::Result PartPresetSource::addCurrent(const PartSession& session, const std::string& name,
                                           const std::filesystem::path& file)
{
    return m_list.add(session.part(), name, file);
}

music::Result PartPresetSource::replaceByCurrent(int index, const PartSession& session,
                                                 const std::filesystem::path& file)
{
    return m_list.replace(index, session.part(), file);
}

bool PartPresetSource::append(int index, PartSession& session) const
{
    if (index < 0 || index >= count())
        return false;
    const part::Part& preset = m_list.preset(index).part;
    return session.edit(QString::fromLatin1(part::PartEditor::kApplyPartPreset),
                        PartSession::Chords | PartSession::Patterns, [&preset](part::Part& p) {
                            const int offset = p.patterns().count();
                            if (offset + preset.patterns().count() > part::PatternList::kMaxCount ||
                                p.count() + preset.count() > part::Part::kMaxChords)
                                return false;
                            for (const part::Pattern& pattern : preset.patterns().patterns())
                                p.patterns().append(pattern);
                            for (part::PartChord chord : preset.chords()) {
                                chord.pattern = static_cast<std::uint16_t>(
                                    std::min(chord.pattern + offset, 0xFFFF));
                                p.append(chord);
                            }
                            return true;
                        });
}

bool PartPresetSource::replace(int index, PartSession& session) const
{
    if (index < 0 || index >= count())
        return false;
    const part::Part before = session.part();
    session.applyPartPreset(m_list.preset(index));
    return !(session.part() == before);
}

} // namespace app

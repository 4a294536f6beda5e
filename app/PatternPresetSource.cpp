#include "app/PatternPresetSource.h"

#include "app/PartSession.h"
#include "part/PartEditor.h"

namespace app {

namespace {

constexpr const char* kNoCurrentPattern = "The part has no current pattern.";

const part::Pattern* currentPattern(const PartSession& session)
{
    return session.part().patterns().find(session.part().currentPattern());
}

} // namespace

const char* PatternPresetSource::defaultFileName() const
{
    return part::PatternPresetList::kDefaultFileName;
}

const char* PatternPresetSource::fileFilter() const
{
    return part::PatternPresetList::kFileFilter;
}

QString PatternPresetSource::name(int index) const
{
    return QString::fromStdString(m_list.preset(index).name());
}

QString PatternPresetSource::summary(int index) const
{
    const int cells = m_list.preset(index).usedCellCount();
    return cells == 1 ? tr("1 cell in use") : tr("%1 cells in use").arg(cells);
}

music::Result PatternPresetSource::load(const std::filesystem::path& path)
{
    return m_list.load(path);
}

music::Result PatternPresetSource::save(const std::filesystem::path& path) const
{
    return m_list.save(path);
}

music::Result PatternPresetSource::rename(int index, const std::string& name,
                                          const std::filesystem::path& file)
{
    return m_list.rename(index, name, file);
}

music::Result PatternPresetSource::remove(int index, const std::filesystem::path& file)
{
    return m_list.remove(index, file);
}

music::Result PatternPresetSource::sortByName(bool upwards, const std::filesystem::path& file)
{
    return m_list.sortByName(upwards, file);
}

music::Result PatternPresetSource::addCurrent(const PartSession& session, const std::string& name,
                                              const std::filesystem::path& file)
{
    const part::Pattern* pattern = currentPattern(session);
    if (pattern == nullptr)
        return music::Result::failure(kNoCurrentPattern);
    return m_list.add(*pattern, name, file);
}

music::Result PatternPresetSource::replaceByCurrent(int index, const PartSession& session,
                                                    const std::filesystem::path& file)
{
    const part::Pattern* pattern = currentPattern(session);
    if (pattern == nullptr)
        return music::Result::failure(kNoCurrentPattern);
    return m_list.replace(index, *pattern, file);
}

music::Result PatternPresetSource::addEvery(const part::PatternList& patterns,
                                            const std::filesystem::path& file)
{
    for (const part::Pattern& pattern : patterns.patterns()) {
        if (!m_list.append(pattern)) {
            // What fitted is kept and saved; the user is told the rest did not.
            const music::Result saved = m_list.save(file);
            return saved ? music::Result::failure("The preset list is full.") : saved;
        }
    }
    return m_list.save(file);
}

bool PatternPresetSource::append(int index, PartSession& session) const
{
    if (index < 0 || index >= count())
        return false;
    const int before = session.part().patterns().count();
    session.applyPatternPreset(m_list.preset(index));
    return session.part().patterns().count() != before;
}

bool PatternPresetSource::replace(int index, PartSession& session) const
{
    if (index < 0 || index >= count())
        return false;
    const part::Pattern& preset = m_list.preset(index);
    return session.edit(QString::fromLatin1(part::PartEditor::kApplyPatternPreset),
                        PartSession::Patterns | PartSession::Cells, [&preset](part::Part& p) {
                            if (p.currentPattern() >= p.patterns().count())
                                return false;
                            p.patterns().pattern(p.currentPattern()) = preset;
                            return true;
                        });
}

} // namespace app

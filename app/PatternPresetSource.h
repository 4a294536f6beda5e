#pragma once

#include "app/PresetSource.h"
#include "part/PatternPresetList.h"

#include <QCoreApplication>

namespace part {
class PatternList;
}

namespace app {

/**
 * The pattern presets. "Append" adds a copy of the preset to the part's patterns ("Apply pattern
 * preset"; the current pattern stays); "Replace" puts the preset (cells, track octaves and name)
 * in place of the current pattern, so that the chords playing it now play the preset.
 */
class PatternPresetSource : public PresetSource
{
    Q_DECLARE_TR_FUNCTIONS(PatternPresetSource)
public:
    const part::PatternPresetList& list() const { return m_list; }
    /** Takes a list read elsewhere (the default file, read while the window is built). */
    void adopt(part::PatternPresetList list) { m_list = std::move(list); }

    std::string_view menuName() const override { return "patternPresets"; }
    std::string_view commandPrefix() const override { return "patternPreset"; }
    QString title() const override { return tr("Pattern presets"); }
    QString currentThing() const override { return tr("the current pattern"); }
    const char* defaultFileName() const override;
    const char* fileFilter() const override;

    int count() const override { return m_list.count(); }
    QString name(int index) const override;
    QString summary(int index) const override;

    void clear() override { m_list.clear(); }
    music::Result load(const std::filesystem::path& path) override;
    music::Result save(const std::filesystem::path& path) const override;
    music::Result rename(int index, const std::string& name,
                         const std::filesystem::path& file) override;
    music::Result remove(int index, const std::filesystem::path& file) override;
    music::Result sortByName(bool upwards, const std::filesystem::path& file) override;
    music::Result addCurrent(const PartSession& session, const std::string& name,
                             const std::filesystem::path& file) override;
    music::Result replaceByCurrent(int index, const PartSession& session,
                                   const std::filesystem::path& file) override;
    /** "Add List To Presets": every pattern of `patterns` under its own name, saved once. */
    music::Result addEvery(const part::PatternList& patterns, const std::filesystem::path& file);

    bool append(int index, PartSession& session) const override;
    bool replace(int index, PartSession& session) const override;

private:
    part::PatternPresetList m_list;
};

} // namespace app

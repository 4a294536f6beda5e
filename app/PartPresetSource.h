#pragma once

#include "app/PresetSource.h"
#include "part/PartPresetList.h"

#include <QCoreApplication>

namespace app {

/**
 * The part presets. "Append" adds the preset's patterns after the part's and its chords after
 * the part's chords, each chord still playing its own pattern; tempo, base octave, flags and
 * selection stay the part's ("Apply part preset"). "Replace" makes the part the preset: its
 * chords, patterns, tempo, selection, base octave and flags, with pattern 0 current.
 */
class PartPresetSource : public PresetSource
{
    Q_DECLARE_TR_FUNCTIONS(PartPresetSource)
public:
    const part::PartPresetList& list() const { return m_list; }
    /** Takes a list read elsewhere (the default file, read while the window is built). */
    void adopt(part::PartPresetList list) { m_list = std::move(list); }

    std::string_view menuName() const override { return "partPresets"; }
    std::string_view commandPrefix() const override { return "partPreset"; }
    QString title() const override { return tr("Part presets"); }
    QString currentThing() const override { return tr("the part"); }
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

    bool append(int index, PartSession& session) const override;
    bool replace(int index, PartSession& session) const override;

private:
    part::PartPresetList m_list;
};

} // namespace app

#pragma once

#include "music/Result.h"

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace app {

class PartSession;

/**
 * One of the two preset lists as the preset panel sees it: the pattern presets or the part
 * presets. The list itself lives here; every change that the lists' files keep (add, replace,
 * rename, remove, sort) writes the list to `file` at once, normally the list's default file.
 * Applying a preset changes the part through the session, as one undo step.
 */
class PresetSource
{
public:
    virtual ~PresetSource() = default;

    /** The panel's object name and the name of its context menu ("patternPresets"). */
    virtual std::string_view menuName() const = 0;
    /** The commands' ids start with this and a dot ("patternPreset.append"). */
    virtual std::string_view commandPrefix() const = 0;
    /** The list's name for people and assistive technology ("Pattern presets"). */
    virtual QString title() const = 0;
    /** What the current-state commands take: "the current pattern", "the part". */
    virtual QString currentThing() const = 0;
    virtual const char* defaultFileName() const = 0;
    /** The file dialogs' filter, as "Text (*.x)|*.x|All Files (*.*)|*.*||". */
    virtual const char* fileFilter() const = 0;

    virtual int count() const = 0;
    virtual QString name(int index) const = 0;
    /** A short description of a preset for its tooltip ("3 chords, 2 patterns, 126 BPM"). */
    virtual QString summary(int index) const = 0;

    /** Empties the list; the files are left as they are. */
    virtual void clear() = 0;
    /** Replaces the list by a file's; a failure leaves the list as it was. */
    virtual music::Result load(const std::filesystem::path& path) = 0;
    virtual music::Result save(const std::filesystem::path& path) const = 0;
    virtual music::Result rename(int index, const std::string& name,
                                 const std::filesystem::path& file) = 0;
    virtual music::Result remove(int index, const std::filesystem::path& file) = 0;
    virtual music::Result sortByName(bool upwards, const std::filesystem::path& file) = 0;
    /** Appends a copy of the session's current pattern or part named `name`. */
    virtual music::Result addCurrent(const PartSession& session, const std::string& name,
                                     const std::filesystem::path& file) = 0;
    /** Replaces preset `index` by the current pattern or part; the preset keeps its name. */
    virtual music::Result replaceByCurrent(int index, const PartSession& session,
                                           const std::filesystem::path& file) = 0;

    /** "Append": adds the preset to the part. Returns whether the part changed. */
    virtual bool append(int index, PartSession& session) const = 0;
    /** "Replace": puts the preset in place of the current pattern or the part. */
    virtual bool replace(int index, PartSession& session) const = 0;
};

} // namespace app

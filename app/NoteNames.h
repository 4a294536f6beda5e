#pragma once

#include "music/Note.h"

#include <QComboBox>
#include <QString>

namespace app {

/** Note names for Qt widgets. */
class NoteNames
{
public:
    static QString name(int pitchClass)
    {
        const std::string_view text = music::noteName(pitchClass);
        return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
    }
    /** Fills a combo box with the twelve note names, C first; item data is the pitch class. */
    static void fill(QComboBox* box)
    {
        for (int pitchClass = 0; pitchClass < music::kPitchClassCount; ++pitchClass)
            box->addItem(name(pitchClass), pitchClass);
    }
};

} // namespace app

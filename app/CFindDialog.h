#pragma once

#include "app/CNoteKeyboard.h"
#include "music/SearchHistory.h"

#include <QDialog>

class QComboBox;

namespace app {

/**
 * "Find chord" and "Find scale": twelve notes on a keyboard, a text the name must include and
 * one it must not, each an editable drop-down offering the earlier texts.
 */
class CFindDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kIncludeTip = "Find chords/scales including this text.";
    static constexpr const char* kSkipTip = "Skip, if text is part of the chords name.";

    CFindDialog(const QString& title, const music::SearchHistory& includeHistory,
                const music::SearchHistory& skipHistory, QWidget* parent = nullptr);

    CNoteKeyboard::Ticks ticks() const { return m_keyboard->ticks(); }
    QString includeText() const;
    QString skipText() const;

    CNoteKeyboard* keyboard() const { return m_keyboard; }
    QComboBox* includeBox() const { return m_include; }
    QComboBox* skipBox() const { return m_skip; }

private:
    CNoteKeyboard* m_keyboard = nullptr;
    QComboBox* m_include = nullptr;
    QComboBox* m_skip = nullptr;
};

} // namespace app

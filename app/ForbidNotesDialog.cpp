#include "app/ForbidNotesDialog.h"

#include "app/CNoteKeyboard.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace app {

ForbidNotesDialog::ForbidNotesDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Forbid Notes"));
    setObjectName(QStringLiteral("forbidNotesDialog"));
    setAccessibleName(tr("Forbid notes"));
    auto* label = new QLabel(
        tr("Tick the notes that a chord note shifted in a pattern must not land on:"), this);
    label->setWordWrap(true);
    m_keyboard = new CNoteKeyboard(this);
    m_keyboard->setObjectName(QStringLiteral("forbiddenNotes"));
    m_keyboard->setAccessibleName(tr("Forbidden notes"));
    label->setBuddy(m_keyboard);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_keyboard);
    layout->addWidget(buttons);
    m_keyboard->setFocus();
}

void ForbidNotesDialog::setFlags(const part::PitchClassFlags& flags)
{
    m_original = flags;
    CNoteKeyboard::Ticks ticks{};
    for (std::size_t pc = 0; pc < ticks.size(); ++pc)
        ticks[pc] = flags[pc] == 0;
    m_keyboard->setTicks(ticks);
}

part::PitchClassFlags ForbidNotesDialog::flags() const
{
    part::PitchClassFlags flags{};
    for (std::size_t pc = 0; pc < flags.size(); ++pc) {
        if (!m_keyboard->ticks()[pc])
            flags[pc] = m_original[pc] != 0 ? m_original[pc] : 1;
    }
    return flags;
}

} // namespace app

#include "app/CFindDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace app {

namespace {

QComboBox* historyBox(const music::SearchHistory& history, const char* tip, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    // Newest first in the drop-down; the field itself starts empty.
    const auto& entries = history.entries();
    for (auto it = entries.rbegin(); it != entries.rend(); ++it)
        box->addItem(QString::fromStdString(*it));
    box->setCurrentIndex(-1);
    box->setEditText(QString());
    box->setToolTip(QString::fromLatin1(tip));
    box->setMinimumContentsLength(20);
    return box;
}

} // namespace

CFindDialog::CFindDialog(const QString& title, const music::SearchHistory& includeHistory,
                         const music::SearchHistory& skipHistory, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(title);
    m_keyboard = new CNoteKeyboard(this);
    m_keyboard->setToolTip(tr("Tick the notes the result must contain."));
    m_include = historyBox(includeHistory, kIncludeTip, this);
    m_skip = historyBox(skipHistory, kSkipTip, this);

    auto* form = new QFormLayout;
    form->addRow(tr("&Notes:"), m_keyboard);
    form->addRow(tr("&Including:"), m_include);
    form->addRow(tr("&Skip:"), m_skip);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    m_keyboard->setFocus();
}

QString CFindDialog::includeText() const
{
    return m_include->currentText();
}

QString CFindDialog::skipText() const
{
    return m_skip->currentText();
}

} // namespace app

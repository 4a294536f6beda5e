#include "app/CNoteChoiceDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace app {

CNoteChoiceDialog::CNoteChoiceDialog(const QString& title, const QString& text, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(title);
    auto* label = new QLabel(text, this);
    label->setWordWrap(true);
    m_keyboard = new CNoteKeyboard(this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_keyboard);
    layout->addWidget(buttons);
}

} // namespace app

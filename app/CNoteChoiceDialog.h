#pragma once

#include "app/CNoteKeyboard.h"

#include <QDialog>

namespace app {

/** Asks for a set of notes on the keyboard ("Forbid Notes"). */
class CNoteChoiceDialog : public QDialog
{
    Q_OBJECT
public:
    CNoteChoiceDialog(const QString& title, const QString& text, QWidget* parent = nullptr);

    CNoteKeyboard* keyboard() const { return m_keyboard; }

private:
    CNoteKeyboard* m_keyboard = nullptr;
};

} // namespace app

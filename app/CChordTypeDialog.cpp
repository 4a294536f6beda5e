#include "app/CChordTypeDialog.h"

#include "app/CIntervalListDialog.h"
#include "app/NoteNames.h"
#include "music/ChordDatabaseEdits.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

CChordTypeDialog::CChordTypeDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Define New Chord Type"));
    m_name = new QLineEdit(QStringLiteral("noname"), this);
    m_name->selectAll();
    m_construction = new QLineEdit(this);
    m_construction->setToolTip(QString::fromLatin1(kConstructionTip));
    m_construction->setPlaceholderText(QStringLiteral("1;3;5;"));
    auto* intervals = new QPushButton(tr("&Intervals..."), this);
    intervals->setToolTip(QString::fromLatin1(CIntervalListDialog::kTip));
    connect(intervals, &QPushButton::clicked, this, [this] {
        CIntervalListDialog dialog(this);
        dialog.exec();
    });
    auto* constructionRow = new QHBoxLayout;
    constructionRow->addWidget(m_construction, 1);
    constructionRow->addWidget(intervals);

    auto* sample = new QGroupBox(tr("Sample chord"), this);
    m_base = new QComboBox(sample);
    NoteNames::fill(m_base);
    m_keyboard = new CNoteKeyboard(sample);
    auto* learnButton = new QPushButton(tr("&Learn"), sample);
    learnButton->setToolTip(
        tr("Define a sample chord and use 'Learn' to extract construction data."));
    connect(learnButton, &QPushButton::clicked, this, &CChordTypeDialog::learn);
    auto* sampleForm = new QFormLayout(sample);
    sampleForm->addRow(tr("&Base note:"), m_base);
    sampleForm->addRow(tr("N&otes:"), m_keyboard);
    sampleForm->addRow(QString(), learnButton);

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    auto* constructionLabel = new QLabel(tr("&Construction:"), this);
    constructionLabel->setBuddy(m_construction);
    form->addRow(constructionLabel, constructionRow);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(sample);
    layout->addWidget(buttons);
}

QString CChordTypeDialog::name() const
{
    return m_name->text();
}

QString CChordTypeDialog::construction() const
{
    return m_construction->text();
}

void CChordTypeDialog::setName(const QString& name)
{
    m_name->setText(name);
}

void CChordTypeDialog::setConstruction(const QString& construction)
{
    m_construction->setText(construction);
}

void CChordTypeDialog::learn()
{
    m_construction->setText(QString::fromStdString(music::ChordDatabaseEdits::constructionFromTicks(
        m_keyboard->ticks(), static_cast<music::PitchClass>(m_base->currentIndex()))));
}

} // namespace app

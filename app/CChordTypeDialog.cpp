#include "app/CChordTypeDialog.h"

#include "app/CIntervalListDialog.h"
#include "app/NoteNames.h"
#include "music/ChordCollection.h"
#include "music/ChordDatabaseEdits.h"
#include "music/ChordTypeList.h"

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
    m_check = new QLabel(this);
    m_check->setObjectName(QStringLiteral("constructionCheck"));
    m_check->setAccessibleName(tr("Construction check"));
    m_check->setWordWrap(true);
    m_check->setTextFormat(Qt::PlainText);
    connect(m_construction, &QLineEdit::textChanged, this, &CChordTypeDialog::updateCheck);

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
    form->addRow(QString(), m_check);
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

music::IntervalList CChordTypeDialog::intervals() const
{
    return music::IntervalList::parse(m_construction->text().toStdString());
}

QString CChordTypeDialog::constructionCheck() const
{
    if (m_construction->text().isEmpty())
        return {};
    const music::IntervalList parsed = intervals();
    if (!parsed.isUsable())
        return QString::fromUtf8(
            music::ChordTypeList::kInvalidConstruction.data(),
            static_cast<qsizetype>(music::ChordTypeList::kInvalidConstruction.size()));
    return QString::fromStdString(music::ChordCollection::droppedWarning(parsed));
}

void CChordTypeDialog::updateCheck()
{
    m_check->setText(constructionCheck());
}

void CChordTypeDialog::learn()
{
    m_construction->setText(QString::fromStdString(music::ChordDatabaseEdits::constructionFromTicks(
        m_keyboard->ticks(), static_cast<music::PitchClass>(m_base->currentIndex()))));
}

} // namespace app

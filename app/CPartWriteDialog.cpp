#include "app/CPartWriteDialog.h"

#include "app/NoteRuleBox.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace app {

namespace {

QCheckBox* checkBox(QWidget* parent, const QString& text, const char* objectName, const char* tip,
                    bool checked)
{
    auto* box = new QCheckBox(text, parent);
    box->setObjectName(QString::fromLatin1(objectName));
    box->setToolTip(QString::fromLatin1(tip));
    box->setChecked(checked);
    return box;
}

} // namespace

CPartWriteDialog::CPartWriteDialog(const song::PartWriteOptions& options, QWidget* parent)
    : QDialog(parent), m_options(options)
{
    setObjectName(QStringLiteral("partWriteDialog"));
    setWindowTitle(tr("Create Buzz Patterns"));
    setAccessibleName(windowTitle());

    auto* patterns = new QGroupBox(tr("Patterns"), this);
    patterns->setObjectName(QStringLiteral("partWritePatterns"));
    patterns->setAccessibleName(tr("Patterns"));
    m_append = checkBox(patterns, tr("&Keep the machine's patterns and sequences"),
                        "partWriteAppend", kAppendTip, options.append);
    m_nameByNotes = checkBox(patterns, tr("Name the patterns by their &notes"),
                             "partWriteNameByNotes", kNameByNotesTip, options.nameByNotes);
    m_sequence = checkBox(patterns, tr("Create a &sequence"), "partWriteSequence", kSequenceTip,
                          options.makeSequence);
    auto* patternLayout = new QVBoxLayout(patterns);
    for (QWidget* w : {m_append, m_nameByNotes, m_sequence})
        patternLayout->addWidget(w);

    auto* waves = new QGroupBox(tr("Wave"), this);
    waves->setObjectName(QStringLiteral("partWriteWaves"));
    waves->setAccessibleName(tr("Wave"));
    m_ignoreWave = checkBox(waves, tr("&Ignore the wave parameter"), "partWriteIgnoreWave",
                            kIgnoreWaveTip, options.ignoreWave);
    const QString labels[] = {tr("Base wave + chord &note index"), tr("Base wave + &track"),
                              tr("&Base wave")};
    auto* waveLayout = new QVBoxLayout(waves);
    waveLayout->addWidget(m_ignoreWave);
    for (std::size_t mode = 0; mode < m_waveMode.size(); ++mode) {
        auto* button = new QRadioButton(labels[mode], waves);
        button->setObjectName(QStringLiteral("partWriteWaveMode%1").arg(mode));
        button->setToolTip(QString::fromLatin1(kWaveModeTips[mode]));
        waveLayout->addWidget(button);
        m_waveMode[mode] = button;
    }
    m_waveMode[std::min<std::size_t>(options.waveMode, 2)]->setChecked(true);
    const auto updateWaves = [this] {
        for (QRadioButton* button : m_waveMode)
            button->setEnabled(!m_ignoreWave->isChecked());
    };
    connect(m_ignoreWave, &QCheckBox::toggled, this, updateWaves);
    updateWaves();

    m_rules = new NoteRuleBox(NoteRuleBox::kSongTexts, this);
    m_rules->setOptions(options.render);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("partWriteButtons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(patterns);
    layout->addWidget(waves);
    layout->addWidget(m_rules);
    layout->addWidget(buttons);
}

QRadioButton* CPartWriteDialog::waveModeButton(int mode) const
{
    return m_waveMode[static_cast<std::size_t>(std::clamp(mode, 0, 2))];
}

song::PartWriteOptions CPartWriteDialog::options() const
{
    song::PartWriteOptions chosen = m_options;
    chosen.ignoreWave = m_ignoreWave->isChecked();
    chosen.append = m_append->isChecked();
    chosen.nameByNotes = m_nameByNotes->isChecked();
    chosen.makeSequence = m_sequence->isChecked();
    for (std::size_t mode = 0; mode < m_waveMode.size(); ++mode) {
        if (m_waveMode[mode]->isChecked())
            chosen.waveMode = static_cast<std::uint8_t>(mode);
    }
    chosen.render = m_rules->applyTo(m_options.render);
    return chosen;
}

} // namespace app

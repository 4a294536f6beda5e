#include "app/RecipeEditor.h"

#include "part/TrackOctave.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QToolButton>

#include <algorithm>
#include <limits>

namespace app {

namespace {

using part::NoteOrder;
using part::RecipeKind;

constexpr double kMaxSeed = std::numeric_limits<std::uint32_t>::max();

QString listText(const std::vector<int>& list)
{
    QStringList parts;
    for (int value : list)
        parts << QString::number(value);
    return parts.join(QLatin1Char(','));
}

/** Reads "0,2,4" as the recipe text reads the key `key`; the message says what is wrong. */
music::Result readList(const char* key, const QString& text, std::vector<int>& out)
{
    const QString trimmed = text.simplified().remove(QLatin1Char(' '));
    if (trimmed.isEmpty()) {
        out.clear();
        return music::Result::success();
    }
    part::PatternRecipe probe;
    const music::Result result =
        part::parseRecipe("block " + std::string(key) + "=" + trimmed.toStdString(), probe);
    if (result)
        out = std::string_view(key) == "rotate" ? probe.rotate : probe.spread;
    return result;
}

} // namespace

RecipeEditor::RecipeEditor(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("recipeEditor"));
    setAccessibleName(tr("Recipe"));

    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("recipeName"));
    m_name->setAccessibleName(tr("Recipe name"));
    m_name->setPlaceholderText(tr("the name it is saved under"));
    connect(m_name, &QLineEdit::textEdited, this, [this] { takeFields(); });

    m_kind = new QComboBox(this);
    m_kind->setObjectName(QStringLiteral("recipeKind"));
    m_kind->setAccessibleName(tr("Kind"));
    const std::pair<RecipeKind, QString> kinds[] = {{RecipeKind::Arpeggio, tr("Arpeggio")},
                                                    {RecipeKind::Block, tr("Block chord")},
                                                    {RecipeKind::Strum, tr("Strum")},
                                                    {RecipeKind::Euclid, tr("Euclidean rhythm")},
                                                    {RecipeKind::Random, tr("Random cells")}};
    for (const auto& [kind, text] : kinds)
        m_kind->addItem(text, static_cast<int>(kind));
    m_kind->setToolTip(tr("Arpeggio: one note after the other. Block chord: all notes at once, "
                          "one track each. Strum: a block chord whose voices enter one after "
                          "the other. Euclidean rhythm: pulses spread evenly over steps. Random "
                          "cells: notes on random cells."));
    connect(m_kind, &QComboBox::currentIndexChanged, this, [this] { takeFields(); });

    m_order = new QComboBox(this);
    m_order->setObjectName(QStringLiteral("recipeOrder"));
    m_order->setAccessibleName(tr("Note order"));
    const std::pair<NoteOrder, QString> orders[] = {
        {NoteOrder::Up, tr("Up")},
        {NoteOrder::Down, tr("Down")},
        {NoteOrder::UpDown, tr("Up and down")},
        {NoteOrder::DownUp, tr("Down and up")},
        {NoteOrder::Converge, tr("From the outside in")},
        {NoteOrder::Random, tr("Random")}};
    for (const auto& [order, text] : orders)
        m_order->addItem(text, static_cast<int>(order));
    m_order->setToolTip(tr("The order in which the chord's notes follow each other. A strum "
                           "goes up or down."));
    connect(m_order, &QComboBox::currentIndexChanged, this, [this] { takeFields(); });

    m_notes = spinBox("recipeNotes", tr("Chord notes used"), 0, part::PatternRecipe::kMaxNotes,
                      tr("How many of the chord's notes, from the first; \"all\" uses as many as "
                         "every chord of the pattern has."));
    m_notes->setSpecialValueText(tr("all"));
    m_octaves = spinBox("recipeOctaves", tr("Octaves"), 1, part::PatternRecipe::kMaxOctaves,
                        tr("An arpeggio over this many octaves, each on its own track."));
    m_step = spinBox("recipeStep", tr("Step in rows"), 0, part::kRowCount,
                     tr("Rows from one note (or hit) to the next; \"auto\" is one row, or a "
                        "single hit for a block chord and a strum."));
    m_step->setSpecialValueText(tr("auto"));
    m_every = spinBox("recipeEvery", tr("Rows between strummed voices"), 0, part::kRowCount - 1,
                      tr("A strum lets the next voice enter this many rows later."));
    m_every->setSpecialValueText(tr("all at once"));
    m_pulses = spinBox("recipePulses", tr("Pulses"), 1, part::kRowCount,
                       tr("E(pulses, steps): this many hits spread as evenly as possible."));
    m_steps = spinBox("recipeSteps", tr("Steps"), 1, part::kRowCount,
                      tr("E(pulses, steps): the length of the rhythm in steps; it repeats."));
    connect(m_steps, &QSpinBox::valueChanged, this,
            [this](int steps) { m_pulses->setMaximum(steps); });
    m_rotate = listEdit("recipeRotate", tr("Rotation per track"),
                        tr("Steps each track's rhythm starts later, first track first: 0,2,4. "
                           "The last value holds for the tracks after it."));
    m_arpeggiate = new QCheckBox(tr("One voice walks the note order on the hits"), this);
    m_arpeggiate->setObjectName(QStringLiteral("recipeArpeggiate"));
    m_arpeggiate->setAccessibleName(tr("Euclidean arpeggio"));
    m_arpeggiate->setToolTip(tr("Off: every track plays its own chord note on its rhythm."));
    connect(m_arpeggiate, &QCheckBox::toggled, this, [this] { takeFields(); });
    m_density = spinBox("recipeDensity", tr("Density in percent"), 0, 100,
                        tr("The share of cells that get a note."));
    m_density->setSuffix(tr(" %"));
    m_chance = spinBox("recipeChance", tr("Chance notes in percent"), 0, 100,
                       tr("The share of those notes that sound only on about every second pass."));
    m_chance->setSuffix(tr(" %"));

    m_seed = new QDoubleSpinBox(this);
    m_seed->setObjectName(QStringLiteral("recipeSeed"));
    m_seed->setAccessibleName(tr("Seed"));
    m_seed->setDecimals(0);
    m_seed->setRange(0, kMaxSeed);
    m_seed->setToolTip(tr("The same seed gives the same random choices every time."));
    connect(m_seed, &QDoubleSpinBox::valueChanged, this, [this] { takeFields(); });
    m_newSeed = new QToolButton(this);
    m_newSeed->setObjectName(QStringLiteral("recipeNewSeed"));
    m_newSeed->setAccessibleName(tr("New seed"));
    m_newSeed->setText(tr("New"));
    m_newSeed->setToolTip(tr("Draw another seed: other random choices."));
    connect(m_newSeed, &QToolButton::clicked, this, [this] {
        m_seed->setValue(static_cast<double>(QRandomGenerator::global()->generate()));
    });
    auto* seedRow = new QHBoxLayout;
    seedRow->setContentsMargins(0, 0, 0, 0);
    seedRow->addWidget(m_seed, 1);
    seedRow->addWidget(m_newSeed);

    m_length = spinBox("recipeLength", tr("Note length in rows"), 0, part::kRowCount,
                       tr("Rows a note sounds before an off-event; \"to the next note\" lets it "
                          "ring. An off-event never cuts a later note short."));
    m_length->setSpecialValueText(tr("to the next note"));
    m_spread = listEdit("recipeSpread", tr("Octave spread"),
                        tr("The octave of each track against the base octave, -2 to 2, first "
                           "track first: -1,0,0 puts the first voice an octave lower."));
    m_allowSilent = new QCheckBox(tr("Also notes that some chords lack"), this);
    m_allowSilent->setObjectName(QStringLiteral("recipeAllowSilent"));
    m_allowSilent->setAccessibleName(tr("Address notes that some chords lack"));
    m_allowSilent->setToolTip(
        tr("Off: no cell asks a chord of the pattern for a note it would leave silent."));
    connect(m_allowSilent, &QCheckBox::toggled, this, [this] { takeFields(); });

    auto* common = new QFormLayout;
    common->addRow(tr("Na&me:"), m_name);
    common->addRow(tr("&Kind:"), m_kind);
    common->addRow(tr("&Order:"), m_order);
    common->addRow(tr("&Notes:"), m_notes);
    common->addRow(tr("O&ctaves:"), m_octaves);
    common->addRow(tr("S&tep:"), m_step);
    common->addRow(tr("Len&gth:"), m_length);
    common->addRow(tr("Sprea&d:"), m_spread);
    common->addRow(QString(), m_allowSilent);
    auto* special = new QFormLayout;
    special->addRow(tr("Str&um every:"), m_every);
    special->addRow(tr("Pu&lses:"), m_pulses);
    special->addRow(tr("Ste&ps:"), m_steps);
    special->addRow(tr("Rotat&ion:"), m_rotate);
    special->addRow(QString(), m_arpeggiate);
    special->addRow(tr("Densit&y:"), m_density);
    special->addRow(tr("C&hance:"), m_chance);
    special->addRow(tr("S&eed:"), seedRow);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(common, 1);
    layout->addSpacing(12);
    layout->addLayout(special, 1);

    setRecipe(part::PatternRecipe());
}

QSpinBox* RecipeEditor::spinBox(const char* name, const QString& accessible, int min, int max,
                                const QString& tip)
{
    auto* box = new QSpinBox(this);
    box->setObjectName(QString::fromLatin1(name));
    box->setAccessibleName(accessible);
    box->setRange(min, max);
    box->setToolTip(tip);
    connect(box, &QSpinBox::valueChanged, this, [this] { takeFields(); });
    return box;
}

QLineEdit* RecipeEditor::listEdit(const char* name, const QString& accessible, const QString& tip)
{
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QString::fromLatin1(name));
    edit->setAccessibleName(accessible);
    edit->setToolTip(tip);
    edit->setPlaceholderText(tr("none"));
    connect(edit, &QLineEdit::textEdited, this, [this] { takeFields(); });
    return edit;
}

void RecipeEditor::setRecipe(const part::PatternRecipe& recipe)
{
    m_showing = true;
    m_recipe = recipe;
    m_error.clear();
    m_name->setText(QString::fromStdString(recipe.name));
    m_kind->setCurrentIndex(m_kind->findData(static_cast<int>(recipe.kind)));
    m_order->setCurrentIndex(m_order->findData(static_cast<int>(recipe.order)));
    m_notes->setValue(recipe.notes);
    m_octaves->setValue(recipe.octaves);
    m_step->setValue(recipe.step);
    m_every->setValue(recipe.every);
    m_steps->setValue(recipe.steps);
    m_pulses->setMaximum(recipe.steps);
    m_pulses->setValue(recipe.pulses);
    m_rotate->setText(listText(recipe.rotate));
    m_arpeggiate->setChecked(recipe.arpeggiate);
    m_density->setValue(recipe.density);
    m_chance->setValue(recipe.chance);
    m_seed->setValue(static_cast<double>(recipe.seed));
    m_length->setValue(recipe.length);
    m_spread->setText(listText(recipe.spread));
    m_allowSilent->setChecked(recipe.allowSilent);
    m_showing = false;
    updateEnabled();
}

void RecipeEditor::takeFields()
{
    if (m_showing)
        return;
    part::PatternRecipe& r = m_recipe;
    r.name = m_name->text().toStdString();
    r.kind = static_cast<RecipeKind>(m_kind->currentData().toInt());
    r.order = static_cast<NoteOrder>(m_order->currentData().toInt());
    r.notes = m_notes->value();
    r.octaves = m_octaves->value();
    r.step = m_step->value();
    r.every = m_every->value();
    r.steps = m_steps->value();
    r.pulses = std::min(m_pulses->value(), r.steps); // the box follows the steps a moment later
    r.arpeggiate = m_arpeggiate->isChecked();
    r.density = m_density->value();
    r.chance = m_chance->value();
    r.seed = static_cast<std::uint32_t>(m_seed->value());
    r.length = m_length->value();
    r.allowSilent = m_allowSilent->isChecked();
    m_error.clear();
    for (const auto& [edit, key] : {std::pair{m_rotate, "rotate"}, std::pair{m_spread, "spread"}}) {
        const music::Result read =
            readList(key, edit->text(), std::string_view(key) == "rotate" ? r.rotate : r.spread);
        if (!read && m_error.isEmpty())
            m_error = QString::fromStdString(read.message());
    }
    updateEnabled();
    Q_EMIT changed();
}

void RecipeEditor::updateEnabled()
{
    const RecipeKind kind = m_recipe.kind;
    const bool euclid = kind == RecipeKind::Euclid;
    const bool strum = kind == RecipeKind::Strum;
    const bool ordered = kind == RecipeKind::Arpeggio || strum || (euclid && m_recipe.arpeggiate);
    m_order->setEnabled(ordered);
    // A strum goes up or down only.
    if (auto* items = qobject_cast<QStandardItemModel*>(m_order->model())) {
        for (int row = 0; row < items->rowCount(); ++row) {
            const auto order = static_cast<NoteOrder>(m_order->itemData(row).toInt());
            items->item(row)->setEnabled(!strum || order == NoteOrder::Up ||
                                         order == NoteOrder::Down);
        }
    }
    m_octaves->setEnabled(kind == RecipeKind::Arpeggio);
    m_every->setEnabled(strum);
    for (QWidget* field :
         std::initializer_list<QWidget*>{m_pulses, m_steps, m_rotate, m_arpeggiate})
        field->setEnabled(euclid);
    m_density->setEnabled(kind == RecipeKind::Random);
    m_chance->setEnabled(kind == RecipeKind::Random);
    const bool random =
        kind == RecipeKind::Random || (ordered && m_recipe.order == NoteOrder::Random);
    m_seed->setEnabled(random);
    m_newSeed->setEnabled(random);
}

} // namespace app

#include "app/MathWindow.h"

#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternGridView.h"
#include "app/RecipeEditor.h"
#include "app/RecipeListModel.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

namespace {

template <typename Widget>
Widget* named(Widget* widget, const char* name, const QString& accessible)
{
    widget->setObjectName(QString::fromLatin1(name));
    widget->setAccessibleName(accessible);
    return widget;
}

} // namespace

MathWindow::MathWindow(PartSession& session, PatternGridPanel& grid,
                       std::filesystem::path recipeFile, const ActionFactory::ActionLookup& actions,
                       QWidget* parent)
    : QDialog(parent), m_session(session), m_grid(&grid)
{
    setWindowTitle(tr("Math Window"));
    setObjectName(QStringLiteral("mathWindow"));
    setAccessibleName(tr("Pattern generator"));
    setModal(false);

    m_model = new RecipeListModel(std::move(recipeFile), this);
    m_model->setObjectName(QStringLiteral("recipeListModel"));
    m_list = named(new QListView(this), "recipeList", tr("Recipes"));
    m_list->setModel(m_model);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setMinimumWidth(220);
    m_list->setToolTip(tr("Choose a recipe; its fields can then be changed before you apply it."));
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { chooseRow(current.row()); });

    m_editor = new RecipeEditor(this);
    connect(m_editor, &RecipeEditor::changed, this, [this] { recipeChanged(); });

    m_text = named(new QLineEdit(this), "recipeText", tr("Recipe text"));
    m_text->setToolTip(tr("The recipe as one line of text: copy it to share it, paste or type "
                          "one to use it."));
    QFont mono = m_text->font();
    mono.setFamily(QStringLiteral("monospace"));
    mono.setStyleHint(QFont::Monospace);
    m_text->setFont(mono);
    connect(m_text, &QLineEdit::textEdited, this, [this](const QString& text) { takeText(text); });
    auto* copy = named(new QPushButton(tr("Copy Text"), this), "recipeCopy", tr("Copy text"));
    copy->setToolTip(tr("Put the recipe's text line on the clipboard."));
    connect(copy, &QPushButton::clicked, this, [this] { copyText(); });
    auto* textRow = new QHBoxLayout;
    auto* textLabel = new QLabel(tr("Te&xt:"), this);
    textLabel->setBuddy(m_text);
    textRow->addWidget(textLabel);
    textRow->addWidget(m_text, 1);
    textRow->addWidget(copy);

    m_info = named(new QLabel(this), "mathInfo", tr("Pattern filled"));
    m_info->setWordWrap(true);
    m_message = named(new QLabel(this), "mathMessage", tr("Message"));
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);

    auto* buttons = new QDialogButtonBox(this);
    m_apply = named(buttons->addButton(tr("&Apply"), QDialogButtonBox::ApplyRole), "mathApply",
                    tr("Apply"));
    m_apply->setToolTip(tr("Fill the pattern from the recipe: one step that Undo takes back."));
    m_apply->setDefault(true);
    QPushButton* close = buttons->addButton(QDialogButtonBox::Close);
    close->setObjectName(QStringLiteral("mathClose"));
    close->setAccessibleName(tr("Close"));
    close->setToolTip(tr("Close the window; a pattern not applied is dropped."));
    connect(m_apply, &QPushButton::clicked, this, [this] { apply(); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    auto* left = new QVBoxLayout;
    left->addWidget(m_list, 1);
    left->addWidget(createRecipeButtons());
    auto* right = new QVBoxLayout;
    right->addWidget(m_editor);
    right->addLayout(textRow);
    right->addWidget(createTargetBox());
    right->addWidget(m_info);
    right->addWidget(m_message);
    right->addStretch(1);
    auto* top = new QHBoxLayout;
    top->addLayout(left);
    top->addLayout(right, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    // Undo and the transport work from here as from the main window.
    const auto key = [this](const QKeySequence& keys, void (PartSession::*slot)()) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, &m_session, slot);
    };
    key(QKeySequence(QStringLiteral("Ctrl+Z")), &PartSession::undo);
    key(QKeySequence(QStringLiteral("Ctrl+Shift+Z")), &PartSession::redo);
    key(QKeySequence(QStringLiteral("Ctrl+Y")), &PartSession::redo);
    for (const char* id : {"part.play", "part.stop"}) {
        if (QAction* action = actions ? actions(id) : nullptr)
            addAction(action);
    }

    bindSession();
    setRecipe(part::PatternRecipeList::builtIn().recipe(0));
    resize(820, 520);
}

MathWindow::~MathWindow() = default;

QWidget* MathWindow::createRecipeButtons()
{
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    m_save = named(new QPushButton(tr("&Save Recipe"), box), "recipeSave", tr("Save recipe"));
    m_save->setToolTip(tr("Keep the recipe under its name among your recipes (the file "
                          "recipes.rcp in your user folder)."));
    m_remove =
        named(new QPushButton(tr("&Remove Recipe"), box), "recipeRemove", tr("Remove recipe"));
    m_remove->setToolTip(tr("Remove the chosen recipe from your recipes."));
    m_remove->setEnabled(false);
    connect(m_save, &QPushButton::clicked, this, [this] { saveRecipe(); });
    connect(m_remove, &QPushButton::clicked, this, [this] { removeRecipe(); });
    row->addWidget(m_save);
    row->addWidget(m_remove);
    return box;
}

QWidget* MathWindow::createTargetBox()
{
    auto* box = named(new QGroupBox(tr("Fill"), this), "mathTarget", tr("Fill"));
    m_whole = named(new QRadioButton(tr("The &whole pattern"), box), "mathWhole",
                    tr("Fill the whole pattern"));
    m_block = named(new QRadioButton(box), "mathBlock", tr("Fill the selected block"));
    m_block->setToolTip(tr("Select cells in the pattern editor first: only they are filled."));
    m_whole->setChecked(true);
    m_previewBox = named(new QCheckBox(tr("Pre&view in the pattern editor"), box), "mathPreview",
                         tr("Preview in the pattern editor"));
    m_previewBox->setChecked(true);
    for (QAbstractButton* button :
         std::initializer_list<QAbstractButton*>{m_whole, m_block, m_previewBox}) {
        connect(button, &QAbstractButton::toggled, this, [this] {
            m_previewWanted = true;
            updateInfo();
            updatePreview();
        });
    }
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(m_whole);
    layout->addWidget(m_block);
    layout->addWidget(m_previewBox);
    return box;
}

void MathWindow::bindSession()
{
    // Cell edits elsewhere, undo, another current pattern or other chords: preview again.
    connect(&m_session, &PartSession::changed, this, [this] {
        updateInfo();
        updatePreview();
    });
    connect(&m_session, &PartSession::renderOptionsChanged, this, [this] {
        updateInfo();
        updatePreview();
    });
    connect(m_grid->grid()->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        updateTarget();
        if (fillsBlock()) {
            m_previewWanted = true;
            updatePreview();
        }
    });
}

void MathWindow::showWindow()
{
    if (const music::Result read = m_model->reload(); !read)
        MessageBoxes::error(this, QString::fromStdString(read.message()));
    if (!m_list->currentIndex().isValid()) {
        m_choosing = true;
        m_list->setCurrentIndex(m_model->index(m_model->builtInRow(0)));
        m_choosing = false;
    }
    m_previewWanted = true;
    updateTarget();
    updateInfo();
    show();
    raise();
    activateWindow();
    updatePreview();
}

part::PatternRecipe MathWindow::recipe() const
{
    return m_editor->recipe();
}

void MathWindow::setRecipe(const part::PatternRecipe& recipe)
{
    m_editor->setRecipe(recipe);
    m_text->setText(QString::fromStdString(part::formatRecipe(recipe)));
    m_text->setCursorPosition(0); // the kind first
    showMessage(QString(), false);
    m_previewWanted = true;
    updatePreview();
}

void MathWindow::chooseRow(int row)
{
    const part::PatternRecipe* chosen = m_model->recipe(row);
    m_remove->setEnabled(m_model->userIndex(row) >= 0);
    // A row chosen by the window itself (after saving) shows what the fields hold already.
    if (chosen != nullptr && !m_choosing)
        setRecipe(*chosen);
}

void MathWindow::recipeChanged()
{
    m_text->setText(QString::fromStdString(part::formatRecipe(m_editor->recipe())));
    m_text->setCursorPosition(0); // the kind first
    showMessage(m_editor->error(), true);
    m_previewWanted = true;
    updatePreview();
}

void MathWindow::takeText(const QString& text)
{
    part::PatternRecipe read;
    if (const music::Result result = part::parseRecipe(text.toStdString(), read); !result) {
        showMessage(QString::fromStdString(result.message()), true);
        return;
    }
    m_editor->setRecipe(read);
    showMessage(QString(), false);
    m_previewWanted = true;
    updatePreview();
}

void MathWindow::setFillsBlock(bool block)
{
    (block ? m_block : m_whole)->setChecked(true);
}

bool MathWindow::fillsBlock() const
{
    return m_block->isChecked() && m_block->isEnabled();
}

part::PatternBlock MathWindow::target() const
{
    if (!fillsBlock())
        return part::PatternBlock::whole();
    const QRect rect = m_grid->selectedRect();
    return part::PatternBlock{rect.left(), rect.right(), rect.top(), rect.bottom()}.clamped();
}

void MathWindow::updateTarget()
{
    const QRect rect = m_grid->selectedRect();
    const bool block = rect.width() * rect.height() > 1;
    m_block->setEnabled(block);
    m_block->setText(block ? tr("The selected &block: tracks %1 to %2, rows %3 to %4")
                                 .arg(rect.left() + 1)
                                 .arg(rect.right() + 1)
                                 .arg(rect.top())
                                 .arg(rect.bottom())
                           : tr("The selected &block (select cells in the pattern editor)"));
    if (!block && m_block->isChecked())
        m_whole->setChecked(true);
}

void MathWindow::updateInfo()
{
    const part::Part& p = m_session.part();
    const part::Pattern* pattern = p.patterns().find(p.currentPattern());
    m_apply->setEnabled(pattern != nullptr);
    if (pattern == nullptr) {
        m_info->setText(tr("The part has no current pattern to fill."));
        return;
    }
    const part::NoteBudget budget =
        part::noteBudgetOf(p, p.currentPattern(), m_session.renderOptions().indexOption);
    m_info->setText(tr("Fills pattern %1 \"%2\". Its chords have %3 notes at least; a recipe "
                       "uses up to %4 so that no cell falls silent.")
                        .arg(p.currentPattern())
                        .arg(QString::fromStdString(pattern->name()))
                        .arg(budget.chordNotes)
                        .arg(budget.usableNotes));
}

part::Pattern MathWindow::generated() const
{
    const part::Part& p = m_session.part();
    const part::Pattern* pattern = p.patterns().find(p.currentPattern());
    if (pattern == nullptr)
        return {};
    return part::generatePattern(
        *pattern, recipe(), target(),
        part::noteBudgetOf(p, p.currentPattern(), m_session.renderOptions().indexOption));
}

void MathWindow::updatePreview()
{
    if (m_grid == nullptr)
        return;
    if (isVisible() && m_previewBox->isChecked() && m_previewWanted &&
        m_grid->model()->hasPattern())
        m_grid->showPreview(generated());
    else
        m_grid->clearPreview();
}

bool MathWindow::apply()
{
    const part::Part& p = m_session.part();
    if (p.patterns().find(p.currentPattern()) == nullptr)
        return false;
    const part::Pattern result = generated();
    // Off first: the grid takes the part's pattern again and the edit is not refused.
    m_previewWanted = false;
    updatePreview();
    const bool done = m_session.edit(
        QString::fromLatin1(part::kUndoGeneratePattern), PartSession::Cells,
        [&result](part::Part& edited) {
            edited.patterns().pattern(edited.currentPattern()) = result;
            return true;
        },
        PartSession::EditKind::Live);
    showMessage(done ? tr("Pattern %1 filled; Undo (Ctrl+Z) takes it back.")
                           .arg(m_session.part().currentPattern())
                     : tr("The pattern already is what the recipe makes."),
                false);
    return done;
}

bool MathWindow::saveRecipe()
{
    part::PatternRecipe r = recipe();
    if (r.name.empty()) {
        // A name of its own, so that it does not replace another unnamed recipe.
        for (int n = m_model->userRecipes().count() + 1;; ++n) {
            const std::string name = tr("My recipe %1").arg(n).toStdString();
            const auto& list = m_model->userRecipes().recipes();
            if (std::none_of(list.begin(), list.end(), [&name](const part::PatternRecipe& other) {
                    return other.name == name;
                })) {
                r.name = name;
                break;
            }
        }
        m_editor->setRecipe(r);
        m_text->setText(QString::fromStdString(part::formatRecipe(r)));
        m_text->setCursorPosition(0); // the kind first
    }
    int row = -1;
    if (const music::Result stored = m_model->store(r, row); !stored) {
        MessageBoxes::error(this, QString::fromStdString(stored.message()));
        return false;
    }
    m_choosing = true;
    m_list->setCurrentIndex(m_model->index(row));
    m_choosing = false;
    showMessage(tr("\"%1\" is saved among your recipes.").arg(QString::fromStdString(r.name)),
                false);
    return true;
}

bool MathWindow::removeRecipe()
{
    const int row = m_list->currentIndex().row();
    const int index = m_model->userIndex(row);
    if (index < 0)
        return false;
    const QString name = m_model->index(row).data().toString();
    if (!MessageBoxes::askYesNo(this, tr("Remove the recipe \"%1\" from your recipes?").arg(name)))
        return false;
    if (const music::Result removed = m_model->remove(index); !removed) {
        MessageBoxes::error(this, QString::fromStdString(removed.message()));
        return false;
    }
    showMessage(tr("\"%1\" is removed.").arg(name), false);
    return true;
}

void MathWindow::copyText()
{
    const QString text = QString::fromStdString(part::formatRecipe(recipe()));
    QGuiApplication::clipboard()->setText(text);
    showMessage(tr("The recipe's text is on the clipboard."), false);
}

void MathWindow::showMessage(const QString& text, bool error)
{
    m_message->setText(text);
    m_message->setStyleSheet(error ? QStringLiteral("color: rgb(200, 40, 40);") : QString());
}

void MathWindow::hideEvent(QHideEvent* event)
{
    if (m_grid != nullptr)
        m_grid->clearPreview();
    QDialog::hideEvent(event);
}

} // namespace app

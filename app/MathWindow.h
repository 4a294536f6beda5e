#pragma once

#include "app/ActionFactory.h"
#include "part/PatternGenerator.h"
#include "part/PatternRecipe.h"

#include <QDialog>
#include <QPointer>

#include <filesystem>

class QLabel;
class QLineEdit;
class QListView;
class QCheckBox;
class QPushButton;
class QRadioButton;

namespace app {

class PartSession;
class PatternGridPanel;
class RecipeEditor;
class RecipeListModel;

/**
 * The pattern generator ("Math Window"): a tool window beside the main window that fills the
 * current pattern, or the block selected in the pattern grid, from a recipe. The recipe comes
 * from the list (built-in or saved by the user), its fields or its text line, which can be
 * copied and pasted to share it. While the window is open the grid previews the result, tinted
 * and without touching the part; Apply makes it one live undo step "Generate pattern", and
 * closing the window ends the preview and leaves the part as it is.
 *
 * After Apply the grid shows the part again and takes entries; the next change of the recipe
 * or the target starts a new preview.
 */
class MathWindow : public QDialog
{
    Q_OBJECT
public:
    /**
     * `recipeFile` is the user's recipe file; `actions` lends the window the main window's
     * Play and Stop keys. The session and the grid outlive the window.
     */
    MathWindow(PartSession& session, PatternGridPanel& grid, std::filesystem::path recipeFile,
               const ActionFactory::ActionLookup& actions, QWidget* parent = nullptr);
    ~MathWindow() override;

    /** Shows and raises the window, reads the user's recipes and starts the preview. */
    void showWindow();

    part::PatternRecipe recipe() const;
    /** Puts `recipe` in the fields and the text line, as choosing it in the list does. */
    void setRecipe(const part::PatternRecipe& recipe);
    /** Fill the grid's selected block (true) or the whole pattern. */
    void setFillsBlock(bool block);
    bool fillsBlock() const;
    /** The block that Apply fills. */
    part::PatternBlock target() const;
    /** The current pattern as Apply would leave it. */
    part::Pattern generated() const;

    /** Generates into the part: one "Generate pattern" step; false when nothing changed. */
    bool apply();
    /** Saves the recipe among the user's recipes (under its name) and writes the file. */
    bool saveRecipe();
    /** Removes the user's recipe chosen in the list, after asking. */
    bool removeRecipe();
    /** Puts the recipe's text line on the clipboard. */
    void copyText();

    QListView* recipeList() const { return m_list; }
    RecipeListModel* recipeModel() const { return m_model; }
    RecipeEditor* editor() const { return m_editor; }
    QLineEdit* textEdit() const { return m_text; }
    QCheckBox* previewBox() const { return m_previewBox; }
    QRadioButton* wholeButton() const { return m_whole; }
    QRadioButton* blockButton() const { return m_block; }
    QPushButton* applyButton() const { return m_apply; }
    QLabel* messageLabel() const { return m_message; }
    QLabel* infoLabel() const { return m_info; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* createRecipeButtons();
    QWidget* createTargetBox();
    void bindSession();
    /** The recipe changed in the fields, the text line or the list: preview it. */
    void recipeChanged();
    void takeText(const QString& text);
    void chooseRow(int row);
    void updateTarget();
    void updateInfo();
    void updatePreview();
    void showMessage(const QString& text, bool error);

    PartSession& m_session;
    QPointer<PatternGridPanel> m_grid; // may go first when the main view closes
    RecipeListModel* m_model = nullptr;
    QListView* m_list = nullptr;
    RecipeEditor* m_editor = nullptr;
    QLineEdit* m_text = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_remove = nullptr;
    QRadioButton* m_whole = nullptr;
    QRadioButton* m_block = nullptr;
    QCheckBox* m_previewBox = nullptr;
    QLabel* m_info = nullptr;
    QLabel* m_message = nullptr;
    QPushButton* m_apply = nullptr;
    /** Whether the grid should show the recipe's result; off after Apply until a change. */
    bool m_previewWanted = false;
    bool m_choosing = false;
};

} // namespace app

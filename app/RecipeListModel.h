#pragma once

#include "music/Result.h"
#include "part/PatternRecipeList.h"

#include <QAbstractListModel>

#include <filesystem>

namespace app {

/**
 * The Math Window's recipes as one list: a heading "Built-in recipes" with the program's own
 * recipes, then a heading "My recipes" with those the user saved, which live in the user
 * folder's recipe file ("recipes.rcp", one recipe a line, ready to be passed around).
 *
 * The user's file is written at once on every change, safely. When it exists but cannot be
 * read (a bad line, not a recipe file), its recipes are not shown and the file is never
 * overwritten, so nothing the user wrote is lost; store and remove then fail with the reason.
 */
class RecipeListModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role : int
    {
        RecipeTextRole = Qt::UserRole + 1, // QString: the recipe's line, as it is shared
        UserRecipeRole,                    // bool: saved by the user (removable)
        HeadingRole,                       // bool: a heading row, not a recipe
    };

    explicit RecipeListModel(std::filesystem::path userFile, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /** The recipe of a row; nullptr for a heading or a row outside the list. */
    const part::PatternRecipe* recipe(int row) const;
    int builtInRow(int index) const { return 1 + index; }
    int userRow(int index) const { return 2 + m_builtIn.count() + index; }
    /** The index among the user's recipes of a row, or -1. */
    int userIndex(int row) const;
    const part::PatternRecipeList& userRecipes() const { return m_user; }
    const std::filesystem::path& userFile() const { return m_userFile; }

    /** Reads the user's recipes again. A missing file is an empty list, not a failure. */
    music::Result reload();
    /**
     * Keeps `recipe` among the user's recipes, replacing one of the same name, and writes the
     * file; `row` is where it now stands. On a failure nothing changes.
     */
    music::Result store(const part::PatternRecipe& recipe, int& row);
    /** Removes the user's recipe at `index` and writes the file. */
    music::Result remove(int index);

private:
    music::Result save(const part::PatternRecipeList& list);

    std::filesystem::path m_userFile;
    part::PatternRecipeList m_builtIn;
    part::PatternRecipeList m_user;
    std::string m_unreadable; // why the user's file was not read; it is then left alone
};

} // namespace app

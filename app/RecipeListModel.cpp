#include "app/RecipeListModel.h"

#include <QFont>

#include <system_error>

namespace app {

RecipeListModel::RecipeListModel(std::filesystem::path userFile, QObject* parent)
    : QAbstractListModel(parent), m_userFile(std::move(userFile)),
      m_builtIn(part::PatternRecipeList::builtIn())
{}

int RecipeListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2 + m_builtIn.count() + m_user.count();
}

const part::PatternRecipe* RecipeListModel::recipe(int row) const
{
    if (row >= builtInRow(0) && row < builtInRow(m_builtIn.count()))
        return &m_builtIn.recipe(row - builtInRow(0));
    const int user = userIndex(row);
    return user >= 0 ? &m_user.recipe(user) : nullptr;
}

int RecipeListModel::userIndex(int row) const
{
    const int index = row - userRow(0);
    return index >= 0 && index < m_user.count() ? index : -1;
}

QVariant RecipeListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const int row = index.row();
    const part::PatternRecipe* r = recipe(row);
    if (r == nullptr) {
        const bool builtIn = row == 0;
        switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return builtIn ? tr("Built-in recipes") : tr("My recipes");
        case Qt::FontRole: {
            QFont font;
            font.setBold(true);
            return font;
        }
        case Qt::ToolTipRole:
            return builtIn ? QVariant()
                           : tr("Saved in %1").arg(QString::fromStdString(m_userFile.string()));
        case HeadingRole:
            return true;
        default:
            return {};
        }
    }
    const QString text = QString::fromStdString(part::formatRecipe(*r));
    const QString name = r->name.empty() ? text : QString::fromStdString(r->name);
    const bool user = userIndex(row) >= 0;
    switch (role) {
    case Qt::DisplayRole:
        return name;
    case Qt::AccessibleTextRole:
        return user ? tr("%1, my recipe").arg(name) : tr("%1, built-in recipe").arg(name);
    case Qt::ToolTipRole:
    case RecipeTextRole:
        return text;
    case UserRecipeRole:
        return user;
    case HeadingRole:
        return false;
    default:
        return {};
    }
}

Qt::ItemFlags RecipeListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return recipe(index.row()) != nullptr ? Qt::ItemIsEnabled | Qt::ItemIsSelectable
                                          : Qt::ItemIsEnabled;
}

music::Result RecipeListModel::reload()
{
    part::PatternRecipeList list;
    music::Result result = music::Result::success();
    std::error_code error;
    if (std::filesystem::exists(m_userFile, error))
        result = list.load(m_userFile);
    m_unreadable = result ? std::string() : result.message();
    beginResetModel();
    m_user = std::move(list);
    endResetModel();
    return result;
}

music::Result RecipeListModel::save(const part::PatternRecipeList& list)
{
    if (!m_unreadable.empty())
        return music::Result::failure(m_userFile.string() + " could not be read (" + m_unreadable +
                                      "), so it is not overwritten. Mend or move it, then "
                                      "open the Math Window again.");
    return list.save(m_userFile);
}

music::Result RecipeListModel::store(const part::PatternRecipe& recipe, int& row)
{
    part::PatternRecipeList list = m_user;
    int index = list.count();
    for (int i = 0; i < list.count(); ++i) {
        if (list.recipe(i).name == recipe.name) {
            index = i;
            break;
        }
    }
    if (index < list.count())
        list.replace(index, recipe);
    else
        list.append(recipe);
    if (music::Result saved = save(list); !saved)
        return saved;
    row = userRow(index);
    if (index < m_user.count()) {
        m_user = std::move(list);
        Q_EMIT dataChanged(this->index(row), this->index(row));
    } else {
        beginInsertRows({}, row, row);
        m_user = std::move(list);
        endInsertRows();
    }
    return music::Result::success();
}

music::Result RecipeListModel::remove(int index)
{
    if (index < 0 || index >= m_user.count())
        return music::Result::success();
    part::PatternRecipeList list = m_user;
    list.remove(index);
    if (music::Result saved = save(list); !saved)
        return saved;
    beginRemoveRows({}, userRow(index), userRow(index));
    m_user = std::move(list);
    endRemoveRows();
    return music::Result::success();
}

} // namespace app

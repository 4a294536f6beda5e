#include "app/PresetPanel.h"

#include "app/AddPresetDialog.h"
#include "app/FileFilters.h"
#include "app/LineText.h"
#include "app/MessageBoxes.h"
#include "app/NamedEditorDelegate.h"
#include "app/PartSession.h"
#include "app/PresetListModel.h"
#include "app/PresetSource.h"
#include "app/WaitCursor.h"

#include <QFileDialog>
#include <QKeyEvent>
#include <QMenu>

namespace app {

PresetPanel::PresetPanel(std::unique_ptr<PresetSource> source, PartSession& session,
                         const ActionFactory::ActionLookup& actions, music::DataFolder dataFolder,
                         QWidget* parent)
    : QListView(parent), m_source(std::move(source)), m_session(session),
      m_dataFolder(std::move(dataFolder))
{
    setObjectName(ActionFactory::toQString(m_source->menuName()));
    setAccessibleName(m_source->title());
    setToolTip(tr("Double-click a preset to add it to the part; right-click for more."));
    m_model = new PresetListModel(*m_source, this);
    m_model->setObjectName(objectName() + QStringLiteral("Model"));
    m_model->setRenameHandler([this](int row, const QString& name) { return rename(row, name); });
    setModel(m_model);
    setItemDelegate(
        new NamedEditorDelegate(tr("Preset name"), QStringLiteral("presetNameEditor"), this));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
    setUniformItemSizes(true);

    m_menu = ActionFactory::buildContextMenu(m_source->menuName(), this, actions);
    m_menu->setAccessibleName(tr("%1 commands").arg(m_source->title()));
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(viewport()->mapToGlobal(point)); });
    bindMenu();

    connect(this, &QAbstractItemView::doubleClicked, this, [this] { appendPreset(); });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { Q_EMIT currentPresetChanged(currentPreset()); });
    connect(this, &PresetPanel::currentPresetChanged, this, [this] { updateCommands(); });
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, [this] { updateCommands(); });
    updateCommands();
}

PresetPanel::~PresetPanel() = default;

QString PresetPanel::commandId(const char* command) const
{
    return ActionFactory::toQString(m_source->commandPrefix()) + QLatin1Char('.') +
           QLatin1String(command);
}

void PresetPanel::bindMenu()
{
    const auto on = [this](const char* command, const std::function<void()>& slot) {
        ActionFactory::onTriggered(m_menu, commandId(command).toStdString(), this, slot);
    };
    on("append", [this] { appendPreset(); });
    on("replace", [this] { replaceByPreset(); });
    on("rename", [this] { renameCurrent(); });
    on("remove", [this] { removeCurrent(); });
    on("sortUp", [this] { sort(true); });
    on("sortDown", [this] { sort(false); });
    on("new", [this] { newList(); });
    on("load", [this] { load(); });
    on("save", [this] { save(); });
    on("loadDefault", [this] { loadDefault(); });
    on("saveDefault", [this] { saveAsDefault(); });
}

void PresetPanel::updateCommands()
{
    const bool chosen = currentPreset() >= 0;
    for (const char* command : {"append", "replace", "rename", "remove"})
        ActionFactory::setEnabled(m_menu, commandId(command).toStdString(), chosen);
}

std::filesystem::path PresetPanel::defaultFile() const
{
    return m_dataFolder.file(m_source->defaultFileName());
}

QString PresetPanel::userFolder() const
{
    return QString::fromStdString(m_dataFolder.userFolder().string());
}

int PresetPanel::currentPreset() const
{
    const QModelIndex current = currentIndex();
    return current.isValid() && current.row() < m_source->count() ? current.row() : -1;
}

void PresetPanel::setCurrentPreset(int row)
{
    const QModelIndex index = m_model->index(row);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    if (index.isValid())
        scrollTo(index);
}

bool PresetPanel::report(const music::Result& result)
{
    if (!result)
        MessageBoxes::error(this, QString::fromStdString(result.message()));
    return result.ok();
}

bool PresetPanel::change(const std::function<music::Result(const std::filesystem::path& file)>& run)
{
    music::Result result;
    {
        WaitCursor wait;
        result = run(defaultFile());
    }
    m_model->refresh();
    updateCommands();
    return report(result);
}

// ---- applying presets --------------------------------------------------------------------------

bool PresetPanel::appendPreset()
{
    return m_source->append(currentPreset(), m_session);
}

bool PresetPanel::replaceByPreset()
{
    return m_source->replace(currentPreset(), m_session);
}

void PresetPanel::keyPressEvent(QKeyEvent* event)
{
    // Return applies as a double-click does; while a name is edited the editor takes the key.
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
        event->modifiers() == Qt::NoModifier && state() != EditingState) {
        appendPreset();
        return;
    }
    QListView::keyPressEvent(event);
}

// ---- changing the list -------------------------------------------------------------------------

void PresetPanel::renameCurrent()
{
    const int row = currentPreset();
    if (row >= 0)
        edit(m_model->index(row));
}

bool PresetPanel::rename(int row, const QString& name)
{
    const std::string line = LineText::toLine(name);
    if (row < 0 || row >= m_source->count() || line.empty() ||
        QString::fromStdString(line) == m_source->name(row))
        return false;
    return change([this, row, &line](const std::filesystem::path& file) {
        return m_source->rename(row, line, file);
    });
}

bool PresetPanel::removeCurrent()
{
    const int row = currentPreset();
    if (row < 0 ||
        !MessageBoxes::askYesNo(this, tr("Remove the preset \"%1\"?").arg(m_source->name(row))))
        return false;
    return change(
        [this, row](const std::filesystem::path& file) { return m_source->remove(row, file); });
}

bool PresetPanel::sort(bool upwards)
{
    return change([this, upwards](const std::filesystem::path& file) {
        return m_source->sortByName(upwards, file);
    });
}

void PresetPanel::newList()
{
    m_source->clear();
    m_model->refresh();
    updateCommands();
}

bool PresetPanel::addCurrent(const NameAsker& ask)
{
    QString what = m_source->currentThing();
    what.replace(0, 1, what.at(0).toUpper()); // it opens the sentence
    AddPresetDialog dialog(
        tr("%1 becomes a new preset of the %2 list.").arg(what, m_source->title().toLower()), this);
    const bool accepted = ask ? ask(dialog) : dialog.exec() == QDialog::Accepted;
    return accepted && addCurrentNamed(dialog.name());
}

bool PresetPanel::addCurrentNamed(const QString& typed)
{
    const std::string name = LineText::toLine(typed);
    if (name.empty())
        return false;
    const int before = m_source->count();
    const bool added = change([this, &name](const std::filesystem::path& file) {
        return m_source->addCurrent(m_session, name, file);
    });
    if (m_source->count() > before)
        setCurrentPreset(m_source->count() - 1);
    return added;
}

bool PresetPanel::replaceCurrentPreset()
{
    const int row = currentPreset();
    if (row < 0) {
        MessageBoxes::show(this,
                           tr("Choose the preset to replace in the %1 list first.")
                               .arg(m_source->title().toLower()),
                           QMessageBox::Information);
        return false;
    }
    if (!MessageBoxes::askYesNo(this, tr("Replace the preset \"%1\" by %2?")
                                          .arg(m_source->name(row), m_source->currentThing())))
        return false;
    return change([this, row](const std::filesystem::path& file) {
        return m_source->replaceByCurrent(row, m_session, file);
    });
}

// ---- files -------------------------------------------------------------------------------------

bool PresetPanel::loadFrom(const QString& path)
{
    music::Result result;
    {
        WaitCursor wait;
        result = m_source->load(path.toStdString());
    }
    m_model->refresh();
    if (result && m_source->count() > 0 && currentPreset() < 0)
        setCurrentPreset(0);
    updateCommands();
    return report(result);
}

bool PresetPanel::saveTo(const QString& path)
{
    WaitCursor wait;
    return report(m_source->save(path.toStdString()));
}

QString PresetPanel::askPath(bool saving)
{
    const QString title = (saving ? tr("Save %1") : tr("Load %1")).arg(m_source->title());
    QFileDialog dialog(this, title, userFolder(),
                       FileFilters::fromPairs(QString::fromLatin1(m_source->fileFilter())));
    dialog.setObjectName(QStringLiteral("presetFileDialog"));
    dialog.setAcceptMode(saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(saving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(
        QString::fromStdString(
            std::filesystem::path(m_source->defaultFileName()).extension().string())
            .mid(1));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

void PresetPanel::load()
{
    const QString path = askPath(false);
    if (!path.isEmpty())
        loadFrom(path);
}

void PresetPanel::save()
{
    const QString path = askPath(true);
    if (!path.isEmpty())
        saveTo(path);
}

bool PresetPanel::loadDefault()
{
    return loadFrom(QString::fromStdString(defaultFile().string()));
}

bool PresetPanel::saveAsDefault()
{
    return saveTo(QString::fromStdString(defaultFile().string()));
}

void PresetPanel::showReplacedList()
{
    m_model->refresh();
    updateCommands();
}

bool PresetPanel::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QListView::event(event);
}

} // namespace app

#include "app/CTypeManagerDialog.h"

#include "app/ActionFactory.h"
#include "app/CChordTypeDialog.h"
#include "app/CScaleDialog.h"
#include "app/CXHeaderCtrl.h"
#include "app/FileFilters.h"
#include "app/MessageBoxes.h"
#include "app/WaitCursor.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <tuple>

namespace app {

namespace {

QString fromStd(const std::string& text)
{
    return QString::fromStdString(text);
}

std::vector<int> selectedRows(const QTreeWidget* list)
{
    std::vector<int> rows;
    for (const QTreeWidgetItem* item : list->selectedItems())
        rows.push_back(list->indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(item)));
    std::sort(rows.rbegin(), rows.rend());
    return rows;
}

QPushButton* button(const QString& text, QWidget* parent, const std::function<void()>& slot)
{
    auto* b = new QPushButton(text, parent);
    QObject::connect(b, &QPushButton::clicked, parent, slot);
    return b;
}

} // namespace

CTypeManagerDialog::CTypeManagerDialog(music::ChordTypeList& types, music::ScaleList& scales,
                                       music::DataFolder dataFolder, QWidget* parent)
    : QDialog(parent), m_types(types), m_scales(scales), m_dataFolder(std::move(dataFolder))
{
    setWindowTitle(tr("Chord and Scale Types"));

    m_chordList = new QTreeWidget(this);
    m_chordList->setHeader(new CXHeaderCtrl(m_chordList));
    m_chordList->setHeaderLabels({QStringLiteral("Chord"), QStringLiteral("Construction")});
    m_chordList->setRootIsDecorated(false);
    m_chordList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_chordList->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_scaleList = new QTreeWidget(this);
    m_scaleList->setHeaderLabels({QStringLiteral("Scale")});
    m_scaleList->setRootIsDecorated(false);
    m_scaleList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_scaleList->setEditTriggers(QAbstractItemView::EditKeyPressed);

    connect(m_chordList, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int) {
        renameChordType(m_chordList->indexOfTopLevelItem(item), item->text(0));
    });
    connect(m_scaleList, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int) {
        renameScale(m_scaleList->indexOfTopLevelItem(item), item->text(0));
    });

    auto* chordBox = new QGroupBox(tr("Chord types"), this);
    auto* chordLayout = new QGridLayout(chordBox);
    chordLayout->addWidget(m_chordList, 0, 0, 1, 4);
    chordLayout->addWidget(button(tr("&Add..."), this, [this] { addChordType(); }), 1, 0);
    chordLayout->addWidget(button(tr("Re&name"), this,
                                  [this] {
                                      if (auto* item = m_chordList->currentItem())
                                          m_chordList->editItem(item, 0);
                                  }),
                           1, 1);
    chordLayout->addWidget(button(tr("&Remove"), this, [this] { removeChordTypes(); }), 1, 2);
    chordLayout->addWidget(
        button(tr("&Defaults"), this,
               [this] {
                   loadChordTypes(
                       fromStd(m_dataFolder.file(music::ChordTypeList::kDefaultFileName).string()));
               }),
        1, 3);
    chordLayout->addWidget(button(tr("&Load..."), this,
                                  [this] {
                                      const QString path = askOpenPath(kChordTypeFilter);
                                      if (!path.isEmpty())
                                          loadChordTypes(path);
                                  }),
                           2, 0);
    chordLayout->addWidget(button(tr("&Save..."), this,
                                  [this] {
                                      const QString path = askSavePath(kChordTypeFilter);
                                      if (!path.isEmpty())
                                          saveChordTypes(path);
                                  }),
                           2, 1);

    auto* scaleBox = new QGroupBox(tr("Scales"), this);
    auto* scaleLayout = new QGridLayout(scaleBox);
    scaleLayout->addWidget(m_scaleList, 0, 0, 1, 4);
    scaleLayout->addWidget(button(tr("Add &Scale..."), this, [this] { addScale(); }), 1, 0);
    scaleLayout->addWidget(button(tr("Ren&ame"), this,
                                  [this] {
                                      if (auto* item = m_scaleList->currentItem())
                                          m_scaleList->editItem(item, 0);
                                  }),
                           1, 1);
    scaleLayout->addWidget(button(tr("Remo&ve"), this, [this] { removeScales(); }), 1, 2);
    scaleLayout->addWidget(
        button(tr("De&faults"), this,
               [this] {
                   loadScales(
                       fromStd(m_dataFolder.file(music::ScaleList::kDefaultFileName).string()));
               }),
        1, 3);
    scaleLayout->addWidget(button(tr("L&oad..."), this,
                                  [this] {
                                      const QString path = askOpenPath(kScaleFilter);
                                      if (!path.isEmpty())
                                          loadScales(path);
                                  }),
                           2, 0);
    scaleLayout->addWidget(button(tr("Sa&ve..."), this,
                                  [this] {
                                      const QString path = askSavePath(kScaleFilter);
                                      if (!path.isEmpty())
                                          saveScales(path);
                                  }),
                           2, 1);

    auto* lists = new QHBoxLayout;
    lists->addWidget(chordBox, 3);
    lists->addWidget(scaleBox, 2);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(lists);
    layout->addWidget(buttons);
    resize(820, 520);

    buildMenus();
    loadDefaults();
}

void CTypeManagerDialog::buildMenus()
{
    m_chordMenu = ActionFactory::buildContextMenu("chordTypes", this, {});
    m_scaleMenu = ActionFactory::buildContextMenu("scaleTypes", this, {});
    const auto chordDefault = [this] {
        return fromStd(m_dataFolder.file(music::ChordTypeList::kDefaultFileName).string());
    };
    const auto scaleDefault = [this] {
        return fromStd(m_dataFolder.file(music::ScaleList::kDefaultFileName).string());
    };
    ActionFactory::onTriggered(m_chordMenu, "types.removeChord", this,
                               [this] { removeChordTypes(); });
    ActionFactory::onTriggered(m_chordMenu, "types.renameChord", this, [this] {
        if (auto* item = m_chordList->currentItem())
            m_chordList->editItem(item, 0);
    });
    ActionFactory::onTriggered(m_chordMenu, "types.addChord", this, [this] { addChordType(); });
    ActionFactory::onTriggered(m_chordMenu, "types.newChords", this, [this] {
        m_types.clear();
        refreshChordTypes();
    });
    ActionFactory::onTriggered(m_chordMenu, "types.loadChords", this, [this] {
        const QString path = askOpenPath(kChordTypeFilter);
        if (!path.isEmpty())
            loadChordTypes(path);
    });
    ActionFactory::onTriggered(m_chordMenu, "types.saveChords", this, [this] {
        const QString path = askSavePath(kChordTypeFilter);
        if (!path.isEmpty())
            saveChordTypes(path);
    });
    ActionFactory::onTriggered(m_chordMenu, "types.loadDefaultChords", this,
                               [this, chordDefault] { loadChordTypes(chordDefault()); });
    ActionFactory::onTriggered(m_chordMenu, "types.saveDefaultChords", this,
                               [this, chordDefault] { saveChordTypes(chordDefault()); });

    const std::tuple<const char*, bool, bool> chordSorts[] = {
        {"types.sortChordsNameUp", false, true},
        {"types.sortChordsNameDown", false, false},
        {"types.sortChordsNotesUp", true, true},
        {"types.sortChordsNotesDown", true, false},
    };
    for (const auto& [id, byNotes, upwards] : chordSorts) {
        ActionFactory::onTriggered(m_chordMenu, id, this, [this, byNotes, upwards] {
            if (byNotes)
                m_types.sortByNotes(upwards);
            else
                m_types.sortByName(upwards);
            refreshChordTypes();
        });
    }

    ActionFactory::onTriggered(m_scaleMenu, "types.removeScale", this, [this] { removeScales(); });
    ActionFactory::onTriggered(m_scaleMenu, "types.renameScale", this, [this] {
        if (auto* item = m_scaleList->currentItem())
            m_scaleList->editItem(item, 0);
    });
    ActionFactory::onTriggered(m_scaleMenu, "types.addScale", this, [this] { addScale(); });
    ActionFactory::onTriggered(m_scaleMenu, "types.newScales", this, [this] {
        m_scales.clear();
        refreshScales();
    });
    ActionFactory::onTriggered(m_scaleMenu, "types.loadScales", this, [this] {
        const QString path = askOpenPath(kScaleFilter);
        if (!path.isEmpty())
            loadScales(path);
    });
    ActionFactory::onTriggered(m_scaleMenu, "types.saveScales", this, [this] {
        const QString path = askSavePath(kScaleFilter);
        if (!path.isEmpty())
            saveScales(path);
    });
    ActionFactory::onTriggered(m_scaleMenu, "types.loadDefaultScales", this,
                               [this, scaleDefault] { loadScales(scaleDefault()); });
    ActionFactory::onTriggered(m_scaleMenu, "types.saveDefaultScales", this,
                               [this, scaleDefault] { saveScales(scaleDefault()); });

    const std::tuple<const char*, bool, bool> scaleSorts[] = {
        {"types.sortScalesNameUp", false, true},
        {"types.sortScalesNameDown", false, false},
        {"types.sortScalesNotesUp", true, true},
        {"types.sortScalesNotesDown", true, false},
    };
    for (const auto& [id, byNotes, upwards] : scaleSorts) {
        ActionFactory::onTriggered(m_scaleMenu, id, this, [this, byNotes, upwards] {
            if (byNotes)
                m_scales.sortByNotes(upwards);
            else
                m_scales.sortByName(upwards);
            refreshScales();
        });
    }

    for (auto [list, menu] :
         {std::pair{m_chordList, m_chordMenu}, std::pair{m_scaleList, m_scaleMenu}}) {
        list->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(list, &QWidget::customContextMenuRequested, this,
                [list, menu](const QPoint& point) {
                    menu->popup(list->viewport()->mapToGlobal(point));
                });
    }
    auto* delChord = new QShortcut(QKeySequence::Delete, m_chordList, nullptr, nullptr,
                                   Qt::WidgetWithChildrenShortcut);
    connect(delChord, &QShortcut::activated, this, [this] { removeChordTypes(); });
    auto* delScale = new QShortcut(QKeySequence::Delete, m_scaleList, nullptr, nullptr,
                                   Qt::WidgetWithChildrenShortcut);
    connect(delScale, &QShortcut::activated, this, [this] { removeScales(); });
    for (QTreeWidget* list : {m_chordList, m_scaleList}) {
        auto* rename = new QShortcut(QKeySequence(QStringLiteral("Ctrl+R")), list, nullptr, nullptr,
                                     Qt::WidgetWithChildrenShortcut);
        connect(rename, &QShortcut::activated, this, [list] {
            if (auto* item = list->currentItem())
                list->editItem(item, 0);
        });
    }
}

void CTypeManagerDialog::loadDefaults()
{
    WaitCursor wait;
    // Each list keeps what it had when its default file cannot be read.
    music::ChordTypeList types;
    if (report(types.load(m_dataFolder.file(music::ChordTypeList::kDefaultFileName))))
        m_types = std::move(types);
    music::ScaleList scales;
    if (report(scales.load(m_dataFolder.file(music::ScaleList::kDefaultFileName))))
        m_scales = std::move(scales);
    refreshChordTypes();
    refreshScales();
}

bool CTypeManagerDialog::report(const music::Result& result)
{
    if (!result)
        MessageBoxes::error(this, QString::fromStdString(result.message()));
    return result.ok();
}

void CTypeManagerDialog::refreshChordTypes()
{
    const QSignalBlocker blocker(m_chordList);
    m_chordList->clear();
    for (const music::ChordType& type : m_types.types()) {
        auto* item =
            new QTreeWidgetItem(m_chordList, {fromStd(type.name()), fromStd(type.construction())});
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
}

void CTypeManagerDialog::refreshScales()
{
    const QSignalBlocker blocker(m_scaleList);
    m_scaleList->clear();
    for (const music::ScaleType& scale : m_scales.scales()) {
        auto* item = new QTreeWidgetItem(m_scaleList, {fromStd(scale.name())});
        item->setToolTip(0, fromStd(scale.pattern()));
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
}

bool CTypeManagerDialog::addChordType(const ChordTypeAsker& ask)
{
    CChordTypeDialog dialog(this);
    for (;;) {
        const bool accepted = ask ? ask(dialog) : dialog.exec() == QDialog::Accepted;
        if (!accepted)
            return false;
        const music::Result added =
            m_types.addChecked(dialog.name().toStdString(), dialog.construction().toStdString());
        if (added) {
            refreshChordTypes();
            const int last = m_chordList->topLevelItemCount() - 1;
            m_chordList->setCurrentItem(m_chordList->topLevelItem(last));
            m_chordList->scrollToItem(m_chordList->topLevelItem(last));
            return true;
        }
        MessageBoxes::error(this, QString::fromStdString(added.message()));
    }
}

bool CTypeManagerDialog::addScale(const ScaleAsker& ask)
{
    CScaleDialog dialog(this);
    dialog.setKeepDefaultCurrent(m_keepScaleDefaultCurrent);
    const bool accepted = ask ? ask(dialog) : dialog.exec() == QDialog::Accepted;
    if (!accepted)
        return false;
    m_keepScaleDefaultCurrent = dialog.keepDefaultCurrent();
    const music::Result added =
        m_scales.addFromInput(dialog.name().toStdString(), dialog.pattern().toStdString());
    if (!report(added))
        return false;
    refreshScales();
    const int last = m_scaleList->topLevelItemCount() - 1;
    m_scaleList->setCurrentItem(m_scaleList->topLevelItem(last));
    m_scaleList->scrollToItem(m_scaleList->topLevelItem(last));
    if (m_keepScaleDefaultCurrent) {
        WaitCursor wait;
        report(m_scales.save(m_dataFolder.file(music::ScaleList::kDefaultFileName)));
    }
    return true;
}

void CTypeManagerDialog::renameChordType(int row, const QString& name)
{
    if (row < 0 || row >= static_cast<int>(m_types.types().size()))
        return;
    m_types.rename(static_cast<std::size_t>(row), name.toStdString());
}

void CTypeManagerDialog::renameScale(int row, const QString& name)
{
    if (row < 0 || row >= static_cast<int>(m_scales.scales().size()))
        return;
    m_scales.rename(static_cast<std::size_t>(row), name.toStdString());
}

void CTypeManagerDialog::removeChordTypes()
{
    for (const int row : selectedRows(m_chordList))
        m_types.remove(static_cast<std::size_t>(row));
    refreshChordTypes();
}

void CTypeManagerDialog::removeScales()
{
    for (const int row : selectedRows(m_scaleList))
        m_scales.remove(static_cast<std::size_t>(row));
    refreshScales();
}

bool CTypeManagerDialog::loadChordTypes(const QString& path)
{
    WaitCursor wait;
    const bool ok = report(m_types.load(path.toStdString()));
    refreshChordTypes();
    return ok;
}

bool CTypeManagerDialog::saveChordTypes(const QString& path)
{
    WaitCursor wait;
    return report(m_types.save(path.toStdString()));
}

bool CTypeManagerDialog::loadScales(const QString& path)
{
    WaitCursor wait;
    const bool ok = report(m_scales.load(path.toStdString()));
    refreshScales();
    return ok;
}

bool CTypeManagerDialog::saveScales(const QString& path)
{
    WaitCursor wait;
    return report(m_scales.save(path.toStdString()));
}

QString CTypeManagerDialog::askOpenPath(const char* filter)
{
    return QFileDialog::getOpenFileName(this, tr("Load List"),
                                        fromStd(m_dataFolder.userFolder().string()),
                                        FileFilters::fromPairs(QString::fromLatin1(filter)));
}

QString CTypeManagerDialog::askSavePath(const char* filter)
{
    return QFileDialog::getSaveFileName(this, tr("Save List"),
                                        fromStd(m_dataFolder.userFolder().string()),
                                        FileFilters::fromPairs(QString::fromLatin1(filter)));
}

} // namespace app

#include "MachineViewTestSupport.h"

#include "app/CTonalmancerDoc.h"
#include "app/UndoRouter.h"
#include "part/PartFile.h"
#include "song/MachineScanner.h"
#include "song/PartWriter.h"

#include <QAbstractItemModelTester>
#include <QTest>

namespace apptest {

namespace {

song::MachineDatabaseEntry entry(const char* dll, const char* shortName,
                                 std::vector<song::DllParameterInfo> parameters, int global)
{
    song::DllMachineInfo info;
    info.shortName = shortName;
    info.minTracks = 1;
    info.maxTracks = 8;
    info.globalParameterCount = global;
    info.trackParameterCount = static_cast<int>(parameters.size()) - global;
    info.parameters = std::move(parameters);
    return song::MachineScanner::entryFromInfo(info, dll, 1);
}

} // namespace

void MachineViewFixture::SetUp()
{
    AppFixture::SetUp();
    const std::filesystem::path data = m_data.path().toStdString();
    ASSERT_TRUE(song::MachineScanner::addEntry(
        data, entry("Test Sampler", "Sampler",
                    {{0, "Note", "", 1, 156, 0, 0, 0}, {2, "Wave", "", 1, 200, 0, 0, 0}}, 0)));
    ASSERT_TRUE(song::MachineScanner::addEntry(
        data, entry("Test Drums", "Drums", {{1, "Trigger", "", 0, 1, 255, 0, 0}}, 0)));
    ASSERT_TRUE(frame().loadDefaultSong());
    view().showMachineView(true);
    // Every change of the machine list must keep the model's signals consistent.
    new QAbstractItemModelTester(
        panel().model(), QAbstractItemModelTester::FailureReportingMode::Fatal, panel().model());
}

QStringList MachineViewFixture::rows()
{
    QStringList names;
    const app::MachineListModel& model = *panel().model();
    for (int row = 0; row < model.rowCount(); ++row)
        names << model.index(row, app::MachineListModel::NameColumn).data().toString();
    return names;
}

void MachineViewFixture::selectRows(const QStringList& names)
{
    std::vector<std::string> list;
    for (const QString& name : names)
        list.push_back(name.toStdString());
    panel().selectNames(list);
    const int first = names.isEmpty() ? -1 : panel().model()->rowOfName(list.front());
    panel().view()->selectionModel()->setCurrentIndex(first < 0 ? QModelIndex()
                                                                : panel().model()->index(first, 0),
                                                      QItemSelectionModel::NoUpdate);
}

QAction* MachineViewFixture::item(const char* id)
{
    return panel().contextMenu()->findChild<QAction*>(QString::fromLatin1(id));
}

std::size_t MachineViewFixture::databaseIndex(const std::string& dll)
{
    song::MachineDatabase database;
    EXPECT_TRUE(database.load(m_data.path().toStdString()));
    const std::size_t index = database.findByDllName(dll);
    EXPECT_NE(index, song::MachineDatabase::kNotFound) << dll;
    return index;
}

void MachineViewFixture::addEveryKind()
{
    for (const char* dll : {"Test Sampler", "Test Drums", "Jeskola Freeverb"})
        ASSERT_TRUE(panel().commands().addFromDatabase(databaseIndex(dll))) << dll;
}

void MachineViewFixture::writeDemoPart(std::size_t machine)
{
    part::Part demo;
    ASSERT_TRUE(
        part::PartFile::load(m_data.file(QStringLiteral("default.prt")).toStdString(), demo));
    ASSERT_TRUE(document().edit(QStringLiteral("Create Buzz Patterns"), [&](song::BuzzSong& s) {
        song::PartWriteOptions options;
        options.makeSequence = true;
        return song::PartWriter::write(s, machine, demo, options).ok()
                   ? music::Result::success()
                   : music::Result::failure("the demo part was not written");
    }));
}

QString MachineViewFixture::undoText()
{
    view().undoRouter()->activateFor(panel().view());
    return frame().action("edit.undo")->text();
}

void MachineViewFixture::focusMachineList()
{
    showActiveFrame();
    panel().view()->setFocus();
}

} // namespace apptest

#pragma once

#include "AppTestSupport.h"

#include "app/MachineCommands.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"
#include "app/MachineTreeView.h"
#include "song/BuzzSong.h"
#include "song/MachineDatabase.h"

#include <QAction>
#include <QMenu>
#include <QStringList>

#include <ostream>

/** Failures print texts as texts. */
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace apptest {

/**
 * The program with the default song open in the machine view. machines.ini also knows a sampler
 * ("Test Sampler": a note and a wave parameter per track) and a drum machine without notes
 * ("Test Drums"), so that every kind of machine can be added.
 */
class MachineViewFixture : public AppFixture
{
protected:
    void SetUp() override;

    app::MachinePanel& panel() { return *view().machinePanel(); }
    song::BuzzSong& song() { return *document().song(); }
    /** The names the machine view lists, top to bottom. */
    QStringList rows();
    /** Selects these machines of the view (and makes the first current). */
    void selectRows(const QStringList& names);
    /** The context menu's item of a command. */
    QAction* item(const char* id);
    /** The database index of a DLL in the data folder's machines.ini. */
    std::size_t databaseIndex(const std::string& dll);
    /** Adds Test Sampler, Test Drums and Freeverb: the song then holds every kind. */
    void addEveryKind();
    /** Writes the shipped demo part into machine `machine` with a sequence. */
    void writeDemoPart(std::size_t machine);
    /** The Undo command's text while the machine view is the region of undo. */
    QString undoText();
    /** Shows the window and puts the focus into the machine list, for keys. */
    void focusMachineList();
};

} // namespace apptest

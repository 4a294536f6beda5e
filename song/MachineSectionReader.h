#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/ByteCursor.h"
#include "song/MachineCatalog.h"
#include "song/UnknownMachineHandler.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/**
 * Reads the MACH section of a song: each machine's record, resolved through the catalog (an
 * unknown machine goes to the handler, see SongReader), and its state, laid out as the database or
 * the song's own parameter descriptions say. All references must outlive the reader.
 */
class MachineSectionReader
{
public:
    /**
     * `c` stands at the start of the section inside `data`, the whole file; machines are appended
     * to `song`, whose connections are read already. `para` and `patt` are the song's PARA and PATT
     * sections (null when absent), peeked at to learn an unknown machine.
     */
    MachineSectionReader(ByteCursor& c, std::string_view data, BuzzSong& song,
                         MachineCatalog& catalog, UnknownMachineHandler* handler,
                         std::vector<std::string>& warnings, const SectionEntry* para,
                         const SectionEntry* patt)
        : m_c(c), m_data(data), m_song(song), m_catalog(catalog), m_handler(handler),
          m_warnings(warnings), m_para(para), m_patt(patt)
    {}

    /** Reads the machine count and every machine; on failure the song keeps no machines. */
    music::Result readMachines();

    /** The machines (name and DLL) read by a database layout that the song doesn't confirm. */
    const std::vector<std::string>& unconfirmed() const { return m_unconfirmed; }

private:
    music::Result readMachine(SongMachine& machine);
    music::Result resolve(SongMachine& machine);
    music::Result learn(SongMachine& machine, const MachineParameterSet& set);
    void useSongDescription(SongMachine& machine, const MachineParameterSet& set);
    const MachineParameterSet* songParameterSet(const std::string& machineName);
    std::uint16_t peekTrackCount(const MachineParameterSet& set);
    std::uint16_t peekPatternTrackCount();

    ByteCursor& m_c;
    std::string_view m_data;
    BuzzSong& m_song;
    MachineCatalog& m_catalog;
    UnknownMachineHandler* m_handler = nullptr;
    std::vector<std::string>& m_warnings;
    const SectionEntry* m_para = nullptr;
    const SectionEntry* m_patt = nullptr;
    std::optional<std::vector<MachineParameterSet>> m_songSets; // the song's PARA, parsed lazily
    std::vector<std::string> m_unconfirmed; // machines read by a layout the song doesn't confirm
};

} // namespace song

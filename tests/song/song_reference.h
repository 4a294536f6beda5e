#pragma once

// A small but complete song, laid out byte by byte from the file format: a master and one
// generator "Lead" (DLL "TestGen") with two tracks, one connection, one pattern each, a sequence,
// a MIDI binding, a parameter window, parameter descriptions, one wave and an unknown section.

#include "song_test_support.h"

#include "song/MemoryMachineCatalog.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

namespace songtest {

/** The database entry of the generator: global Cutoff (byte), Glide (word); track Note, Velocity.
 */
inline song::MachineDatabaseEntry leadEntry()
{
    return entry("TestGen", 1,
                 {{"Cutoff", 2, false, 0xFF, 0x40},
                  {"Glide", 3, false, 0xFFFF, 0x100},
                  {"Note", 0, true, 0, 0},
                  {"Velocity", 2, true, 0xFF, 0x80}},
                 1, 16);
}

inline song::MemoryMachineCatalog referenceCatalog()
{
    return song::MemoryMachineCatalog({masterEntry(), leadEntry()});
}

inline std::string machSection(const std::string& leadDll = "TestGen")
{
    Bytes b;
    b.u16(2);
    // Master: name, type 0, no DLL name, x, y, no data, no attributes, 5 bytes of state, 0 tracks.
    b.str("Master").u8(0).u32(0x3F800000).u32(0xBF000000).u32(0).u16(0);
    b.u16(0x4000).u16(126).u8(4).u16(0);
    // Lead: DLL machine with 3 data bytes, one attribute, 3 bytes global state, 2 tracks of 2.
    b.str("Lead").u8(1).str(leadDll).u32(0x3E000000).u32(0x3D000000);
    b.u32(3).u8(1).u8(2).u8(3);
    b.u16(1).str("Mode").u32(-5);
    b.u8(0x40).u16(0x100);
    return b.u16(2).u8(0).u8(0x80).u8(0).u8(0x80).data();
}

inline std::string connSection()
{
    return Bytes().u16(1).u16(1).u16(0).u16(0x4000).u16(0x4000).data();
}

inline std::string pattSection()
{
    Bytes b;
    // Master: 1 pattern, 0 tracks; pattern "00" of 2 rows with the input block from machine 1.
    b.u16(1).u16(0).str("00").u16(2);
    b.u16(1).u16(0xFFFF).u16(0xFFFF).u16(0x2000).u16(0x4000);
    b.u16(0xFFFF).u16(0xFFFF).u8(0xFF).u16(0xFFFF).u16(0xFFFF).u8(0xFF);
    // Lead: 1 pattern, 2 tracks; "Intro", 2 rows: global rows (Cutoff, Glide), then track 0, 1.
    b.u16(1).u16(2).str("Intro").u16(2);
    b.u8(0x10).u16(0xFFFF).u8(0xFF).u16(0x0200);
    b.u8(0x41).u8(0x60).u8(0).u8(0xFF);               // track 0: C-4 vel 0x60, then nothing
    return b.u8(0).u8(0xFF).u8(0x45).u8(0xFF).data(); // track 1: nothing, then E-4
}

inline std::string sequSection()
{
    Bytes b;
    b.u32(64).u32(0).u32(32).u16(2);
    b.u16(1).u32(3).u8(1).u8(1).u8(0).u8(16).u8(16).u8(16).u8(32).u8(1);
    return b.u16(0).u32(0).data(); // an empty sequence has no width bytes
}

inline std::string paraSection()
{
    Bytes b;
    b.u32(2);
    b.str("Master").str("Master").u32(3).u32(0);
    b.u8(3).str("Volume").u32(0).u32(0x4000).u32(0xFFFF).u32(2).u32(0x4000);
    b.u8(3).str("BPM").u32(16).u32(500).u32(0xFFFF).u32(2).u32(126);
    b.u8(2).str("TPB").u32(1).u32(32).u32(0xFF).u32(2).u32(4);
    b.str("Lead").str("TestGen").u32(2).u32(2);
    b.u8(2).str("Cutoff").u32(0).u32(0xFE).u32(0xFF).u32(2).u32(0x40);
    b.u8(3).str("Glide").u32(0).u32(0xFFFE).u32(0xFFFF).u32(2).u32(0x100);
    b.u8(0).str("Note").u32(0).u32(0).u32(0).u32(0).u32(0);
    return b.u8(2).str("Velocity").u32(0).u32(0xFE).u32(0xFF).u32(2).u32(0x80).data();
}

inline std::string wavtSection()
{
    Bytes b;
    b.u16(1).u16(3).str("C:\\waves\\kick.wav").str("Kick").u32(0x3F800000).u8(0);
    return b.u8(1).u32(100).u32(0).u32(100).u32(44100).u8(0x41).data();
}

inline std::string midiSection()
{
    return Bytes().str("Lead").u8(1).u8(2).u8(3).u8(4).u8(5).u8(0).data();
}

/** The window flag, then per open window the machine name and 44 bytes, ended by an empty name. */
inline std::string pdlgSection(const std::vector<std::string>& windows = {"Lead"}, int first = 1)
{
    Bytes b;
    b.u8(1);
    for (const std::string& name : windows) {
        b.str(name);
        for (int i = 0; i < 44; ++i)
            b.u8(first + i);
    }
    return b.u8(0).data();
}

/** The sections in the order the tracker itself writes them. */
inline std::vector<Section> referenceSections()
{
    // clang-format off
    return {{"BVER", Bytes().str("Buzz 1.3 test  ").data()}, {"PARA", paraSection()},
            {"MACH", machSection()}, {"CONN", connSection()}, {"WAVT", wavtSection()},
            {"PATT", pattSection()}, {"SEQU", sequSection()}, {"BLAH", "hello"},
            {"PDLG", pdlgSection()}, {"MIDI", midiSection()}, {"CWAV", "wave data bytes"}};
    // clang-format on
}

inline std::string referenceSong()
{
    return songFile(referenceSections());
}

/** The sections without the ones named, for tests of absent sections. */
inline std::vector<Section> sectionsWithout(const std::vector<std::string>& names)
{
    std::vector<Section> result = referenceSections();
    std::erase_if(result, [&](const Section& s) { return std::ranges::count(names, s.name) > 0; });
    return result;
}

/** The sections with the named one's bytes replaced. */
inline std::vector<Section> sectionsWith(const std::string& name, const std::string& bytes)
{
    std::vector<Section> result = referenceSections();
    for (Section& s : result) {
        if (s.name == name)
            s.bytes = bytes;
    }
    return result;
}

/** Reads song bytes with the reference catalog, expecting success. */
inline song::BuzzSong readReference(const std::string& bytes = referenceSong())
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    song::BuzzSong song;
    const music::Result r = song::SongReader(catalog, nullptr).readBytes(bytes, song);
    EXPECT_TRUE(r.ok()) << r.code();
    return song;
}

/** Saves the song with the writer and reads the file back with the reference catalog. */
inline music::Result writeAndReread(const song::BuzzSong& song, song::BuzzSong& reread)
{
    TempFolder folder("reread");
    const auto path = folder.path() / "song.bmx";
    if (music::Result r = song::SongWriter::write(song, path); !r)
        return r;
    song::MemoryMachineCatalog catalog = referenceCatalog();
    return song::SongReader(catalog, nullptr).read(path, reread);
}

/** Expects the song to save and read back unchanged. */
inline void expectRoundTrip(const song::BuzzSong& song)
{
    song::BuzzSong reread;
    const music::Result r = writeAndReread(song, reread);
    ASSERT_TRUE(r.ok()) << r.code();
    expectSameModel(song, reread);
}

} // namespace songtest

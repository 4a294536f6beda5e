#pragma once

#include <string>

namespace song {

/**
 * The numeric codes a failed song read or write reports in its music::Result. Each names the step
 * that failed; the front ends show them after "Error loading file \n Code:\t" or
 * "Error saving file \n Code:\t".
 */
struct FileErrorCode
{
    // Reading.
    static constexpr int kDirectoryEntry = 1; // also: a section reaching past the end of the file
    static constexpr int kHeader = 4;
    static constexpr int kMachineDatabase = 11; // machines.ini could not be read
    static constexpr int kAttribute = 22;
    static constexpr int kMachineRecord = 25;
    static constexpr int kUnknownMachine = 26;
    static constexpr int kMachineAllocation = 28;
    static constexpr int kMachineSeek = 30;
    static constexpr int kConnection = 34;
    static constexpr int kConnectionCount = 39;
    static constexpr int kPatternHeader = 43;
    static constexpr int kPatternBlockHeader = 47;
    static constexpr int kPatternAllocation = 66;
    static constexpr int kSequenceEvent = 83;
    static constexpr int kSequenceHeader = 85;
    static constexpr int kSongLength = 91;
    static constexpr int kEventWidth = 92; // a width above 2 (also a position width of 0)
    static constexpr int kPdlg = 123;
    static constexpr int kMidiEntry = 125; // reading, and writing an entry
    static constexpr int kMidiProbe = 129;
    static constexpr int kParameterDescription = 131;
    static constexpr int kParameterSet = 135;
    static constexpr int kParameterSetCount = 141;
    static constexpr int kEventWidthZero = 192;
    static constexpr int kPatternRows = 270;
    static constexpr int kNotBuzzFile = 666;

    // Writing.
    static constexpr int kWriteDirectoryEntry = 2;
    static constexpr int kWriteConnection = 35;
    static constexpr int kWriteConnectionCount = 109;
    static constexpr int kWriteHeader = 112; // also: the file could not be created or replaced
    static constexpr int kWriteAttribute = 113;
    static constexpr int kWriteMachineRecord = 114;
    static constexpr int kWriteMachineCount = 115;
    static constexpr int kWritePattern = 116;
    static constexpr int kWritePatternBlock = 117;
    static constexpr int kWriteSequenceEvent = 118;
    static constexpr int kWriteSequence = 119;
    static constexpr int kWriteSongLength = 120;
    static constexpr int kWritePdlg = 124;
    static constexpr int kWriteMidiEntry = 125;
    static constexpr int kWriteMidiEnd = 130;
    static constexpr int kWriteParameterSet = 136;
    static constexpr int kWriteParameterSetCount = 142;
    static constexpr int kWriteRawSection = 254;
};

/** "Error loading file \n Code:\t" and the code in decimal. */
inline std::string loadErrorText(int code)
{
    return "Error loading file \n Code:\t" + std::to_string(code);
}

/** "Error saving file \n Code:\t" and the code in decimal. */
inline std::string saveErrorText(int code)
{
    return "Error saving file \n Code:\t" + std::to_string(code);
}

} // namespace song

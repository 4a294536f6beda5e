// Feeds arbitrary bytes to every reader of the program's text files. The first byte picks the
// reader; whatever the input, a reader must return a result, never crash or grow without bound.
// A part that was read is also rendered through the row rule, which must cope with any values.

#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"
#include "part/PartFile.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"
#include "part/RowRenderer.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 6) {
    case 0: {
        music::ChordTypeList list;
        (void)list.read(bytes);
        break;
    }
    case 1: {
        music::ScaleList list;
        (void)list.read(bytes);
        break;
    }
    case 2: {
        music::ChordCollection collection;
        (void)collection.read(bytes);
        break;
    }
    case 3: {
        const part::Part p = part::PartFile::parse(bytes);
        part::RenderOptions options;
        for (int c = 0; c < p.count() && c < 8; ++c) {
            const part::PreparedChord chord =
                part::prepareChord(p.chord(c), part::IndexOption::ExtendChord);
            for (int row = 0; row < part::kRowCount; ++row)
                (void)part::renderPartRow(p, chord, c, row, options);
        }
        break;
    }
    case 4: {
        part::PatternPresetList list;
        (void)list.parse(bytes);
        break;
    }
    default: {
        part::PartPresetList list;
        (void)list.parse(bytes);
        break;
    }
    }
    return 0;
}

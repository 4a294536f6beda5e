#include "music/DefaultDatabase.h"

namespace music {

ChordCollection DefaultDatabase::build(const ChordTypeList& types, const ScaleList& scales)
{
    ChordCollection collection;
    collection.generateList(types);
    collection.addScaleGroups(scales,
                              std::vector<std::string>(kScaleGroups.begin(), kScaleGroups.end()));
    return collection;
}

} // namespace music

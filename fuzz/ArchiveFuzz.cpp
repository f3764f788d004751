// The archive's own reading, and the property bag: bytes are read as whatever the first of them ask for. A bag that was read is written
// and read again as the same.

#include <cstdint>
#include <cstdlib>

#include "support/Streams.h"
#include "tools/Array.h"
#include "tools/Color.h"
#include "tools/CustomData.h"
#include "tools/ElementArray.h"
#include "tools/OffsetArray.h"
#include "tools/SimpleCollection.h"

namespace {

using Text = CXTString<wchar_t>;

void ReadBag(CXArchive& ar)
{
    CCustomData bag, again;
    bag.Serialize(ar);
    if (!Load(again, Stored(bag)) || !(bag == again))
        std::abort();
    Text dump;
    bag.DumpCustomData(dump, 0, true);
    CCustomData copy(bag);
    if (copy.GetChecksum() != again.GetChecksum())
        std::abort();
}

template <class T> void ReadInto(CXArchive& ar)
{
    T value;
    value.Serialize(ar);
}

/// One reading of the archive's interface.
void ReadOne(CXArchive& ar, unsigned int what)
{
    Text text;
    double number;
    bool flag;
    switch (what % 10) {
    case 0: return ReadBag(ar);
    case 1: ar >> text; return;
    case 2: ar >> number >> flag; return;
    case 3: ar.ReadCount(); return;
    case 4: ar.ReadClass(); return;
    case 5: delete ar.ReadObject(CCustomData::GetThisRuntimeClassDescriptor()); return;
    case 6: return ReadInto<CXArray<Text>>(ar);
    case 7: return ReadInto<COffsetArray>(ar);
    case 8: return ReadInto<CSimpleCollection<int, unsigned short>>(ar);
    case 9: return ReadInto<CElementArray>(ar);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t MOST_READINGS = 4;    // a byte each, in front
    if (size < MOST_READINGS)
        return 0;
    LoadedBy(
        StreamBytes(data + MOST_READINGS, data + size),
        [&](CXArchive& ar) {
            for (std::size_t i = 0; i < MOST_READINGS; i++)
                ReadOne(ar, data[i]);
        },
        data[0] & 0x80 ? 64 : 4096);
    return 0;
}

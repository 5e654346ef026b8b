// Start-code scanning in chunks against a byte-by-byte search, and the
// length-prefixed NAL walk with every length size, over arbitrary bytes.
// The first input byte chooses the chunk size.
#include <vek/elementary/NalUnitIterator.h>
#include <vek/elementary/StartCodeScanner.h>

#include <cstdlib>
#include <initializer_list>

using namespace Quorvex::Vek;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const size_t chunk = size_t(data[0]) + 1;
    ++data;
    --size;
    StartCodeScanner scanner;
    size_t expectedAt = 2;
    for (size_t at = 0; at < size; at += chunk) {
        scanner.Feed(data + at, chunk < size - at ? chunk : size - at);
        StartCodeScanner::Hit hit;
        while (scanner.Next(hit)) {
            while (expectedAt < size && !(data[expectedAt] == 1 && data[expectedAt - 1] == 0 && data[expectedAt - 2] == 0))
                ++expectedAt;
            if (expectedAt >= size || hit.payloadOffset != int64_t(expectedAt) + 1)
                abort();
            const int prefix = expectedAt >= 3 && data[expectedAt - 3] == 0 ? 4 : 3;
            if (hit.prefixBytes != prefix)
                abort();
            ++expectedAt;
        }
    }
    while (expectedAt < size && !(data[expectedAt] == 1 && data[expectedAt - 1] == 0 && data[expectedAt - 2] == 0))
        ++expectedAt;
    if (expectedAt < size)
        abort(); // a prefix the scanner missed

    for (int lengthBytes : {1, 2, 4}) {
        NalUnitIterator units(data, size, lengthBytes);
        const uint8_t* unit = nullptr;
        size_t unitSize = 0;
        while (units.Next(unit, unitSize) == 0) {
            if (unit < data || unitSize == 0 || unitSize > size_t(data + size - unit))
                abort();
        }
    }
    return 0;
}

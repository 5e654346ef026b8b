// Runs a random script of reads, writes, seeks and flushes against a block
// cache over a memory stream and against a plain memory stream, and stops
// at the first answer or byte where the two differ.
#include <vek/core/RObject.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CMemoryStream.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace Quorvex::Vek;

namespace {

class Script {
public:
    Script(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    bool Done() const { return m_at >= m_size; }
    uint32_t Take(int bytes)
    {
        uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value = (value << 8) | (m_at < m_size ? m_data[m_at++] : 0);
        return value;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_at = 0;
};

void Check(bool same)
{
    if (!same)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Script script(data, size);
    const int32_t blockSize = int32_t(script.Take(1) % 64);      // 0 means no cache
    const int32_t blockCount = int32_t(script.Take(1) % 6);
    const int32_t initialSize = int32_t(script.Take(2) % 2048);

    std::vector<unsigned char> initial(static_cast<size_t>(initialSize));
    for (size_t i = 0; i < initial.size(); ++i)
        initial[i] = uint8_t(i * 31 + 7);
    RObject<CMemoryStream> twin(new CMemoryStream());
    RObject<CMemoryStream> inner(new CMemoryStream());
    twin->Write(initial.data(), initialSize);
    twin->Seek(0, CStream::Begin);
    inner->Write(initial.data(), initialSize);
    RObject<CBufferedStream> cache(new CBufferedStream(inner, blockSize, blockCount));

    std::vector<unsigned char> a, b;
    while (!script.Done()) {
        const uint32_t op = script.Take(1);
        const int32_t count = int32_t(1 + script.Take(2) % 1024);
        switch (op % 4) {
        case 0: {
            a.assign(size_t(count), 0xEE);
            b.assign(size_t(count), 0xEE);
            Check(cache->Read(a.data(), count) == twin->Read(b.data(), count));
            Check(a == b);
            break;
        }
        case 1: {
            a.resize(size_t(count));
            for (int32_t i = 0; i < count; ++i)
                a[size_t(i)] = uint8_t(op + i);
            Check(cache->Write(a.data(), count) == twin->Write(a.data(), count));
            break;
        }
        case 2: {
            const int origin = int(op >> 2) % 3;
            const int64_t offset = int64_t(script.Take(2) % 4096) - 1024;
            int64_t p1 = -1, p2 = -1;
            Check(cache->Seek(offset, CStream::SeekOrigin(origin), &p1) ==
                  twin->Seek(offset, CStream::SeekOrigin(origin), &p2));
            Check(p1 == p2);
            break;
        }
        case 3:
            Check(cache->Flush() == 0);
            break;
        }
        Check(cache->GetPosition() == twin->GetPosition());
        Check(cache->GetLength() == twin->GetLength());
    }
    Check(cache->Flush() == 0);
    Check(inner->GetLength() == twin->GetLength());
    Check(std::memcmp(inner->GetData(), twin->GetData(), size_t(twin->GetLength())) == 0);
    return 0;
}

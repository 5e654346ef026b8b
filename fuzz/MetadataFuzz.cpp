// Feeds the input to both metadata readers. Whatever parses must write out
// to the same bytes it was read from (the layout has one spelling for each
// content), and must read back from its other form to the same content.
#include <vek/core/RObject.h>
#include <vek/samples/CMetadata.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace Quorvex::Vek;

namespace {

void Check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "MetadataFuzz: %s\n", what);
        std::abort();
    }
}

bool SameBytes(CByteArray* a, CByteArray* b)
{
    return a && b && a->GetLength() == b->GetLength() &&
           (a->GetLength() == 0 || std::memcmp(a->GetData(), b->GetData(), size_t(a->GetLength())) == 0);
}

void RoundTrip(CByteArray* input, bool atom)
{
    RObject<CMetadata> metadata(atom ? CMetadata::FromAtom(input) : CMetadata::FromByteArray(input));
    if (!metadata)
        return;
    RObject<CByteArray> same(atom ? metadata->ToAtom() : metadata->ToByteArray());
    Check(SameBytes(same, input), atom ? "atom does not write back as read" : "bytes do not write back as read");
    RObject<CByteArray> other(atom ? metadata->ToByteArray() : metadata->ToAtom());
    RObject<CMetadata> back(atom ? CMetadata::FromByteArray(other) : CMetadata::FromAtom(other));
    Check(back.Get() != nullptr, "the other form does not parse");
    RObject<CByteArray> again(atom ? back->ToAtom() : back->ToByteArray());
    Check(SameBytes(again, input), "content changed through the other form");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > (1u << 20))
        return 0;
    RObject<CByteArray> input(CByteArray::Create(data, static_cast<int32_t>(size)));
    if (!input)
        return 0;
    RoundTrip(input, false);
    RoundTrip(input, true);
    return 0;
}

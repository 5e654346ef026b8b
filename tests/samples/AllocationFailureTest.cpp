// Allocation-failure walks over sample creation and the metadata forms.
#include <vek/core/CPoolBase.h>
#include <vek/core/Result.h>
#include <vek/samples/CAncillaryMetadataElement.h>
#include <vek/samples/CBufferDataReference.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CMediaSampleQueue.h>
#include <vek/samples/CMetadata.h>
#include <vek/samples/CTimecodeMetadataElement.h>
#include <vek/samples/CVideoSample.h>

#include <gtest/gtest.h>

#include "support/AllocationWalk.h"

using namespace Quorvex::Vek;

#if VEK_FAULT_INJECTION
namespace {

// Metadata with one element of each structured kind and a generic one;
// null when any piece could not be made.
CMetadata* MakeFrameMetadata()
{
    RObject<CMetadata> metadata(new (fallible) CMetadata());
    const unsigned char words[] = {1, 2, 3};
    RObject<CMetadataElement> timecode(CTimecodeMetadataElement::Create(CTimeCode(25.0, false)));
    RObject<CMetadataElement> packet(CAncillaryMetadataElement::Create(9, 0x61, 1, words, 3));
    RObject<CMetadataElement> generic(CMetadataElement::Create(Four("user"), words, 2));
    if (!metadata || !timecode || !packet || !generic)
        return nullptr;
    if (metadata->AddElement(timecode) < 0 || metadata->AddElement(packet) < 0 || metadata->AddElement(generic) < 0)
        return nullptr;
    return metadata.Detach();
}

} // namespace

TEST(AllocationFailure, SampleCreation)
{
    const int walked = VekTest::WalkAllocationFailures("pooled samples with bytes and an atom", [] {
        // A pool of its own: the shared pools keep samples made in the walk.
        RObject<CPool<CVideoSample>> pool(CPool<CVideoSample>::Create(2));
        if (!pool)
            return true;
        RObject<CVideoSample> sample(pool->Get());
        if (!sample)
            return true;
        RObject<CLinearDataReference> bytes(CLinearDataReference::Create(32));
        const unsigned char atom[] = {1, 2, 3};
        const int atomResult = sample->SetAtomData(atom, 3);
        if (atomResult != RESULT_OK && atomResult != RESULT_OUT_OF_MEMORY)
            return false;
        if (atomResult == RESULT_OUT_OF_MEMORY && sample->GetAtomLength() != 0)
            return false;
        sample->SetDataReference(bytes);
        RObject<CLockedDataReference> guard(bytes ? sample->GetLockedDataReference() : nullptr);
        if (guard && guard->GetLength() != 32)
            return false;
        RObject<CMediaSampleQueue> queue(CMediaSampleQueue::Create(3));
        if (queue && queue->Enqueue(sample) != RESULT_OK)
            return false;
        FaultInjection::Disarm();
        return sample->SetAtomData(atom, 2) == RESULT_OK;
    });
    EXPECT_GE(walked, 6) << "pool, sample, monitor, atom, bytes, guard, queue";
}

TEST(AllocationFailure, MetadataForms)
{
    const int walked = VekTest::WalkAllocationFailures("metadata to and from bytes and atoms, split and merge", [] {
        RObject<CMetadata> metadata(MakeFrameMetadata());
        if (!metadata)
            return true;
        RObject<CByteArray> bytes(metadata->ToByteArray());
        RObject<CByteArray> atom(metadata->ToAtom());
        RObject<CMetadata> fromBytes(bytes ? CMetadata::FromByteArray(bytes) : nullptr);
        RObject<CMetadata> fromAtom(atom ? CMetadata::FromAtom(atom) : nullptr);
        for (CMetadata* copy : {fromBytes.Get(), fromAtom.Get()}) {
            if (copy && copy->GetElementCount() != 3)
                return false;
        }
        CMetadata* first = nullptr;
        CMetadata* second = nullptr;
        const int split = metadata->Split(first, second);
        RObject<CMetadata> a(first), b(second);
        if (split < 0 && (first || second || split != RESULT_OUT_OF_MEMORY))
            return false;
        if (a) {
            const int merged = a->Merge(b);
            if (merged < 0 && (merged != RESULT_OUT_OF_MEMORY || a->GetElementCount() != 3))
                return false;
        }
        RObject<CMetadata> clone(metadata->Clone());
        if (clone && clone->GetElementCount() != 3)
            return false;
        FaultInjection::Disarm();
        RObject<CByteArray> after(metadata->ToAtom());
        return after && after->GetLength() == 8 + metadata->GetLength();
    });
    EXPECT_GE(walked, 20);
}
#else
TEST(AllocationFailure, NeedsTheHook)
{
    VEK_REQUIRE_FAULT_INJECTION();
}
#endif

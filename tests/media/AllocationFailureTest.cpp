// Allocation-failure walks over property bags and timecode text.
#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/CAudioProperties.h>
#include <vek/media/CTimeCode.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/AllocationWalk.h"

using namespace Quorvex::Vek;

#if VEK_FAULT_INJECTION
TEST(AllocationFailure, PropertyBags)
{
    VekTest::WalkAllocationFailures("set, copy and format", [] {
        RObject<CAudioProperties> audio(new (fallible) CAudioProperties());
        if (!audio)
            return true;
        // Each write either lands whole or reports memory; the bag never
        // holds a half-made entry.
        int stored = 0;
        for (int i = 0; i < 6; ++i) {
            const std::string key = "test.key" + std::to_string(i);
            const int result = audio->SetProperty(key.c_str(), 3, reinterpret_cast<const unsigned char*>("abc"));
            if (result == RESULT_OUT_OF_MEMORY)
                continue;
            if (result < 0)
                return false;
            ++stored;
        }
        if (audio->GetPropertyCount() != stored)
            return false;
        RObject<CMediaProperties> copy(audio->Clone());
        if (copy && copy->GetPropertyCount() != stored)
            return false;
        RObject<CString> rate(audio->GetPropertyValue(AudioProperty::MpegLayer));
        FaultInjection::Disarm();
        // Still usable: a write after the failures goes in.
        return audio->SetProperty("test.after", 1, reinterpret_cast<const unsigned char*>("z")) == 0 &&
               audio->GetPropertyCount() == stored + 1;
    });
}

TEST(AllocationFailure, TimecodeText)
{
    VekTest::WalkAllocationFailures("label round trip", [] {
        CTimeCode timecode(29.97, true);
        timecode.FromString("01:02:03;04");
        RObject<CString> label(timecode.ToString(';'));
        return !label || std::strcmp(label->GetChars(), "01:02:03;04") == 0;
    });
}
#else
TEST(AllocationFailure, NeedsTheHook)
{
    VEK_REQUIRE_FAULT_INJECTION();
}
#endif

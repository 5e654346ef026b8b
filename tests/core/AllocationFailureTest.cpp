// Allocation-failure walks over the core: every failing allocation gives a
// failure result or null, leaks no object and leaves objects usable.
#include <vek/core/CArray.h>
#include <vek/core/CByteArray.h>
#include <vek/core/CDictionary.h>
#include <vek/core/CLeaks.h>
#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/AllocationWalk.h"

using namespace Quorvex::Vek;

#if VEK_FAULT_INJECTION
namespace {

using Str = RObject<CString>;

// A result that is null (refused) or exactly the expected text.
bool NullOrText(CString* made, const char* expected)
{
    Str held(made);
    return !held || std::strcmp(held->GetChars(), expected) == 0;
}

} // namespace

TEST(AllocationFailure, StringBuilding)
{
    using Check = bool (*)();
    struct Case {
        const char* name;
        Check run;
    };
    const Case cases[] = {
        {"construct", [] {
             Str s(CString::Create("caf\xC3\xA9 au lait"));
             return !s || std::strcmp(s->GetChars(), "caf\xC3\xA9 au lait") == 0;
         }},
        {"append and replace", [] {
             Str s(CString::Create("a-b"));
             if (!s)
                 return true;
             if (!NullOrText(s->Append(VEK_W("\u00E9")), "a-b\xC3\xA9"))
                 return false;
             if (!NullOrText(s->Replace("-", "<>"), "a<>b"))
                 return false;
             FaultInjection::Disarm();
             return NullOrText(s->Substring(1), "-b") && std::strcmp(s->GetChars(), "a-b") == 0;
         }},
        {"split and join", [] {
             Str s(CString::Create("x,yy,,zzz"));
             if (!s)
                 return true;
             RObject<CArray<CString>> parts(s->Split(u','));
             if (!parts)
                 return true;
             if (parts->GetCount() != 4)
                 return false;
             return NullOrText(CString::Join(VEK_W("+"), parts), "x+yy++zzz");
         }},
        {"format", [] { return NullOrText(CString::WithFormat("%s=%d", "rate", 48000), "rate=48000"); }},
        {"hex", [] {
             Str s(CString::Create("0A0b"));
             if (!s)
                 return true;
             RObject<CByteArray> bytes(s->ToBytes(2));
             if (!bytes)
                 return true;
             return NullOrText(CString::FromBytes(bytes), "0A0B");
         }},
    };
    for (const Case& c : cases)
        VekTest::WalkAllocationFailures(c.name, c.run);
}

TEST(AllocationFailure, ByteArraysAndCollections)
{
    VekTest::WalkAllocationFailures("byte array views", [] {
        RObject<CByteArray> bytes(CByteArray::Create(reinterpret_cast<const unsigned char*>("abcdef"), 6));
        if (!bytes || !bytes->GetData())
            return true;
        CByteArray* view = nullptr;
        const int result = bytes->GetData(2, 3, &view);
        RObject<CByteArray> held(view);
        if (result < 0)
            return result == RESULT_OUT_OF_MEMORY && !view;
        return view->Equals(reinterpret_cast<const unsigned char*>("cde"), 3);
    });
    VekTest::WalkAllocationFailures("dictionary", [] {
        RObject<CDictionary<CString, CString>> dictionary(CDictionary<CString, CString>::Create());
        if (!dictionary)
            return true;
        int stored = 0;
        for (int i = 0; i < 12; ++i) {
            const std::string key = "key" + std::to_string(i);
            Str value(CString::Create(key.c_str()));
            if (!value)
                continue;
            const int result = dictionary->Set(key.c_str(), value);
            if (result == RESULT_OUT_OF_MEMORY)
                continue;
            if (result < 0)
                return false;
            ++stored;
        }
        if (dictionary->GetCount() != stored)
            return false;
        // Whatever was stored is found under its own key.
        for (int32_t i = 0; i < dictionary->GetCount(); ++i) {
            CString* key = dictionary->GetKey(i);
            if (!key || !dictionary->GetValue(i)->Equals(key))
                return false;
        }
        return true;
    });
}

// The tracker's own records are allocations too: without them it still
// counts every live object exactly.
TEST(AllocationFailure, LeakTrackerCountsExactly)
{
    for (int n = 1; n < 400; ++n) {
        FaultInjection::FailAllocation(n);
        CLeaks::Mark(CLeaks::Stack);
        int alive = 0;
        RObject<CString> kept;
        for (int i = 0; i < 3; ++i) {
            Str made(CString::Create("tracked"));
            if (made && i == 1) {
                kept = made;
                ++alive;
            }
        }
        const int32_t reported = CLeaks::ShowLeaksSinceMark(CLeaks::Stack);
        FaultInjection::Disarm();
        const bool failed = FaultInjection::HasFailed();
        FaultInjection::FailAllocation(0);
        EXPECT_EQ(reported, alive) << "allocation " << n;
        if (!failed)
            break;
    }
}
#else
TEST(AllocationFailure, NeedsTheHook)
{
    VEK_REQUIRE_FAULT_INJECTION();
}
#endif

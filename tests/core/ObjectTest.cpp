#include "TestObjects.h"

#include <vek/core/BaseObject.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <cstdint>

using namespace Quorvex::Vek;
using VekTest::DerivedProbe;
using VekTest::Probe;

namespace {

using ProbeWrapper = Object<Probe>;

} // namespace

TEST(ObjectLifetime, ReleaseAtOneDestroysExactlyOnce)
{
    std::atomic<int> destroyed{0};
    auto* probe = new Probe(&destroyed);
    EXPECT_EQ(probe->GetReferenceCount(), 1);
    probe->Acquire();
    probe->Release();
    EXPECT_EQ(destroyed, 0);
    probe->Release();
    EXPECT_EQ(destroyed, 1);
}

TEST(ObjectLifetime, TypeTagsArePlainEquality)
{
    RObject<DerivedProbe> derived(new DerivedProbe());
    EXPECT_TRUE(derived->IsType(DerivedProbe::Type));
    EXPECT_FALSE(derived->IsType(Probe::Type)) << "IsType must not walk the class hierarchy";
    EXPECT_EQ(derived->GetType(), 0x64727664u);
    derived->SetType(Four("vide"));
    EXPECT_TRUE(derived->IsType(0x76696465u));
}

TEST(ObjectLifetime, HashCodeSumsAddressHalves)
{
    RObject<Probe> probe(new Probe());
    const auto address = uint64_t(reinterpret_cast<uintptr_t>(probe.Get()));
    EXPECT_EQ(probe->GetHashCode(), int32_t(uint32_t(address >> 32) + uint32_t(address)));
}

TEST(ObjectLifetime, MonitorIsMadeOnFirstLockOnly)
{
    RObject<Probe> probe(new Probe());
    EXPECT_FALSE(probe->HasMonitor());
    probe->Acquire();
    probe->Release();
    EXPECT_FALSE(probe->HasMonitor());
    EXPECT_EQ(probe->Enter(), 0);
    EXPECT_TRUE(probe->HasMonitor());
    EXPECT_EQ(probe->Exit(), 0);

    CObject* lock = CObject::CreateForLock();
    EXPECT_TRUE(lock->HasMonitor());
    EXPECT_EQ(lock->GetType(), 0u);
    lock->Release();
}

TEST(RObjectOwnership, AdoptShareAndReplace)
{
    std::atomic<int> destroyed{0};
    auto* first = new Probe(&destroyed);
    auto* second = new Probe(&destroyed);
    {
        RObject<Probe> owner(first); // adopts: no Acquire
        EXPECT_EQ(first->GetReferenceCount(), 1);
        RObject<Probe> copy = owner; // shares
        EXPECT_EQ(first->GetReferenceCount(), 2);
        RObject<Probe> shared = RObject<Probe>::FromObject(first);
        EXPECT_EQ(first->GetReferenceCount(), 3);

        owner = first; // the pointer already held: nothing happens
        EXPECT_EQ(first->GetReferenceCount(), 3);
        owner = owner;
        EXPECT_EQ(first->GetReferenceCount(), 3);

        copy = second; // releases first, adopts second
        EXPECT_EQ(first->GetReferenceCount(), 2);
        EXPECT_EQ(second->GetReferenceCount(), 1);
        EXPECT_TRUE(copy == second);
        EXPECT_TRUE(copy != owner);

        shared.SafeRelease();
        EXPECT_EQ(shared.Get(), nullptr);
        EXPECT_EQ(first->GetReferenceCount(), 1);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(WrapperOwnership, FromObjectSharesAndDestructorsRestore)
{
    RObject<Probe> probe(new Probe());
    {
        ProbeWrapper a = ProbeWrapper::FromObject(probe);
        ProbeWrapper b = ProbeWrapper::FromObject(probe);
        EXPECT_EQ(probe->GetReferenceCount(), 3);
        EXPECT_TRUE(a == probe.Get());
        EXPECT_EQ(a.ToObject(), b.ToObject());
    }
    EXPECT_EQ(probe->GetReferenceCount(), 1);
}

TEST(WrapperOwnership, AssignmentRules)
{
    std::atomic<int> destroyed{0};
    auto* held = new Probe(&destroyed);
    ProbeWrapper wrapper(held); // adopts
    EXPECT_EQ(held->GetReferenceCount(), 1);

    wrapper = held; // the pointer it holds: nothing
    ProbeWrapper& self = wrapper;
    wrapper = self; // itself: nothing
    EXPECT_EQ(held->GetReferenceCount(), 1);

    ProbeWrapper copy = wrapper;
    EXPECT_EQ(held->GetReferenceCount(), 2);
    copy = ProbeWrapper();
    EXPECT_EQ(held->GetReferenceCount(), 1);

    BaseObject base = BaseObject::FromObject(held);
    EXPECT_EQ(held->GetReferenceCount(), 2);
    base = static_cast<CObject*>(nullptr);
    EXPECT_EQ(held->GetReferenceCount(), 1);

    wrapper = new Probe(&destroyed); // releases the old one
    EXPECT_EQ(destroyed, 1);
    ProbeWrapper empty;
    EXPECT_TRUE(empty.IsNull());
    EXPECT_EQ(empty.ToObject(), nullptr);
}

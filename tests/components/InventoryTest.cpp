#include <vek/components/CComponentInventory.h>
#include <vek/components/CInstanceFactory.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace VekTest {

// Test kinds. Each test uses a kind of its own: inventories live as long as
// the process, so registrations of one test would be seen by the next.
template <int N>
class Gadget : public CObject {
public:
    using ComponentKind = Gadget;
    virtual int Number() const = 0;

protected:
    explicit Gadget(uint32_t type) : CObject(type) {}
};

template <int N, int M>
class Model : public Gadget<N> {
public:
    static constexpr uint32_t Type = Four("modl");
    Model() : Gadget<N>(Type) {}
    int Number() const override { return M; }
};

using Ordered = Gadget<1>;
using Empty = Gadget<2>;
using Shared = Gadget<3>;
using Starved = Gadget<4>;

} // namespace VekTest

VEK_DEFINE_COMPONENT_INVENTORY(VekTest::Ordered)
VEK_DEFINE_COMPONENT_INVENTORY(VekTest::Empty)
VEK_DEFINE_COMPONENT_INVENTORY(VekTest::Shared)
VEK_DEFINE_COMPONENT_INVENTORY(VekTest::Starved)

namespace {

using namespace VekTest;

template <typename Kind>
using Inventory = CComponentInventory<CComponentFactory<Kind>>;

template <typename Impl>
RObject<CComponentFactory<typename Impl::ComponentKind>> MakeFactory(uint32_t id)
{
    return RObject<CComponentFactory<typename Impl::ComponentKind>>(CInstanceFactory<Impl>::Create(id));
}

template <typename Kind>
std::vector<uint32_t> RegisteredIDs()
{
    RObject<CList<CComponentFactory<Kind>>> factories(Inventory<Kind>::GetFactories());
    std::vector<uint32_t> ids;
    for (int32_t i = 0; factories && i < factories->GetCount(); ++i)
        ids.push_back(factories->Get(i)->GetID());
    return ids;
}

} // namespace

TEST(ComponentInventory, KeepsRegistrationOrderAndFindsTheFirstOfAnID)
{
    auto first = MakeFactory<Model<1, 10>>(Four("aaaa"));
    auto second = MakeFactory<Model<1, 20>>(Four("bbbb"));
    auto again = MakeFactory<Model<1, 30>>(Four("aaaa"));
    for (auto* factory : {first.Get(), second.Get(), again.Get()}) {
        ASSERT_EQ(Inventory<Ordered>::AddFactory(factory), RESULT_OK);
        EXPECT_EQ(factory->GetReferenceCount(), 2); // the inventory keeps one
    }
    RObject<CList<CComponentFactory<Ordered>>> snapshot(Inventory<Ordered>::GetFactories());
    EXPECT_EQ(RegisteredIDs<Ordered>(), (std::vector<uint32_t>{Four("aaaa"), Four("bbbb"), Four("aaaa")}));

    struct Case {
        uint32_t id;
        CComponentFactory<Ordered>* factory;
        int model; // 0: nothing made
    };
    const Case cases[] = {
        {Four("aaaa"), first, 10},
        {Four("bbbb"), second, 20},
        {Four("zzzz"), nullptr, 0},
        {0, nullptr, 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Inventory<Ordered>::GetFactoryByID(c.id), c.factory);
        RObject<Ordered> made(Inventory<Ordered>::CreateInstance(c.id));
        EXPECT_EQ(made ? made->Number() : 0, c.model);
        if (made) {
            EXPECT_EQ(made->GetReferenceCount(), 1);
        }
    }

    // A snapshot does not see later registrations.
    auto late = MakeFactory<Model<1, 40>>(Four("cccc"));
    ASSERT_EQ(Inventory<Ordered>::AddFactory(late), RESULT_OK);
    EXPECT_EQ(snapshot->GetCount(), 3);
    EXPECT_EQ(RegisteredIDs<Ordered>().size(), 4u);
}

TEST(ComponentInventory, EmptyAndNull)
{
    VekTest::LogCapture log(1);
    RObject<CList<CComponentFactory<Empty>>> factories(Inventory<Empty>::GetFactories());
    ASSERT_TRUE(factories);
    EXPECT_EQ(factories->GetCount(), 0);
    EXPECT_EQ(Inventory<Empty>::GetFactoryByID(Four("aaaa")), nullptr);
    EXPECT_EQ(Inventory<Empty>::CreateInstance(Four("aaaa")), nullptr);
    EXPECT_EQ(Inventory<Empty>::AddFactory(nullptr), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(log.Count("CComponentInventory::AddFactory: the factory is null\n"), 1u);
    EXPECT_TRUE(RegisteredIDs<Empty>().empty());
}

// Threads register and look up at once; each thread's factories keep its
// own order and every registration is seen exactly once.
TEST(ComponentInventory, ConcurrentRegistrationAndLookup)
{
    constexpr int Threads = 4;
    constexpr int PerThread = 60;
    std::atomic<int> failures{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; ++t) {
        threads.emplace_back([t, &failures, &go] {
            while (!go.load())
                std::this_thread::yield();
            for (int i = 0; i < PerThread; ++i) {
                const uint32_t id = (uint32_t(t) << 16) | uint32_t(i);
                auto factory = MakeFactory<Model<3, 1>>(id);
                if (!factory || Inventory<Shared>::AddFactory(factory) != RESULT_OK ||
                    Inventory<Shared>::GetFactoryByID(id) != factory.Get())
                    ++failures;
                RObject<Shared> made(Inventory<Shared>::CreateInstance(id / 2 * 2));
                if (!made)
                    ++failures;
                // This thread's ids so far appear in the order it added them.
                uint32_t next = uint32_t(t) << 16;
                for (uint32_t seen : RegisteredIDs<Shared>()) {
                    if ((seen >> 16) == uint32_t(t) && seen == next)
                        ++next;
                }
                if (next != id + 1)
                    ++failures;
            }
        });
    }
    go = true;
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    std::vector<uint32_t> ids = RegisteredIDs<Shared>();
    EXPECT_EQ(ids.size(), size_t(Threads * PerThread));
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

#if VEK_FAULT_INJECTION
TEST(AllocationFailure, InventoryReportsAndRecovers)
{
    VekTest::LogCapture log(1);
    auto factory = MakeFactory<Model<4, 7>>(Four("ssss"));
    ASSERT_TRUE(factory);

    // The list made at the first registration.
    FaultInjection::FailAllocation(1);
    EXPECT_EQ(Inventory<Starved>::AddFactory(factory), RESULT_OUT_OF_MEMORY);
    FaultInjection::FailAllocation(0);
    EXPECT_EQ(factory->GetReferenceCount(), 1);
    EXPECT_EQ(Inventory<Starved>::GetFactoryByID(Four("ssss")), nullptr);
    ASSERT_EQ(Inventory<Starved>::AddFactory(factory), RESULT_OK);

    // The snapshot, and the component itself.
    for (int n : {1, 2}) {
        FaultInjection::FailAllocation(n);
        RObject<CList<CComponentFactory<Starved>>> snapshot(Inventory<Starved>::GetFactories());
        FaultInjection::FailAllocation(0);
        EXPECT_FALSE(snapshot) << "allocation " << n;
    }
    FaultInjection::FailAllocation(1);
    RObject<Starved> made(Inventory<Starved>::CreateInstance(Four("ssss")));
    FaultInjection::FailAllocation(0);
    EXPECT_FALSE(made);
    EXPECT_EQ(log.Count("CInstanceFactory::CreateInstance: no memory for component 0x73737373\n"), 1u);
    made = Inventory<Starved>::CreateInstance(Four("ssss"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->Number(), 7);
}
#endif

#include "TestObjects.h"
#include "support/LogCapture.h"

#include <vek/core/CLeaks.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Quorvex::Vek;
using VekTest::DerivedProbe;
using VekTest::Probe;

// Not static and not inlined: the report must be able to name it.
__attribute__((noinline)) CObject* MakeDeliberateLeakForTracker()
{
    return new Probe();
}

TEST(Leaks, NothingAliveGivesTheNoLeaksLine)
{
    VekTest::LogCapture log(5);
    CLeaks::Mark(CLeaks::Object);
    for (int i = 0; i < 10; ++i)
        RObject<Probe> probe(new Probe());
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Object), 0);
    EXPECT_NE(log.Text().find("\nNo leaks detected after tracking 10 objects (1 simultaneous object peak).\n"),
              std::string::npos)
        << log.Text();
}

TEST(Leaks, StackModeNamesTheLeakingFunction)
{
    VekTest::LogCapture log(1);
    CLeaks::Mark(CLeaks::Stack);
    CObject* leaked = MakeDeliberateLeakForTracker();
    RObject<Probe> freed(new Probe());
    freed.SafeRelease();
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Stack), 1);
    const std::string report = log.Text();
    leaked->Release();

    EXPECT_NE(report.find("1 leaks detected from 1 unique backtraces after tracking 2 objects (2 simultaneous object "
                          "peak):"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("Leaked CObject 0x"), std::string::npos) << report;
    EXPECT_NE(report.find("[prob]. Object created at backtrace:"), std::string::npos) << report;
    EXPECT_NE(report.find("MakeDeliberateLeakForTracker"), std::string::npos) << report;
    EXPECT_NE(report.find("1 objects were trackably leaked in 1 groups and 0 were ambiguously leaked in 0 groups."),
              std::string::npos)
        << report;
}

TEST(Leaks, SameBacktraceLeaksAreGrouped)
{
    VekTest::LogCapture log(1);
    CLeaks::Mark(CLeaks::Stack);
    std::vector<CObject*> leaked;
    for (int i = 0; i < 3; ++i)
        leaked.push_back(MakeDeliberateLeakForTracker());
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Stack), 3);
    for (CObject* object : leaked)
        object->Release();
    const std::string report = log.Text();
    EXPECT_NE(report.find("3 objects leaked. Objects were created at backtrace:"), std::string::npos) << report;
    EXPECT_NE(report.find("    TRACKABLE: object creation is only leaked reference\n"), std::string::npos) << report;
    EXPECT_NE(report.find("3 objects were trackably leaked in 1 groups and 0 were ambiguously leaked in 0 groups."),
              std::string::npos)
        << report;
}

CObject* volatile g_lastKept = nullptr;

// Takes an extra reference that nobody gives back.
__attribute__((noinline)) void KeepDeliberateExtraReference(CObject* object)
{
    object->Acquire();
    g_lastKept = object; // not a tail call: this frame stays on the stack
}

TEST(Leaks, ExtraReferencesNameWhereTheyWereTaken)
{
    VekTest::LogCapture log(1);
    CLeaks::Mark(CLeaks::Stack);
    CObject* leaked = MakeDeliberateLeakForTracker();
    KeepDeliberateExtraReference(leaked);
    leaked->Acquire(); // a balanced pair elsewhere
    leaked->Release();
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Stack), 1);
    const std::string report = log.Text();
    leaked->Release();
    leaked->Release();

    EXPECT_EQ(report.find("TRACKABLE"), std::string::npos) << report;
    // Two references remain; the creation and two Acquire sites may hold them.
    EXPECT_NE(report.find("    AMBIGUOUS: 2 reference leaks from 3 possible backtraces\n"), std::string::npos)
        << report;
    EXPECT_NE(report.find("acquire backtrace capacity\n"), std::string::npos) << report;
    EXPECT_NE(report.find("KeepDeliberateExtraReference"), std::string::npos) << report;
    EXPECT_NE(report.find("0 objects were trackably leaked in 0 groups and 1 were ambiguously leaked in 1 groups."),
              std::string::npos)
        << report;
}

TEST(Leaks, TypeFilterIgnoresOtherTags)
{
    CLeaks::Mark(CLeaks::Object, DerivedProbe::Type);
    RObject<Probe> other(new Probe());
    RObject<DerivedProbe> tracked(new DerivedProbe());
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Object), 1);
    EXPECT_NE(std::string(CLeaks::GetLastReport()).find("[drvd]"), std::string::npos);
}

TEST(Leaks, MarkForgetsEarlierObjectsAndSurvivesTableGrowth)
{
    CLeaks::Mark(CLeaks::Object);
    RObject<Probe> before(new Probe());
    CLeaks::Mark(CLeaks::Object);
    // Enough live objects to grow the table several times, released in an
    // order that exercises deletion from long probe chains.
    std::vector<RObject<Probe>> many;
    for (int i = 0; i < 5000; ++i)
        many.emplace_back(new Probe());
    for (size_t i = 0; i < many.size(); i += 2)
        many[i].SafeRelease();
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Object), 2500);
    CLeaks::Mark(CLeaks::Object);
    many.clear();
    before.SafeRelease(); // made before the Mark: not tracked, not counted
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Object), 0);
    EXPECT_FALSE(CLeaks::IsTracking());
}

// Every release must find its entry again, however the probe chains were
// cut by earlier removals: a lost entry would be reported as a leak.
// Objects made back to back sit at evenly spaced addresses, which share a
// home slot only when they lie a table's capacity of objects apart; so many
// more are made than kept, and a scattered few of them survive.
TEST(Leaks, EveryReleaseOrderEmptiesTheTable)
{
    struct Case {
        const char* name;
        int kept;
        int stride;    // release i, i + stride, ... for each start below stride
        bool backward; // the same, from the last object down
    };
    const Case cases[] = {
        {"forward", 1500, 1, false},     {"backward", 1500, 1, true},
        {"every other", 1500, 2, false}, {"stride 7 backward", 1500, 7, true},
        {"small table, stride 3", 600, 3, false},
    };
    uint32_t seed = 12345;
    auto next = [&seed] { return (seed = seed * 1103515245u + 12345u) >> 16; };
    for (const Case& c : cases) {
        CLeaks::Mark(CLeaks::Object);
        std::vector<RObject<Probe>> kept;
        while (int(kept.size()) < c.kept) {
            RObject<Probe> probe(new Probe());
            if (next() % 8 == 0)
                kept.push_back(probe);
        }
        for (int start = 0; start < c.stride; ++start) {
            for (int i = start; i < c.kept; i += c.stride)
                kept[size_t(c.backward ? c.kept - 1 - i : i)].SafeRelease();
        }
        EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Object), 0) << c.name;
    }
}

// The label callback belongs to the host: it may make and keep library
// objects. Enough of them grow the tracker's table, which must not pull the
// table out from under a report already walking it.
std::vector<RObject<Probe>>* g_madeByCallback = nullptr;

char* LabelThatMakesObjects()
{
    for (int i = 0; i < 3000; ++i)
        g_madeByCallback->emplace_back(new Probe());
    static char label[] = "Host label";
    return label;
}

TEST(Leaks, LabelCallbackMayMakeObjects)
{
    std::vector<RObject<Probe>> made;
    g_madeByCallback = &made;
    VekTest::LogCapture log(1);
    CLeaks::SetCallback(LabelThatMakesObjects);
    CLeaks::Mark(CLeaks::Stack);
    CObject* leaked = MakeDeliberateLeakForTracker();
    const int32_t live = CLeaks::ShowLeaksSinceMark(CLeaks::Stack);
    CLeaks::SetCallback(nullptr);
    leaked->Release();
    EXPECT_EQ(live, 3001);
    EXPECT_NE(log.Text().find("Host label"), std::string::npos) << log.Text().substr(0, 400);
}

TEST(Leaks, PooledObjectBackInItsPoolIsNotAmbiguous)
{
    RObject<CPool<VekTest::PooledBuffer>> pool(CPool<VekTest::PooledBuffer>::Create(2));
    VekTest::LogCapture log(1);
    CLeaks::Mark(CLeaks::Stack, VekTest::PooledBuffer::Type);
    for (int round = 0; round < 3; ++round)
        RObject<VekTest::PooledBuffer> taken(pool->Get());
    EXPECT_EQ(CLeaks::ShowLeaksSinceMark(CLeaks::Stack), 1) << "the pool keeps one object";
    EXPECT_EQ(log.Text().find("AMBIGUOUS"), std::string::npos) << log.Text();
    EXPECT_NE(log.Text().find("1 objects were trackably leaked"), std::string::npos) << log.Text();
}

#include <vek/components/ComponentProbe.h>
#include <vek/io/CMemoryStream.h>

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace VekTest {

// A reader kind as the probing sees it: something with Validate.
class Prober : public CObject {
public:
    using ComponentKind = Prober;
    virtual int Validate(CStream* stream) = 0;

protected:
    Prober() : CObject(Four("prbr")) {}
};

// What the readers of one probe did, shared by their factories.
struct Journal {
    std::vector<int> asked;              // factory index of each Validate, in order
    std::vector<int64_t> startPositions; // stream position as each Validate began
    int made = 0;
    int destroyed = 0;
};

// Answers a fixed score after reading `consume` bytes.
class ScriptedReader : public Prober {
public:
    ScriptedReader(Journal& journal, int index, int score, int consume)
        : m_journal(journal), m_index(index), m_score(score), m_consume(consume)
    {
        ++m_journal.made;
    }
    int Validate(CStream* stream) override
    {
        m_journal.asked.push_back(m_index);
        m_journal.startPositions.push_back(stream->GetPosition());
        unsigned char scratch[16];
        stream->Read(scratch, m_consume);
        return m_score;
    }
    int index() const { return m_index; }

protected:
    ~ScriptedReader() override { ++m_journal.destroyed; }

private:
    Journal& m_journal;
    const int m_index;
    const int m_score;
    const int m_consume;
};

class ScriptedFactory : public CComponentFactory<Prober> {
public:
    ScriptedFactory(Journal& journal, int index, int score, bool fails = false)
        : CComponentFactory(Four("scrp")), m_journal(journal), m_index(index), m_score(score), m_fails(fails)
    {
    }
    Prober* CreateInstance() override
    {
        if (m_fails)
            return nullptr;
        return new ScriptedReader(m_journal, m_index, m_score, 1 + m_index % 5);
    }

private:
    Journal& m_journal;
    const int m_index;
    const int m_score;
    const bool m_fails;
};

// A stream that reads but cannot seek (the base Seek refuses Begin).
class ForwardOnlyStream : public CStream {
public:
    int Read(unsigned char*, int32_t) override { return 0; }
    int Write(const unsigned char*, int32_t) override { return RESULT_NOT_SUPPORTED; }
};

} // namespace VekTest

using namespace VekTest;

namespace {

RObject<CList<CComponentFactory<Prober>>> MakeFactories(Journal& journal, const std::vector<int>& scores)
{
    RObject<CList<CComponentFactory<Prober>>> list(CList<CComponentFactory<Prober>>::Create());
    for (size_t i = 0; i < scores.size(); ++i)
        list->Adopt(new ScriptedFactory(journal, int(i), scores[i]));
    return list;
}

RObject<CStream> MakeStream()
{
    static const unsigned char bytes[32] = {'R', 'I', 'F', 'F'};
    return RObject<CStream>(new CMemoryStream(int32_t(sizeof bytes), bytes));
}

int WinnerIndex(Prober* chosen)
{
    return chosen ? static_cast<ScriptedReader*>(chosen)->index() : -1;
}

} // namespace

TEST(ComponentProbe, ScoresDecideInRegistrationOrder)
{
    struct Case {
        const char* name;
        std::vector<int> scores;
        int winner; // -1: none
        int asked;  // how many readers Validate saw
    };
    const Case cases[] = {
        {"tie goes to the first registered", {10, 10}, 0, 2},
        {"later tie does not replace", {5, 10, 10}, 1, 3},
        {"above 255 stops the search", {256, 300}, 0, 1},
        {"255 does not stop it", {255, 300}, 1, 2},
        {"stop in the middle", {3, 256, 999}, 1, 2},
        {"all zero", {0, 0, 0}, -1, 3},
        {"negative loses", {-5, 3}, 1, 2},
        {"negative and zero", {-5, 0, INT_MIN}, -1, 3},
        {"extremes", {INT_MIN, INT_MAX}, 1, 2},
        {"no readers", {}, -1, 0},
    };
    for (const Case& c : cases) {
        Journal journal;
        {
            auto factories = MakeFactories(journal, c.scores);
            auto stream = MakeStream();
            RObject<Prober> chosen(ChooseByProbing<Prober>(factories, stream));
            EXPECT_EQ(WinnerIndex(chosen), c.winner) << c.name;
            EXPECT_EQ(int(journal.asked.size()), c.asked) << c.name;
            for (size_t i = 0; i < journal.asked.size(); ++i)
                EXPECT_EQ(journal.asked[i], int(i)) << c.name;
            // Every reader starts at 0, whatever the one before it read.
            EXPECT_EQ(journal.startPositions, std::vector<int64_t>(journal.asked.size(), 0)) << c.name;
            EXPECT_EQ(journal.made, c.asked) << c.name;
            if (chosen) {
                EXPECT_EQ(chosen->GetReferenceCount(), 1) << c.name;
            }
            EXPECT_EQ(journal.destroyed, journal.made - (chosen ? 1 : 0)) << c.name << ": readers not kept are released";
        }
        EXPECT_EQ(journal.destroyed, journal.made) << c.name;
    }
}

TEST(ComponentProbe, FactoryWithoutMemoryIsSkipped)
{
    Journal journal;
    RObject<CList<CComponentFactory<Prober>>> list(CList<CComponentFactory<Prober>>::Create());
    list->Adopt(new ScriptedFactory(journal, 0, 50, true));
    list->Adopt(new ScriptedFactory(journal, 1, 20));
    auto stream = MakeStream();
    RObject<Prober> chosen(ChooseByProbing<Prober>(list, stream));
    EXPECT_EQ(WinnerIndex(chosen), 1);
}

TEST(ComponentProbe, StreamThatCannotRewindIsNotProbed)
{
    VekTest::LogCapture log(1);
    Journal journal;
    {
        auto factories = MakeFactories(journal, {10, 20});
        RObject<CStream> stream(new ForwardOnlyStream());
        EXPECT_EQ(ChooseByProbing<Prober>(factories, stream), nullptr);
        EXPECT_EQ(ChooseByProbing<Prober>(factories, nullptr), nullptr);
    }
    EXPECT_TRUE(journal.asked.empty());
    EXPECT_EQ(journal.destroyed, journal.made);
    EXPECT_EQ(log.Count("ChooseByProbing: rewinding the stream failed with RESULT_NOT_IMPLEMENTED\n"), 1u);
    EXPECT_EQ(log.Count("ChooseByProbing: the stream is null\n"), 1u);
}

// The inventory form probes with the kind's registered factories.
VEK_DEFINE_COMPONENT_INVENTORY(VekTest::Prober)

TEST(ComponentProbe, UsesTheInventoryOfTheKind)
{
    // The factories stay registered for the life of the process, and so
    // must what they refer to.
    static Journal journal;
    auto stream = MakeStream();
    EXPECT_EQ(ChooseByProbing<Prober>(stream.Get()), nullptr);
    const int scores[] = {7, 9, 9};
    for (int i = 0; i < 3; ++i) {
        RObject<CComponentFactory<Prober>> factory(new ScriptedFactory(journal, i, scores[i]));
        ASSERT_EQ(CComponentInventory<CComponentFactory<Prober>>::AddFactory(factory), RESULT_OK);
    }
    RObject<Prober> chosen(ChooseByProbing<Prober>(stream.Get()));
    EXPECT_EQ(WinnerIndex(chosen), 1);
    EXPECT_EQ(journal.asked, (std::vector<int>{0, 1, 2}));
}

#include <vek/core/CArray.h>
#include <vek/core/CByteArray.h>
#include <vek/core/CDictionary.h>
#include <vek/core/CEnumerator.h>
#include <vek/core/CFloatArray.h>
#include <vek/core/CList.h>
#include <vek/core/CQueue.h>
#include <vek/core/CString.h>
#include <vek/core/CValue.h>
#include <vek/core/CValueList.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

// A counted object that records its destruction.
class CProbe : public CObject {
public:
    explicit CProbe(int id, std::vector<int>* destroyed) : CObject(Four("prob")), m_id(id), m_destroyed(destroyed) {}
    int Id() const { return m_id; }

protected:
    ~CProbe() override { m_destroyed->push_back(m_id); }

private:
    int m_id;
    std::vector<int>* m_destroyed;
};

using Dictionary = CDictionary<CString, CByteArray>;

RObject<CByteArray> Bytes(const char* text)
{
    return RObject<CByteArray>(
        new CByteArray(reinterpret_cast<const unsigned char*>(text), int32_t(std::char_traits<char>::length(text))));
}

std::vector<std::string> Keys(Dictionary* d)
{
    std::vector<std::string> keys;
    for (int32_t i = 0; i < d->GetCount(); ++i)
        keys.emplace_back(d->GetKey(i)->GetChars());
    return keys;
}

} // namespace

TEST(CArray, ValueElementsAndBounds)
{
    RObject<CArray<int>> a(CArray<int>::Create());
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(a->Add(i), 0);
    EXPECT_EQ(a->GetCount(), 100);
    EXPECT_EQ(a->Insert(0, -1), 0);
    EXPECT_EQ(a->Insert(101, 1000), 0);
    EXPECT_EQ(a->Get(0), -1);
    EXPECT_EQ(a->Get(101), 1000);
    EXPECT_EQ(a->RemoveAt(50), 0);
    EXPECT_EQ(a->Get(50), 50);
    EXPECT_EQ(a->IndexOf(77), 77);
    EXPECT_FALSE(a->Contains(49));

    struct Case {
        int32_t index;
        int result;
    };
    const Case cases[] = {{-1, -19007}, {101, -19007}, {INT32_MAX, -19007}, {0, 0}, {100, 0}};
    for (const Case& c : cases) {
        int out = 12345;
        EXPECT_EQ(a->GetAt(c.index, out), c.result) << c.index;
        EXPECT_EQ(a->Set(c.index, 7), c.result) << c.index;
        if (c.result < 0) {
            EXPECT_EQ(out, 12345);
            EXPECT_EQ(a->Get(c.index), 0);
        }
    }
    EXPECT_EQ(a->Insert(-1, 0), -19007);
    EXPECT_EQ(a->Insert(a->GetCount() + 1, 0), -19007);
    EXPECT_EQ(a->RemoveAt(a->GetCount()), -19007);
    EXPECT_EQ(CArray<int>::Create(-1), nullptr);
}

TEST(CArray, CountedElementsAreShared)
{
    std::vector<int> destroyed;
    {
        RObject<CArray<CProbe>> a(CArray<CProbe>::Create());
        RObject<CProbe> one(new CProbe(1, &destroyed));
        ASSERT_EQ(a->Add(one), 0);
        EXPECT_EQ(one->GetReferenceCount(), 2);
        ASSERT_EQ(a->Adopt(new CProbe(2, &destroyed)), 0);
        ASSERT_EQ(a->Add(nullptr), 0);
        EXPECT_EQ(a->Get(1)->Id(), 2);
        EXPECT_EQ(a->Get(2), nullptr);
        // Replacing releases the old element once the new one is stored.
        ASSERT_EQ(a->Set(1, one), 0);
        EXPECT_EQ(destroyed, std::vector<int>{2});
        EXPECT_EQ(one->GetReferenceCount(), 3);
        ASSERT_EQ(a->RemoveAt(0), 0);
        EXPECT_EQ(one->GetReferenceCount(), 2);
        EXPECT_EQ(a->IndexOf(one), 0);
        ASSERT_EQ(a->Adopt(new CProbe(3, &destroyed)), 0);
    }
    EXPECT_EQ(destroyed, (std::vector<int>{2, 3, 1}));
}

TEST(CList, RemoveByIdentityAndEnds)
{
    std::vector<int> destroyed;
    RObject<CList<CProbe>> list(CList<CProbe>::Create());
    RObject<CProbe> a(new CProbe(1, &destroyed)), b(new CProbe(2, &destroyed));
    list->Add(a);
    list->Add(b);
    list->Add(a);
    EXPECT_EQ(list->GetFirst(), a.Get());
    EXPECT_EQ(list->GetLast(), a.Get());
    EXPECT_EQ(list->Remove(a), 1);
    EXPECT_EQ(list->GetFirst(), b.Get());
    EXPECT_EQ(a->GetReferenceCount(), 2);
    EXPECT_EQ(list->Remove(a), 1);
    EXPECT_EQ(list->Remove(a), 0);
    EXPECT_EQ(a->GetReferenceCount(), 1);
    list->Clear();
    EXPECT_EQ(list->GetFirst(), nullptr);
    EXPECT_EQ(list->GetLast(), nullptr);
    EXPECT_TRUE(destroyed.empty());
}

TEST(CValueList, RemoveByValue)
{
    RObject<CValueList<int64_t>> list(CValueList<int64_t>::Create());
    for (int64_t v : {5, 7, 5, 9})
        list->Add(v);
    EXPECT_EQ(list->Remove(5), 1);
    EXPECT_EQ(list->Remove(42), 0);
    EXPECT_EQ(list->GetCount(), 3);
    EXPECT_EQ(list->Get(0), 7);
    EXPECT_EQ(list->Get(1), 5);
}

TEST(CEnumerator, IndexOrderAndLiveness)
{
    RObject<CValueList<int>> list(CValueList<int>::Create());
    for (int v : {10, 20, 30})
        list->Add(v);
    RObject<CEnumerator<int>> e(list->GetEnumerator());
    ASSERT_TRUE(e);
    EXPECT_EQ(e->GetCurrent(), 0); // before the first step
    std::vector<int> seen;
    while (e->MoveNext()) {
        seen.push_back(e->GetCurrent());
        if (seen.size() == 1)
            list->Add(40); // appended during enumeration: visited
    }
    EXPECT_EQ(seen, (std::vector<int>{10, 20, 30, 40}));
    EXPECT_FALSE(e->MoveNext());
    e->Reset();
    EXPECT_TRUE(e->MoveNext());
    EXPECT_EQ(e->GetCurrent(), 10);
    list->Clear();
    EXPECT_EQ(e->GetCurrent(), 0); // shrunk below the position
    EXPECT_FALSE(e->MoveNext());

    // The enumerator keeps its collection alive.
    std::vector<int> destroyed;
    CArray<CProbe>* probes = CArray<CProbe>::Create();
    probes->Adopt(new CProbe(7, &destroyed));
    RObject<CEnumerator<CProbe>> pe(probes->GetEnumerator());
    probes->Release();
    ASSERT_TRUE(pe->MoveNext());
    EXPECT_EQ(pe->GetCurrent()->Id(), 7);
    pe = nullptr;
    EXPECT_EQ(destroyed, std::vector<int>{7});
    EXPECT_EQ(CEnumerator<int>::Create(static_cast<CArray<int>*>(nullptr)), nullptr);
}

TEST(CQueue, FifoBoundsAndOwnership)
{
    RObject<CQueue<int>> q(CQueue<int>::Create(3));
    int out = 0;
    EXPECT_EQ(q->Dequeue(out), RESULT_QUEUE_UNDERFLOW);
    EXPECT_EQ(q->Peek(out), RESULT_QUEUE_UNDERFLOW);
    EXPECT_EQ(q->Enqueue(1), 0);
    EXPECT_EQ(q->Enqueue(2), 0);
    EXPECT_EQ(q->Enqueue(3), 0);
    EXPECT_EQ(q->Enqueue(4), RESULT_QUEUE_OVERFLOW);
    EXPECT_EQ(q->Peek(out), 0);
    EXPECT_EQ(out, 1);
    EXPECT_EQ(q->Dequeue(out), 0);
    EXPECT_EQ(out, 1);
    EXPECT_EQ(q->Enqueue(4), 0);
    for (int expected : {2, 3, 4}) {
        ASSERT_EQ(q->Dequeue(out), 0);
        EXPECT_EQ(out, expected);
    }
    EXPECT_TRUE(q->IsEmpty());
    EXPECT_EQ(CQueue<int>::Create(-1), nullptr);

    // Many interleaved operations keep FIFO order across compactions.
    RObject<CQueue<int>> big(CQueue<int>::Create());
    int next = 0, expected = 0;
    for (int round = 0; round < 200; ++round) {
        for (int i = 0; i < 7; ++i)
            ASSERT_EQ(big->Enqueue(next++), 0);
        for (int i = 0; i < 5; ++i) {
            ASSERT_EQ(big->Dequeue(out), 0);
            ASSERT_EQ(out, expected++);
        }
    }
    EXPECT_EQ(big->GetCount(), next - expected);

    std::vector<int> destroyed;
    {
        RObject<CQueue<CProbe>> pq(CQueue<CProbe>::Create());
        RObject<CProbe> a(new CProbe(1, &destroyed));
        pq->Enqueue(a);
        pq->Enqueue(RObject<CProbe>(new CProbe(2, &destroyed)));
        EXPECT_EQ(a->GetReferenceCount(), 2);
        CProbe* taken = nullptr;
        ASSERT_EQ(pq->Dequeue(taken), 0);
        EXPECT_EQ(taken, a.Get());
        EXPECT_EQ(a->GetReferenceCount(), 2); // the queue's reference went to us
        taken->Release();
        EXPECT_EQ(pq->Peek(taken), 0);
        EXPECT_EQ(taken->Id(), 2);
    }
    // `a` goes first (our last reference), then the queue drops item 2.
    EXPECT_EQ(destroyed, (std::vector<int>{1, 2}));
}

TEST(CFloatArray, LengthAndData)
{
    RObject<CFloatArray> f(CFloatArray::Create(4));
    ASSERT_TRUE(f);
    EXPECT_EQ(f->GetCount(), 4);
    EXPECT_EQ(f->Get(3), 0.0f);
    f->GetData()[2] = 1.5f;
    EXPECT_EQ(f->Get(2), 1.5f);
    EXPECT_EQ(f->Resize(6, -1.0f), 0);
    EXPECT_EQ(f->Get(5), -1.0f);
    EXPECT_EQ(f->Get(2), 1.5f);
    EXPECT_EQ(f->Resize(1), 0);
    EXPECT_EQ(f->GetCount(), 1);
    EXPECT_EQ(f->Resize(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(CFloatArray::Create(-3), nullptr);
    EXPECT_EQ(f->GetType(), CFloatArray::Type);
}

TEST(CDictionary, InsertionOrderReplaceAndRemove)
{
    RObject<Dictionary> d(Dictionary::Create());
    RObject<CByteArray> one(Bytes("1")), two(Bytes("2")), three(Bytes("3"));
    EXPECT_EQ(d->Set("b", one), 0);
    EXPECT_EQ(d->Set(VEK_W("a"), two), 0);
    EXPECT_EQ(d->Set(RObject<CString>(new CString("c")), three), 0);
    EXPECT_EQ(Keys(d), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(one->GetReferenceCount(), 2);

    // Replacing keeps the position and releases the old value.
    EXPECT_EQ(d->Set("b", three), 0);
    EXPECT_EQ(Keys(d), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(one->GetReferenceCount(), 1);
    EXPECT_EQ(d->Get("b"), three.Get());
    EXPECT_EQ(d->GetValue(0), three.Get());

    EXPECT_EQ(d->Remove("a"), 1);
    EXPECT_EQ(d->Remove("a"), 0);
    EXPECT_EQ(two->GetReferenceCount(), 1);
    EXPECT_EQ(Keys(d), (std::vector<std::string>{"b", "c"}));
    EXPECT_EQ(d->GetKey(2), nullptr);
    EXPECT_EQ(d->GetValue(-1), nullptr);
    EXPECT_EQ(d->RemoveAt(2), -19007);
    d->Clear();
    EXPECT_EQ(d->GetCount(), 0);
    EXPECT_EQ(three->GetReferenceCount(), 1);
}

TEST(CDictionary, KeysCompareExactly)
{
    RObject<Dictionary> d(Dictionary::Create());
    RObject<CByteArray> v(Bytes("x"));
    d->Set("Key", v);
    struct Case {
        const char* key;
        bool found;
    };
    const Case cases[] = {{"Key", true}, {"key", false}, {"Key ", false}, {"Ke", false}, {"", false}};
    for (const Case& c : cases) {
        EXPECT_EQ(d->ContainsKey(c.key), c.found) << c.key;
        EXPECT_EQ(d->Get(RObject<CString>(new CString(c.key)).Get()) != nullptr, c.found) << c.key;
    }
    EXPECT_TRUE(d->ContainsKey(VEK_W("Key")));
    // Non-ASCII keys match across the two encodings.
    d->Set("\xC3\xA9t\xC3\xA9", v);
    EXPECT_EQ(d->Get(VEK_W("\u00E9t\u00E9")), v.Get());
    EXPECT_EQ(d->Get(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(d->Set(static_cast<const char*>(nullptr), v), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(d->Set("k", nullptr), RESULT_ARGUMENT_NULL);
    // An empty key is a key like any other.
    EXPECT_EQ(d->Set("", v), 0);
    EXPECT_TRUE(d->ContainsKey(""));
}

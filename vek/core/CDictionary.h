#pragma once

// Insertion-ordered dictionary from CString keys to counted values (any
// CObject-derived V, CByteArray first of all).
//
// - Keys compare with exact CString::Equals (code unit by code unit); a
//   UTF-8 or UTF-16 key argument is compared the same way.
// - Order: entries keep the position of their first Set; replacing a value
//   keeps the position, Remove closes the gap.
// - Ownership: the dictionary holds one reference to each key and value.
//   Get/GetKey/GetValue return borrowed pointers, valid while the entry is
//   held; Acquire them to keep them longer.
// - Bounds: GetKey/GetValue outside 0..count-1 give null; RemoveAt gives
//   RESULT_INDEX_OUT_OF_RANGE (-19007).
// - Lookups scan the entries (length first, then units): meant for the
//   small bags of properties the library keeps, not for large tables.
// - No member takes a lock; guard shared use with the dictionary's monitor.
#include <vek/core/CString.h>
#include <vek/core/CollectionStorage.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

template <typename K, typename V>
class CDictionary : public CObject {
    static_assert(std::is_same_v<K, CString>, "keys are CStrings");
    static_assert(Detail::IsCounted<V>, "values are counted CObjects");

public:
    enum : uint32_t { Type = Four("dict") };

    CDictionary() : CObject(Type) {}

    // Null on allocation failure.
    static CDictionary* Create() { return new (fallible) CDictionary(); }

    int32_t GetCount() const { return m_entries.Count(); }

    // Index of the key, or -1 (also for a null key).
    int32_t IndexOfKey(CString* key) const
    {
        return Find([key](CString* k) { return CString::Equals(k, key); }, key != nullptr);
    }
    // Text keys are measured once, not once per entry.
    int32_t IndexOfKey(const char* key) const
    {
        const int32_t length = CString::GetLength(key);
        return Find([key, length](CString* k) { return k->Equals(key, length); }, key != nullptr);
    }
    int32_t IndexOfKey(const WChar* key) const
    {
        const int32_t length = CString::GetLength(key);
        return Find([key, length](CString* k) { return k->Equals(key, length); }, key != nullptr);
    }

    template <typename Key>
    bool ContainsKey(Key key) const
    {
        return IndexOfKey(key) >= 0;
    }

    // The value stored for `key` (borrowed), or null.
    template <typename Key>
    V* Get(Key key) const
    {
        const int32_t index = IndexOfKey(key);
        return index < 0 ? nullptr : m_entries[index].value;
    }

    // Stores `value` under `key`, sharing both (the caller keeps its own
    // references). An existing entry keeps its place and its key object.
    // RESULT_ARGUMENT_NULL for a null key or value.
    int Set(CString* key, V* value)
    {
        if (!key || !value)
            return RESULT_ARGUMENT_NULL;
        const int32_t index = IndexOfKey(key);
        if (index >= 0)
            return Replace(index, value);
        if (!m_entries.Insert(m_entries.Count(), Entry{key, value}))
            return RESULT_OUT_OF_MEMORY;
        key->Acquire();
        value->Acquire();
        return RESULT_OK;
    }

    // As Set, with the key given as text (a key string is made when needed).
    template <typename Text>
    int Set(const Text* key, V* value)
        requires(std::is_same_v<Text, char> || std::is_same_v<Text, WChar>)
    {
        if (!key || !value)
            return RESULT_ARGUMENT_NULL;
        const int32_t index = IndexOfKey(key);
        if (index >= 0)
            return Replace(index, value);
        CString* made = CString::Create(key);
        if (!made)
            return RESULT_OUT_OF_MEMORY;
        const int result = Set(made, value);
        made->Release();
        return result;
    }

    // Removes the entry of `key`: 1 when one was removed, 0 when absent.
    template <typename Key>
    int Remove(Key key)
    {
        const int32_t index = IndexOfKey(key);
        if (index < 0)
            return 0;
        RemoveAt(index);
        return 1;
    }

    int RemoveAt(int32_t index)
    {
        if (index < 0 || index >= m_entries.Count())
            return RESULT_INDEX_OUT_OF_RANGE;
        const Entry entry = m_entries.Take(index);
        entry.key->Release();
        entry.value->Release();
        return RESULT_OK;
    }

    void Clear()
    {
        while (m_entries.Count() > 0)
            RemoveAt(m_entries.Count() - 1);
    }

    CString* GetKey(int32_t index) const { return InRange(index) ? m_entries[index].key : nullptr; }
    V* GetValue(int32_t index) const { return InRange(index) ? m_entries[index].value : nullptr; }

protected:
    ~CDictionary() override { Clear(); }

private:
    struct Entry {
        CString* key;
        V* value;
    };

    bool InRange(int32_t index) const { return index >= 0 && index < m_entries.Count(); }

    template <typename Match>
    int32_t Find(Match match, bool valid) const
    {
        if (!valid)
            return -1;
        for (int32_t i = 0; i < m_entries.Count(); ++i) {
            if (match(m_entries[i].key))
                return i;
        }
        return -1;
    }

    // Store the new value before releasing the old: the release may re-enter.
    int Replace(int32_t index, V* value)
    {
        value->Acquire();
        V* old = m_entries[index].value;
        m_entries[index].value = value;
        old->Release();
        return RESULT_OK;
    }

    Detail::GrowBuffer<Entry> m_entries;
};

} // namespace Quorvex::Vek

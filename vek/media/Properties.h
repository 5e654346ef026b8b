#pragma once

// Public face of a property bag: typed reads and writes of the keys of any
// object that carries an IProperties.
//
// Each typed call stores or reads the value's own width: 4 bytes for int and
// unsigned int, 8 for int64_t, 1 for bool, little-endian. Results are the
// bag's: the stored length on a successful read, 0 when the key is absent
// (the variable is left unchanged), -19003 when the stored value is longer
// than the variable (nothing is copied). A shorter stored value fills only
// the first bytes of the variable. Every call on a null Properties returns
// -19001 (RESULT_NULL_POINTER) or an empty answer.
//
// When the bag belongs to a counted object, Properties holds a reference to
// that object, so a copy stays usable after the object's other owners let go.
#include <type_traits>

#include <vek/core/ByteArray.h>
#include <vek/core/String.h>
#include <vek/media/IProperties.h>

namespace Quorvex::Vek {

class VEK_API Properties {
public:
    Properties() = default;
    // Shares the bag's owning object when the bag is part of a CObject.
    explicit Properties(IProperties* bag);
    Properties(const Properties& other);
    Properties& operator=(const Properties& other);
    ~Properties();

    IProperties* GetInterface() const { return m_bag; }
    bool IsNull() const { return m_bag == nullptr; }

    int SetProperty(const char* key, int value);
    int SetProperty(const char* key, unsigned int value);
    int SetProperty(const char* key, int64_t value);
    int SetProperty(const char* key, bool value);
    int SetProperty(const char* key, int length, const unsigned char* data);
    // Stores the array itself (shared with the caller).
    int SetProperty(const char* key, const ByteArray& value);

    int GetProperty(const char* key, int& value);
    int GetProperty(const char* key, unsigned int& value);
    int GetProperty(const char* key, int64_t& value);
    // 1 stored byte; any non-zero byte reads as true.
    int GetProperty(const char* key, bool& value);
    int GetProperty(const char* key, int capacity, unsigned char* out);
    // Shares the stored array; returns its length, 0 when absent (out unchanged).
    int GetProperty(const char* key, ByteArray& out);

    // Other integer types (long long where int64_t is long, long, short,
    // char...) go through the overload of their width: 8-byte types as
    // int64_t, narrower ones as int or unsigned int.
    template <typename T, typename = std::enable_if_t<std::is_integral_v<T>>>
    int SetProperty(const char* key, T value)
    {
        if constexpr (sizeof(T) == sizeof(int64_t))
            return SetProperty(key, int64_t(value));
        else if constexpr (std::is_signed_v<T>)
            return SetProperty(key, int(value));
        else
            return SetProperty(key, static_cast<unsigned int>(value));
    }
    // 8-byte integer types read as int64_t; the variable changes only when
    // the read succeeds, and a shorter stored value fills its first bytes.
    template <typename T, typename = std::enable_if_t<std::is_integral_v<T> && sizeof(T) == sizeof(int64_t)>>
    int GetProperty(const char* key, T& value)
    {
        int64_t wide = int64_t(value);
        const int result = GetProperty(key, wide);
        if (result > 0)
            value = T(wide);
        return result;
    }

    int GetFourProperty(const char* key, unsigned int& value);
    int SetFourProperty(const char* key, unsigned int value);
    int RemoveProperty(const char* key);
    int ClearProperties();

    int32_t GetPropertyCount() const;
    // The key at `index` in insertion order; a null wrapper when out of range.
    String GetPropertyName(int32_t index) const;
    unsigned int GetPropertyType(const char* key);
    const char* GetPropertyDescription(const char* key);
    // "(null)" or "(error)" as the bag answers; a null wrapper without a bag.
    String GetPropertyValue(const char* key);

private:
    template <typename T>
    int Write(const char* key, T value);
    template <typename T>
    int Read(const char* key, T& value);

    IProperties* m_bag = nullptr;
    CObject* m_owner = nullptr; // counted reference, null for a free-standing bag
};

} // namespace Quorvex::Vek

#pragma once

// The property bag every configurable or describable object carries: a
// dictionary from a text key to raw bytes. Components are configured by
// writing keys into their bags and describe extra facts the same way; the
// keys are the constants of the key families (MediaProperty, ...).
//
// Values are untyped bytes. The typed helpers (Properties, the four-character
// calls here) store numbers in the machine's little-endian order with the
// width of the C++ type, and a four-character code as its characters in
// reading order.
//
// The dictionary is made on the first write and keeps insertion order, so
// GetPropertyName(index) is stable between writes. A bag takes no lock: use
// one bag from one thread at a time, or guard it with the owner's monitor.
//
// IProperties is a mix-in, not a CObject: classes derive from CObject and
// IProperties both. Pointers returned by GetProperty(key), GetPropertyName
// and GetProperties are borrowed from the bag and stay valid until that
// entry is replaced or removed; GetPropertyValue returns a new string the
// caller releases.
#include <vek/core/CByteArray.h>
#include <vek/core/CDictionary.h>
#include <vek/core/CString.h>

namespace Quorvex::Vek {

class VEK_API IProperties {
public:
    using Dictionary = CDictionary<CString, CByteArray>;

    // Kinds of the text a key's value renders to (GetPropertyType).
    // Enumerators rather than static data members: a DLL client can bind
    // them to references without importing data.
    enum TextKind : uint32_t {
        TXT = Four("text"),
        XML = Four("xml "),
        HTML = Four("html"),
        URL = Four("url "),
    };

    // Renders the bytes stored under `key` as a new string in *out.
    // Returns 0, or a negative code (absent key, wrong width, no memory).
    using Formatter = int (*)(IProperties* bag, const char* key, CString** out);

    // One described key of a class. Tables end with a record whose key is null.
    struct Accessor {
        const char* key;
        const char* description; // e.g. "MPEG-2 Format Identifier"
        Formatter formatter;
        uint32_t type; // the text kind of the rendered value: TXT, XML, HTML or URL
    };

    IProperties() = default;
    // Virtual members keep this order (destructor, GetProperty, SetProperty,
    // GetPropertyAccessors): it is the layout hosts were built against.
    virtual ~IProperties();
    IProperties& operator=(const IProperties&) = delete;

    // 0 when the bag is empty or the key absent; with a null `out` the stored
    // length; the length after copying when `capacity` is enough; otherwise
    // -19003 and nothing is copied.
    virtual int GetProperty(const char* key, int32_t capacity, unsigned char* out);
    // The stored array (borrowed) or null.
    CByteArray* GetProperty(const char* key) const;
    CByteArray* GetProperty(CString* key) const;

    // Stores a copy of `length` bytes under `key`, replacing any earlier
    // value. A null `data` stores `length` zero bytes. Returns 0, -19004 for
    // a null key, -19017 for a key that is not well-formed UTF-8, -19003 for
    // a negative length, -19002 without memory.
    virtual int SetProperty(const char* key, int32_t length, const unsigned char* data);
    // Stores the given array itself (shared, not copied). A null array is -19004.
    int SetProperty(const char* key, CByteArray* value);
    int SetProperty(CString* key, CByteArray* value);

    // A four-character code, first character in the first stored byte.
    // Get returns the length read (4), 0 when absent (value unchanged) or
    // -19003 when the stored value is not 4 bytes long.
    int GetFourProperty(const char* key, unsigned int& value);
    int SetFourProperty(const char* key, unsigned int value);

    // 0 when removed, -19007 when the key was absent.
    int RemoveProperty(const char* key);
    // Drops every entry; the bag is empty as when new.
    void ClearProperties();
    // Copies every entry of `other` into this bag (bytes copied, existing
    // keys replaced, order of first insertion kept). Returns 0 or a code.
    int SetProperties(const IProperties* other);
    // The dictionary (borrowed), null until the first write.
    Dictionary* GetProperties() const { return m_properties; }

    int32_t GetPropertyCount() const;
    // The key at `index` in insertion order (borrowed), or null.
    CString* GetPropertyName(int32_t index) const;
    // The text kind of the key's accessor, or 0 when the class has none.
    unsigned int GetPropertyType(const char* key);
    // The accessor's description, or null.
    const char* GetPropertyDescription(const char* key);
    // The value as text through the key's accessor: "(null)" when the class
    // has no accessor for the key, "(error)" when its formatter fails. A new
    // string owned by the caller; null only when no memory is left.
    CString* GetPropertyValue(const char* key);

protected:
    // Copies the other bag's entries (bytes copied).
    IProperties(const IProperties& other);

    // The class's accessor table ending with a null key, or null for none.
    virtual const Accessor* GetPropertyAccessors() const;

    // Formatters for accessor tables. Bool and byte need 1 stored byte,
    // UInt16 2, UInt32 4 (little-endian); String takes the bytes up to the
    // first zero byte. Absent keys give -19007, other widths -19016.
    static int GetBool(IProperties* bag, const char* key, CString** out);
    static int GetByte(IProperties* bag, const char* key, CString** out);
    static int GetString(IProperties* bag, const char* key, CString** out);
    static int GetUInt16(IProperties* bag, const char* key, CString** out);
    static int GetUInt32(IProperties* bag, const char* key, CString** out);

private:
    const Accessor* FindAccessor(const char* key) const;
    CByteArray* Find(const char* key) const;
    template <typename Key>
    int Store(Key key, CByteArray* value);
    bool EnsureDictionary();

    Dictionary* m_properties = nullptr;
};

} // namespace Quorvex::Vek

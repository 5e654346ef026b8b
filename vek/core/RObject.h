#pragma once

// Owning smart pointer over a CObject-derived T.
//
// Construction from T* ADOPTS the caller's reference (no Acquire) and is
// explicit, so every adoption is visible at its call site: creating
// functions return objects at count 1 that go straight into an RObject.
// FromObject shares (Acquire). Copies share. Assignment from T* releases the
// old object and adopts the new pointer; assigning the pointer already held
// does nothing.
//
// Which calls hand back a reference, library-wide:
// - New references (the caller releases them): constructors via new,
//   static Create... functions, and every member whose name says it makes
//   something: Create..., Clone, To... conversions (ToByteArray, ToBytes),
//   string operations that return a new CString (Append, Substring, ...),
//   and getters documented "with one more reference" (CMemoryStream::
//   GetBuffer, the URI part getters). Out-parameters of type T** are always
//   new references.
// - Borrowed pointers (valid while the owner lives and is not changed; the
//   caller Acquires to keep one): plain accessors of held members such as
//   CBufferedStream::GetInner, CArray::Get, CDictionary lookups, and the
//   cached text of CString::GetChars/GetWChars.
// A header says "new reference" or "borrowed" wherever a getter is not
// obviously one of these.
#include <utility>

#include <vek/core/CObject.h>

namespace Quorvex::Vek {

template <typename T>
class RObject {
public:
    RObject() = default;
    explicit RObject(T* object) : m_object(object) {}
    RObject(const RObject& other) : m_object(other.m_object)
    {
        if (m_object)
            m_object->Acquire();
    }
    RObject(RObject&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    virtual ~RObject() { SafeRelease(); }

    RObject& operator=(const RObject& other)
    {
        if (other.m_object)
            other.m_object->Acquire();
        Replace(other.m_object);
        return *this;
    }
    RObject& operator=(RObject&& other) noexcept
    {
        if (this != &other)
            Replace(std::exchange(other.m_object, nullptr));
        return *this;
    }
    RObject& operator=(T* object)
    {
        if (object != m_object)
            Replace(object);
        return *this;
    }

    // Shares an object the caller keeps too: adds a reference.
    static RObject FromObject(T* object)
    {
        if (object)
            object->Acquire();
        return RObject(object);
    }

    void SafeRelease()
    {
        if (T* old = std::exchange(m_object, nullptr))
            old->Release();
    }

    // Gives up ownership without releasing: the caller now owns the reference.
    T* Detach() { return std::exchange(m_object, nullptr); }
    T* Get() const { return m_object; }
    operator T*() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    bool operator==(T* other) const { return m_object == other; }
    bool operator!=(T* other) const { return m_object != other; }
    bool operator==(const RObject& other) const { return m_object == other.m_object; }
    bool operator!=(const RObject& other) const { return m_object != other.m_object; }

private:
    // Store the new pointer before releasing the old: the release may re-enter.
    void Replace(T* object)
    {
        T* old = std::exchange(m_object, object);
        if (old)
            old->Release();
    }

    T* m_object = nullptr;
};

} // namespace Quorvex::Vek

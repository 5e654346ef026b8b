#pragma once

// The metadata that travels beside one sample: a list of elements (timecode,
// ancillary packets, field order, generic payloads keyed by type), a
// duration, and a flag saying whether this list is a sample's own copy.
// Metadata is pooled like samples; ReclaimCleanUp empties the list but
// keeps its storage.
//
// Elements are shared, never changed (see CMetadataElement): copying
// metadata copies the list. Element getters lend (borrowed pointers); Clone,
// Split, ExtractOrderedMetadata, ToAtom, ToByteArray, FromAtom and
// FromByteArray make new objects owned by the caller.
//
// Split and merge follow each element's kind: frame-bound elements stay
// with every frame made from this one (copied by Split, first one kept by
// Merge); ordered elements are delivered once in arrival order (kept by the
// first part of a Split, appended by Merge).
//
// Serialised layout, version 1. The body, in the byte order of the writer:
//   u16 version (1), u16 flags (bit 0: local data copy; others 0),
//   i64 duration, u32 element count, then per element:
//   u32 type (four characters, first character first), u32 payload length,
//   payload (see each element class).
// ToByteArray: the four characters "mfrm", then the body little-endian.
// ToAtom: an atom (box): u32 size of the whole atom, "mfrm", the body
// big-endian. Readers refuse unknown versions and flags, lengths and counts
// that do not fit what is left, and bytes left over after the last element.
//
// A metadata object takes no lock: one thread works on it at a time.
#include <vek/core/CPoolObject.h>
#include <vek/core/CollectionStorage.h>
#include <vek/samples/CMetadataElement.h>

namespace Quorvex::Vek {

class CMediaProperties;
class CMediaSample;

class VEK_API CMetadata : public CPoolObject {
public:
    enum : uint32_t { Type = Four("mfrm") };
    // Enumerators, not static data, so DLL clients need no data import.
    enum : int32_t {
        Version = 1,
        FlagLocalDataCopy = 1,
        // Bounds of what one metadata object holds (and a parser accepts).
        MaxElements = 4096,
        BodyHeaderLength = 16,
        ElementHeaderLength = 8,
    };

    // Empty metadata from the shared pool (one reference); null without memory.
    static CMetadata* Create();
    // Outside any pool until a pool hands it out.
    CMetadata();

    // A new metadata object with the same list, duration and flag.
    CMetadata* Clone() const;

    // Shares `element`. -19004 for null, -19008 when MaxElements are held,
    // -19002 without memory.
    int AddElement(CMetadataElement* element);
    // The first element of `type` (borrowed), or null.
    CMetadataElement* GetElement(uint32_t type) const;
    bool ContainsElement(uint32_t type) const;
    // Removes every element of `type`: 0, or -19007 when there was none.
    int RemoveElement(uint32_t type);
    int32_t GetElementCount() const { return m_elements.Count(); }
    // The element at `index` (borrowed), or null.
    CMetadataElement* GetElementAt(int32_t index) const;

    // Iteration: ResetElements, then MoveNextElement until it returns false,
    // reading GetCurrentElement (borrowed; null before the first and after
    // the last). Changing the list restarts nothing: reset after changes.
    void ResetElements() { m_cursor = -1; }
    bool MoveNextElement();
    CMetadataElement* GetCurrentElement() const { return GetElementAt(m_cursor); }

    // Sets this metadata on `sample` (shared). -19004 for a null sample.
    int Attach(CMediaProperties* properties, CMediaSample* sample);
    // Takes this metadata off `sample`: -19004 for a null sample, -19007
    // when the sample carries other metadata.
    int Detach(CMediaProperties* properties, CMediaSample* sample);
    // `properties` describe the medium of `sample`'s stream; they may be
    // null and neither call reads them. Putting metadata on a sample or
    // taking it off needs nothing from the medium today: every element
    // reads on its own (a timecode carries its own time scale and frame
    // duration, a field order its value, ancillary packets their bytes), and
    // the metadata's duration counts units of the sample's own time scale,
    // as the sample's times do, so nothing is converted. The argument is
    // there for elements kept in the medium's terms (a time counted in its
    // time scale, a value that only one format defines): Attach would
    // re-express or refuse those for the sample's medium and Detach restore
    // them, without a change to the calls or to their callers.

    // Two new objects in `first` and `second` (owned by the caller): both
    // get the frame-bound elements, `first` also every ordered one. The
    // duration is halved, `first` taking the odd unit. -19002 without
    // memory (both null then).
    virtual int Split(CMetadata*& first, CMetadata*& second);
    // Takes in `other`, a later part: its ordered elements are appended, its
    // frame-bound elements added only for types not held here, durations
    // summed. -19004 for null, -19008 past MaxElements (nothing changed).
    virtual int Merge(CMetadata* other);
    // A new object holding the ordered elements, in order; with `remove`
    // they are taken out of this one. Null without memory (nothing removed).
    CMetadata* ExtractOrderedMetadata(bool remove);

    int SetDuration(int64_t duration)
    {
        m_duration = duration;
        return RESULT_OK;
    }
    int64_t GetDuration() const { return m_duration; }
    bool HasLocalDataCopy() const { return m_localDataCopy; }
    void SetHasLocalDataCopy(bool local) { m_localDataCopy = local; }

    // Bytes of the serialised body (without magic or atom header).
    int32_t GetLength() const;
    // The body in the writer's byte order.
    int Write(CBinaryWriter* writer) const;
    // Replaces the content with a body of exactly `length` bytes from the
    // reader. On failure the content is unchanged. -19004 for a null
    // reader, -19009 for an unknown version, -19017 for inconsistent
    // input, -19101 when the reader ends first, -19002 without memory.
    int Read(CBinaryReader* reader, int32_t length);

    // New arrays owned by the caller; null without memory.
    CByteArray* ToAtom() const;
    CByteArray* ToByteArray() const;
    // New metadata from the forms above; null (with a log line naming the
    // field) for null, truncated or inconsistent input.
    static CMetadata* FromAtom(CByteArray* atom);
    static CMetadata* FromByteArray(CByteArray* bytes);

protected:
    ~CMetadata() override;
    void ReclaimCleanUp() override;

private:
    void ClearElements();
    int CopyElementsFrom(const CMetadata& other, bool frameBound, bool ordered);
    CByteArray* Serialise(bool atom) const;
    static CMetadata* Parse(CByteArray* bytes, bool atom);

    Detail::GrowBuffer<RObject<CMetadataElement>> m_elements;
    int32_t m_cursor = -1;
    int64_t m_duration = 0;
    bool m_localDataCopy = false;
};

} // namespace Quorvex::Vek

#pragma once

// One piece of per-frame metadata, keyed by a four-character type that is
// also its object tag. This class is the generic element: opaque payload
// bytes under any type. Timecode, ancillary and interlace elements derive
// from it and give their payload a structure.
//
// Elements do not change after they are made, so metadata objects share
// them freely (copies of metadata copy the list, not the elements).
//
// Each element is either frame-bound or ordered. A frame-bound element
// describes the picture it came with (its timecode, its field order) and
// stays with that frame: a split copies it to both parts, a merge keeps the
// first frame's. An ordered element is data that happened to arrive with
// the frame (ancillary packets such as captions) and must be delivered once
// each, in arrival order: a split keeps it with the first part only and a
// merge appends the later frame's after the earlier one's.
#include <vek/core/CByteArray.h>
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class CBinaryReader;
class CBinaryWriter;

class VEK_API CMetadataElement : public CObject {
public:
    // The largest payload an element may carry, a bound on what a parser
    // allocates for one element; with CMetadata::MaxElements it keeps
    // every serialised form within 32-bit lengths.
    enum : int32_t { MaxPayloadLength = 1 << 16 };

    // A generic element holding a copy of `length` bytes (new reference).
    // Null for a negative or too large length, or without memory.
    static CMetadataElement* Create(uint32_t type, const unsigned char* data, int32_t length);

    virtual bool IsOrdered() const { return false; }
    // The payload as it is written by WritePayload.
    virtual int32_t GetPayloadLength() const;
    // Writes exactly GetPayloadLength() bytes.
    virtual int WritePayload(CBinaryWriter& writer) const;

    // The generic payload (borrowed; null for an empty one).
    CByteArray* GetPayload() const { return m_payload; }

    // Reads an element of `type` whose payload is the next `length` bytes of
    // `reader`, choosing the class by type; a new element in `out`. -19017
    // when a structured payload is malformed, -19101 when the reader ends
    // first, -19002 without memory. `out` is null on failure.
    static int Read(uint32_t type, CBinaryReader& reader, int32_t length, CMetadataElement*& out);

protected:
    CMetadataElement(uint32_t type, CByteArray* payload);
    ~CMetadataElement() override;

private:
    RObject<CByteArray> m_payload;
};

} // namespace Quorvex::Vek

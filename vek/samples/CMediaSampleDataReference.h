#pragma once

// Base of every reference to the bytes of a sample. The bytes may lie in
// memory, in a pixel buffer, in a codec access unit or still in the
// container file; a user reaches them only between Lock and Unlock, which
// CLockedDataReference pairs for it. Subclasses are told apart by their type
// tag ("cdr ", "bdr ", ...), which each passes to this constructor.
//
// A reference takes no lock of its own: one sample, and so one reference, is
// worked on by one thread at a time.
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

class VEK_API CMediaSampleDataReference : public CObject {
public:
    // Makes the bytes reachable: `data` and `length` describe them until
    // Unlock. The base has no bytes and answers -19006 with data null and
    // length 0.
    virtual int Lock(unsigned char*& data, int32_t& length);
    // Ends what Lock began; 0.
    virtual int Unlock();
    // Changes the number of valid bytes; -19006 where the length is fixed,
    // -19003 outside what the reference can hold.
    virtual int SetLength(int32_t length);

protected:
    explicit CMediaSampleDataReference(uint32_t type);
    ~CMediaSampleDataReference() override;
};

} // namespace Quorvex::Vek

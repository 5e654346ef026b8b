#pragma once

// One coded or decoded picture: a media sample with picture type and
// structure, duration, composition offset (presentation time = decode time
// + offset), frame number and an atom of codec-level side data.
//
// The atom is kept in a buffer of the sample's own that survives recycling:
// a sample taken again from its pool reuses it, so setting an atom of a
// size seen before allocates nothing.
#include <vek/samples/CMediaSample.h>

namespace Quorvex::Vek {

class VEK_API CVideoSample : public CMediaSample {
public:
    enum : uint32_t { Type = Four("vsmp") };

    // Picture types and their letters ("I", "P", "B").
    enum : int32_t { I = 0, P = 1, B = 2 };
    static const char* const PictureType[3];
    // Picture structures and their letters ("F", "U", "L").
    enum : int32_t { Frame = 0, UpperField = 1, LowerField = 2 };
    static const char* const PictureStructure[3];

    // A sample from the shared video pool (one reference); null without memory.
    static CVideoSample* Create();
    // Outside any pool until a pool hands it out; pools make theirs this way.
    CVideoSample();

    int64_t GetDuration() const override { return m_duration; }
    int SetDuration(int32_t duration)
    {
        m_duration = duration;
        return RESULT_OK;
    }
    int32_t GetCompositionOffset() const { return m_compositionOffset; }
    int SetCompositionOffset(int32_t offset)
    {
        m_compositionOffset = offset;
        return RESULT_OK;
    }
    // Decode time + composition offset.
    int64_t GetCompositionTime() const override;
    // Moves the decode time by `delta` and the offset by -delta, so the
    // composition time stays. Always 0; an offset that leaves its 32 bits
    // wraps (with a warning), and the composition time then moves.
    int AdjustTime(int32_t delta);

    // -19006 outside I, P, B (the type is unchanged).
    int SetPictureType(int32_t type);
    int32_t GetPictureType() const { return m_pictureType; }
    // -19006 outside Frame, UpperField, LowerField (the structure is unchanged).
    int SetPictureStructure(int32_t structure);
    int32_t GetPictureStructure() const { return m_pictureStructure; }
    int SetFrameNumber(int32_t number)
    {
        m_frameNumber = number;
        return RESULT_OK;
    }
    int32_t GetFrameNumber() const { return m_frameNumber; }

    // Copies the array's bytes into the atom; a null array clears it.
    // -19002 without memory (the atom is then unchanged).
    int SetAtom(CByteArray* atom);
    // A new array with a copy of the atom (new reference); null when there is
    // no atom or no memory.
    CByteArray* GetAtom() const;
    // Copies `length` bytes; null data or length 0 clears the atom. -19003
    // for a negative length, -19002 without memory (atom unchanged).
    int SetAtomData(const unsigned char* data, int32_t length);
    // The atom's bytes, valid until the atom is next set; null when empty.
    const unsigned char* GetAtomData() const { return m_atomLength > 0 ? m_atom : nullptr; }
    int32_t GetAtomLength() const { return m_atomLength; }

protected:
    ~CVideoSample() override;
    void ReclaimCleanUp() override;

private:
    int32_t m_pictureType = I;
    int32_t m_pictureStructure = Frame;
    int32_t m_duration = 0;
    int32_t m_compositionOffset = 0;
    int32_t m_frameNumber = 0;
    unsigned char* m_atom = nullptr;
    int32_t m_atomCapacity = 0;
    int32_t m_atomLength = 0;
};

} // namespace Quorvex::Vek

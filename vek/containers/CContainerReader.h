#pragma once

// The base of every demultiplexer. A reader is made by its factory, chosen
// for a stream by probing (Validate), given its context, indexed once
// (BeginIndex), then hands out the samples of each track in decode order.
// Samples normally carry a CContainerDataReference (a byte range of the
// file); Read*Data fetches those bytes when they are wanted.
//
// Life cycle: Create -> BeginIndex -> Read*Sample / Read*Data ... ->
// EndIndex -> Release. Validate may be called on a fresh reader only.
//
// Ownership: samples and data references handed out carry one reference for
// the caller; streams opened with OpenStream likewise.
//
// Subclasses that override a three-argument Read*Data should add
// `using CContainerReader::ReadAudioData;` (and the like) so that the
// sample-resolving overloads stay visible through them.
#include <vek/components/CComponentInventory.h>
#include <vek/containers/CContainer.h>
#include <vek/io/CStream.h>
#include <vek/samples/CAudioSample.h>
#include <vek/samples/CContainerDataReference.h>
#include <vek/samples/CMemoryDataReference.h>
#include <vek/samples/CSubtitleSample.h>
#include <vek/samples/CVideoSample.h>

namespace Quorvex::Vek {

class VEK_API CContainerReader : public CContainer {
public:
    enum : uint32_t { Type = Four("crdr") };
    using ComponentKind = CContainerReader;

    // The largest read timeout (one hour), as a read wait of the context.
    static constexpr int32_t MaxReadTimeout = 3600000;

    // A reader for the current file of `context`, chosen by probing every
    // registered reader; null when none accepts it (logged) or the file
    // cannot be opened. `flags` go to the chosen reader unchanged.
    static CContainerReader* Create(CContainerContext* context);
    static CContainerReader* Create(CContainerContext* context, unsigned int flags);
    // The same for a file path, through a directory context on its folder.
    static CContainerReader* Create(CString* path);
    static CContainerReader* Create(CString* path, unsigned int flags);

    // How well this reader reads `stream` (positioned at its start; the
    // reader may move it): 0 cannot, more is surer. 128 is a certain match
    // of a signature; above 255 ends the choice at once.
    virtual int Validate(CStream* stream);

    // Next sample of a track in decode order; 0 with a null sample at the
    // end. The base has none: -19006. The two video forms call each other,
    // so a format overrides either one.
    virtual int ReadVideoSample(int32_t track, CVideoSample*& sample);
    virtual int ReadVideoSample(CVideoSample*& sample);
    // The bytes of a container range as a new memory reference. The base
    // cannot: -19005.
    virtual int ReadVideoData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data);
    virtual int ReadVideoData(CVideoSample* sample);
    virtual int ReadVideoMetadata(int32_t track, unsigned int kind, CContainerDataReference* range,
                                  CMemoryDataReference*& data);
    virtual int ReadVideoMetadata(CVideoSample* sample);
    virtual int ReadAudioSample(int32_t track, CAudioSample*& sample);
    virtual int ReadAudioData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data);
    virtual int ReadAudioMetadata(int32_t track, unsigned int kind, CContainerDataReference* range,
                                  CMemoryDataReference*& data);
    virtual int ReadSubtitleSample(int32_t track, CSubtitleSample*& sample);
    virtual int ReadSubtitleData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data);
    virtual int ReadSubtitleMetadata(int32_t track, unsigned int kind, CContainerDataReference* range,
                                     CMemoryDataReference*& data);

    // Resolve a sample whose bytes are still in the file: when its data
    // reference is a container range ("cdr "), fetch the bytes with the
    // three-argument form and put the memory reference in its place.
    // Samples with any other reference, or none, are left as they are (0).
    int ReadVideoData(int32_t track, CVideoSample* sample);
    int ReadAudioData(int32_t track, CAudioSample* sample);
    int ReadSubtitleData(int32_t track, CSubtitleSample* sample);
    int ReadVideoMetadata(int32_t track, CVideoSample* sample);
    int ReadAudioMetadata(int32_t track, CAudioSample* sample);

    // Fetch helpers for readers. Each holds the stream's monitor from the
    // seek to the end of the read, so threads sharing a stream cannot
    // interleave; a range beyond the stream's end is -19101.
    // A new array with the range's bytes.
    static int ReadData(CStream* stream, CContainerDataReference* range, CByteArray*& data);
    // A new memory reference over a new array with the range's bytes.
    static int ReadData(CStream* stream, CContainerDataReference* range, CMemoryDataReference*& data);
    // Fills all of `data` from `position`.
    static int ReadData(CStream* stream, int64_t position, CByteArray* data);
    // A picture's bytes, described by `properties` in the memory reference.
    static int ReadVideoData(CStream* stream, CVideoProperties* properties, CContainerDataReference* range,
                             CMemoryDataReference*& data);

    // Opens the context's current file, as this reader wants it opened
    // (see GetStreamBlockSize and the read timeout). The first call on a
    // reader made by Create may instead hand over, rewound, the stream the
    // reader was chosen on, when the context still names that file and the
    // reader wants it opened as it was (no block size, no read timeout):
    // the same file opened the same way, without opening it twice.
    int OpenStream(CStream*& stream);
    // Opens a companion file of the same context by name.
    int OpenStream(CString* name, CStream*& stream);

    // Milliseconds a read may wait for a growing file; 0 none.
    int32_t GetReadTimeout() const { return m_readTimeout; }
    // -19003 outside 0..MaxReadTimeout.
    int SetReadTimeout(int32_t milliseconds);
    // The block size of the buffered stream OpenStream puts in front of the
    // file; 0 for none. Readers that make many small reads set one.
    int32_t GetStreamBlockSize() const { return m_streamBlockSize; }
    // The flag word given at creation.
    unsigned int GetFlags() const { return m_flags; }

    // "read_timeout" (4 bytes, signed milliseconds) is the reader's own;
    // any other key goes to the container's bag.
    int GetProperty(const char* key, int32_t capacity, unsigned char* out) override;
    int SetProperty(const char* key, int32_t length, const unsigned char* data) override;
    using IProperties::GetProperty;
    using IProperties::SetProperty;

protected:
    explicit CContainerReader(uint32_t type, unsigned int flags = 0);
    ~CContainerReader() override;

    void SetStreamBlockSize(int32_t bytes) { m_streamBlockSize = bytes; }

private:
    template <typename Sample, typename Fetch>
    int ResolveData(Sample* sample, Fetch fetch);

    int32_t m_readTimeout = 0;
    int32_t m_streamBlockSize = 0;
    unsigned int m_flags = 0;
    // The stream Create probed and the name it opened, until OpenStream
    // takes it over or the reader is released.
    RObject<CStream> m_probeStream;
    RObject<CString> m_probeName;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CContainerReader);

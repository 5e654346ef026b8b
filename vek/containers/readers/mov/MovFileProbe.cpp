#include <vek/containers/readers/mov/MovFileProbe.h>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/io/BigEndian.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

namespace {

enum : int32_t { HeadBytes = 16 };

bool ReadHead(CStream* stream, unsigned char (&head)[HeadBytes], int64_t& length)
{
    length = stream->GetLength();
    if (length < 8 || stream->Seek(0, CStream::Begin) < 0)
        return false;
    const int32_t wanted = length < HeadBytes ? int32_t(length) : HeadBytes;
    return stream->Read(head, wanted) == wanted;
}

} // namespace

MovFamily MovFileProbe::FamilyOfFirstBox(uint32_t type)
{
    switch (type) {
    case Four("moov"):
    case Four("mdat"):
    case Four("free"):
    case Four("skip"):
    case Four("wide"):
    case Four("pnot"):
        return MovFamily::QuickTime;
    case Four("styp"):
    case Four("sidx"):
    case Four("moof"):
        return MovFamily::Iso;
    default:
        return MovFamily::None;
    }
}

MovFamily MovFileProbe::Probe(CStream* stream)
{
    unsigned char head[HeadBytes] = {};
    int64_t length = 0;
    if (!stream || !ReadHead(stream, head, length))
        return MovFamily::None;
    const uint64_t size32 = BigEndian::Load32(head);
    const uint32_t type = BigEndian::Load32(head + 4);
    uint64_t size = size32;
    uint32_t headerSize = 8;
    if (size32 == 1) {
        if (length < HeadBytes)
            return MovFamily::None;
        size = BigEndian::Load64(head + 8);
        headerSize = 16;
    } else if (size32 == 0) {
        size = uint64_t(length);
    }
    if (size < headerSize)
        return MovFamily::None;
    if (type == Four("ftyp")) {
        // A box in a file too short for it, or a brand outside it, is not ours.
        if (size < 12 || size > uint64_t(length) || length < 12)
            return MovFamily::None;
        return BigEndian::Load32(head + 8) == Four("qt  ") ? MovFamily::QuickTime : MovFamily::Iso;
    }
    // Without a brand, only a box that fits the file counts; an 'mdat' may
    // be cut short in a recording that stopped.
    if (size > uint64_t(length) && type != Four("mdat"))
        return MovFamily::None;
    return FamilyOfFirstBox(type);
}

} // namespace Quorvex::Vek

#include <vek/containers/readers/mov/MovElementaryStreamDescriptor.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

enum : uint8_t { EsTag = 0x03, DecoderConfigTag = 0x04, SpecificInfoTag = 0x05 };
enum : uint8_t { DependsOnStream = 0x80, HasUrl = 0x40, HasOcrStream = 0x20 };

// A descriptor's tag and its expandable length (up to four bytes of seven
// bits each); the body must fit what remains of `fields`.
bool ReadDescriptorHeader(MovFieldReader& fields, uint8_t& tag, size_t& length)
{
    tag = fields.Read8();
    length = 0;
    for (int i = 0; i < 4; ++i) {
        const uint8_t byte = fields.Read8();
        length = length << 7 | (byte & 0x7F);
        if (!(byte & 0x80))
            break;
    }
    return !fields.Failed() && length <= fields.Remaining();
}

int Refuse(const char* what, size_t length, size_t remaining)
{
    Log(LogLevel::Error, "MovElementaryStreamDescriptor: 'esds' %s of %zu bytes, %zu remain\n", what, length, remaining);
    return RESULT_FORMAT_ERROR;
}

// Skips the ES descriptor's optional fields up to its sub-descriptors.
void SkipEsFields(MovFieldReader& es)
{
    es.Skip(2); // ES_ID
    const uint8_t flags = es.Read8();
    if (flags & DependsOnStream)
        es.Skip(2);
    if (flags & HasUrl)
        es.Skip(es.Read8());
    if (flags & HasOcrStream)
        es.Skip(2);
}

// The first descriptor of `wanted` among the rest of `fields`.
bool FindDescriptor(MovFieldReader& fields, uint8_t wanted, const uint8_t*& body, size_t& length)
{
    uint8_t tag = 0;
    while (fields.Remaining() > 0 && ReadDescriptorHeader(fields, tag, length)) {
        body = fields.Take(length);
        if (tag == wanted)
            return body != nullptr;
    }
    return false;
}

} // namespace

int MovElementaryStreamDescriptor::Read(const MovBox& esds, MovElementaryStreamDescriptor& out)
{
    MovFieldReader fields(esds);
    fields.Skip(4); // version and flags
    uint8_t tag = 0;
    size_t length = 0;
    if (!ReadDescriptorHeader(fields, tag, length) || tag != EsTag)
        return Refuse(tag == EsTag ? "ES descriptor" : "first descriptor (not an ES descriptor)", length,
                      fields.Remaining());
    MovFieldReader es(fields.Here(), length);
    SkipEsFields(es);
    const uint8_t* body = nullptr;
    size_t bodyLength = 0;
    if (es.Failed() || !FindDescriptor(es, DecoderConfigTag, body, bodyLength))
        return Refuse("ES descriptor without a decoder configuration", length, fields.Remaining());
    MovFieldReader config(body, bodyLength);
    MovElementaryStreamDescriptor read;
    read.objectType = config.Read8();
    read.streamType = uint8_t(config.Read8() >> 2);
    config.Skip(3); // buffer size
    read.maxBitRate = config.Read32();
    read.averageBitRate = config.Read32();
    if (config.Failed())
        return Refuse("decoder configuration", bodyLength, bodyLength);
    const uint8_t* info = nullptr;
    size_t infoLength = 0;
    if (FindDescriptor(config, SpecificInfoTag, info, infoLength)) {
        read.specificInfo = info;
        read.specificInfoSize = infoLength;
    }
    out = read;
    return RESULT_OK;
}

} // namespace Quorvex::Vek

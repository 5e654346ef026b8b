#include <vek/samples/CAncillaryMetadataElement.h>

#include <vek/core/Log.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>

namespace Quorvex::Vek {

CAncillaryMetadataElement* CAncillaryMetadataElement::Create(uint16_t line, uint8_t did, uint8_t sdid,
                                                             const unsigned char* data, int32_t length)
{
    if (length < 0 || length > MaxDataLength) {
        Log(LogLevel::Error, "CAncillaryMetadataElement::Create: data length %d outside 0..%d\n", length,
            MaxDataLength);
        return nullptr;
    }
    RObject<CByteArray> bytes;
    if (length > 0) {
        bytes = CByteArray::Create(data, length);
        if (!bytes)
            return nullptr;
    }
    return new (fallible) CAncillaryMetadataElement(line, did, sdid, bytes);
}

CAncillaryMetadataElement::CAncillaryMetadataElement(uint16_t line, uint8_t did, uint8_t sdid, CByteArray* data)
    : CMetadataElement(Type, data), m_line(line), m_did(did), m_sdid(sdid)
{
}

CAncillaryMetadataElement::~CAncillaryMetadataElement() = default;

int32_t CAncillaryMetadataElement::GetPayloadLength() const
{
    return HeaderLength + CMetadataElement::GetPayloadLength();
}

int CAncillaryMetadataElement::WritePayload(CBinaryWriter& writer) const
{
    int result = writer.WriteUInt16(m_line);
    if (result >= 0)
        result = writer.WriteUInt8(m_did);
    if (result >= 0)
        result = writer.WriteUInt8(m_sdid);
    if (result < 0)
        return result;
    return CMetadataElement::WritePayload(writer);
}

int CAncillaryMetadataElement::Read(CBinaryReader& reader, int32_t length, CMetadataElement*& out)
{
    out = nullptr;
    if (length < HeaderLength || length - HeaderLength > MaxDataLength) {
        Log(LogLevel::Error, "CAncillaryMetadataElement::Read: payload length %d outside %d..%d\n", length,
            HeaderLength, HeaderLength + MaxDataLength);
        return RESULT_FORMAT_ERROR;
    }
    uint16_t line = 0;
    uint8_t did = 0;
    uint8_t sdid = 0;
    unsigned char data[MaxDataLength];
    const int32_t dataLength = length - HeaderLength;
    int result = reader.ReadUInt16(line);
    if (result >= 0)
        result = reader.ReadUInt8(did);
    if (result >= 0)
        result = reader.ReadUInt8(sdid);
    if (result >= 0 && dataLength > 0)
        result = reader.ReadBytes(data, dataLength);
    if (result < 0)
        return result;
    out = Create(line, did, sdid, data, dataLength);
    if (!out) {
        Log(LogLevel::Error, "CAncillaryMetadataElement::Read: no memory for %d data bytes\n", dataLength);
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek

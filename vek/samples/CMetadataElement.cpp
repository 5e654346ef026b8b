#include <vek/samples/CMetadataElement.h>

#include <vek/core/Log.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>
#include <vek/samples/CAncillaryMetadataElement.h>
#include <vek/samples/CInterlaceMetadataElement.h>
#include <vek/samples/CTimecodeMetadataElement.h>

namespace Quorvex::Vek {

namespace {

using ReadFunction = int (*)(CBinaryReader&, int32_t, CMetadataElement*&);

// The structured element classes by type; any other type is generic.
struct ElementKind {
    uint32_t type;
    ReadFunction read;
};
constexpr ElementKind ElementKinds[] = {
    {CTimecodeMetadataElement::Type, &CTimecodeMetadataElement::Read},
    {CAncillaryMetadataElement::Type, &CAncillaryMetadataElement::Read},
    {CInterlaceMetadataElement::Type, &CInterlaceMetadataElement::Read},
};

// A generic element made zeroed and filled from the reader in place.
int ReadGeneric(uint32_t type, CBinaryReader& reader, int32_t length, CMetadataElement*& out)
{
    RObject<CMetadataElement> element(CMetadataElement::Create(type, nullptr, length));
    CByteArray* payload = element ? element->GetPayload() : nullptr;
    unsigned char* data = payload ? payload->GetData() : nullptr;
    if (!element || (length > 0 && !data)) {
        Log(LogLevel::Error, "CMetadataElement::Read: no memory for a payload of %d bytes of type 0x%08x\n", length,
            type);
        return RESULT_OUT_OF_MEMORY;
    }
    if (length > 0) {
        const int result = reader.ReadBytes(data, length);
        if (result < 0)
            return result;
    }
    out = element.Detach();
    return RESULT_OK;
}

} // namespace

CMetadataElement* CMetadataElement::Create(uint32_t type, const unsigned char* data, int32_t length)
{
    if (length < 0 || length > MaxPayloadLength) {
        Log(LogLevel::Error, "CMetadataElement::Create: payload length %d outside 0..%d\n", length,
            MaxPayloadLength);
        return nullptr;
    }
    RObject<CByteArray> payload;
    if (length > 0) {
        payload = CByteArray::Create(data, length);
        if (!payload)
            return nullptr;
    }
    return new (fallible) CMetadataElement(type, payload);
}

CMetadataElement::CMetadataElement(uint32_t type, CByteArray* payload)
    : CObject(type), m_payload(RObject<CByteArray>::FromObject(payload))
{
}

CMetadataElement::~CMetadataElement() = default;

int32_t CMetadataElement::GetPayloadLength() const
{
    return m_payload ? m_payload->GetLength() : 0;
}

int CMetadataElement::WritePayload(CBinaryWriter& writer) const
{
    if (!m_payload || m_payload->GetLength() == 0)
        return RESULT_OK;
    const unsigned char* data = m_payload->GetData();
    return data ? writer.WriteBytes(data, m_payload->GetLength()) : RESULT_OUT_OF_MEMORY;
}

int CMetadataElement::Read(uint32_t type, CBinaryReader& reader, int32_t length, CMetadataElement*& out)
{
    out = nullptr;
    if (length < 0 || length > MaxPayloadLength) {
        Log(LogLevel::Error, "CMetadataElement::Read: payload length %d of type 0x%08x outside 0..%d\n", length,
            type, MaxPayloadLength);
        return RESULT_FORMAT_ERROR;
    }
    for (const ElementKind& kind : ElementKinds) {
        if (kind.type == type)
            return kind.read(reader, length, out);
    }
    return ReadGeneric(type, reader, length, out);
}

} // namespace Quorvex::Vek

#include <vek/samples/CInterlaceMetadataElement.h>

#include <vek/core/Log.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>

namespace Quorvex::Vek {

namespace {

bool IsFieldOrder(uint32_t value)
{
    return value <= CVideoProperties::FieldOrderBottomFirst;
}

} // namespace

CInterlaceMetadataElement* CInterlaceMetadataElement::Create(uint32_t fieldOrder)
{
    if (!IsFieldOrder(fieldOrder)) {
        Log(LogLevel::Error, "CInterlaceMetadataElement::Create: field order %u is unknown\n", fieldOrder);
        return nullptr;
    }
    return new (fallible) CInterlaceMetadataElement(fieldOrder);
}

CInterlaceMetadataElement::CInterlaceMetadataElement(uint32_t fieldOrder)
    : CMetadataElement(Type, nullptr), m_fieldOrder(fieldOrder)
{
}

CInterlaceMetadataElement::~CInterlaceMetadataElement() = default;

int CInterlaceMetadataElement::WritePayload(CBinaryWriter& writer) const
{
    const int result = writer.WriteUInt8(static_cast<uint8_t>(m_fieldOrder));
    return result < 0 ? result : RESULT_OK;
}

int CInterlaceMetadataElement::Read(CBinaryReader& reader, int32_t length, CMetadataElement*& out)
{
    out = nullptr;
    if (length != 1) {
        Log(LogLevel::Error, "CInterlaceMetadataElement::Read: payload length %d, expected 1\n", length);
        return RESULT_FORMAT_ERROR;
    }
    uint8_t order = 0;
    const int result = reader.ReadUInt8(order);
    if (result < 0)
        return result;
    if (!IsFieldOrder(order)) {
        Log(LogLevel::Error, "CInterlaceMetadataElement::Read: field order %u is unknown\n", order);
        return RESULT_FORMAT_ERROR;
    }
    out = Create(order);
    if (!out) {
        Log(LogLevel::Error, "CInterlaceMetadataElement::Read: no memory\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek

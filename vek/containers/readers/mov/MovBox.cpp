#include <vek/containers/readers/mov/MovBox.h>

#include <cstring>

#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>

namespace Quorvex::Vek {

namespace {

enum : size_t { CompactHeader = 8, LargeSizeField = 8, UserTypeField = 16 };

int RefuseHeader(uint32_t parentType, uint32_t type, int64_t offset, uint64_t size, size_t remaining)
{
    Log(LogLevel::Error, "MovBox: box '%s' at %lld in '%s' has size %llu, but %zu bytes remain\n",
        FourCCText(type).c_str(), static_cast<long long>(offset), FourCCText(parentType).c_str(),
        static_cast<unsigned long long>(size), remaining);
    return RESULT_FORMAT_ERROR;
}

} // namespace

MovBoxIterator::MovBoxIterator(const MovBox& parent)
    : m_data(parent.payload), m_size(parent.size), m_fileOffset(parent.PayloadOffset()), m_parentType(parent.type)
{
}

MovBoxIterator::MovBoxIterator(const uint8_t* data, size_t size, int64_t fileOffset, uint32_t parentType)
    : m_data(data), m_size(size), m_fileOffset(fileOffset), m_parentType(parentType)
{
}

int MovBoxIterator::Next(MovBox& box)
{
    const size_t remaining = m_size - m_position;
    if (remaining == 0)
        return 1;
    const uint8_t* header = m_data + m_position;
    const int64_t offset = m_fileOffset + int64_t(m_position);
    if (remaining < CompactHeader) {
        // QuickTime ends some atom lists with a four-byte zero.
        if (remaining == 4 && BigEndian::Load32(header) == 0) {
            m_position = m_size;
            return 1;
        }
        return RefuseHeader(m_parentType, 0, offset, remaining, remaining);
    }
    const uint32_t type = BigEndian::Load32(header + 4);
    uint64_t size = BigEndian::Load32(header);
    size_t headerSize = CompactHeader;
    if (size == 1) {
        if (remaining - CompactHeader < LargeSizeField)
            return RefuseHeader(m_parentType, type, offset, size, remaining);
        size = BigEndian::Load64(header + CompactHeader);
        headerSize += LargeSizeField;
    } else if (size == 0) {
        size = remaining; // to the end of the parent
    }
    if (type == Four("uuid")) {
        if (remaining - headerSize < UserTypeField)
            return RefuseHeader(m_parentType, type, offset, size, remaining);
        std::memcpy(box.userType, header + headerSize, UserTypeField);
        headerSize += UserTypeField;
    }
    if (size < headerSize || size > remaining)
        return RefuseHeader(m_parentType, type, offset, size, remaining);
    box.type = type;
    box.payload = header + headerSize;
    box.size = size_t(size) - headerSize;
    box.fileOffset = offset;
    box.headerSize = uint32_t(headerSize);
    m_position += size_t(size);
    return RESULT_OK;
}

int MovBoxIterator::Find(uint32_t type, MovBox& box)
{
    int result;
    while ((result = Next(box)) == RESULT_OK) {
        if (box.type == type)
            return RESULT_OK;
    }
    return result;
}

bool MovFieldReader::Has(size_t count)
{
    if (m_failed || count > m_size - m_position) {
        m_failed = true;
        return false;
    }
    return true;
}

uint8_t MovFieldReader::Read8()
{
    if (!Has(1))
        return 0;
    return m_data[m_position++];
}

uint16_t MovFieldReader::Read16()
{
    if (!Has(2))
        return 0;
    const uint16_t value = BigEndian::Load16(m_data + m_position);
    m_position += 2;
    return value;
}

uint32_t MovFieldReader::Read24()
{
    if (!Has(3))
        return 0;
    const uint32_t value = BigEndian::Load24(m_data + m_position);
    m_position += 3;
    return value;
}

uint32_t MovFieldReader::Read32()
{
    if (!Has(4))
        return 0;
    const uint32_t value = BigEndian::Load32(m_data + m_position);
    m_position += 4;
    return value;
}

uint64_t MovFieldReader::Read64()
{
    if (!Has(8))
        return 0;
    const uint64_t value = BigEndian::Load64(m_data + m_position);
    m_position += 8;
    return value;
}

void MovFieldReader::Skip(size_t count)
{
    if (Has(count))
        m_position += count;
}

const uint8_t* MovFieldReader::Take(size_t count)
{
    if (!Has(count))
        return nullptr;
    const uint8_t* here = m_data + m_position;
    m_position += count;
    return here;
}

void MovFieldReader::ReadVersionAndFlags(uint8_t& version, uint32_t& flags)
{
    version = Read8();
    flags = Read24();
}

} // namespace Quorvex::Vek

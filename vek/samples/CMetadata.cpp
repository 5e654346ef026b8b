#include <vek/samples/CMetadata.h>

#include <vek/core/Log.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>
#include <vek/io/CMemoryStream.h>
#include <vek/samples/CMediaSample.h>
#include <vek/samples/SharedPool.h>

namespace Quorvex::Vek {

namespace {

constexpr int32_t SharedPoolSize = 64;
std::atomic<CPool<CMetadata>*> s_pool{nullptr};

constexpr int32_t MagicLength = 4;
constexpr int32_t AtomHeaderLength = 8;

using ElementList = Detail::GrowBuffer<RObject<CMetadataElement>>;

bool Wanted(const CMetadataElement* element, bool frameBound, bool ordered)
{
    return element->IsOrdered() ? ordered : frameBound;
}

// Reads one element header and payload; `remaining` is what is left of the
// body and shrinks by what was read.
int ReadElement(CBinaryReader& reader, int32_t& remaining, CMetadataElement*& out)
{
    uint32_t type = 0;
    uint32_t length = 0;
    if (remaining < CMetadata::ElementHeaderLength) {
        Log(LogLevel::Error, "CMetadata::Read: element header needs %d bytes, %d left\n",
            CMetadata::ElementHeaderLength, remaining);
        return RESULT_FORMAT_ERROR;
    }
    int result = reader.ReadFourCC(type);
    if (result >= 0)
        result = reader.ReadUInt32(length);
    if (result < 0)
        return result;
    remaining -= CMetadata::ElementHeaderLength;
    if (length > static_cast<uint32_t>(remaining)) {
        Log(LogLevel::Error, "CMetadata::Read: element 0x%08x payload length %u exceeds the %d bytes left\n", type,
            length, remaining);
        return RESULT_FORMAT_ERROR;
    }
    remaining -= static_cast<int32_t>(length);
    return CMetadataElement::Read(type, reader, static_cast<int32_t>(length), out);
}

} // namespace

CMetadata* CMetadata::Create()
{
    return Detail::TakeFromSharedPool(s_pool, SharedPoolSize);
}

CMetadata::CMetadata() : CPoolObject(Type) {}

CMetadata::~CMetadata() = default;

void CMetadata::ReclaimCleanUp()
{
    ClearElements();
    m_duration = 0;
    m_localDataCopy = false;
}

void CMetadata::ClearElements()
{
    m_elements.Clear(); // storage stays for the next user
    m_cursor = -1;
}

CMetadata* CMetadata::Clone() const
{
    RObject<CMetadata> copy(Create());
    if (!copy || copy->CopyElementsFrom(*this, true, true) < 0) {
        Log(LogLevel::Error, "CMetadata::Clone: no memory for %d elements\n", GetElementCount());
        return nullptr;
    }
    copy->m_duration = m_duration;
    copy->m_localDataCopy = m_localDataCopy;
    return copy.Detach();
}

// Appends the chosen kinds of the other's elements, all or none.
int CMetadata::CopyElementsFrom(const CMetadata& other, bool frameBound, bool ordered)
{
    int32_t adding = 0;
    for (int32_t i = 0; i < other.m_elements.Count(); ++i)
        adding += Wanted(other.m_elements[i], frameBound, ordered) ? 1 : 0;
    if (adding > MaxElements - m_elements.Count()) {
        Log(LogLevel::Error, "CMetadata::CopyElementsFrom: %d elements more than the %d held exceed %d\n", adding,
            m_elements.Count(), MaxElements);
        return RESULT_ARRAY_FULL;
    }
    if (!m_elements.Reserve(m_elements.Count() + adding))
        return RESULT_OUT_OF_MEMORY;
    for (int32_t i = 0; i < other.m_elements.Count(); ++i) {
        if (Wanted(other.m_elements[i], frameBound, ordered))
            m_elements.Insert(m_elements.Count(), RObject<CMetadataElement>(other.m_elements[i]));
    }
    return RESULT_OK;
}

int CMetadata::AddElement(CMetadataElement* element)
{
    if (!element) {
        Log(LogLevel::Error, "CMetadata::AddElement: element is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    if (m_elements.Count() >= MaxElements) {
        Log(LogLevel::Error, "CMetadata::AddElement: already %d elements, element 0x%08x refused\n",
            m_elements.Count(), element->GetType());
        return RESULT_ARRAY_FULL;
    }
    if (!m_elements.Insert(m_elements.Count(), RObject<CMetadataElement>::FromObject(element))) {
        Log(LogLevel::Error, "CMetadata::AddElement: no memory for element %d\n", m_elements.Count());
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

CMetadataElement* CMetadata::GetElement(uint32_t type) const
{
    for (int32_t i = 0; i < m_elements.Count(); ++i) {
        if (m_elements[i]->IsType(type))
            return m_elements[i];
    }
    return nullptr;
}

bool CMetadata::ContainsElement(uint32_t type) const
{
    return GetElement(type) != nullptr;
}

int CMetadata::RemoveElement(uint32_t type)
{
    bool removed = false;
    for (int32_t i = m_elements.Count() - 1; i >= 0; --i) {
        if (m_elements[i]->IsType(type)) {
            m_elements.Take(i);
            removed = true;
        }
    }
    return removed ? RESULT_OK : RESULT_INDEX_OUT_OF_RANGE;
}

CMetadataElement* CMetadata::GetElementAt(int32_t index) const
{
    return index >= 0 && index < m_elements.Count() ? m_elements[index].Get() : nullptr;
}

bool CMetadata::MoveNextElement()
{
    if (m_cursor + 1 < m_elements.Count()) {
        ++m_cursor;
        return true;
    }
    m_cursor = m_elements.Count();
    return false;
}

// The medium's properties are not needed yet: see the header.
int CMetadata::Attach(CMediaProperties* /*properties*/, CMediaSample* sample)
{
    if (!sample) {
        Log(LogLevel::Error, "CMetadata::Attach: sample is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    return sample->SetMetadata(this);
}

int CMetadata::Detach(CMediaProperties* /*properties*/, CMediaSample* sample)
{
    if (!sample) {
        Log(LogLevel::Error, "CMetadata::Detach: sample is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    if (sample->GetMetadata() != this) {
        Log(LogLevel::Error, "CMetadata::Detach: sample %p carries other metadata\n", static_cast<void*>(sample));
        return RESULT_INDEX_OUT_OF_RANGE;
    }
    return sample->SetMetadata(nullptr);
}

int CMetadata::Split(CMetadata*& first, CMetadata*& second)
{
    first = nullptr;
    second = nullptr;
    RObject<CMetadata> a(Create());
    RObject<CMetadata> b(Create());
    if (!a || !b || a->CopyElementsFrom(*this, true, true) < 0 || b->CopyElementsFrom(*this, true, false) < 0) {
        Log(LogLevel::Error, "CMetadata::Split: no memory for two parts of %d elements\n", GetElementCount());
        return RESULT_OUT_OF_MEMORY;
    }
    b->m_duration = m_duration / 2;
    a->m_duration = m_duration - b->m_duration;
    first = a.Detach();
    second = b.Detach();
    return RESULT_OK;
}

int CMetadata::Merge(CMetadata* other)
{
    if (!other) {
        Log(LogLevel::Error, "CMetadata::Merge: other is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    if (other == this)
        return RESULT_OK; // a frame merged with itself adds nothing new
    // Frame-bound elements of types already held stay as they are: mark the
    // other's that are new here, then append them with the ordered ones.
    RObject<CMetadata> adding(new (fallible) CMetadata());
    if (!adding || !adding->m_elements.Reserve(other->m_elements.Count())) {
        Log(LogLevel::Error, "CMetadata::Merge: no memory for %d elements\n", other->GetElementCount());
        return RESULT_OUT_OF_MEMORY;
    }
    for (int32_t i = 0; i < other->m_elements.Count(); ++i) {
        CMetadataElement* element = other->m_elements[i];
        if (element->IsOrdered() || !ContainsElement(element->GetType()))
            adding->m_elements.Insert(adding->m_elements.Count(), RObject<CMetadataElement>::FromObject(element));
    }
    const int result = CopyElementsFrom(*adding, true, true);
    if (result < 0)
        return result;
    m_duration += other->m_duration;
    return RESULT_OK;
}

CMetadata* CMetadata::ExtractOrderedMetadata(bool remove)
{
    RObject<CMetadata> ordered(Create());
    if (!ordered || ordered->CopyElementsFrom(*this, false, true) < 0) {
        Log(LogLevel::Error, "CMetadata::ExtractOrderedMetadata: no memory\n");
        return nullptr;
    }
    ordered->m_localDataCopy = m_localDataCopy;
    if (remove) {
        for (int32_t i = m_elements.Count() - 1; i >= 0; --i) {
            if (m_elements[i]->IsOrdered())
                m_elements.Take(i);
        }
        m_cursor = -1;
    }
    return ordered.Detach();
}

int32_t CMetadata::GetLength() const
{
    // Bounded by MaxElements x (header + MaxPayloadLength): fits 32 bits.
    int32_t length = BodyHeaderLength;
    for (int32_t i = 0; i < m_elements.Count(); ++i)
        length += ElementHeaderLength + m_elements[i]->GetPayloadLength();
    return length;
}

int CMetadata::Write(CBinaryWriter* writer) const
{
    if (!writer) {
        Log(LogLevel::Error, "CMetadata::Write: writer is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    int result = writer->WriteUInt16(Version);
    if (result >= 0)
        result = writer->WriteUInt16(m_localDataCopy ? FlagLocalDataCopy : 0);
    if (result >= 0)
        result = writer->WriteInt64(m_duration);
    if (result >= 0)
        result = writer->WriteUInt32(static_cast<uint32_t>(m_elements.Count()));
    for (int32_t i = 0; result >= 0 && i < m_elements.Count(); ++i) {
        const CMetadataElement* element = m_elements[i];
        result = writer->WriteFourCC(element->GetType());
        if (result >= 0)
            result = writer->WriteUInt32(static_cast<uint32_t>(element->GetPayloadLength()));
        if (result >= 0)
            result = element->WritePayload(*writer);
    }
    return result < 0 ? result : RESULT_OK;
}

int CMetadata::Read(CBinaryReader* reader, int32_t length)
{
    if (!reader) {
        Log(LogLevel::Error, "CMetadata::Read: reader is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    if (length < BodyHeaderLength) {
        Log(LogLevel::Error, "CMetadata::Read: length %d is shorter than the %d-byte header\n", length,
            BodyHeaderLength);
        return RESULT_FORMAT_ERROR;
    }
    uint16_t version = 0;
    uint16_t flags = 0;
    int64_t duration = 0;
    uint32_t count = 0;
    int result = reader->ReadUInt16(version);
    if (result >= 0 && version != Version) {
        Log(LogLevel::Error, "CMetadata::Read: version %u, expected %u\n", version, Version);
        return RESULT_BAD_VERSION_ERR;
    }
    if (result >= 0)
        result = reader->ReadUInt16(flags);
    if (result >= 0)
        result = reader->ReadInt64(duration);
    if (result >= 0)
        result = reader->ReadUInt32(count);
    if (result < 0)
        return result;
    int32_t remaining = length - BodyHeaderLength;
    if ((flags & ~FlagLocalDataCopy) != 0 || count > uint32_t(MaxElements) ||
        count > uint32_t(remaining / ElementHeaderLength)) {
        Log(LogLevel::Error, "CMetadata::Read: flags 0x%04x or element count %u does not fit %d bytes (at most "
            "%d elements)\n", flags, count, remaining, MaxElements);
        return RESULT_FORMAT_ERROR;
    }
    ElementList parsed;
    if (!parsed.Reserve(static_cast<int32_t>(count)) || !m_elements.Reserve(static_cast<int32_t>(count))) {
        Log(LogLevel::Error, "CMetadata::Read: no memory for %u elements\n", count);
        return RESULT_OUT_OF_MEMORY;
    }
    for (uint32_t i = 0; i < count; ++i) {
        CMetadataElement* element = nullptr;
        result = ReadElement(*reader, remaining, element);
        if (result < 0)
            return result;
        parsed.Insert(parsed.Count(), RObject<CMetadataElement>(element));
    }
    if (remaining != 0) {
        Log(LogLevel::Error, "CMetadata::Read: %d bytes left after element %u\n", remaining, count);
        return RESULT_FORMAT_ERROR;
    }
    ClearElements();
    for (int32_t i = 0; i < parsed.Count(); ++i)
        m_elements.Insert(i, std::move(parsed[i]));
    m_duration = duration;
    m_localDataCopy = (flags & FlagLocalDataCopy) != 0;
    return RESULT_OK;
}

CByteArray* CMetadata::ToAtom() const
{
    return Serialise(true);
}

CByteArray* CMetadata::ToByteArray() const
{
    return Serialise(false);
}

CByteArray* CMetadata::Serialise(bool atom) const
{
    const int32_t body = GetLength();
    const int32_t total = body + (atom ? AtomHeaderLength : MagicLength);
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, total));
    RObject<CMemoryStream> stream(bytes ? new (fallible) CMemoryStream(bytes) : nullptr);
    if (!stream) {
        Log(LogLevel::Error, "CMetadata::%s: no memory for %d bytes\n", atom ? "ToAtom" : "ToByteArray", total);
        return nullptr;
    }
    CBinaryWriter writer(stream, atom ? ByteOrder::BigEndian : ByteOrder::LittleEndian);
    int result = atom ? writer.WriteUInt32(static_cast<uint32_t>(total)) : RESULT_OK;
    if (result >= 0)
        result = writer.WriteFourCC(Type);
    if (result >= 0)
        result = Write(&writer);
    if (result < 0 || stream->GetPosition() != total) {
        Log(LogLevel::Error, "CMetadata::%s: writing %d bytes failed (%d)\n", atom ? "ToAtom" : "ToByteArray", total,
            result);
        return nullptr;
    }
    return bytes.Detach();
}

CMetadata* CMetadata::FromAtom(CByteArray* atom)
{
    return Parse(atom, true);
}

CMetadata* CMetadata::FromByteArray(CByteArray* bytes)
{
    return Parse(bytes, false);
}

CMetadata* CMetadata::Parse(CByteArray* bytes, bool atom)
{
    const char* member = atom ? "FromAtom" : "FromByteArray";
    const int32_t header = atom ? AtomHeaderLength : MagicLength;
    if (!bytes || bytes->GetLength() < header) {
        Log(LogLevel::Error, "CMetadata::%s: length %d is shorter than the %d-byte header\n", member,
            bytes ? bytes->GetLength() : 0, header);
        return nullptr;
    }
    RObject<CMemoryStream> stream(new (fallible) CMemoryStream(bytes));
    RObject<CMetadata> metadata(stream ? Create() : nullptr);
    if (!metadata) {
        Log(LogLevel::Error, "CMetadata::%s: no memory\n", member);
        return nullptr;
    }
    CBinaryReader reader(stream, atom ? ByteOrder::BigEndian : ByteOrder::LittleEndian);
    uint32_t size = static_cast<uint32_t>(bytes->GetLength());
    uint32_t magic = 0;
    int result = atom ? reader.ReadUInt32(size) : RESULT_OK;
    if (result >= 0)
        result = reader.ReadFourCC(magic);
    if (result < 0 || size != static_cast<uint32_t>(bytes->GetLength()) || magic != Type) {
        Log(LogLevel::Error, "CMetadata::%s: size %u of %d bytes or type 0x%08x is not an 'mfrm' record\n", member,
            size, bytes->GetLength(), magic);
        return nullptr;
    }
    result = metadata->Read(&reader, bytes->GetLength() - header);
    if (result < 0) {
        Log(LogLevel::Error, "CMetadata::%s: body refused (%s)\n", member, GetResultName(result));
        return nullptr;
    }
    return metadata.Detach();
}

} // namespace Quorvex::Vek

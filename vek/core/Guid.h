#pragma once

// A 16-byte globally unique identifier with its registry text form
// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
//
// Fields follow the Windows GUID: Data1 (32 bits), Data2 and Data3 (16
// bits), Data4 (8 bytes). The text shows Data1, Data2, Data3 as numbers,
// then Data4[0..1] and Data4[2..7] byte by byte. Two byte layouts exist:
// - GuidByteOrder::Windows: Data1, Data2, Data3 little-endian, as a GUID
//   lies in memory on Windows and in Microsoft file formats (ASF, AVI, WAV
//   extensible, Wave64 chunk ids);
// - GuidByteOrder::BigEndian: every field most significant byte first, the
//   RFC 4122 network order (MXF universal labels, MP4 'uuid' boxes), in
//   which the bytes read in the order of the text.
#include <vek/core/Result.h>
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class CString;

enum class GuidByteOrder { Windows, BigEndian };

struct VEK_API _Guid {
    uint32_t Data1 = 0;
    uint16_t Data2 = 0;
    uint16_t Data3 = 0;
    uint8_t Data4[8] = {};

    // Characters of the text form with braces, without the terminator.
    static constexpr int TextLength = 38;

    // Reads the text form, braces optional (both or neither), hexadecimal
    // digits of either case, nothing before or after. RESULT_ARGUMENT_NULL
    // for null text, RESULT_FORMAT_ERROR otherwise; `out` is unchanged on
    // failure.
    static int Parse(const char* text, _Guid& out);
    static int Parse(const WChar* text, _Guid& out);
    static int Parse(CString* text, _Guid& out);

    // Upper-case text form, with or without braces, null-terminated.
    void Format(char (&text)[TextLength + 1], bool braces = true) const;
    // The text form with braces as a new string (null on allocation failure).
    CString* ToString() const;

    static _Guid FromBytes(const uint8_t (&bytes)[16], GuidByteOrder order);
    void ToBytes(uint8_t (&bytes)[16], GuidByteOrder order) const;

    bool IsNull() const;
    bool operator==(const _Guid& other) const;
    bool operator!=(const _Guid& other) const { return !(*this == other); }
};

} // namespace Quorvex::Vek

#pragma once

// The refusals of the video header parsers: one log line that names the
// structure, the field and the value, and the format-error result.
#include <cstdint>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek::FieldCheck {

inline int Refuse(const char* where, const char* field, int64_t value)
{
    Log(LogLevel::Warning, "%s: %s %lld is out of range\n", where, field, static_cast<long long>(value));
    return RESULT_FORMAT_ERROR;
}

inline int Truncated(const char* where)
{
    Log(LogLevel::Warning, "%s: the unit ends inside it (or holds an exp-Golomb code of over 32 bits)\n", where);
    return RESULT_FORMAT_ERROR;
}

inline int Missing(const char* where, const char* what, int64_t id)
{
    Log(LogLevel::Warning, "%s: %s %lld has not been seen\n", where, what, static_cast<long long>(id));
    return RESULT_FORMAT_ERROR;
}

} // namespace Quorvex::Vek::FieldCheck

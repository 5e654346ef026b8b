#pragma once

// The library's one vocabulary of result codes: 0 (or a count) for success,
// negative for failure, one block from -19000 down.
//
// Failure policy: nothing is thrown out of the library. Memory is allocated
// without exceptions: CObject's operator new (both forms) returns null
// rather than throw, and everything else is allocated with
// `new (fallible)` (vek/core/Allocation.h). A failed allocation becomes
// RESULT_OUT_OF_MEMORY, a null result or false, with a level-1 log line
// where the failing function can still write one. The few places that use
// standard containers that can throw (the leak report, the POSIX URL layer,
// data-URI and URL building, reading the log settings) catch std::bad_alloc
// (the URL layer any std::exception) inside the function that used them
// and turn it into the same results. Host code called back by the library
// (ExternalStream, the leak-label callback) must not throw.
#include <vek/core/Types.h>

namespace Quorvex::Vek {

enum ResultCode : int32_t {
    RESULT_OK = 0,
    RESULT_ERROR = -19000,
    RESULT_NULL_POINTER = -19001,
    RESULT_OUT_OF_MEMORY = -19002,
    RESULT_ARGUMENT_OUT_OF_RANGE = -19003,
    RESULT_ARGUMENT_NULL = -19004,
    RESULT_NOT_IMPLEMENTED = -19005,
    RESULT_NOT_SUPPORTED = -19006,
    RESULT_INDEX_OUT_OF_RANGE = -19007,
    RESULT_ARRAY_FULL = -19008,
    RESULT_BAD_VERSION_ERR = -19009,
    RESULT_BAD_ORDER_ERROR = -19010,
    RESULT_QUEUE_OVERFLOW = -19011,
    RESULT_QUEUE_UNDERFLOW = -19012,
    // -19013 is deliberately unused.
    RESULT_TIMEOUT = -19014,
    RESULT_UNEXPECTED = -19015,
    RESULT_TYPE_MISMATCH = -19016,
    RESULT_FORMAT_ERROR = -19017,
    RESULT_OVERFLOW = -19018,
    RESULT_CUSTOM_ERROR_MESSAGE = -19019,
    RESULT_IO_ERROR = -19100,
    RESULT_END_OF_STREAM = -19101,
    RESULT_ACCESS_DENIED = -19102,
    RESULT_BAD_FILE_DESCRIPTOR = -19103,
    RESULT_EXPECTED_END_OF_STREAM = -19104,
    // File-system failures of streams; they have no entry in the name table.
    RESULT_FILE_EXISTS = -19261,
    RESULT_PATH_IS_DIRECTORY = -19262,
    RESULT_PATH_NAME_TOO_LONG = -19263,
    RESULT_PATH_DOES_NOT_EXIST = -19264,
    RESULT_DISK_FULL = -19265,
    RESULT_BEYOND_INDEXER_PROGRESS = -19271,
    RESULT_BEYOND_END_OF_SAMPLES = -19272,
    // Filter life-cycle failures; no entry in the name table either.
    RESULT_FILTER_DRAINING = -19811,
    RESULT_FILTER_NO_INPUT_PROPERTIES = -19812,
    RESULT_FILTER_NO_OUTPUT_FORMAT = -19813,
};

// The name of a result for log messages: "RESULT_OK" for any value of 0 or
// more, "UNKNOWN" for a code outside the table.
VEK_API const char* GetResultName(int32_t result);

} // namespace Quorvex::Vek

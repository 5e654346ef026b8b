#pragma once

// Opening the media a command names: a path or a file URI, probed by every
// reader the library has. The command then reads the headers, itself or
// through an indexer (BeginIndex runs once per reader). Failures print
// their reason to standard error.
#include <string>

#include <vek/containers/CContainerReader.h>
#include <vek/core/RObject.h>

namespace VekTool {

struct MediaSource {
    std::string path;       // the local path opened
    int64_t size = 0;       // its length in bytes
    Quorvex::Vek::RObject<Quorvex::Vek::CContainerReader> reader;
};

// Registers the library's readers with the inventory, once per process.
void RegisterReaders();

// kExitOk with `source` filled, or kExitFailure after a message that starts
// with "vek COMMAND: ".
int OpenMediaSource(const char* command, const char* argument, MediaSource& source);

// The length of the file at the UTF-8 `path` now; -1 when it cannot be opened.
int64_t FileSize(const std::string& path);

// Prints why the headers of `source` could not be read; kExitFailure.
int ReportIndexFailure(const char* command, const MediaSource& source, int result);

} // namespace VekTool

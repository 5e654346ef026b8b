#pragma once

// Public handle on a container context (a stream, a directory or a list of
// files). Calls forward to the context; on a null handle the int-returning
// calls answer -19001 (RESULT_NULL_POINTER) and the others null or false.
#include <vek/core/BaseObject.h>
#include <vek/core/String.h>
#include <vek/io/CContainerContext.h>
#include <vek/io/Stream.h>

namespace Quorvex::Vek {

class VEK_API ContainerContext : public Object<CContainerContext> {
public:
    ContainerContext() = default;
    // Adopts the caller's reference.
    // BaseObject is a virtual base: the most derived class must initialise it.
    ContainerContext(CContainerContext* context) : BaseObject(context) {}
    static ContainerContext FromObject(CContainerContext* context);

    // Each gives a null handle on failure.
    static ContainerContext CreateForStream(const Stream& stream, const char* name = nullptr);
    static ContainerContext CreateForDirectory(const char* directory);
    // The directory of `filePath`, with that file as the current one.
    static ContainerContext CreateForFile(const char* filePath);
    static ContainerContext CreateForFiles();

    int AddFileName(const char* name) const;
    int AddFilePath(const char* path) const;
    // Only for a context made by CreateForFiles; -19016 for any other.
    int AddFullFileName(const char* path, unsigned int kind) const;
    // Lets OpenReadStream/OpenWriteStream reach names outside the
    // context's folder (absolute paths, ".."); off by default, because
    // readers pass names taken from media files. No effect on a null handle.
    void SetAllowNamesOutsideFolder(bool allow) const;
    bool MoveNextFile() const;
    void ResetFiles() const;
    String GetCurrentFileName() const;
    String GetCurrentFilePath() const;

    // On success `result` holds the stream (one reference) and 0 comes
    // back; on failure the code, with `result` unchanged.
    int OpenReadStream(const char* name, int32_t bufferSize, int32_t readWaitTime, Stream& result) const;
    int OpenWriteStream(const char* name, Stream& result) const;
};

} // namespace Quorvex::Vek

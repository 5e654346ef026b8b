#pragma once

// A stream over a named file. Adds opening by path and the read wait time
// that lets a reader follow a file another process is still writing.
//
// Control codes answered here: "grto" (get the read wait time, 4 bytes of
// milliseconds) and "srto" (set it; above 3,600,000 gives -19003). Either
// with another size gives -19000; any other code -19006.
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class CString;

class VEK_API CFileStream : public CStream {
public:
    static constexpr uint32_t GetReadTimeout = Four("grto");
    static constexpr uint32_t SetReadTimeout = Four("srto");
    static constexpr uint32_t CachingHint = Four("cach");
    static constexpr uint32_t ReadAheadHint = Four("rdah");
    // One hour: the longest a single read may wait for a file to grow.
    static constexpr int32_t MaxReadWaitTime = 3600000;

    int Control(uint32_t code, int32_t size, unsigned char* data) override;

    // Opens the file; the path is kept. Null gives -19004.
    virtual int Open(CString* path) = 0;
    // Wraps the UTF-8 text in a CString and calls Open(CString*).
    virtual int Open(const char* path);

    // The same bound as "srto": -19003 above 3,600,000 ms.
    int SetReadWaitTime(int32_t milliseconds);
    int32_t GetReadWaitTime() const { return m_readWaitTime; }

protected:
    explicit CFileStream(uint32_t type = 0);
    ~CFileStream() override;

    int32_t m_readWaitTime = 0;
};

} // namespace Quorvex::Vek

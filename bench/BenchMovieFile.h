#pragma once

// A movie the tests' MP4 writer writes into a fresh temporary folder for a
// bench; the folder goes with the object. Sparse payloads cost no disk.
#include "support/Mp4TestWriter.h"

#include <cstdint>
#include <filesystem>
#include <string>

#include <stdlib.h>

namespace VekBench {

class BenchMovieFile {
public:
    BenchMovieFile(const std::string& name, const VekTest::Mp4Movie& movie)
    {
        char pattern[] = "/tmp/vek-bench-XXXXXX";
        if (!::mkdtemp(pattern)) {
            m_error = "cannot make a temporary folder";
            return;
        }
        m_folder = pattern;
        m_path = m_folder + "/" + name;
        for (const VekTest::Mp4Track& track : movie.tracks)
            m_samples += int64_t(track.SampleCount());
        if (!movie.WriteFile(m_path)) {
            m_error = "cannot write " + m_path;
            return;
        }
        m_size = int64_t(std::filesystem::file_size(m_path));
    }
    ~BenchMovieFile()
    {
        if (!m_folder.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(m_folder, ignored);
        }
    }
    BenchMovieFile(const BenchMovieFile&) = delete;
    BenchMovieFile& operator=(const BenchMovieFile&) = delete;

    const std::string& Path() const { return m_path; }
    // Empty when the file was written.
    const std::string& Error() const { return m_error; }
    int64_t Samples() const { return m_samples; }
    int64_t Size() const { return m_size; }

private:
    std::string m_folder, m_path, m_error;
    int64_t m_samples = 0;
    int64_t m_size = 0;
};

} // namespace VekBench

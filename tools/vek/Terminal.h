#pragma once

// The terminal the tool writes to: whether a stream is one (progress bars
// only go to a terminal), and a bar drawn in place on it.
#include <cstdio>

namespace VekTool {

bool IsTerminal(std::FILE* stream);

// Draws "label [#####.....]  42%" over the current line of `stream`;
// Finish ends the line. Redraws only when the shown percentage changes.
class ProgressBar {
public:
    ProgressBar(std::FILE* stream, const char* label) : m_stream(stream), m_label(label) {}
    void Show(double fraction);
    void Finish();

private:
    std::FILE* m_stream;
    const char* m_label;
    int m_shown = -1;
};

} // namespace VekTool

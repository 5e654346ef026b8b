#include "Terminal.h"

// The tool is not the library: this one query of the C runtime is made here
// rather than in the library's platform layer, which the tool cannot reach.
#ifdef _WIN32
#include <io.h>
#define VEK_ISATTY _isatty
#define VEK_FILENO _fileno
#else
#include <unistd.h>
#define VEK_ISATTY isatty
#define VEK_FILENO fileno
#endif

namespace VekTool {

bool IsTerminal(std::FILE* stream)
{
    return stream && VEK_ISATTY(VEK_FILENO(stream)) != 0;
}

void ProgressBar::Show(double fraction)
{
    if (!(fraction >= 0))
        fraction = 0;
    if (fraction > 1)
        fraction = 1;
    const int percent = int(fraction * 100);
    if (percent == m_shown)
        return;
    m_shown = percent;
    constexpr int kWidth = 40;
    char bar[kWidth + 1];
    const int filled = percent * kWidth / 100;
    for (int i = 0; i < kWidth; ++i)
        bar[i] = i < filled ? '#' : '.';
    bar[kWidth] = 0;
    std::fprintf(m_stream, "\r%s [%s] %3d%%", m_label, bar, percent);
    std::fflush(m_stream);
}

void ProgressBar::Finish()
{
    if (m_shown >= 0)
        std::fputc('\n', m_stream);
    m_shown = -1;
}

} // namespace VekTool

#include <vek/containers/readers/elementary/PresentationOrder.h>

#include <algorithm>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

namespace {

bool ShownBefore(const CodedPicture& a, const CodedPicture& b)
{
    if (a.period != b.period)
        return a.period < b.period;
    if (a.displayKey != b.displayKey)
        return a.displayKey < b.displayKey;
    return a.decodeIndex < b.decodeIndex;
}

} // namespace

void PresentationOrder::Reset(int64_t declaredDelay)
{
    m_first = 0;
    m_count = 0;
    m_decodeClock = 0;
    m_presentClock = 0;
    m_period = 0;
    m_pushed = 0;
    m_declaredDelay = std::max<int64_t>(declaredDelay, 0);
    m_delayChosen = false;
    m_finished = false;
    m_warnedEarly = false;
}

bool PresentationOrder::Push(const CodedPicture& picture)
{
    if (!HasRoom() || m_finished)
        return false;
    const int32_t slot = (m_first + m_count) % Capacity;
    CodedPicture& held = m_ring[slot];
    held = picture;
    if (m_pushed > 0 && picture.startsPeriod)
        ++m_period;
    held.period = m_period;
    held.decodeTime = m_decodeClock;
    held.decodeIndex = m_pushed++;
    m_decodeClock += std::max<int32_t>(picture.duration, 0);
    m_placed[slot] = false;
    ++m_count;
    return true;
}

void PresentationOrder::Finish()
{
    m_finished = true;
}

int32_t PresentationOrder::FindNextShown()
{
    int32_t best = -1;
    for (int32_t i = 0; i < m_count; ++i) {
        if (m_placed[(m_first + i) % Capacity])
            continue;
        if (best < 0 || ShownBefore(At(i), At(best)))
            best = i;
    }
    return best;
}

bool PresentationOrder::CanPlace(int32_t index)
{
    if (m_finished || m_count - 1 - index >= Window)
        return true;
    if (At(m_count - 1).period > At(index).period)
        return true;
    if (m_count < Capacity)
        return false;
    // A stream that reorders further than any decoder could buffer: place
    // what can be placed rather than stall.
    Log(LogLevel::Warning, "PresentationOrder: picture %lld is reordered past %d pictures; placing it now\n",
        static_cast<long long>(At(index).decodeIndex), int(Window));
    return true;
}

void PresentationOrder::ChooseStartDelay()
{
    int32_t order[Capacity];
    for (int32_t i = 0; i < m_count; ++i)
        order[i] = i;
    std::sort(order, order + m_count, [this](int32_t a, int32_t b) { return ShownBefore(At(a), At(b)); });
    int64_t shown = 0;
    int64_t delay = m_declaredDelay;
    for (int32_t i = 0; i < m_count; ++i) {
        const CodedPicture& picture = At(order[i]);
        delay = std::max(delay, picture.decodeTime - shown);
        shown += std::max<int32_t>(picture.duration, 0);
    }
    m_presentClock = delay;
    m_delayChosen = true;
}

void PresentationOrder::PlaceReady()
{
    for (int32_t next = FindNextShown(); next >= 0 && CanPlace(next); next = FindNextShown()) {
        CodedPicture& picture = At(next);
        picture.presentationTime = m_presentClock;
        m_presentClock += std::max<int32_t>(picture.duration, 0);
        m_placed[(m_first + next) % Capacity] = true;
    }
}

bool PresentationOrder::Pop(CodedPicture& picture)
{
    if (m_count == 0)
        return false;
    if (!m_delayChosen) {
        if (m_count < Window && !m_finished)
            return false;
        ChooseStartDelay();
    }
    PlaceReady();
    if (!m_placed[m_first])
        return false;
    picture = m_ring[m_first];
    m_first = (m_first + 1) % Capacity;
    --m_count;
    if (picture.presentationTime < picture.decodeTime && !m_warnedEarly) {
        m_warnedEarly = true;
        Log(LogLevel::Warning, "PresentationOrder: picture %lld is shown %lld units before it is decoded\n",
            static_cast<long long>(picture.decodeIndex),
            static_cast<long long>(picture.decodeTime - picture.presentationTime));
    }
    return true;
}

} // namespace Quorvex::Vek

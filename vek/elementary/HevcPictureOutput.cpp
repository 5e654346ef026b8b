#include <vek/elementary/HevcPictureOutput.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

void HevcPictureOutput::Reset()
{
    m_first = 0;
    m_count = 0;
    m_waiting = 0;
}

void HevcPictureOutput::DecideWaiting(State state)
{
    for (int32_t i = 0; i < m_count; ++i)
        if (At(i).state == Waiting)
            At(i).state = state;
    m_waiting = 0;
}

// Outputs the waiting picture of lowest order count while more than
// `maxWaiting` wait.
void HevcPictureOutput::BumpBeyond(uint32_t maxWaiting)
{
    while (m_waiting > 0 && uint32_t(m_waiting) > maxWaiting) {
        Entry* lowest = nullptr;
        for (int32_t i = 0; i < m_count; ++i)
            if (At(i).state == Waiting && (!lowest || At(i).picOrderCount < lowest->picOrderCount))
                lowest = &At(i);
        lowest->state = Output;
        --m_waiting;
    }
}

bool HevcPictureOutput::Decode(const Picture& picture)
{
    if (!HasRoom())
        return false;
    if (picture.startsSequence)
        DecideWaiting(picture.dropsWaiting ? Dropped : Output);
    Entry& entry = At(m_count++);
    entry.picOrderCount = picture.picOrderCount;
    entry.state = picture.output ? Waiting : Dropped;
    if (picture.output)
        ++m_waiting;
    BumpBeyond(picture.maxReorder);
    return true;
}

void HevcPictureOutput::Finish()
{
    DecideWaiting(Output);
}

bool HevcPictureOutput::TakeDecided(bool& output)
{
    if (m_count == 0)
        return false;
    Entry& first = At(0);
    if (first.state == Waiting) {
        if (m_count < Capacity)
            return false;
        Log(LogLevel::Warning, "HevcPictureOutput::TakeDecided: %d pictures wait behind one of order count %lld; "
            "taking it as output\n", int32_t(Capacity), static_cast<long long>(first.picOrderCount));
        first.state = Output;
        --m_waiting;
    }
    output = first.state == Output;
    m_first = (m_first + 1) % Capacity;
    --m_count;
    return true;
}

} // namespace Quorvex::Vek

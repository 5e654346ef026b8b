#include <vek/core/CLeaks.h>

#include <vek/core/CLock.h>
#include <vek/core/CObject.h>
#include <vek/core/FaultInjection.h>
#include <vek/core/FormattedText.h>
#include <vek/core/Log.h>
#include <vek/platform/Backtrace.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace Quorvex::Vek {

namespace {

// Table sizes: primes, each about twice the one before.
constexpr uint32_t kCapacities[] = {1021,    2039,    4093,     8191,     16381,    32749,    65521,   131071,
                                    262139,  524287,  1048573,  2097143,  4194301,  8388593,  16777213};
constexpr int kCapacityCount = int(sizeof kCapacities / sizeof kCapacities[0]);
constexpr int kMaxFrames = 48;
constexpr int kDetailedBacktraces = 16;
// Frames above the capture call are kept: how many of them belong to the
// tracker and to CObject's constructor depends on inlining.
constexpr int kTrackerFrames = 0;

struct Backtrace {
    void* frames[kMaxFrames];
    int count;
};

// Stack mode keeps one backtrace per Acquire of a tracked object, up to this
// many per object; later ones are only counted.
constexpr int32_t kMaxAcquireRecords = 1024;
constexpr int kDetailedAcquireSites = 8;

struct Entry {
    const CObject* object = nullptr;
    Backtrace* creation = nullptr; // Stack mode only
    Backtrace* acquires = nullptr; // Stack mode only, acquireCapacity records
    int32_t acquireCount = 0;
    int32_t acquireCapacity = 0;
    int64_t acquireTotal = 0;
    int64_t releaseTotal = 0; // releases that did not end the object
};

// The tracker's records live in malloc memory (freed with std::free); the
// failure hook of test builds applies to them as to every allocation.
void* TrackerAllocate(size_t size)
{
    return FaultInjection::ShouldFailAllocation() ? nullptr : std::malloc(size);
}

void* TrackerReallocate(void* p, size_t size)
{
    return FaultInjection::ShouldFailAllocation() ? nullptr : std::realloc(p, size);
}

void FreeEntry(Entry& entry)
{
    std::free(entry.creation);
    std::free(entry.acquires);
    entry = Entry{};
}

bool SameFrames(const Backtrace& a, const Backtrace& b)
{
    return a.count == b.count && std::memcmp(a.frames, b.frames, sizeof(void*) * size_t(a.count)) == 0;
}

// What a leaked object's references say about where it leaked. It is
// trackable when the creation reference is the only one left (and every
// Acquire seen was matched by a Release): the creation backtrace names the
// culprit. Otherwise any Acquire site may hold the leaked references.
struct ReferenceLeak {
    bool trackable = true;
    int64_t references = 0;
    int64_t possibleBacktraces = 0;
    int32_t acquireCapacity = 0;
};

// Pointers print as Windows prints %p (16 upper-case hex digits) on every
// platform, so reports read the same from both builds.
std::string PointerText(const void* pointer)
{
    char text[24];
    std::snprintf(text, sizeof text, "%016llX", (unsigned long long)reinterpret_cast<uintptr_t>(pointer));
    return text;
}

std::string TypeText(uint32_t type)
{
    char text[5];
    for (int i = 0; i < 4; ++i) {
        const unsigned char c = static_cast<unsigned char>(type >> (24 - 8 * i));
        text[i] = (c >= 0x20 && c < 0x7f) ? char(c) : '.';
    }
    text[4] = '\0';
    return text;
}

} // namespace

class CLeaksTable {
public:
    void Begin(int32_t mode, uint32_t type);
    void AddObject(const CObject* object);
    void RemoveObject(const CObject* object);
    void AcquireObject(const CObject* object);
    void ReleaseObject(const CObject* object);
    int32_t End(int32_t mode);
    void SetCallback(char* (*callback)(void))
    {
        // Under the lock: a report being started on another thread reads it.
        m_lock.Enter();
        m_callback = callback;
        m_lock.Exit();
    }
    const char* LastReport() const { return m_lastReport.c_str(); }

private:
    void Reset(int capacityStep);
    void Insert(const Entry& entry);
    bool Grow();
    uint32_t HomeSlot(const CObject* object) const;
    Entry* Find(const CObject* object);
    static ReferenceLeak Examine(const Entry& entry);
    void WriteReferenceLines(const std::vector<const Entry*>& entries);
    bool Wanted(const CObject* object) const;
    void WriteReport(const std::string& label);
    void AddLineToScratch(const char* format, ...) VEK_PRINTF(2, 3);
    std::string Label();

    CLock m_lock;
    // Atomic: AddObject reads it before taking the lock, while another
    // thread's Mark may be replacing it.
    std::atomic<uint32_t> m_typeFilter{0};
    std::vector<Entry> m_table;
    int32_t m_capacityStep = 0;
    int32_t m_live = 0;
    uint64_t m_total = 0;
    int32_t m_peak = 0;
    uint64_t m_probeSum = 0;
    std::string m_scratch;
    std::string m_lastReport;
    char* (*m_callback)(void) = nullptr;
};

std::atomic<int32_t> CLeaks::s_mode{CLeaks::Off};
CLeaksTable* CLeaks::s_instance = nullptr;

void CLeaksTable::Reset(int capacityStep)
{
    for (Entry& entry : m_table)
        FreeEntry(entry);
    m_capacityStep = capacityStep;
    m_table.assign(kCapacities[capacityStep], Entry{});
    m_live = 0;
}

void CLeaksTable::Begin(int32_t mode, uint32_t type)
{
    m_lock.Enter();
    try {
        Reset(0);
    } catch (const std::bad_alloc&) {
        // Without a table nothing can be tracked: stay off and say so.
        m_table.clear();
        m_live = 0;
        CLeaks::s_mode.exchange(CLeaks::Off);
        m_lock.Exit();
        Log(LogLevel::Error, "CLeaks::Mark: RESULT_OUT_OF_MEMORY: tracking stays off\n");
        return;
    }
    m_total = 0;
    m_peak = 0;
    m_probeSum = 0;
    m_typeFilter.store(type, std::memory_order_relaxed);
    CLeaks::s_mode.exchange(mode);
    m_lock.Exit();
}

uint32_t CLeaksTable::HomeSlot(const CObject* object) const
{
    return uint32_t(reinterpret_cast<uintptr_t>(object) % m_table.size());
}

bool CLeaksTable::Wanted(const CObject* object) const
{
    const uint32_t filter = m_typeFilter.load(std::memory_order_relaxed);
    return filter == 0 || object->GetType() == filter;
}

void CLeaksTable::Insert(const Entry& entry)
{
    uint32_t slot = HomeSlot(entry.object);
    while (m_table[slot].object) {
        slot = (slot + 1) % uint32_t(m_table.size());
        ++m_probeSum;
    }
    m_table[slot] = entry;
}

bool CLeaksTable::Grow()
{
    if (m_capacityStep + 1 >= kCapacityCount)
        return false;
    // Nothing may throw out of an object's constructor: without memory for
    // the larger table the old one stays, fuller than planned.
    std::vector<Entry> old = std::move(m_table);
    try {
        m_table.assign(kCapacities[m_capacityStep + 1], Entry{});
    } catch (const std::bad_alloc&) {
        m_table = std::move(old);
        return false;
    }
    ++m_capacityStep;
    for (const Entry& entry : old)
        if (entry.object)
            Insert(entry);
    return true;
}

void CLeaksTable::AddObject(const CObject* object)
{
    if (!object || CLeaks::s_mode.load() == CLeaks::Off)
        return;
    if (!Wanted(object))
        return;
    Backtrace* creation = nullptr;
    if (CLeaks::s_mode.load() >= CLeaks::Stack) {
        creation = static_cast<Backtrace*>(TrackerAllocate(sizeof(Backtrace)));
        if (creation)
            creation->count = Platform::CaptureBacktrace(creation->frames, kMaxFrames, kTrackerFrames);
    }
    m_lock.Enter();
    // Checked again: a Mark may have stopped tracking or changed the filter.
    if (CLeaks::s_mode.load() == CLeaks::Off || !Wanted(object)) {
        m_lock.Exit();
        std::free(creation);
        return;
    }
    const auto limit = int64_t(0.75 * double(m_table.size()));
    if (m_live + 1 > limit && !Grow() && m_live + 1 >= int64_t(m_table.size())) {
        m_lock.Exit();
        std::free(creation);
        return; // the largest table is full; stop recording rather than spin
    }
    Insert(Entry{object, creation});
    ++m_live;
    if (m_live > m_peak)
        m_peak = m_live;
    ++m_total;
    m_lock.Exit();
}

void CLeaksTable::RemoveObject(const CObject* object)
{
    if (!object)
        return;
    m_lock.Enter();
    const uint32_t size = uint32_t(m_table.size());
    uint32_t slot = HomeSlot(object);
    for (uint32_t probes = 0; probes < size && m_table[slot].object; ++probes) {
        if (m_table[slot].object == object) {
            FreeEntry(m_table[slot]);
            --m_live;
            // Backward-shift deletion keeps every remaining entry reachable
            // from its home slot without tombstones.
            uint32_t hole = slot;
            for (uint32_t next = (hole + 1) % size; m_table[next].object; next = (next + 1) % size) {
                const uint32_t home = HomeSlot(m_table[next].object);
                const bool movable = (next > hole) ? (home <= hole || home > next) : (home <= hole && home > next);
                if (movable) {
                    m_table[hole] = m_table[next];
                    m_table[next] = Entry{};
                    hole = next;
                }
            }
            m_lock.Exit();
            return;
        }
        slot = (slot + 1) % size;
    }
    const bool filteredOut = !Wanted(object);
    m_lock.Exit();
    if (!filteredOut)
        Log(LogLevel::Detail, "CLeaks::RemoveObject: CObject not tracked\n");
}

Entry* CLeaksTable::Find(const CObject* object)
{
    const uint32_t size = uint32_t(m_table.size());
    uint32_t slot = HomeSlot(object);
    for (uint32_t probes = 0; probes < size && m_table[slot].object; ++probes) {
        if (m_table[slot].object == object)
            return &m_table[slot];
        slot = (slot + 1) % size;
    }
    return nullptr;
}

void CLeaksTable::AcquireObject(const CObject* object)
{
    if (!object || CLeaks::s_mode.load() < CLeaks::Stack || !Wanted(object))
        return;
    Backtrace site;
    site.count = Platform::CaptureBacktrace(site.frames, kMaxFrames, kTrackerFrames);
    m_lock.Enter();
    Entry* entry = Find(object);
    if (entry) {
        ++entry->acquireTotal;
        if (entry->acquireCount == entry->acquireCapacity && entry->acquireCapacity < kMaxAcquireRecords) {
            const int32_t capacity = entry->acquireCapacity ? entry->acquireCapacity * 2 : 4;
            if (void* grown = TrackerReallocate(entry->acquires, sizeof(Backtrace) * size_t(capacity))) {
                entry->acquires = static_cast<Backtrace*>(grown);
                entry->acquireCapacity = capacity;
            }
        }
        if (entry->acquireCount < entry->acquireCapacity)
            entry->acquires[entry->acquireCount++] = site;
    }
    m_lock.Exit();
}

void CLeaksTable::ReleaseObject(const CObject* object)
{
    if (!object || CLeaks::s_mode.load() < CLeaks::Stack)
        return;
    m_lock.Enter();
    if (Entry* entry = Find(object))
        ++entry->releaseTotal;
    m_lock.Exit();
}

ReferenceLeak CLeaksTable::Examine(const Entry& entry)
{
    ReferenceLeak leak;
    leak.references = entry.object->GetReferenceCount();
    leak.acquireCapacity = entry.acquireCapacity;
    leak.trackable = leak.references <= 1 && entry.acquireTotal <= entry.releaseTotal;
    if (!leak.trackable) {
        // The creation backtrace, plus each distinct Acquire site.
        leak.possibleBacktraces = 1;
        for (int32_t i = 0; i < entry.acquireCount; ++i) {
            bool seen = false;
            for (int32_t j = 0; j < i && !seen; ++j)
                seen = SameFrames(entry.acquires[i], entry.acquires[j]);
            if (!seen)
                ++leak.possibleBacktraces;
        }
    }
    return leak;
}

// The reference lines under one group of leaked objects (Stack mode).
void CLeaksTable::WriteReferenceLines(const std::vector<const Entry*>& entries)
{
    int64_t references = 0, possible = 0;
    unsigned long capacity = 0;
    bool trackable = true;
    for (const Entry* entry : entries) {
        const ReferenceLeak leak = Examine(*entry);
        trackable = trackable && leak.trackable;
        references += leak.references;
        possible += leak.possibleBacktraces;
        capacity += (unsigned long)leak.acquireCapacity;
    }
    if (trackable) {
        AddLineToScratch("    TRACKABLE: object creation is only leaked reference\n\n");
        return;
    }
    const int64_t acquired = possible - int64_t(entries.size());
    if (acquired == 0)
        AddLineToScratch("    %s: %lld reference leaks\n", "UNTRACKED ACQUIRES", (long long)references);
    else
        AddLineToScratch("    %s: %lld reference leaks from %lld possible backtraces\n", "AMBIGUOUS",
                         (long long)references, (long long)possible);
    AddLineToScratch("               %lu acquire backtrace capacity\n", capacity);
    // The distinct Acquire sites of the first object, innermost frames only.
    const Entry& first = *entries.front();
    int shown = 0;
    for (int32_t i = 0; i < first.acquireCount && shown < kDetailedAcquireSites; ++i) {
        bool seen = false;
        for (int32_t j = 0; j < i && !seen; ++j)
            seen = SameFrames(first.acquires[i], first.acquires[j]);
        if (seen)
            continue;
        ++shown;
        AddLineToScratch("    Acquired at backtrace:\n%s",
                         Platform::SymbolicateBacktrace(first.acquires[i].frames, first.acquires[i].count).c_str());
    }
    AddLineToScratch("\n");
}

void CLeaksTable::AddLineToScratch(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const FormattedText line(format, arguments);
    va_end(arguments);
    if (line.Get())
        m_scratch.append(line.Get(), size_t(line.Length()));
}

// Calls the host's callback without the tracker's lock held and before any
// pointer into the table is taken: the callback may make or free objects,
// which re-enters the table (and may grow it).
std::string CLeaksTable::Label()
{
    m_lock.Enter();
    char* (*callback)(void) = m_live > 0 ? m_callback : nullptr;
    m_lock.Exit();
    if (callback) {
        if (const char* text = callback())
            return text;
    }
    return "Leaked CObject";
}

void CLeaksTable::WriteReport(const std::string& label)
{
    // Group leaked objects by identical creation backtrace.
    std::map<std::vector<void*>, std::vector<const Entry*>> groups;
    for (const Entry& entry : m_table) {
        if (!entry.object)
            continue;
        std::vector<void*> key;
        if (entry.creation)
            key.assign(entry.creation->frames, entry.creation->frames + entry.creation->count);
        groups[key].push_back(&entry);
    }
    const long uniqueCount = long(groups.size());
    m_scratch.clear();
    if (uniqueCount <= kDetailedBacktraces)
        AddLineToScratch("\n%ld leaks detected from %ld unique backtraces after tracking %llu objects (%ld simultaneous "
                         "object peak):\n\n",
                         long(m_live), uniqueCount, (unsigned long long)m_total, long(m_peak));
    else
        AddLineToScratch("\n%ld leaks detected from %ld unique backtraces after tracking %llu objects (%ld simultaneous "
                         "object peak). Details for the first %ld unique backtraces below:\n\n",
                         long(m_live), uniqueCount, (unsigned long long)m_total, long(m_peak),
                         long(kDetailedBacktraces));

    unsigned long long trackable = 0, trackableGroups = 0, ambiguous = 0, ambiguousGroups = 0;
    long shown = 0;
    for (const auto& [frames, entries] : groups) {
        bool groupTrackable = true;
        for (const Entry* entry : entries)
            groupTrackable = groupTrackable && Examine(*entry).trackable;
        (groupTrackable ? trackable : ambiguous) += entries.size();
        ++(groupTrackable ? trackableGroups : ambiguousGroups);
        if (shown++ >= kDetailedBacktraces)
            continue;
        const CObject* first = entries.front()->object;
        const std::string backtrace = frames.empty()
                                          ? std::string("    (creation backtraces are kept in Stack mode only)\n")
                                          : Platform::SymbolicateBacktrace(frames.data(), int(frames.size()));
        if (entries.size() == 1)
            AddLineToScratch("%s 0x%s [%s]. Object created at backtrace:\n%s", label.c_str(),
                             PointerText(first).c_str(), TypeText(first->GetType()).c_str(), backtrace.c_str());
        else if (frames.empty())
            AddLineToScratch("%lu objects leaked.\n", (unsigned long)entries.size());
        else
            AddLineToScratch("%lu objects leaked. Objects were created at backtrace:\n%s",
                             (unsigned long)entries.size(), backtrace.c_str());
        if (frames.empty())
            AddLineToScratch("\n");
        else
            WriteReferenceLines(entries);
    }
    AddLineToScratch("%llu objects were trackably leaked in %llu groups and %llu were ambiguously leaked in %llu "
                     "groups.\n",
                     trackable, trackableGroups, ambiguous, ambiguousGroups);
    m_lastReport = m_scratch;
    Log(LogLevel::Error, "%s", m_scratch.c_str());
}

int32_t CLeaksTable::End(int32_t /*mode*/)
{
    std::string label;
    try {
        label = Label();
    } catch (const std::bad_alloc&) {
        // Reported without a label below.
    }
    m_lock.Enter();
    const int32_t live = m_live;
    if (live > 0) {
        try {
            WriteReport(label);
        } catch (const std::bad_alloc&) {
            Log(LogLevel::Error, "CLeaks::ShowLeaksSinceMark: %ld leaks; no memory for the report\n", long(live));
        }
    } else {
        m_scratch.clear();
        AddLineToScratch("\nNo leaks detected after tracking %llu objects (%ld simultaneous object peak).\n",
                         (unsigned long long)m_total, long(m_peak));
        m_lastReport = m_scratch;
        Log(LogLevel::Trace, "%s", m_scratch.c_str());
    }
    CLeaks::s_mode.exchange(CLeaks::Off);
    m_lock.Exit();
    return live;
}

void CLeaks::CreateInstance()
{
    // Never destroyed: objects may be released during process exit.
    if (!s_instance)
        s_instance = new CLeaksTable();
}

void CLeaks::Mark(int32_t mode, uint32_t type)
{
    if (s_instance)
        s_instance->Begin(mode, type);
}

int32_t CLeaks::ShowLeaksSinceMark(int32_t mode)
{
    return s_instance ? s_instance->End(mode) : 0;
}

void CLeaks::SetCallback(char* (*callback)(void))
{
    if (s_instance)
        s_instance->SetCallback(callback);
}

const char* CLeaks::GetLastReport()
{
    return s_instance ? s_instance->LastReport() : "";
}

void CLeaks::CreateObject(const CObject* object)
{
    if (s_instance)
        s_instance->AddObject(object);
}

void CLeaks::AcquireObject(const CObject* object)
{
    if (s_instance)
        s_instance->AcquireObject(object);
}

void CLeaks::ReleaseObject(const CObject* object)
{
    if (s_instance)
        s_instance->ReleaseObject(object);
}

void CLeaks::DestroyObject(const CObject* object)
{
    if (s_instance)
        s_instance->RemoveObject(object);
}

} // namespace Quorvex::Vek

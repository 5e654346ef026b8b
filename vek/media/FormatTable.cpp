#include <vek/media/FormatTable.h>

namespace Quorvex::Vek {

const FormatIndexEntry* FormatTable::FindIndex(uint32_t code) const
{
    if (code == 0)
        return nullptr;
    const FormatIndexEntry* end = m_index + m_count;
    const FormatIndexEntry* it = std::lower_bound(
        m_index, end, code, [](const FormatIndexEntry& e, uint32_t c) { return e.code < c; });
    return it != end && it->code == code ? it : nullptr;
}

const FormatDescription* FormatTable::Find(uint32_t code) const
{
    const FormatIndexEntry* entry = FindIndex(code);
    return entry ? &m_rows[entry->row] : nullptr;
}

// The chains are checked to be finite when a table is compiled; the step
// limits below only keep a damaged table from hanging a caller.

uint32_t FormatTable::Canonical(uint32_t code) const
{
    for (size_t steps = 0; steps <= m_count; ++steps) {
        const FormatDescription* entry = Find(code);
        if (!entry)
            return 0;
        if (entry->parent == 0)
            return code;
        code = entry->parent;
    }
    return 0;
}

const char* FormatTable::Name(uint32_t code) const
{
    for (size_t steps = 0; steps <= m_count; ++steps) {
        const FormatDescription* entry = Find(code);
        if (!entry)
            return nullptr;
        if (entry->name)
            return entry->name;
        code = entry->parent;
    }
    return nullptr;
}

bool FormatTable::IsFormat(uint32_t code, uint32_t family) const
{
    if (code == family)
        return true;
    // A root's parent 0 ends the chain; it does not make every code a
    // descendant of Unknown.
    for (size_t steps = 0; steps <= m_count; ++steps) {
        const FormatDescription* entry = Find(code);
        if (!entry || entry->parent == 0)
            return false;
        code = entry->parent;
        if (code == family)
            return true;
    }
    return false;
}

uint32_t FormatTable::Alias(uint32_t code) const
{
    const FormatIndexEntry* entry = FindIndex(code);
    return entry ? entry->alias : 0;
}

uint32_t FormatTable::Classify(uint32_t code, const uint32_t (*map)[2]) const
{
    const uint32_t root = Canonical(code);
    if (root == 0)
        return 0;
    for (size_t steps = 0; steps <= m_count && code != 0; ++steps) {
        if (uint32_t value = FindPairedFormat(map, code))
            return value;
        code = Find(code)->parent;
    }
    return root;
}

uint32_t FindPairedFormat(const uint32_t (*pairs)[2], uint32_t key)
{
    for (; pairs[0][0] != 0; ++pairs)
        if (pairs[0][0] == key)
            return pairs[0][1];
    return 0;
}

} // namespace Quorvex::Vek

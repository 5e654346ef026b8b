#pragma once

// Lookups over a format description table, shared by the format families.
//
// The tables are constant data, so the search index is built at compile
// time: a sorted copy of (code, row) pairs searched by bisection. Compile
// time checks make sure a table can be indexed without changing any answer
// of the plain scan "walk from the first row to the row with the code,
// stopping at the terminating 0 row": the terminator is the last row and the
// only 0 code, no code appears twice, every parent is itself in the table
// and no parent chain loops. A table that breaks one of these does not
// compile.
//
// Not exported: the families' static functions are the public face.
#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include <vek/media/FormatDescription.h>

namespace Quorvex::Vek {

struct FormatIndexEntry {
    uint32_t code;
    uint32_t row;
    // The code the table itself names as equivalent; see FormatTable::Alias.
    uint32_t alias;
};

class FormatTable {
public:
    constexpr FormatTable(const FormatDescription* rows, const FormatIndexEntry* index, size_t count)
        : m_rows(rows), m_index(index), m_count(count)
    {
    }

    // The table's entry for `code`, or null (always null for 0).
    const FormatDescription* Find(uint32_t code) const;

    // Root of the parent chain; 0 when the code is not in the table.
    uint32_t Canonical(uint32_t code) const;

    // The first name on the way from the code to its root; null when the
    // code is not in the table or no entry on the way has a name.
    const char* Name(uint32_t code) const;

    // True when `code` is `family` or one of its ancestors is. The 0 that
    // ends every chain is not an ancestor, so only 0 itself is "Unknown".
    bool IsFormat(uint32_t code, uint32_t family) const;

    // The table's own equivalent: an unnamed entry (a pure alias) gives its
    // parent; a named entry gives its first unnamed child in table order;
    // anything else gives 0.
    uint32_t Alias(uint32_t code) const;

    // The first code met on the way from `code` to its root that appears as
    // a key in `map` (pairs of key, value, ended by a 0 key) gives that key's
    // value; with no such code the canonical root is the answer.
    uint32_t Classify(uint32_t code, const uint32_t (*map)[2]) const;

private:
    const FormatIndexEntry* FindIndex(uint32_t code) const;

    const FormatDescription* m_rows;
    const FormatIndexEntry* m_index;
    size_t m_count;
};

// Looks up the first value for `key` in pairs ended by a 0 key; 0 if absent.
uint32_t FindPairedFormat(const uint32_t (*pairs)[2], uint32_t key);

namespace FormatTableDetail {

template <size_t N>
constexpr size_t RowOf(const FormatDescription (&rows)[N], uint32_t code)
{
    for (size_t i = 0; i + 1 < N; ++i)
        if (rows[i].code == code)
            return i;
    return N;
}

} // namespace FormatTableDetail

// The compile-time checks described at the top of this file.
template <size_t N>
constexpr bool IsIndexableFormatTable(const FormatDescription (&rows)[N])
{
    using FormatTableDetail::RowOf;
    if (N == 0 || rows[N - 1].code != 0)
        return false;
    for (size_t i = 0; i + 1 < N; ++i) {
        if (rows[i].code == 0 || RowOf(rows, rows[i].code) != i)
            return false;
        uint32_t parent = rows[i].parent;
        for (size_t steps = 0; parent != 0; ++steps) {
            size_t row = RowOf(rows, parent);
            if (row == N || steps == N)
                return false;
            parent = rows[row].parent;
        }
    }
    return true;
}

// Number of rows before the terminator, and of those whose parent is 0.
template <size_t N>
constexpr size_t CountFormatRows(const FormatDescription (&)[N])
{
    return N - 1;
}

template <size_t N>
constexpr size_t CountFormatRoots(const FormatDescription (&rows)[N])
{
    size_t roots = 0;
    for (size_t i = 0; i + 1 < N; ++i)
        roots += rows[i].parent == 0;
    return roots;
}

template <size_t N>
constexpr std::array<FormatIndexEntry, N - 1> BuildFormatIndex(const FormatDescription (&rows)[N])
{
    std::array<FormatIndexEntry, N - 1> index{};
    for (size_t i = 0; i + 1 < N; ++i) {
        uint32_t alias = 0;
        if (rows[i].name == nullptr) {
            alias = rows[i].parent;
        } else {
            for (size_t j = 0; j + 1 < N && alias == 0; ++j)
                if (rows[j].parent == rows[i].code && rows[j].name == nullptr)
                    alias = rows[j].code;
        }
        index[i] = {rows[i].code, uint32_t(i), alias};
    }
    std::sort(index.begin(), index.end(),
              [](const FormatIndexEntry& a, const FormatIndexEntry& b) { return a.code < b.code; });
    return index;
}

} // namespace Quorvex::Vek

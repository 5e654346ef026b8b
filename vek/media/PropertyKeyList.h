#pragma once

// A read-only view of one key family: the constant's name beside its key,
// so tools can list the keys a family offers and tests can walk them.
#include <cstring>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct PropertyKeyEntry {
    const char* name; // the C++ constant's name, e.g. "Duration"
    const char* key;  // the key string stored in property bags, e.g. "duration"
};

struct PropertyKeyList {
    const PropertyKeyEntry* entries = nullptr;
    int32_t count = 0;

    const PropertyKeyEntry* begin() const { return entries; }
    const PropertyKeyEntry* end() const { return entries + count; }

    // The key of the constant called `name`, or null.
    const char* FindKey(const char* name) const
    {
        const PropertyKeyEntry* entry = FindEntry(name, &PropertyKeyEntry::name);
        return entry ? entry->key : nullptr;
    }

    // The constant's name for a key string, or null when the family lacks it.
    const char* FindName(const char* key) const
    {
        const PropertyKeyEntry* entry = FindEntry(key, &PropertyKeyEntry::key);
        return entry ? entry->name : nullptr;
    }

private:
    const PropertyKeyEntry* FindEntry(const char* text, const char* PropertyKeyEntry::*field) const
    {
        if (!text)
            return nullptr;
        for (const PropertyKeyEntry& entry : *this)
            if (std::strcmp(entry.*field, text) == 0)
                return &entry;
        return nullptr;
    }
};

} // namespace Quorvex::Vek

#pragma once

// Atoms for the metadata and timecode tests: built by hand for the hostile
// cases, and found inside files other programs wrote by walking the box
// tree with the library's bounded iterator.
#include <vek/containers/readers/mov/MovBox.h>
#include <vek/media/IProperties.h>

#include <cstdint>
#include <string>
#include <vector>

namespace VekTest {

inline std::string Be16(uint32_t value)
{
    return {char(value >> 8), char(value)};
}

inline std::string Be32(uint32_t value)
{
    return {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
}

// A box of a four-character type (a '©' type is written "\251nam").
inline std::string Atom(const std::string& type, const std::string& payload)
{
    return Be32(uint32_t(8 + payload.size())) + type.substr(0, 4) + payload;
}

inline uint32_t TypeOf(const std::string& text)
{
    uint32_t type = 0;
    for (size_t i = 0; i < 4; ++i)
        type = type << 8 | uint8_t(i < text.size() ? text[i] : ' ');
    return type;
}

inline Quorvex::Vek::MovBox SpanBox(const std::string& bytes, uint32_t type)
{
    Quorvex::Vek::MovBox box;
    box.type = type;
    box.payload = reinterpret_cast<const uint8_t*>(bytes.data());
    box.size = bytes.size();
    box.headerSize = 8;
    return box;
}

// Every child of `parent` of `type` (all children when type is 0).
inline std::vector<Quorvex::Vek::MovBox> Children(const Quorvex::Vek::MovBox& parent, uint32_t type)
{
    std::vector<Quorvex::Vek::MovBox> found;
    Quorvex::Vek::MovBoxIterator children(parent);
    Quorvex::Vek::MovBox child;
    while (children.Next(child) == 0)
        if (type == 0 || child.type == type)
            found.push_back(child);
    return found;
}

// The box at a path of types below the top of a file ("moov/udta"); false
// when a step is missing.
inline bool FindPath(const std::string& file, const std::string& path, Quorvex::Vek::MovBox& out)
{
    Quorvex::Vek::MovBox current = SpanBox(file, 0);
    for (size_t at = 0; at < path.size(); at += 5) {
        const std::vector<Quorvex::Vek::MovBox> found = Children(current, TypeOf(path.substr(at, 4)));
        if (found.empty())
            return false;
        current = found.front();
    }
    out = current;
    return true;
}

// The bytes stored under `key`, or "<absent>".
inline std::string Stored(Quorvex::Vek::IProperties& bag, const char* key)
{
    Quorvex::Vek::CByteArray* value = bag.GetProperty(key);
    if (!value)
        return "<absent>";
    if (value->GetLength() == 0)
        return {};
    return std::string(reinterpret_cast<const char*>(value->GetData()), size_t(value->GetLength()));
}

} // namespace VekTest

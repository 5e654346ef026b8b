// Runs a script of bag operations taken from the input over a video
// description's bag and over a plain std::map twin kept in insertion order,
// and stops at the first answer of the bag that the twin does not predict.
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/media/CVideoProperties.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/Properties.h>
#include <vek/media/VideoProperty.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

using Bytes = std::vector<unsigned char>;

class Script {
public:
    Script(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    bool Done() const { return m_pos >= m_size; }
    uint8_t Byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    Bytes Take(size_t count)
    {
        count = std::min(count, m_size - m_pos);
        Bytes bytes(m_data + m_pos, m_data + m_pos + count);
        m_pos += count;
        return bytes;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

// The twin: what the bag must hold, in the order keys were first written.
class Twin {
public:
    const Bytes* Find(const std::string& key) const
    {
        auto it = m_values.find(key);
        return it == m_values.end() ? nullptr : &it->second;
    }
    void Set(const std::string& key, Bytes value)
    {
        if (m_values.find(key) == m_values.end())
            m_order.push_back(key);
        m_values[key] = std::move(value);
    }
    bool Remove(const std::string& key)
    {
        if (!m_values.erase(key))
            return false;
        m_order.erase(std::find(m_order.begin(), m_order.end(), key));
        return true;
    }
    void Clear()
    {
        m_values.clear();
        m_order.clear();
    }
    const std::vector<std::string>& Order() const { return m_order; }

private:
    std::map<std::string, Bytes> m_values;
    std::vector<std::string> m_order;
};

[[noreturn]] void Mismatch(const char* what, const std::string& key)
{
    std::fprintf(stderr, "PropertyBagFuzz: %s for key \"%s\"\n", what, key.c_str());
    std::abort();
}

void Check(bool ok, const char* what, const std::string& key)
{
    if (!ok)
        Mismatch(what, key);
}

std::string PickKey(Script& script)
{
    static const char* const known[] = {
        MediaProperty::Mpeg2FormatIdentifier, MediaProperty::Mpeg2TransportStreamPid,
        VideoProperty::AlphaChannel,          VideoProperty::Mpeg4CompressorName,
        VideoProperty::MpegMaxGopLength,      "a",
    };
    const uint8_t choice = script.Byte();
    if (choice < 200)
        return known[choice % (sizeof known / sizeof known[0])];
    // A short printable ASCII key made of script bytes. Keys that are not
    // UTF-8 are refused by the bag; the unit tests cover that.
    std::string key;
    for (unsigned char c : script.Take(choice % 6 + 1))
        key += static_cast<char>('!' + c % 94);
    return key;
}

// What a read of `width` bytes must do to a variable filled with 0xA5.
void CheckTypedRead(const Bytes* stored, int result, const unsigned char* variable, size_t width,
                    const std::string& key)
{
    if (!stored) {
        Check(result == 0, "absent key read not 0", key);
    } else if (stored->size() > width) {
        Check(result == RESULT_ARGUMENT_OUT_OF_RANGE, "oversized value not refused", key);
    } else {
        Check(result == static_cast<int>(stored->size()), "read length differs", key);
        Check(std::equal(stored->begin(), stored->end(), variable), "read bytes differ", key);
    }
    const size_t touched = stored && stored->size() <= width ? stored->size() : 0;
    for (size_t i = touched; i < width; ++i)
        Check(variable[i] == 0xA5, "read wrote past the stored bytes", key);
}

void Step(Script& script, CVideoProperties* video, Twin& twin)
{
    IProperties& bag = *video;
    Properties typed(video);
    const std::string key = PickKey(script);
    const char* k = key.c_str();
    switch (script.Byte() % 12) {
    case 0: {
        Bytes value = script.Take(script.Byte() % 24);
        Check(bag.SetProperty(k, static_cast<int32_t>(value.size()), value.data()) == 0, "raw write failed", key);
        twin.Set(key, std::move(value));
        break;
    }
    case 1: {
        Bytes value = script.Take(4);
        value.resize(4);
        int number;
        std::memcpy(&number, value.data(), 4);
        Check(typed.SetProperty(k, number) == 0, "int write failed", key);
        twin.Set(key, value);
        break;
    }
    case 2: {
        Bytes value = script.Take(8);
        value.resize(8);
        int64_t number;
        std::memcpy(&number, value.data(), 8);
        Check(typed.SetProperty(k, number) == 0, "int64 write failed", key);
        twin.Set(key, value);
        break;
    }
    case 3: {
        const bool flag = script.Byte() & 1;
        Check(typed.SetProperty(k, flag) == 0, "bool write failed", key);
        twin.Set(key, Bytes{static_cast<unsigned char>(flag)});
        break;
    }
    case 4: {
        Bytes value = script.Take(4);
        value.resize(4);
        const unsigned int code = (unsigned(value[0]) << 24) | (unsigned(value[1]) << 16) |
                                  (unsigned(value[2]) << 8) | value[3];
        Check(bag.SetFourProperty(k, code) == 0, "four write failed", key);
        twin.Set(key, value);
        unsigned int back = 0;
        Check(bag.GetFourProperty(k, back) == 4 && back == code, "four read-back differs", key);
        break;
    }
    case 5: {
        const int result = bag.RemoveProperty(k);
        Check((result == 0) == twin.Remove(key), "remove result differs", key);
        break;
    }
    case 6: {
        const int32_t capacity = static_cast<int32_t>(script.Byte() % 32) - 2;
        const Bytes* stored = twin.Find(key);
        Check(bag.GetProperty(k, 0, nullptr) == (stored ? static_cast<int>(stored->size()) : 0),
              "length differs", key);
        unsigned char buffer[32];
        std::memset(buffer, 0xA5, sizeof buffer);
        const int result = bag.GetProperty(k, capacity, buffer);
        if (stored && capacity < static_cast<int32_t>(stored->size())) {
            Check(result == RESULT_ARGUMENT_OUT_OF_RANGE, "short buffer not refused", key);
            for (unsigned char b : buffer)
                Check(b == 0xA5, "refused read copied bytes", key);
        } else {
            CheckTypedRead(stored, result, buffer, std::max<int32_t>(capacity, 0), key);
        }
        break;
    }
    case 7: {
        const Bytes* stored = twin.Find(key);
        int number;
        int64_t wide;
        std::memset(&number, 0xA5, sizeof number);
        std::memset(&wide, 0xA5, sizeof wide);
        CheckTypedRead(stored, typed.GetProperty(k, number), reinterpret_cast<unsigned char*>(&number), 4, key);
        CheckTypedRead(stored, typed.GetProperty(k, wide), reinterpret_cast<unsigned char*>(&wide), 8, key);
        bool flag = false;
        const int result = typed.GetProperty(k, flag);
        if (stored && stored->size() == 1)
            Check(result == 1 && flag == ((*stored)[0] != 0), "bool read differs", key);
        else
            Check(!flag && result == (stored && !stored->empty() ? RESULT_ARGUMENT_OUT_OF_RANGE : 0),
                  "bool read not refused", key);
        break;
    }
    case 8: {
        const std::vector<std::string>& order = twin.Order();
        Check(bag.GetPropertyCount() == static_cast<int32_t>(order.size()), "count differs", key);
        for (size_t i = 0; i < order.size(); ++i) {
            CString* name = bag.GetPropertyName(static_cast<int32_t>(i));
            Check(name && name->Equals(order[i].c_str()), "order differs", order[i]);
        }
        Check(bag.GetPropertyName(static_cast<int32_t>(order.size())) == nullptr, "name past the end", key);
        break;
    }
    case 9:
        bag.ClearProperties();
        twin.Clear();
        Check(bag.GetPropertyCount() == 0, "clear left entries", key);
        break;
    case 10: {
        RObject<CString> text(bag.GetPropertyValue(k));
        Check(text.Get() != nullptr, "no value text", key);
        break;
    }
    case 11: {
        // A clone holds the same entries in the same order.
        RObject<CMediaProperties> copy(video->Clone());
        Check(copy.Get() != nullptr, "clone failed", key);
        Check(copy->GetPropertyCount() == bag.GetPropertyCount(), "clone count differs", key);
        for (int32_t i = 0; i < copy->GetPropertyCount(); ++i) {
            CString* name = copy->GetPropertyName(i);
            const Bytes* stored = twin.Find(name->GetChars());
            Check(stored && copy->GetProperty(name->GetChars(), 0, nullptr) == static_cast<int>(stored->size()),
                  "clone entry differs", name->GetChars());
        }
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    RObject<CVideoProperties> video(new CVideoProperties());
    Twin twin;
    Script script(data, size);
    for (int steps = 0; steps < 512 && !script.Done(); ++steps)
        Step(script, video.Get(), twin);
    return 0;
}

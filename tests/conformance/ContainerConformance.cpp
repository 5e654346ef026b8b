// Conformance of the audio container readers with files written by other
// programs. make_corpus.py writes the files (ffmpeg, sox, libsndfile,
// Python's wave and aifc) and asks independent readers for their facts and
// sound bytes; this program opens every file through the library exactly as
// a host does (by path, the reader chosen by probing), and compares.
//
// Usage: vek_container_conformance CORPUS_FOLDER [NAME_SUBSTRING]
// Exit status: 0 all files conform, 1 a mismatch (each one printed as
// "file: fact: expected X, got Y"), 77 the corpus was skipped (its tools are
// missing), 2 bad usage or no readable corpus.
#include <vek/containers/CContainerReader.h>
#include <vek/containers/ContainerReaderInventory.h>
#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/ContainerProperty.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

constexpr int kSkipped = 77;

// One line of expected.tsv: column name -> value, with the generator's
// escapes undone. Bext values carry a leading '=' when present, '-' when the
// file has no broadcast extension.
using Row = std::map<std::string, std::string>;

std::string Unescape(const std::string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const char next = text[++i];
        out += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
    }
    return out;
}

std::vector<std::string> Split(const std::string& line)
{
    std::vector<std::string> fields;
    std::string field;
    std::istringstream in(line);
    while (std::getline(in, field, '\t'))
        fields.push_back(Unescape(field));
    if (!line.empty() && line.back() == '\t')
        fields.emplace_back();
    return fields;
}

bool ReadRows(const std::string& path, std::vector<Row>& rows)
{
    std::ifstream in(path, std::ios::binary);
    std::string line;
    if (!in || !std::getline(in, line))
        return false;
    const std::vector<std::string> columns = Split(line);
    while (std::getline(in, line)) {
        if (line.empty())
            continue;
        const std::vector<std::string> fields = Split(line);
        if (fields.size() != columns.size()) {
            std::fprintf(stderr, "%s: a row has %zu fields, the header %zu\n", path.c_str(), fields.size(),
                         columns.size());
            return false;
        }
        Row row;
        for (size_t i = 0; i < columns.size(); ++i)
            row[columns[i]] = fields[i];
        rows.push_back(row);
    }
    return !rows.empty();
}

bool ReadFile(const std::string& path, std::vector<unsigned char>& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

// How the library names each stored sample format (ffprobe's codec name).
// 8-bit AIFF is signed in the file but declared UInt8, like 8-bit WAV, and
// every float WAVE file is declared Float32L whatever its width: a host
// tells them apart by the family and the bits per sample.
const struct {
    const char* codec;
    uint32_t format;
} kFormats[] = {
    {"pcm_u8", AudioFormat::UInt8},      {"pcm_s8", AudioFormat::UInt8},      {"pcm_s16le", AudioFormat::Int16L},
    {"pcm_s24le", AudioFormat::Int24L},  {"pcm_s32le", AudioFormat::Int32L},  {"pcm_f32le", AudioFormat::Float32L},
    {"pcm_f64le", AudioFormat::Float32L}, {"pcm_s16be", AudioFormat::Int16B}, {"pcm_s24be", AudioFormat::Int24B},
    {"pcm_s32be", AudioFormat::Int32B},
};

// The format name each reader gives, by the container the file's signature
// names (RIFF, RIFF with an extensible format record, RF64, Wave64, AIFF).
const struct {
    const char* container;
    const char* name;
} kFormatNames[] = {
    {"WAV", "WAV"}, {"WAVEX", "WAV"}, {"RF64", "WAV"}, {"W64", "WAV64"}, {"AIFF", "AIFF"},
};

// The broadcast-wave keys and the manifest column of each.
const struct {
    const char* key;
    const char* column;
} kBextKeys[] = {
    {ContainerProperty::WavDescription, "bext.description"},
    {ContainerProperty::WavOriginator, "bext.originator"},
    {ContainerProperty::WavOriginatorReference, "bext.originator_reference"},
    {ContainerProperty::WavOriginationDate, "bext.origination_date"},
    {ContainerProperty::WavOriginationTime, "bext.origination_time"},
    {ContainerProperty::WavCodingHistory, "bext.coding_history"},
    {ContainerProperty::WavUmid, "bext.umid"},
};

std::string FourText(uint32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "'%c%c%c%c'", char(code >> 24), char(code >> 16), char(code >> 8), char(code));
    return text;
}

// The text in quotes with its line ends visible.
std::string Quoted(const std::string& text)
{
    std::string out(1, '"');
    for (const char c : text) {
        if (c == '\r')
            out += "\\r";
        else if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    out += '"';
    return out;
}

class FileCheck {
public:
    FileCheck(const std::string& folder, const Row& row) : m_folder(folder), m_row(row), m_name(row.at("file")) {}

    int Failures() const { return m_failures; }

    void Run()
    {
        const std::string path = m_folder + "/" + m_row.at("file");
        RObject<CString> text(CString::Create(path.c_str()));
        RObject<CContainerReader> reader(CContainerReader::Create(text));
        if (!reader)
            return Fail("open", "a reader chosen by probing", "none");
        int result = reader->BeginIndex();
        if (result < 0)
            return Fail("BeginIndex", "0", GetResultName(result));

        ExpectText("format name", ExpectedFormatName(), reader->GetFormatName());
        const int32_t tracks = reader->GetAudioMediaCount();
        Expect("audio tracks", 1, tracks);
        CAudioProperties* audio = tracks > 0 ? reader->GetAudioProperties(0) : nullptr;
        if (!audio)
            return Fail("audio properties", "present", "null");
        CheckProperties(audio);
        CheckBext(reader);
        if (m_failures == 0)
            CheckSound(reader);
        reader->EndIndex();
    }

private:
    int64_t Number(const char* column) const { return std::stoll(m_row.at(column)); }

    void Fail(const std::string& fact, const std::string& expected, const std::string& got)
    {
        ++m_failures;
        std::printf("%s: %s: expected %s, got %s\n", m_name.c_str(), fact.c_str(), expected.c_str(), got.c_str());
    }

    void Expect(const std::string& fact, int64_t expected, int64_t got)
    {
        if (expected != got)
            Fail(fact, std::to_string(expected), std::to_string(got));
    }

    void ExpectText(const std::string& fact, const std::string& expected, const std::string& got)
    {
        if (expected != got)
            Fail(fact, Quoted(expected), Quoted(got));
    }

    std::string ExpectedFormatName() const
    {
        for (const auto& entry : kFormatNames)
            if (m_row.at("container") == entry.container)
                return entry.name;
        return "(no name for container " + m_row.at("container") + ")";
    }

    void CheckProperties(CAudioProperties* audio)
    {
        const std::string& codec = m_row.at("codec");
        uint32_t format = 0;
        for (const auto& entry : kFormats)
            if (codec == entry.codec)
                format = entry.format;
        if (audio->GetFormat() != format)
            Fail("audio format of " + codec, FourText(format), FourText(audio->GetFormat()));
        const int64_t rate = Number("sample_rate");
        const int64_t channels = Number("channels");
        const int64_t bits = Number("bits");
        Expect("sample rate", rate, audio->GetSampleRate());
        Expect("channels", channels, audio->GetChannels());
        Expect("bits per sample", bits, audio->GetBitsPerSample());
        Expect("bytes per frame", channels * bits / 8, audio->GetBytesPerFrame());
        Expect("duration in frames", Number("frames"), audio->GetDuration());
        Expect("time scale", rate, audio->GetTimeScale());
        Expect("bit rate", rate * channels * bits, audio->GetBitRate());

        // The extensible record's mask gives the channels the masked
        // positions in ascending bit order (position = bit + 1).
        const uint32_t mask = uint32_t(Number("channel_mask"));
        if (mask == 0)
            return;
        int32_t channel = 0;
        for (uint32_t bit = 0; bit < 32 && channel < audio->GetChannels(); ++bit) {
            if (!(mask & (1u << bit)))
                continue;
            uint32_t position = 0;
            const int result = audio->GetSpeakerPosition(channel, position);
            if (result < 0)
                Fail("speaker position of channel " + std::to_string(channel), std::to_string(bit + 1),
                     GetResultName(result));
            else
                Expect("speaker position of channel " + std::to_string(channel) + " (mask 0x" +
                           ToHex(mask) + ")",
                       bit + 1, position);
            ++channel;
        }
    }

    static std::string ToHex(uint32_t value)
    {
        char text[16];
        std::snprintf(text, sizeof text, "%X", value);
        return text;
    }

    void CheckBext(CContainerReader* reader)
    {
        for (const auto& entry : kBextKeys) {
            const std::string& expected = m_row.at(entry.column);
            CByteArray* stored = reader->GetProperty(entry.key);
            if (expected == "-") {
                if (stored)
                    Fail(entry.key, "absent (the file has no broadcast extension)",
                         std::to_string(stored->GetLength()) + " bytes");
                continue;
            }
            if (!stored) {
                Fail(entry.key, Quoted(expected.substr(1)), "absent");
                continue;
            }
            RObject<CString> value(reader->GetPropertyValue(entry.key));
            ExpectText(entry.key, expected.substr(1), value ? value->GetChars() : "(null)");
        }
    }

    void CheckSound(CContainerReader* reader)
    {
        std::vector<unsigned char> expected;
        if (!ReadFile(m_folder + "/" + m_row.at("raw"), expected))
            return Fail("sound bytes", "the extracted file " + m_row.at("raw"), "unreadable");
        const int64_t bytesPerFrame = Number("channels") * Number("bits") / 8;
        const int64_t second = Number("sample_rate") * bytesPerFrame;
        std::vector<unsigned char> got;
        got.reserve(expected.size());
        int64_t frames = 0;
        int64_t nextPosition = -1;
        for (int index = 0;; ++index) {
            CAudioSample* next = nullptr;
            int result = reader->ReadAudioSample(0, next);
            RObject<CAudioSample> sample(next);
            const std::string where = "sample " + std::to_string(index);
            if (result < 0)
                return Fail(where, "a sample or the end", GetResultName(result));
            if (!sample)
                break;
            if (index > int(expected.size() / size_t(second)) + 1)
                return Fail(where, "the end after " + std::to_string(expected.size()) + " bytes",
                            "more samples");
            auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
            if (!range || !range->IsType(CContainerDataReference::Type))
                return Fail(where + " data reference", "a container range", range ? "another kind" : "none");
            // One second per sample, the last one what remains; the ranges
            // of a single data chunk follow one another.
            const int64_t remaining = int64_t(expected.size()) - int64_t(got.size());
            Expect(where + " length", remaining < second ? remaining : second, range->GetLength());
            if (nextPosition >= 0)
                Expect(where + " position", nextPosition, range->GetPosition());
            nextPosition = range->GetPosition() + range->GetLength();
            Expect(where + " duration in frames", range->GetLength() / bytesPerFrame, sample->GetDuration());
            // Times count frames from the start of the sound.
            Expect(where + " time", frames, sample->GetTime());
            frames += sample->GetDuration();

            result = reader->ReadAudioData(0, sample);
            if (result < 0)
                return Fail(where + " data", "read", GetResultName(result));
            auto* memory = static_cast<CMemoryDataReference*>(sample->GetDataReference());
            if (!memory || !memory->IsType(CMemoryDataReference::Type) || !memory->GetBuffer())
                return Fail(where + " data", "a memory reference with bytes", "none");
            CByteArray* buffer = memory->GetBuffer();
            const unsigned char* bytes = buffer->GetData();
            if (buffer->GetLength() > 0 && !bytes)
                return Fail(where + " data", "bytes", "no memory");
            got.insert(got.end(), bytes, bytes + buffer->GetLength());
            if (m_failures > 0)
                return;
        }
        Expect("frames in samples", Number("frames"), frames);
        Expect("sound byte count", int64_t(expected.size()), int64_t(got.size()));
        const size_t common = std::min(expected.size(), got.size());
        for (size_t i = 0; i < common; ++i) {
            if (expected[i] != got[i]) {
                char text[96];
                std::snprintf(text, sizeof text, "byte %zu (frame %lld) 0x%02X", i,
                              static_cast<long long>(int64_t(i) / bytesPerFrame), expected[i]);
                char gotText[16];
                std::snprintf(gotText, sizeof gotText, "0x%02X", got[i]);
                return Fail("sound bytes", text, gotText);
            }
        }
    }

    std::string m_folder;
    const Row& m_row;
    std::string m_name;
    int m_failures = 0;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: %s CORPUS_FOLDER [NAME_SUBSTRING]\n", argv[0]);
        return 2;
    }
    const std::string folder = argv[1];
    std::vector<Row> rows;
    if (!ReadRows(folder + "/expected.tsv", rows)) {
        if (std::ifstream(folder + "/skipped"))
            return kSkipped;
        std::fprintf(stderr, "%s/expected.tsv is missing or empty: the corpus fixture did not run\n",
                     folder.c_str());
        return 2;
    }
    if (ContainerReaderInventory::AddWavContainerReader(nullptr) < 0 ||
        ContainerReaderInventory::AddWav64ContainerReader(nullptr) < 0 ||
        ContainerReaderInventory::AddAiffContainerReader(nullptr) < 0) {
        std::fprintf(stderr, "registering the readers failed\n");
        return 1;
    }
    int failedFiles = 0;
    int checked = 0;
    for (const Row& row : rows) {
        if (argc == 3 && row.at("name").find(argv[2]) == std::string::npos)
            continue;
        FileCheck check(folder, row);
        check.Run();
        ++checked;
        failedFiles += check.Failures() > 0;
    }
    std::printf("%d of %d corpus files conform\n", checked - failedFiles, checked);
    return failedFiles ? 1 : 0;
}

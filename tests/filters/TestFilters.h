#pragma once

// Small concrete filters for the framework's tests: a video converter that
// passes pictures through or hands them out in swapped pairs, and an audio
// converter that only lists its formats.
#include <vek/filters/CAudioConverter.h>
#include <vek/filters/CVideoConverter.h>

#include <vector>

namespace VekTest {

using namespace Quorvex::Vek;

class TestVideoConverter : public CVideoConverter {
public:
    using CVideoConverter::Convert;

    TestVideoConverter() : CVideoConverter(Four("tvcv")) {}

    const ConfigurationMap* table = nullptr;
    std::vector<uint32_t> inputFormats;
    std::vector<uint32_t> outputFormats;
    bool swapPairs = false; // hand out pictures 2,1,4,3 ... through the metadata queue
    int begins = 0;
    int ends = 0;
    int drains = 0;

    const ConfigurationMap* GetConfigurationTable() override { return table; }
    FormatList* GetInputFormats() override { return table ? CVideoConverter::GetInputFormats() : List(inputFormats); }
    FormatList* GetOutputFormats() override
    {
        return table ? CVideoConverter::GetOutputFormats() : List(outputFormats);
    }

protected:
    int CoreBegin() override { return ++begins, RESULT_OK; }
    int CoreEnd() override { return ++ends, RESULT_OK; }
    void Drain() override
    {
        ++drains;
        CVideoConverter::Drain();
    }

    int Convert(CVideoSample* input, CVideoSample*& output) override
    {
        output = nullptr;
        if (!swapPairs) {
            if (!input)
                return 1;
            output = CVideoSample::Create();
            return output ? CopySampleMetadata(output, input) : RESULT_OUT_OF_MEMORY;
        }
        if (!input) // the drain hands out a held picture alone
            return m_held ? Emit(m_heldKey, output) : 1;
        int32_t key = 0;
        const int result = SplitAndEnqueueSampleMetadata(input, &key);
        if (result < 0)
            return result;
        if (!m_held) {
            m_held = true;
            m_heldKey = key;
            return 1;
        }
        // The later picture is queued first; the held one follows it.
        CVideoSample* later = nullptr;
        const int emitted = Emit(key, later);
        RObject<CVideoSample> queued(later);
        if (emitted < 0)
            return emitted;
        EnqueueOutputSample(queued);
        return Emit(m_heldKey, output);
    }

private:
    int Emit(int32_t key, CVideoSample*& output)
    {
        m_held = m_held && key != m_heldKey;
        output = CVideoSample::Create();
        return output ? DequeueAndMergeSampleMetadata(output, key) : RESULT_OUT_OF_MEMORY;
    }

    static FormatList* List(const std::vector<uint32_t>& formats)
    {
        FormatList* list = FormatList::Create();
        for (uint32_t format : formats)
            if (list && list->Add(format) < 0)
                return list->Release(), nullptr;
        return list;
    }

    bool m_held = false;
    int32_t m_heldKey = 0;
};

class TestAudioConverter : public CAudioConverter {
public:
    explicit TestAudioConverter(std::vector<uint32_t> inputs) : CAudioConverter(Four("tacv")), m_inputs(inputs) {}

    FormatList* GetInputFormats() override
    {
        FormatList* list = FormatList::Create();
        for (uint32_t format : m_inputs)
            list->Add(format);
        return list;
    }

private:
    std::vector<uint32_t> m_inputs;
};

} // namespace VekTest

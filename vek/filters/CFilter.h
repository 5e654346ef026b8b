#pragma once

// The life cycle and format negotiation every filter shares, bound to its
// input and output sample and description classes.
//
// Calling order: SetInputProperties -> optional SetOutputFormat (one of
// GetOutputFormats) -> Begin -> WriteSample / ReadSample as often as needed
// -> WriteSample(null) to drain -> ReadSample until it answers 1 -> End.
// Begin may follow End again; Begin itself ends a running filter first.
//
// States: Configured -> Running (Begin) -> Draining (a null WriteSample)
// -> Running again once ReadSample has answered 1 while draining (that
// answer flushes) -> Ended (End: Flush, then CoreEnd).
//
// Results: 0 or more is success; 1 means "succeeded, nothing produced" (no
// output yet, more input needed, or the drain is over). Failures:
// -19812 Begin without input properties, -19813 Begin cannot settle an
// output format, -19017 SetOutputFormat with a format not offered,
// -19811 a sample written while draining, -19005 a core operation the
// concrete filter did not provide.
//
// A concrete filter overrides the protected core operations and the format
// lists; it leaves the public algorithm alone. Every member is inline: the
// template is instantiated by each module that derives from it, and its four
// instantiations are the bases of the exported filter classes.
#include <type_traits>

#include <vek/core/CValueList.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/filters/CFilterBase.h>
#include <vek/filters/CFilterContext.h>

namespace Quorvex::Vek {

template <typename InputContext, typename OutputContext>
class CFilter : public CFilterBase {
public:
    using InputSample = typename InputContext::Sample;
    using InputProperties = typename InputContext::Properties;
    using OutputSample = typename OutputContext::Sample;
    using OutputProperties = typename OutputContext::Properties;
    using FormatList = CValueList<unsigned int>;

    // The score of an acceptable input description.
    static constexpr int AcceptScore = 128;

    // The pull callback hands over input number `index` (a new reference in
    // `sample`, or null when there is none); the push callback receives a
    // finished output sample (borrowed for the call). Both return a result.
    using GetInputSampleCallback = int (*)(InputSample*& sample, int32_t index, void* context1, void* context2);
    using ReceiveOutputSampleCallback = int (*)(OutputSample* sample, void* context1, void* context2);

    // Ends a running filter, checks the descriptions, settles the output
    // format (the first offered one when none was chosen) and calls
    // CoreBegin. A failed Begin leaves the filter flushed.
    virtual int Begin()
    {
        End();
        if (!m_inputProperties) {
            Log(LogLevel::Error, "CFilter::Begin: filter '%s' has no input properties\n", FourCCText(GetType()).c_str());
            return RESULT_FILTER_NO_INPUT_PROPERTIES;
        }
        if (!m_outputProperties) {
            const int result = ChooseFirstOutputFormat();
            if (result < 0)
                return result;
        }
        if (!m_outputProperties) {
            Log(LogLevel::Error, "CFilter::Begin: filter '%s' offers no output format\n", FourCCText(GetType()).c_str());
            return RESULT_FILTER_NO_OUTPUT_FORMAT;
        }
        const int result = CoreBegin();
        return result < 0 ? result : RESULT_OK;
    }

    // Flush, then CoreEnd; CoreEnd's failure or 0.
    virtual int End()
    {
        Flush();
        const int result = CoreEnd();
        return result < 0 ? result : RESULT_OK;
    }

    // The format codes of the two descriptions; 0 while one is absent.
    virtual unsigned int GetOutputFormat() { return m_outputProperties ? m_outputProperties->GetFormat() : 0; }
    virtual unsigned int GetInputFormat() { return m_inputProperties ? m_inputProperties->GetFormat() : 0; }

    // Chooses the output: -19017 for a format ValidateOutputFormat refuses;
    // a failure of CreateOutputProperties keeps the previous description.
    virtual int SetOutputFormat(unsigned int format)
    {
        if (!ValidateOutputFormat(format)) {
            if (m_outputListFailed)
                return RESULT_OUT_OF_MEMORY; // refused only because the list could not be made
            Log(LogLevel::Error, "CFilter::SetOutputFormat: filter '%s' cannot produce format '%s'\n",
                FourCCText(GetType()).c_str(), FourCCText(format).c_str());
            return RESULT_FORMAT_ERROR;
        }
        OutputProperties* made = nullptr;
        const int result = CreateOutputProperties(format, made);
        if (result < 0) {
            if (made)
                made->Release();
            return result;
        }
        if (!made)
            return RESULT_UNEXPECTED;
        m_outputProperties = RObject<OutputProperties>(made);
        return RESULT_OK;
    }

    // New lists (the caller releases them; null without memory) of the
    // input formats accepted and the output formats produced. Empty here.
    virtual FormatList* GetInputFormats() { return FormatList::Create(); }
    virtual FormatList* GetOutputFormats() { return FormatList::Create(); }

    // AcceptScore when the description's exact format is among the inputs,
    // 0 otherwise or for null.
    virtual int Evaluate(const InputProperties* properties)
    {
        if (!properties)
            return 0;
        RObject<FormatList> inputs(GetInputFormats());
        return inputs && inputs->Contains(properties->GetFormat()) ? AcceptScore : 0;
    }

    // A sample goes to CoreWriteSample (its failure returned, else 0); while
    // draining that is -19811. Null starts the drain once (Drain is called
    // once; a second null is ignored) and is always 0.
    virtual int WriteSample(InputSample* sample)
    {
        if (!sample) {
            if (!m_draining) {
                m_draining = true;
                Drain();
            }
            return RESULT_OK;
        }
        if (m_draining) {
            Log(LogLevel::Warning, "CFilter::WriteSample: filter '%s' is draining; read its output first\n",
                FourCCText(GetType()).c_str());
            return RESULT_FILTER_DRAINING;
        }
        const int result = CoreWriteSample(sample);
        return result < 0 ? result : RESULT_OK;
    }

    // 0 with a sample (a new reference in `sample`); 1 with none: more
    // input is needed, or, while draining, the drain is over and the filter
    // has been flushed, ready for new input.
    virtual int ReadSample(OutputSample*& sample)
    {
        sample = nullptr;
        const int result = CoreReadSample(sample);
        if (result < 0)
            return result;
        if (sample)
            return RESULT_OK;
        if (m_draining)
            Flush();
        return 1;
    }

    // Shares `properties` (null clears them).
    virtual int SetInputProperties(const InputProperties* properties)
    {
        m_inputProperties = RObject<const InputProperties>::FromObject(properties);
        return RESULT_OK;
    }

    // Clears the draining flag; filters with queues empty them too.
    virtual int Flush()
    {
        m_draining = false;
        return RESULT_OK;
    }

    // Borrowed; null while absent.
    const InputProperties* GetInputProperties() const { return m_inputProperties; }
    OutputProperties* GetOutputProperties() const { return m_outputProperties; }
    bool IsDraining() const { return m_draining; }

    void SetGetInputSample(GetInputSampleCallback callback, void* context1, void* context2)
    {
        m_getInput = callback;
        m_getInputContext[0] = context1;
        m_getInputContext[1] = context2;
    }
    void SetReceiveOutputSample(ReceiveOutputSampleCallback callback, void* context1, void* context2)
    {
        m_receiveOutput = callback;
        m_receiveOutputContext[0] = context1;
        m_receiveOutputContext[1] = context2;
    }

    // Pulls input number `index` through the pull callback (`sample` gets a
    // new reference or null). -19006 when no callback is set.
    int GetInput(int32_t index, InputSample*& sample)
    {
        sample = nullptr;
        if (!m_getInput)
            return RESULT_NOT_SUPPORTED;
        return m_getInput(sample, index, m_getInputContext[0], m_getInputContext[1]);
    }
    // Pushes a finished sample through the push callback. -19004 for null,
    // -19006 when no callback is set.
    int ReceiveOutput(OutputSample* sample)
    {
        if (!sample)
            return RESULT_ARGUMENT_NULL;
        if (!m_receiveOutput)
            return RESULT_NOT_SUPPORTED;
        return m_receiveOutput(sample, m_receiveOutputContext[0], m_receiveOutputContext[1]);
    }

protected:
    explicit CFilter(uint32_t type) : CFilterBase(type) {}
    ~CFilter() override = default;

    // The concrete filter's work. Begin and End succeed here; the sample
    // operations are -19005 until a filter provides them.
    virtual int CoreBegin() { return RESULT_OK; }
    virtual int CoreEnd() { return RESULT_OK; }
    virtual int CoreWriteSample(InputSample*) { return RESULT_NOT_IMPLEMENTED; }
    virtual int CoreReadSample(OutputSample*&) { return RESULT_NOT_IMPLEMENTED; }
    // Called once when the end of input is written; produces what is held.
    virtual void Drain() {}
    // True when `format` is among GetOutputFormats().
    virtual bool ValidateOutputFormat(unsigned int format)
    {
        RObject<FormatList> outputs(GetOutputFormats());
        m_outputListFailed = !outputs;
        return outputs && outputs->Contains(format);
    }
    // The output description for `format` (a new object in `properties`):
    // a copy of the input description, or a blank one before there is any,
    // with the format set. Concrete filters adjust the geometry.
    virtual int CreateOutputProperties(unsigned int format, OutputProperties*& properties)
    {
        properties = nullptr;
        OutputProperties* made = nullptr;
        if constexpr (std::is_same_v<InputProperties, OutputProperties>) {
            if (m_inputProperties)
                made = static_cast<OutputProperties*>(m_inputProperties->Clone());
            else
                made = new (fallible) OutputProperties();
        } else {
            made = new (fallible) OutputProperties();
        }
        if (!made) {
            Log(LogLevel::Error, "CFilter::CreateOutputProperties: no memory for a description\n");
            return RESULT_OUT_OF_MEMORY;
        }
        made->SetFormat(format);
        properties = made;
        return RESULT_OK;
    }

    // AcceptScore when `format`, else `canonical`, else `categorical` is
    // among the inputs; 0 otherwise (also without memory for the list).
    int ScoreFormatFamily(unsigned int format, unsigned int canonical, unsigned int categorical)
    {
        RObject<FormatList> inputs(GetInputFormats());
        if (!inputs)
            return 0;
        return inputs->Contains(format) || inputs->Contains(canonical) || inputs->Contains(categorical) ? AcceptScore
                                                                                                        : 0;
    }

    // One write and one read, for the kinds' single-call operations
    // (Compress, Decompress, Analyze ...): the write's failure, else the
    // read's answer (0 with a sample in `output`, 1 without).
    int WriteAndRead(InputSample* input, OutputSample*& output)
    {
        output = nullptr;
        const int written = WriteSample(input);
        return written < 0 ? written : ReadSample(output);
    }

private:
    int ChooseFirstOutputFormat()
    {
        RObject<FormatList> outputs(GetOutputFormats());
        if (!outputs)
            return RESULT_OUT_OF_MEMORY;
        return outputs->GetCount() > 0 ? SetOutputFormat(outputs->Get(0)) : RESULT_OK;
    }

    RObject<const InputProperties> m_inputProperties;
    RObject<OutputProperties> m_outputProperties;
    bool m_draining = false;
    bool m_outputListFailed = false; // the last ValidateOutputFormat had no list for want of memory
    GetInputSampleCallback m_getInput = nullptr;
    void* m_getInputContext[2] = {};
    ReceiveOutputSampleCallback m_receiveOutput = nullptr;
    void* m_receiveOutputContext[2] = {};
};

} // namespace Quorvex::Vek

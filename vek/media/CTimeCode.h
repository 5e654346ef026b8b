#pragma once

// An SMPTE timecode: the hours:minutes:seconds:frames label of a frame count
// since midnight at a given frame rate, with drop-frame counting for the
// 1000/1001 rates, its text form and frame arithmetic. A plain value class.
//
// The total frame count is authoritative; the label is derived from it
// (FramesToTime) and, when text or a label record is read, the total is
// computed from the label (TimeToFrames). Totals are wrapped into one day
// once per derivation, so totals more than a day out of range stay out of
// range. Drop-frame counting skips the first d = 2 x (modulus / 30) frame
// numbers of every minute not divisible by ten (2 at 29.97, 4 at 59.94).
//
// No operation reports failure; text that does not match leaves the fields
// it did not reach as they were. A modulus of 0 (a rate that was never set)
// keeps the label as it is and makes the label arithmetic meaningless.
#include <vek/core/Types.h>
#include <vek/media/Rational.h>

namespace Quorvex::Vek {

class CString;

class VEK_API CTimeCode {
public:
    // A label as four bytes, in the order hours, minutes, seconds, frames.
    // ToTime/FromTime exchange it in binary, ToDecimal/FromDecimal in
    // binary-coded decimal (one byte per field, tens digit in the high nibble,
    // as in the time fields of SMPTE 12M).
    struct TimeCodeTime {
        uint8_t hours = 0;
        uint8_t minutes = 0;
        uint8_t seconds = 0;
        uint8_t frames = 0;
    };

    // Room for the longest text ToString can produce: each field prints as up
    // to three digits when a total lies far out of range.
    static constexpr int TextCapacity = 16;
    // What ToString writes at most into a caller's buffer: a label and its
    // terminator.
    static constexpr int LabelCapacity = 12;

    // 30 frames per second (30/1, modulus 30), non-drop, at frame 0.
    CTimeCode();
    // Frame `totalFrames` at the default rate above.
    explicit CTimeCode(int32_t totalFrames);
    CTimeCode(double rate, bool dropFrame);
    CTimeCode(int64_t timeScale, int64_t frameDuration, int32_t modulus);
    CTimeCode(int64_t timeScale, int64_t frameDuration, int32_t modulus, bool dropFrame);

    // From a rate in frames per second. A whole rate gives rate/1, any other
    // (rate x 1001 + 0.5)/1001, with the modulus the rate rounded up: 29.97
    // gives 30000/1001 and modulus 30. The drop flag is taken as given.
    // Rates that are not finite or do not fit give a zero rate.
    void Initialize(double rate, bool dropFrame);
    void Initialize(int64_t timeScale, int64_t frameDuration, int32_t modulus, bool dropFrame);

    // Sets the total as given; it is wrapped when the label is next derived.
    void FromFrames(int32_t totalFrames);
    CTimeCode& operator=(int totalFrames);

    int32_t GetTotalFrames() const { return m_totalFrames; }
    // Frames in 24 hours at this rate and counting.
    int64_t GetMidnightValue() const;
    double GetFrameRate() const { return m_frameRate.ToDouble(); }
    int64_t GetTimeScale() const { return m_frameRate.numerator; }
    int64_t GetDuration() const { return m_frameRate.denominator; }
    int32_t GetModulus() const { return m_modulus; }
    bool IsDropFrame() const { return m_dropFrame != 0; }

    // The label of the current total (derived on each call).
    uint8_t GetHours() const { return Label().hours; }
    uint8_t GetMinutes() const { return Label().minutes; }
    uint8_t GetSeconds() const { return Label().seconds; }
    uint8_t GetFrames() const { return Label().frames; }

    // The total as a count of the timecode's own time scale.
    int64_t GetTime() const;
    // The total as a count of `timeScale` units, rounded as CTimeScale does.
    int64_t GetTime(int64_t timeScale) const;

    TimeCodeTime ToTime();
    void FromTime(const TimeCodeTime& time);
    TimeCodeTime ToDecimal();
    void FromDecimal(const TimeCodeTime& time);
    static unsigned char BinaryToDecimal(unsigned char value);
    static unsigned char DecimalToBinary(unsigned char value);

    // Reads "HH:MM:SS:FF": two-digit hours, any one character, minutes, any
    // one character, seconds, the frame separator, frames (each number may be
    // preceded by white space and a sign, as scanf reads "%2hhd"). The drop
    // flag becomes set exactly when the frame separator is ';' (':' is
    // assumed when the text ends before it), unless keepDropFlag is true.
    // A null text reads as empty.
    void FromString(const char* text);
    void FromString(const char* text, bool keepDropFlag);
    // As FromString(text->GetChars()); a null string reads as empty.
    void FromString(CString* text);

    // Derives the label and writes "HH:MM:SS:FF" with `separator` before the
    // frames when the timecode is drop-frame and ':' otherwise. A null buffer
    // means the internal one (valid until the next call on this object); a
    // caller's buffer receives at most LabelCapacity bytes.
    char* ToString(char* buffer, char separator);
    // The same text as a new CString owned by the caller (count 1); null
    // only when memory runs out.
    CString* ToString(char separator);

    void AddSeconds(int32_t seconds);

    CTimeCode operator+(const CTimeCode& other) const;
    CTimeCode operator-(const CTimeCode& other) const;
    CTimeCode operator+(int frames) const;
    CTimeCode operator-(int frames) const;
    CTimeCode& operator+=(int frames);
    CTimeCode& operator-=(int frames);
    CTimeCode& operator++();
    CTimeCode operator++(int);
    CTimeCode& operator--();
    CTimeCode operator--(int);

    bool operator==(const CTimeCode& other) const { return m_totalFrames == other.m_totalFrames; }
    bool operator!=(const CTimeCode& other) const { return m_totalFrames != other.m_totalFrames; }
    bool operator<(const CTimeCode& other) const { return m_totalFrames < other.m_totalFrames; }
    bool operator<=(const CTimeCode& other) const { return m_totalFrames <= other.m_totalFrames; }
    bool operator>(const CTimeCode& other) const { return m_totalFrames > other.m_totalFrames; }
    bool operator>=(const CTimeCode& other) const { return m_totalFrames >= other.m_totalFrames; }
    bool operator==(int frames) const { return m_totalFrames == frames; }
    bool operator!=(int frames) const { return m_totalFrames != frames; }
    bool operator<(int frames) const { return m_totalFrames < frames; }
    bool operator<=(int frames) const { return m_totalFrames <= frames; }
    bool operator>(int frames) const { return m_totalFrames > frames; }
    bool operator>=(int frames) const { return m_totalFrames >= frames; }

protected:
    // Label to total, wrapped once into a day.
    void TimeToFrames();
    // Total wrapped once into a day, then total to label.
    void FramesToTime();

private:
    int64_t FramesPerDay() const;
    int32_t DroppedPerMinute() const;
    int64_t WrapIntoDay(int64_t total) const;
    int64_t NominalFromReal(int64_t realCount) const;
    TimeCodeTime LabelOf(int64_t wrappedTotal) const;
    TimeCodeTime Label() const;
    void SetLabel(const TimeCodeTime& time);
    void SetTotal(int64_t total);

    Rational<int64_t> m_frameRate{30, 1};
    int32_t m_modulus = 30;
    uint8_t m_dropFrame = 0;
    int32_t m_totalFrames = 0;
    uint8_t m_hours = 0;
    uint8_t m_minutes = 0;
    uint8_t m_seconds = 0;
    uint8_t m_frames = 0;
    char m_text[TextCapacity] = {};
};

} // namespace Quorvex::Vek

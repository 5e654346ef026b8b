#include <vek/media/CTimeCode.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include <vek/core/CString.h>
#include <vek/core/Log.h>
#include <vek/media/TimeArithmetic.h>

namespace Quorvex::Vek {

using namespace TimeArithmetic;

namespace {

constexpr int64_t SecondsPerDay = 86400;
// Frames per day lost to drop-frame counting for every 30 of modulus:
// 2 frames in each of the 1296 minutes of a day not divisible by ten.
constexpr int64_t DroppedPerDayPer30 = 2592;
// The drop-frame conversion settles in two or three rounds for every real
// rate; the bound only keeps absurd moduli from looping for long.
constexpr int MaxDropRounds = 64;

// Reads a label the way scanf reads "%2hhd%*c%2hhd%*c%2hhd%c%2hhd", written
// out so that every C library gives the same answer and hostile text cannot
// reach a platform's scanf quirks.
class LabelScanner {
public:
    explicit LabelScanner(const char* text) : m_next(text ? text : "") {}

    // "%2hhd": skips white space, then reads at most two characters, an
    // optional sign and digits, into a signed byte. Leaves `value` alone
    // when no digit is found.
    bool ReadNumber(uint8_t& value)
    {
        while (IsSpace(*m_next))
            ++m_next;
        int width = 2;
        bool negative = false;
        if (*m_next == '+' || *m_next == '-') {
            negative = *m_next == '-';
            ++m_next;
            --width;
        }
        int number = 0;
        int digits = 0;
        for (; digits < width && *m_next >= '0' && *m_next <= '9'; ++digits, ++m_next)
            number = number * 10 + (*m_next - '0');
        if (digits == 0)
            return false;
        value = static_cast<uint8_t>(negative ? -number : number);
        return true;
    }

    // "%c": any one character, white space included.
    bool ReadChar(char& c)
    {
        if (*m_next == '\0')
            return false;
        c = *m_next++;
        return true;
    }

    bool SkipChar()
    {
        char ignored;
        return ReadChar(ignored);
    }

private:
    static bool IsSpace(char c)
    {
        return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
    }

    const char* m_next;
};

// Reads the label fields in order and stops at the first that does not
// match, as scanf does. Returns the number of fields read (the separator
// counts as one).
int ScanLabel(const char* text, CTimeCode::TimeCodeTime& label, char& separator)
{
    LabelScanner scan(text);
    if (!scan.ReadNumber(label.hours))
        return 0;
    if (!scan.SkipChar() || !scan.ReadNumber(label.minutes))
        return 1;
    if (!scan.SkipChar() || !scan.ReadNumber(label.seconds))
        return 2;
    if (!scan.ReadChar(separator))
        return 3;
    if (!scan.ReadNumber(label.frames))
        return 4;
    return 5;
}

// Fields the text did not reach keep the current label.
void KeepUnreadFields(CTimeCode::TimeCodeTime& label, const CTimeCode::TimeCodeTime& current, int matched)
{
    if (matched < 1)
        label.hours = current.hours;
    if (matched < 2)
        label.minutes = current.minutes;
    if (matched < 3)
        label.seconds = current.seconds;
    if (matched < 5)
        label.frames = current.frames;
}

char* PrintField(char* out, unsigned value)
{
    if (value >= 100)
        *out++ = static_cast<char>('0' + value / 100);
    *out++ = static_cast<char>('0' + value / 10 % 10);
    *out++ = static_cast<char>('0' + value % 10);
    return out;
}

} // namespace

CTimeCode::CTimeCode() = default;

CTimeCode::CTimeCode(int32_t totalFrames)
{
    FromFrames(totalFrames);
}

CTimeCode::CTimeCode(double rate, bool dropFrame)
{
    Initialize(rate, dropFrame);
}

CTimeCode::CTimeCode(int64_t timeScale, int64_t frameDuration, int32_t modulus)
{
    Initialize(timeScale, frameDuration, modulus, false);
}

CTimeCode::CTimeCode(int64_t timeScale, int64_t frameDuration, int32_t modulus, bool dropFrame)
{
    Initialize(timeScale, frameDuration, modulus, dropFrame);
}

void CTimeCode::Initialize(double rate, bool dropFrame)
{
    if (!std::isfinite(rate) || rate <= 0.0 || rate > 2147483647.0) {
        Initialize(0, 1, 0, dropFrame);
        return;
    }
    int64_t scale = static_cast<int64_t>(rate);
    int64_t duration = 1;
    const int32_t modulus = SaturateToInt32(std::ceil(rate));
    if (scale != modulus) {
        duration = 1001;
        scale = Saturate(rate * 1001.0 + 0.5);
    }
    Initialize(scale, duration, modulus, dropFrame);
}

void CTimeCode::Initialize(int64_t timeScale, int64_t frameDuration, int32_t modulus, bool dropFrame)
{
    m_frameRate = Rational<int64_t>(timeScale, frameDuration);
    m_modulus = modulus;
    m_dropFrame = dropFrame ? 1 : 0;
    m_totalFrames = 0;
    SetLabel(TimeCodeTime{});
}

void CTimeCode::FromFrames(int32_t totalFrames)
{
    m_totalFrames = totalFrames;
}

CTimeCode& CTimeCode::operator=(int totalFrames)
{
    FromFrames(totalFrames);
    return *this;
}

int32_t CTimeCode::DroppedPerMinute() const
{
    return m_dropFrame ? 2 * (m_modulus / 30) : 0;
}

int64_t CTimeCode::FramesPerDay() const
{
    const int64_t modulus = m_modulus;
    const int64_t dropped = m_dropFrame ? (modulus / 30) * DroppedPerDayPer30 : 0;
    return modulus * SecondsPerDay - dropped;
}

int64_t CTimeCode::GetMidnightValue() const
{
    return FramesPerDay();
}

int64_t CTimeCode::WrapIntoDay(int64_t total) const
{
    const int64_t day = FramesPerDay();
    if (day <= 0)
        return total;
    if (total >= day)
        return total - day;
    if (total < 0)
        return total + day;
    return total;
}

// Drop-frame counting leaves out label numbers, so a real frame count is
// turned into the nominal count of the label by adding d for every dropped
// minute. The dropped minutes depend on the nominal count itself, hence the
// fixed-point iteration: add what the last estimate newly dropped until the
// estimate stops growing.
int64_t CTimeCode::NominalFromReal(int64_t realCount) const
{
    const int64_t modulus = m_modulus;
    const int64_t perMinute = DroppedPerMinute();
    int64_t count = realCount;
    int64_t applied = 0;
    for (int round = 0; round < MaxDropRounds; ++round) {
        const int64_t dropped = count / (modulus * 60) - count / (modulus * 600);
        count += perMinute * (dropped - applied);
        const bool grew = dropped > applied;
        applied = dropped;
        if (!grew)
            break;
    }
    return count;
}

CTimeCode::TimeCodeTime CTimeCode::LabelOf(int64_t wrappedTotal) const
{
    const int64_t modulus = m_modulus;
    const int64_t count = m_dropFrame ? NominalFromReal(wrappedTotal) : wrappedTotal;
    const int64_t perHour = modulus * 3600;
    const int64_t perMinute = modulus * 60;
    int64_t rest = count % perHour;
    TimeCodeTime label;
    label.hours = static_cast<uint8_t>(count / perHour);
    label.minutes = static_cast<uint8_t>(rest / perMinute);
    rest %= perMinute;
    label.seconds = static_cast<uint8_t>(rest / modulus);
    label.frames = static_cast<uint8_t>(rest % modulus);
    return label;
}

CTimeCode::TimeCodeTime CTimeCode::Label() const
{
    if (m_modulus == 0)
        return TimeCodeTime{m_hours, m_minutes, m_seconds, m_frames};
    return LabelOf(static_cast<int32_t>(WrapIntoDay(m_totalFrames)));
}

void CTimeCode::SetLabel(const TimeCodeTime& time)
{
    m_hours = time.hours;
    m_minutes = time.minutes;
    m_seconds = time.seconds;
    m_frames = time.frames;
}

// Stores a total computed in 64 bits, wrapped once into a day, and derives
// its label. Totals that still do not fit 32 bits (only from absurd rates or
// far out-of-range arithmetic) keep their low 32 bits.
void CTimeCode::SetTotal(int64_t total)
{
    m_totalFrames = static_cast<int32_t>(WrapIntoDay(total));
    if (m_modulus != 0)
        SetLabel(LabelOf(m_totalFrames));
}

void CTimeCode::FramesToTime()
{
    SetTotal(m_totalFrames);
}

void CTimeCode::TimeToFrames()
{
    const int64_t modulus = m_modulus;
    const int64_t hours = m_hours;
    const int64_t minutes = m_minutes;
    int64_t total = ((hours * 60 + minutes) * 60 + m_seconds) * modulus + m_frames;
    if (m_dropFrame && modulus != 0) {
        const int64_t perMinute = DroppedPerMinute();
        // mm:00;00 at a minute not divisible by ten does not exist; it is
        // read as the first label of that minute that does.
        if (total % (modulus * 60) == 0 && total % (modulus * 600) != 0)
            total += perMinute;
        total -= perMinute * (54 * hours + minutes - minutes / 10);
    }
    m_totalFrames = static_cast<int32_t>(WrapIntoDay(total));
}

int64_t CTimeCode::GetTime() const
{
    return SaturatingMultiply(m_totalFrames, m_frameRate.denominator);
}

int64_t CTimeCode::GetTime(int64_t timeScale) const
{
    if (m_totalFrames == 0 || m_frameRate.denominator == 0)
        return 0;
    return RoundQuotient(Product(m_totalFrames, m_frameRate.denominator, timeScale),
                         static_cast<double>(m_frameRate.numerator));
}

CTimeCode::TimeCodeTime CTimeCode::ToTime()
{
    FramesToTime();
    return TimeCodeTime{m_hours, m_minutes, m_seconds, m_frames};
}

void CTimeCode::FromTime(const TimeCodeTime& time)
{
    SetLabel(time);
    TimeToFrames();
}

CTimeCode::TimeCodeTime CTimeCode::ToDecimal()
{
    const TimeCodeTime binary = ToTime();
    return TimeCodeTime{BinaryToDecimal(binary.hours), BinaryToDecimal(binary.minutes),
                        BinaryToDecimal(binary.seconds), BinaryToDecimal(binary.frames)};
}

void CTimeCode::FromDecimal(const TimeCodeTime& time)
{
    FromTime(TimeCodeTime{DecimalToBinary(time.hours), DecimalToBinary(time.minutes),
                          DecimalToBinary(time.seconds), DecimalToBinary(time.frames)});
}

// Two decimal digits; hundreds are dropped since a byte holds only two.
unsigned char CTimeCode::BinaryToDecimal(unsigned char value)
{
    return static_cast<unsigned char>(((value / 10 % 10) << 4) | (value % 10));
}

// Nibbles above 9 (not valid decimal digits) count at their face value.
unsigned char CTimeCode::DecimalToBinary(unsigned char value)
{
    return static_cast<unsigned char>((value >> 4) * 10 + (value & 0x0F));
}

void CTimeCode::FromString(const char* text)
{
    FromString(text, false);
}

void CTimeCode::FromString(const char* text, bool keepDropFlag)
{
    TimeCodeTime label;
    char separator = ':';
    const int matched = ScanLabel(text, label, separator);
    if (matched < 5) {
        Log(LogLevel::Detail, "CTimeCode::FromString: %d of 5 label fields read from \"%.16s\"\n", matched,
            text ? text : "");
        KeepUnreadFields(label, Label(), matched);
    }
    if (!keepDropFlag)
        m_dropFrame = separator == ';' ? 1 : 0;
    FromTime(label);
}

char* CTimeCode::ToString(char* buffer, char separator)
{
    FramesToTime();
    char text[TextCapacity];
    char* out = PrintField(text, m_hours);
    *out++ = ':';
    out = PrintField(out, m_minutes);
    *out++ = ':';
    out = PrintField(out, m_seconds);
    *out++ = m_dropFrame ? separator : ':';
    out = PrintField(out, m_frames);
    *out = '\0';
    if (!buffer) {
        std::memcpy(m_text, text, sizeof text);
        return m_text;
    }
    const size_t length = std::min<size_t>(static_cast<size_t>(out - text), LabelCapacity - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    return buffer;
}

void CTimeCode::FromString(CString* text)
{
    FromString(text ? text->GetChars() : nullptr, false);
}

CString* CTimeCode::ToString(char separator)
{
    // The internal buffer holds the whole text even for far-out totals.
    CString* string = CString::Create(ToString(nullptr, separator));
    if (!string)
        Log(LogLevel::Error, "CTimeCode::ToString: out of memory\n");
    return string;
}

void CTimeCode::AddSeconds(int32_t seconds)
{
    const int64_t n = seconds;
    int64_t total = m_totalFrames + int64_t(m_modulus) * n;
    if (m_dropFrame) {
        // The correction of an interval of n seconds counted from midnight,
        // whatever the current position: callers rely on this exact amount.
        const int64_t hours = n / 3600;
        const int64_t minutes = (n / 60) % 60;
        total -= DroppedPerMinute() * (54 * hours + minutes - minutes / 10);
    }
    SetTotal(total);
}

CTimeCode CTimeCode::operator+(const CTimeCode& other) const
{
    return *this + other.m_totalFrames;
}

CTimeCode CTimeCode::operator-(const CTimeCode& other) const
{
    return *this - other.m_totalFrames;
}

CTimeCode CTimeCode::operator+(int frames) const
{
    CTimeCode result(*this);
    result.SetTotal(int64_t(m_totalFrames) + frames);
    return result;
}

CTimeCode CTimeCode::operator-(int frames) const
{
    CTimeCode result(*this);
    result.SetTotal(int64_t(m_totalFrames) - frames);
    return result;
}

CTimeCode& CTimeCode::operator+=(int frames)
{
    SetTotal(int64_t(m_totalFrames) + frames);
    return *this;
}

CTimeCode& CTimeCode::operator-=(int frames)
{
    SetTotal(int64_t(m_totalFrames) - frames);
    return *this;
}

CTimeCode& CTimeCode::operator++()
{
    return *this += 1;
}

CTimeCode CTimeCode::operator++(int)
{
    CTimeCode before(*this);
    *this += 1;
    return before;
}

CTimeCode& CTimeCode::operator--()
{
    return *this -= 1;
}

CTimeCode CTimeCode::operator--(int)
{
    CTimeCode before(*this);
    *this -= 1;
    return before;
}

} // namespace Quorvex::Vek

// The picture timing and recovery point messages of AVC SEI units built
// here bit by bit, among other messages, cut short or lying about sizes.
#include <gtest/gtest.h>

#include <vek/core/Result.h>
#include <vek/elementary/AvcSeiMessages.h>
#include <vek/elementary/AvcSequenceParameterSet.h>

#include "BitWriter.h"
#include "support/LogCapture.h"

#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

struct Message {
    int type;
    std::vector<uint8_t> payload;
    int declaredSize; // -1: the payload's own size
};

std::vector<uint8_t> PictureTiming(int picStruct, bool withDelays)
{
    VekTest::BitWriter w;
    if (withDelays) {
        w.Bits(0x123456, 24); // cpb_removal_delay
        w.Bits(0x000001, 24); // dpb_output_delay
    }
    w.Bits(uint64_t(picStruct), 4);
    w.Bits(0, 3); // no clock timestamps
    w.Trailing();
    return w.bytes;
}

std::vector<uint8_t> RecoveryPoint(int count, bool brokenLink)
{
    VekTest::BitWriter w;
    w.UE(uint64_t(count));
    w.Bit(1);
    w.Bit(brokenLink);
    w.Bits(0, 2);
    w.Trailing();
    return w.bytes;
}

std::vector<uint8_t> Unit(const std::vector<Message>& messages)
{
    std::vector<uint8_t> unit = {0x06};
    for (const Message& m : messages) {
        for (int type = m.type; ; type -= 255) {
            unit.push_back(uint8_t(type >= 255 ? 255 : type));
            if (type < 255)
                break;
        }
        int size = m.declaredSize >= 0 ? m.declaredSize : int(m.payload.size());
        for (; size >= 255; size -= 255)
            unit.push_back(255);
        unit.push_back(uint8_t(size));
        unit.insert(unit.end(), m.payload.begin(), m.payload.end());
    }
    unit.push_back(0x80);
    return unit;
}

TEST(AvcSeiMessages, ReadsPictureTimingAndRecoveryPointAmongOthers)
{
    AvcSequenceParameterSet plain;
    plain.vui.picStructPresent = true;
    AvcSequenceParameterSet withHrd = plain;
    withHrd.vui.nalHrdPresent = true;
    const std::vector<uint8_t> userData(300, 0x5A);
    struct Case {
        const char* name;
        std::vector<Message> messages;
        const AvcSequenceParameterSet* sps;
        int result;
        bool hasPicStruct;
        int picStruct;
        bool hasRecovery;
        uint32_t recoveryCount;
        const char* logged;
    } cases[] = {
        {"top then bottom field", {{1, PictureTiming(3, false), -1}}, &plain, 0, true, 3, false, 0, ""},
        {"delays before pic_struct", {{1, PictureTiming(5, true), -1}}, &withHrd, 0, true, 5, false, 0, ""},
        {"without the sequence set", {{1, PictureTiming(4, false), -1}}, nullptr, 0, false, 0, false, 0, ""},
        {"user data of 300 bytes first", {{5, userData, -1}, {6, RecoveryPoint(0, false), -1}}, &plain, 0, false, 0,
         true, 0, ""},
        {"type 256 passed over", {{256, {1, 2, 3}, -1}, {1, PictureTiming(7, false), -1}}, &plain, 0, true, 7, false, 0,
         ""},
        {"both messages", {{6, RecoveryPoint(12, true), -1}, {1, PictureTiming(0, false), -1}}, &plain, 0, true, 0,
         true, 12, ""},
        {"pic_struct 9", {{1, PictureTiming(9, false), -1}}, &plain, RESULT_FORMAT_ERROR, false, 0, false, 0,
         "pic_struct 9"},
        {"payload size past the unit", {{6, RecoveryPoint(0, false), -1}, {5, {1, 2}, 40}}, &plain,
         RESULT_FORMAT_ERROR, false, 0, true, 0, "ends inside it"},
        {"timing longer than its size", {{1, PictureTiming(3, true), 2}}, &withHrd, RESULT_FORMAT_ERROR, false, 0,
         false, 0, "payloadSize 2"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VekTest::LogCapture log(2);
        const std::vector<uint8_t> unit = Unit(c.messages);
        AvcSeiMessages parsed;
        EXPECT_EQ(AvcSeiMessages::Parse(unit.data(), unit.size(), c.sps, parsed), c.result);
        EXPECT_EQ(parsed.hasPicStruct, c.hasPicStruct);
        EXPECT_EQ(parsed.picStruct, c.picStruct);
        EXPECT_EQ(parsed.hasRecoveryPoint, c.hasRecovery);
        EXPECT_EQ(parsed.recoveryFrameCount, c.recoveryCount);
        EXPECT_NE(log.Text().find(c.logged), std::string::npos) << log.Text();
    }
}

} // namespace

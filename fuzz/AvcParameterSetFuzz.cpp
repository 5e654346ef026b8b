// The AVC parsers over arbitrary bytes: the input is read as an Annex B
// stream whose parameter sets feed the slice headers and picture order
// counts that follow, and as a decoder configuration record, which must
// write back to the bytes it was read from.
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/AvcPictureOrderCounter.h>
#include <vek/elementary/AvcPictureParameterSet.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/AvcSliceHeader.h>
#include <vek/elementary/StartCodeScanner.h>

#include <cstdlib>
#include <cstring>
#include <vector>

using namespace Quorvex::Vek;

namespace {

struct Tables {
    AvcSequenceParameterSet sps[32];
    AvcPictureParameterSet pps[256];
    const AvcSequenceParameterSet* spsTable[32] = {};
    const AvcPictureParameterSet* ppsTable[256] = {};
};

void ParseUnit(const uint8_t* unit, size_t size, Tables& t, AvcPictureOrderCounter& counter)
{
    AvcNalHeader header;
    if (!AvcNalHeader::Parse(unit, size, header))
        return;
    if (header.type == AvcNalHeader::SequenceParameterSet) {
        AvcSequenceParameterSet sps;
        if (AvcSequenceParameterSet::Parse(unit, size, sps) == 0) {
            if (sps.displayWidth <= 0 || sps.displayHeight <= 0 || sps.displayWidth > sps.codedWidth)
                abort();
            t.sps[sps.id] = sps;
            t.spsTable[sps.id] = &t.sps[sps.id];
        }
    } else if (header.type == AvcNalHeader::PictureParameterSet) {
        AvcPictureParameterSet pps;
        if (AvcPictureParameterSet::Parse(unit, size, t.spsTable, pps) == 0) {
            t.pps[pps.id] = pps;
            t.ppsTable[pps.id] = &t.pps[pps.id];
        }
    } else if (header.IsSlice()) {
        AvcSliceHeader slice;
        if (AvcSliceHeader::Parse(unit, size, t.ppsTable, t.spsTable, slice) == 0) {
            AvcPictureOrderCounter::Counts counts;
            const auto& sps = *t.spsTable[t.ppsTable[slice.pictureSetId]->sequenceSetId];
            counter.Next(sps, slice, (unit[size - 1] & 1) != 0, counts);
        }
    }
}

void RoundTripRecord(const uint8_t* data, size_t size)
{
    static AvcDecoderConfiguration config;
    if (AvcDecoderConfiguration::Parse(data, size, config) != 0)
        return;
    static uint8_t written[1 << 16];
    size_t writtenSize = 0;
    if (config.Write(written, sizeof(written), writtenSize) != 0 || writtenSize > size)
        abort();
    // Reserved bits are written as ones, so only the parsed fields must agree.
    static AvcDecoderConfiguration again;
    if (AvcDecoderConfiguration::Parse(written, writtenSize, again) != 0 || again.sequenceSetCount != config.sequenceSetCount ||
        again.pictureSetCount != config.pictureSetCount || again.lengthBytes != config.lengthBytes)
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Tables tables;
    tables = Tables();
    AvcPictureOrderCounter counter;
    StartCodeScanner scanner;
    scanner.Feed(data, size);
    StartCodeScanner::Hit hit;
    int64_t unitStart = -1;
    while (scanner.Next(hit)) {
        if (unitStart >= 0)
            ParseUnit(data + unitStart, size_t(hit.prefixOffset - unitStart), tables, counter);
        unitStart = hit.payloadOffset;
    }
    if (unitStart >= 0)
        ParseUnit(data + unitStart, size - size_t(unitStart), tables, counter);
    else
        ParseUnit(data, size, tables, counter);
    RoundTripRecord(data, size);
    return 0;
}

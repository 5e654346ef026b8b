// The HEVC parsers over arbitrary bytes: the input is read as an Annex B
// stream whose parameter sets feed the slice headers and picture order
// counts that follow, and as a decoder configuration record, which must
// survive writing and reading back.
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/HevcPictureOrderCounter.h>
#include <vek/elementary/HevcPictureParameterSet.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/HevcSliceHeader.h>
#include <vek/elementary/HevcVideoParameterSet.h>
#include <vek/elementary/StartCodeScanner.h>

#include <cstdlib>

using namespace Quorvex::Vek;

namespace {

struct Tables {
    HevcSequenceParameterSet sps[16];
    HevcPictureParameterSet pps[64];
    const HevcSequenceParameterSet* spsTable[16] = {};
    const HevcPictureParameterSet* ppsTable[64] = {};
};

void ParseUnit(const uint8_t* unit, size_t size, Tables& t, HevcPictureOrderCounter& counter)
{
    HevcNalHeader header;
    if (!HevcNalHeader::Parse(unit, size, header))
        return;
    if (header.type == HevcNalHeader::VideoParameterSet) {
        HevcVideoParameterSet vps;
        HevcVideoParameterSet::Parse(unit, size, vps);
    } else if (header.type == HevcNalHeader::SequenceParameterSet) {
        static HevcSequenceParameterSet sps;
        if (HevcSequenceParameterSet::Parse(unit, size, sps) == 0) {
            if (sps.displayWidth <= 0 || sps.displayHeight <= 0 || uint32_t(sps.displayWidth) > sps.width)
                abort();
            t.sps[sps.id] = sps;
            t.spsTable[sps.id] = &t.sps[sps.id];
        }
    } else if (header.type == HevcNalHeader::PictureParameterSet) {
        HevcPictureParameterSet pps;
        if (HevcPictureParameterSet::Parse(unit, size, pps) == 0) {
            t.pps[pps.id] = pps;
            t.ppsTable[pps.id] = &t.pps[pps.id];
        }
    } else if (header.type == HevcNalHeader::EndOfSequence) {
        counter.EndOfSequence();
    } else if (HevcNalHeader::IsSlice(header.type)) {
        HevcSliceHeader slice;
        if (HevcSliceHeader::Parse(unit, size, t.ppsTable, t.spsTable, slice) == 0 && !slice.dependent)
            counter.Next(*t.spsTable[t.ppsTable[slice.pictureSetId]->sequenceSetId], slice);
    }
}

void RoundTripRecord(const uint8_t* data, size_t size)
{
    static HevcDecoderConfiguration config;
    if (HevcDecoderConfiguration::Parse(data, size, config) != 0)
        return;
    static uint8_t written[1 << 16];
    size_t writtenSize = 0;
    if (config.Write(written, sizeof(written), writtenSize) != 0)
        abort();
    static HevcDecoderConfiguration again;
    if (HevcDecoderConfiguration::Parse(written, writtenSize, again) != 0 || again.unitCount != config.unitCount)
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Tables tables;
    tables = Tables();
    HevcPictureOrderCounter counter;
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

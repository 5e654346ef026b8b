// The key families are a published contract: hosts store settings under
// these exact strings. The expected texts below are typed by hand, apart
// from the tables they check, so a typo on either side shows up here.
#include <vek/media/AudioProperty.h>
#include <vek/media/CodeBookProperty.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/ContainerReaderProperty.h>
#include <vek/media/ContainerWriterProperty.h>
#include <vek/media/IndexerProperty.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/VideoProperty.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <set>
#include <string>

using namespace Quorvex::Vek;

namespace {

struct Expected {
    const char* name;     // the constant's name as it appears in the family list
    const char* constant; // the constant itself
    const char* key;      // the text it must hold
};

#define KEY(family, name, text) Expected{#name, family::name, text}

void CheckSample(const char* family, PropertyKeyList list, std::initializer_list<Expected> sample)
{
    for (const Expected& e : sample) {
        SCOPED_TRACE(std::string(family) + "::" + e.name);
        ASSERT_NE(e.constant, nullptr);
        EXPECT_STREQ(e.constant, e.key);
        // The walkable list must name the constant and point at the same key.
        EXPECT_EQ(list.FindKey(e.name), e.constant);
        EXPECT_STREQ(list.FindName(e.key), e.name);
    }
}

} // namespace

TEST(PropertyKeys, FamilySizes)
{
    struct Case {
        const char* family;
        PropertyKeyList list;
        int32_t count;
    };
    const Case cases[] = {
        {"MediaProperty", MediaProperty::GetKeys(), 3},
        {"IndexerProperty", IndexerProperty::GetKeys(), 2},
        {"AudioProperty", AudioProperty::GetKeys(), 10},
        {"VideoProperty", VideoProperty::GetKeys(), 18},
        {"ContainerReaderProperty", ContainerReaderProperty::GetKeys(), 17},
        {"ContainerProperty", ContainerProperty::GetKeys(), 68},
        {"ContainerWriterProperty", ContainerWriterProperty::GetKeys(), 57},
        {"CodeBookProperty", CodeBookProperty::GetKeys(), 182},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.family);
        EXPECT_EQ(c.list.count, c.count);
        EXPECT_EQ(c.list.end() - c.list.begin(), c.count);
    }
}

// Keys are looked up by string equality, so two constants of one family
// holding the same text would make one of them unreachable. No family has
// such a pair; names must be unique too so FindKey is unambiguous. Keys are
// plain printable ASCII without blanks.
TEST(PropertyKeys, KeysAndNamesAreUniqueAndPrintable)
{
    const PropertyKeyList lists[] = {
        MediaProperty::GetKeys(),           IndexerProperty::GetKeys(),
        AudioProperty::GetKeys(),           VideoProperty::GetKeys(),
        ContainerReaderProperty::GetKeys(), ContainerProperty::GetKeys(),
        ContainerWriterProperty::GetKeys(), CodeBookProperty::GetKeys(),
    };
    std::set<std::string> everyKey;
    int total = 0;
    for (const PropertyKeyList& list : lists) {
        std::set<std::string> keys, names;
        for (const PropertyKeyEntry& entry : list) {
            ASSERT_NE(entry.key, nullptr);
            ASSERT_NE(entry.name, nullptr);
            EXPECT_TRUE(keys.insert(entry.key).second) << "duplicate key " << entry.key;
            EXPECT_TRUE(names.insert(entry.name).second) << "duplicate name " << entry.name;
            EXPECT_GT(std::strlen(entry.key), 0u);
            for (const char* p = entry.key; *p; ++p)
                EXPECT_TRUE(std::isgraph(static_cast<unsigned char>(*p))) << entry.key;
            everyKey.insert(entry.key);
            ++total;
        }
    }
    // No key is shared between families either.
    EXPECT_EQ(static_cast<int>(everyKey.size()), total);
    EXPECT_EQ(total, 3 + 2 + 10 + 18 + 17 + 68 + 57 + 182);
}

// 94 codec-book keys (Dolby E, Kakadu, Nielsen and a few more) are bare
// words without a dotted component prefix; every other one has a dot.
TEST(PropertyKeys, CodeBookBareKeys)
{
    int bare = 0;
    for (const PropertyKeyEntry& entry : CodeBookProperty::GetKeys())
        if (!std::strchr(entry.key, '.'))
            ++bare;
    EXPECT_EQ(bare, 94);
}

TEST(PropertyKeys, LookupMisses)
{
    PropertyKeyList list = MediaProperty::GetKeys();
    EXPECT_EQ(list.FindKey("NoSuchConstant"), nullptr);
    EXPECT_EQ(list.FindKey(nullptr), nullptr);
    EXPECT_EQ(list.FindName("no.such.key"), nullptr);
    EXPECT_EQ(list.FindName(nullptr), nullptr);
    // A key of another family is not found in this one.
    EXPECT_EQ(list.FindName("indexer.enable_video_data"), nullptr);
}

// A few keys per family, chosen where the text differs from what the
// constant's name suggests: typos and odd spellings kept on purpose, bare
// words, unusual prefixes. These are what a tidy-up would break.
TEST(PropertyKeys, SmallFamilies)
{
    CheckSample("MediaProperty", MediaProperty::GetKeys(), {
        KEY(MediaProperty, Duration, "duration"),
        KEY(MediaProperty, Mpeg2TransportStreamPid, "mpeg2.ts.pid"),
    });
    CheckSample("IndexerProperty", IndexerProperty::GetKeys(), {
        KEY(IndexerProperty, EnableVideoMetadata, "indexer.enable_video_metadata"),
    });
    CheckSample("AudioProperty", AudioProperty::GetKeys(), {
        KEY(AudioProperty, MpegLayer, "mpga.layer"),
        KEY(AudioProperty, Mpeg4ObjectType, "mp4a.object_type"),
        KEY(AudioProperty, WavMaxShortTermLoudness, "wav.bext.max_shortterm_loudness"),
    });
}

TEST(PropertyKeys, VideoProperty)
{
    CheckSample("VideoProperty", VideoProperty::GetKeys(), {
        KEY(VideoProperty, AvidCompression, "ares.compression"),
        KEY(VideoProperty, MpegTimeCode, "mpgv.timecode"),
        KEY(VideoProperty, Mpeg4CompressorName, "mp4v.compressorname"),
        KEY(VideoProperty, ProResEncoder, "icpf.encoder"),
        KEY(VideoProperty, ForceKeyFrame, "vsmp.forceKeyFrame"),
    });
}

TEST(PropertyKeys, ContainerReaderProperty)
{
    CheckSample("ContainerReaderProperty", ContainerReaderProperty::GetKeys(), {
        KEY(ContainerReaderProperty, ZifoIngnoreMarkinMarkout, "zifo.ignore.markin.markout"),
        KEY(ContainerReaderProperty, PadVideoTruncateAudio, "pad_video_or_truncate_audio"),
        KEY(ContainerReaderProperty, WebVttUTF8Format, "webvtt.utf8_format"),
        KEY(ContainerReaderProperty, DirectShowAlwaysUseVirtualFlip, "direct_show.always_use_virtual_flip"),
    });
}

TEST(PropertyKeys, ContainerProperty)
{
    CheckSample("ContainerProperty", ContainerProperty::GetKeys(), {
        KEY(ContainerProperty, MovLocation, "com.apple.quicktime.location.ISO7609"),
        KEY(ContainerProperty, MovUserRating, "com.apple.quicktime.rating.user"),
        KEY(ContainerProperty, MovTimeCodeMode, "mov.tmcd"),
        KEY(ContainerProperty, MovCaptionType, "mov.clcp"),
        KEY(ContainerProperty, MxfAs12AdIdPrefix, "mxf.as12.adid.prefix"),
        KEY(ContainerProperty, Mpeg2TransportRandomAccessIndicator, "mpeg2.transport_stream.random_access_indicator"),
    });
}

TEST(PropertyKeys, ContainerWriterProperty)
{
    CheckSample("ContainerWriterProperty", ContainerWriterProperty::GetKeys(), {
        KEY(ContainerWriterProperty, Mpeg2TransportPmtRepetitionRate, "mpeg2.transport_stream.mpt_repetition_rate"),
        KEY(ContainerWriterProperty, Mpeg2TransportPcrOnEveryPesHeader, "mpeg2.transport_stream.pcr_on_every_per_header"),
        KEY(ContainerWriterProperty, Mpeg2TransportAlignVideoPesPackets, "mpeg2.transport_stream.align_video_per_packets"),
        KEY(ContainerWriterProperty, Mpeg2TransportAlignAudioPesPackets, "mpeg2.transport_stream.align_audio_pes_packets"),
        KEY(ContainerWriterProperty, Mpeg2TransportNotLowDelay, "mpeg2.transport_stream.video_not_low_delay"),
        KEY(ContainerWriterProperty, Mpeg2TransportStreamDvbAc3Descriptor, "mpeg2.dvb_ac3_descriptor"),
        KEY(ContainerWriterProperty, ManzanitaGenerateConfigFile, "manzanita.transport_stream.generate_config_file"),
        KEY(ContainerWriterProperty, MovDataCompression, "mov.cmov_type"),
        KEY(ContainerWriterProperty, AafFrameChaseUpdateInterval, "aaf.frame.chase.update.interval"),
    });
}

TEST(PropertyKeys, CodeBookProperty)
{
    CheckSample("CodeBookProperty", CodeBookProperty::GetKeys(), {
        KEY(CodeBookProperty, X265VBVBufferSize, "x265_vbv_buffer_size.rf"),
        KEY(CodeBookProperty, NielsnWatermarkSleepTime, "nielsen_watermark_sleep_time"),
        KEY(CodeBookProperty, NielsenWatermarkSinatureProcessMask, "nielsen_watermark_signature_process_mask"),
        KEY(CodeBookProperty, PreferredFormats, "prefered_formats"),
        KEY(CodeBookProperty, PreferredAudioSampleRate, "apl.preferred_audio_sample_rate"),
        KEY(CodeBookProperty, DolbyEBitDepth, "E_BitDepth"),
        KEY(CodeBookProperty, DolbyE_BWLimitingLowPassFilter, "BW_Limiting_LowPassFilter"),
        KEY(CodeBookProperty, Dolby90DegreePhaseShift, "90DegreePhaseShift"),
        KEY(CodeBookProperty, DolbyERFLineMode, "DRC_RFMode"),
        KEY(CodeBookProperty, DolbyEEncoderDelay, "DolbyE_EncoderDelay"),
        KEY(CodeBookProperty, Jpeg2000CODBlkDimensions, "kakadu_cod_block_dimensions"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataApplicationName, "nielsen_watermark_metadata_appname"),
        KEY(CodeBookProperty, VideoDecompressorHalfSize, "video_decompressor.half"),
        KEY(CodeBookProperty, ReuseCount, "opencl.reuseqtyvideosample"),
        KEY(CodeBookProperty, X262GopLength, "x262_gop_length_N"),
        KEY(CodeBookProperty, X265MaxBFrames, "x265_compressor.num_b_frames"),
        KEY(CodeBookProperty, X264AdaptiveQuantizationStrength, "x264_aq_strength"),
        KEY(CodeBookProperty, SubtitleFrameOffset, "subtitle.subtitle_frame_offset"),
        KEY(CodeBookProperty, JpegCompressorRestartInterval, "jpeg.restart_interval"),
        KEY(CodeBookProperty, CaptionAnalyzerEnableWebVtt, "caption.enable_web_vtt"),
    });
}

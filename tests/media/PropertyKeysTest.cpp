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

TEST(PropertyKeys, SmallFamilies)
{
    CheckSample("MediaProperty", MediaProperty::GetKeys(), {
        KEY(MediaProperty, Duration, "duration"),
        KEY(MediaProperty, Mpeg2FormatIdentifier, "mpeg2.format_identifier"),
        KEY(MediaProperty, Mpeg2TransportStreamPid, "mpeg2.ts.pid"),
    });
    CheckSample("IndexerProperty", IndexerProperty::GetKeys(), {
        KEY(IndexerProperty, EnableVideoData, "indexer.enable_video_data"),
        KEY(IndexerProperty, EnableVideoMetadata, "indexer.enable_video_metadata"),
    });
    CheckSample("AudioProperty", AudioProperty::GetKeys(), {
        KEY(AudioProperty, LpcmTransport, "lpcm.transport"),
        KEY(AudioProperty, MpegLayer, "mpga.layer"),
        KEY(AudioProperty, Mpeg2AudioType, "mpeg2.audio_type"),
        KEY(AudioProperty, Mpeg4ObjectType, "mp4a.object_type"),
        KEY(AudioProperty, Mpeg4Transport, "mp4a.transport"),
        KEY(AudioProperty, WavLoudnessValue, "wav.bext.loudness_value"),
        KEY(AudioProperty, WavLoudnessRange, "wav.bext.loudness_range"),
        KEY(AudioProperty, WavMaxTruePeakLevel, "wav.bext.max_true_peak_level"),
        KEY(AudioProperty, WavMaxMomentaryLoudness, "wav.bext.max_momentary_loudness"),
        KEY(AudioProperty, WavMaxShortTermLoudness, "wav.bext.max_shortterm_loudness"),
    });
}

TEST(PropertyKeys, VideoProperty)
{
    CheckSample("VideoProperty", VideoProperty::GetKeys(), {
        KEY(VideoProperty, ActiveFormatDescriptor, "active_format_descriptor"),
        KEY(VideoProperty, AlphaChannel, "alpha_channel"),
        KEY(VideoProperty, AvidCompression, "ares.compression"),
        KEY(VideoProperty, H264Profile, "h264.profile"),
        KEY(VideoProperty, H264Level, "h264.level"),
        KEY(VideoProperty, H264Structure, "h264.structure"),
        KEY(VideoProperty, MdpmDateTime, "mdpm.date_time"),
        KEY(VideoProperty, MdpmMakeModel, "mdpm.make_model"),
        KEY(VideoProperty, MpegClosedGop, "mpgv.closed_gop"),
        KEY(VideoProperty, MpegIdenticalGop, "mpgv.identical_gop"),
        KEY(VideoProperty, MpegMaxGopLength, "mpgv.max_gop_length"),
        KEY(VideoProperty, MpegTimeCode, "mpgv.timecode"),
        KEY(VideoProperty, MpegVbvBufferSize, "mpgv.vbv_buffer_size"),
        KEY(VideoProperty, Mpeg2ProfileAndLevel, "mp2v.profile_and_level"),
        KEY(VideoProperty, Mpeg4ProfileAndLevel, "mp4v.profile_and_level"),
        KEY(VideoProperty, Mpeg4CompressorName, "mp4v.compressorname"),
        KEY(VideoProperty, ProResEncoder, "icpf.encoder"),
        KEY(VideoProperty, ForceKeyFrame, "vsmp.forceKeyFrame"),
    });
}

TEST(PropertyKeys, ContainerReaderProperty)
{
    CheckSample("ContainerReaderProperty", ContainerReaderProperty::GetKeys(), {
        KEY(ContainerReaderProperty, StlFrameDuration, "stl.frame_duration"),
        KEY(ContainerReaderProperty, StlTimeScale, "stl.time_scale"),
        KEY(ContainerReaderProperty, StlDropFrame, "stl.drop_frame"),
        KEY(ContainerReaderProperty, DirectShowAlwaysUseVirtualFlip, "direct_show.always_use_virtual_flip"),
        KEY(ContainerReaderProperty, DirectShowForceDecoder, "direct_show.force_decoder"),
        KEY(ContainerReaderProperty, MkvRoundFrameRate, "mkv.round_frame_rate"),
        KEY(ContainerReaderProperty, MovVideoSampleDescriptionIndex, "mov.video_sample_description_index"),
        KEY(ContainerReaderProperty, ZifoIngnoreMarkinMarkout, "zifo.ignore.markin.markout"),
        KEY(ContainerReaderProperty, ReadTimeout, "read_timeout"),
        KEY(ContainerReaderProperty, VideoFormat, "video_format"),
        KEY(ContainerReaderProperty, VideoReference, "video_reference"),
        KEY(ContainerReaderProperty, PadVideoTruncateAudio, "pad_video_or_truncate_audio"),
        KEY(ContainerReaderProperty, WebVttUTF8Format, "webvtt.utf8_format"),
        KEY(ContainerReaderProperty, DfxpFragmentDuration, "dfxp.fragment_duration"),
        KEY(ContainerReaderProperty, DfxpFrameDuration, "dfxp.frame_duration"),
        KEY(ContainerReaderProperty, DfxpTimeScale, "dfxp.time_scale"),
        KEY(ContainerReaderProperty, DfxpDropFrame, "dfxp.drop_frame"),
    });
}

TEST(PropertyKeys, ContainerProperty)
{
    CheckSample("ContainerProperty", ContainerProperty::GetKeys(), {
        KEY(ContainerProperty, TimeCode, "timecode"),
        KEY(ContainerProperty, MovAlbum, "com.apple.quicktime.album"),
        KEY(ContainerProperty, MovArtist, "com.apple.quicktime.artist"),
        KEY(ContainerProperty, MovArtwork, "com.apple.quicktime.artwork"),
        KEY(ContainerProperty, MovCreationDate, "com.apple.quicktime.creationdate"),
        KEY(ContainerProperty, MovDirector, "com.apple.quicktime.director"),
        KEY(ContainerProperty, MovTitle, "com.apple.quicktime.title"),
        KEY(ContainerProperty, MovKeywords, "com.apple.quicktime.keywords"),
        KEY(ContainerProperty, MovLocation, "com.apple.quicktime.location.ISO7609"),
        KEY(ContainerProperty, MovYear, "com.apple.quicktime.year"),
        KEY(ContainerProperty, MovUserCollection, "com.apple.quicktime.collection.user"),
        KEY(ContainerProperty, MovUserRating, "com.apple.quicktime.rating.user"),
        KEY(ContainerProperty, MovTimeCodeMode, "mov.tmcd"),
        KEY(ContainerProperty, MovCaptionType, "mov.clcp"),
        KEY(ContainerProperty, Mpeg2TransportStreamId, "mpeg2.ts.id"),
        KEY(ContainerProperty, Mpeg2TransportStreamProgramNumber, "mpeg2.ts.program_number"),
        KEY(ContainerProperty, Mpeg2TransportStreamPmtPid, "mpeg2.ts.pmt_pid"),
        KEY(ContainerProperty, Mpeg2TransportStreamPcrPid, "mpeg2.ts.pcr_pid"),
        KEY(ContainerProperty, MxfCompanyName, "mxf.company_name"),
        KEY(ContainerProperty, MxfDataContainer, "mxf.data_container"),
        KEY(ContainerProperty, MxfAs03Identifier, "mxf.as03.identifier"),
        KEY(ContainerProperty, MxfAs03IdentifierKind, "mxf.as03.identifier_kind"),
        KEY(ContainerProperty, MxfAs03IntendedAfd, "mxf.as03.intended_afd"),
        KEY(ContainerProperty, MxfAs03NolaCode, "mxf.as03.nola_code"),
        KEY(ContainerProperty, MxfAs03NielsenStreamIdentifier, "mxf.as03.nielsen_stream_identifier"),
        KEY(ContainerProperty, MxfAs11UkDppProgramme, "mxf.as11.ukdpp.programme"),
        KEY(ContainerProperty, MxfAs12ShimName, "mxf.as12.shim_name"),
        KEY(ContainerProperty, MxfAs12AdIdPrefix, "mxf.as12.adid.prefix"),
        KEY(ContainerProperty, MxfAs12AdIdAgencyOfficeLocation, "mxf.as12.adid.agency_office_location"),
        KEY(ContainerProperty, MxfAs12AdIdSdFlag, "mxf.as12.adid.sd_flag"),
        KEY(ContainerProperty, MxfAs12AdIdParent, "mxf.as12.adid.parent"),
        KEY(ContainerProperty, ZifoVersion, "zifo.version"),
        KEY(ContainerProperty, WavDescription, "wav.bext.description"),
        KEY(ContainerProperty, WavOriginatorReference, "wav.bext.originator_reference"),
        KEY(ContainerProperty, WavOriginationTime, "wav.bext.origination_time"),
        KEY(ContainerProperty, WavUmid, "wav.bext.umid"),
        KEY(ContainerProperty, WavCodingHistory, "wav.bext.coding_history"),
        KEY(ContainerProperty, QueueSize, "queue_size"),
        KEY(ContainerProperty, CacheSize, "cache_size"),
        KEY(ContainerProperty, Mpeg2TransportStreamRate, "mpeg2.transport_stream.rate"),
        KEY(ContainerProperty, Mpeg2TransportStreamHeadroom, "mpeg2.transport_stream.headroom"),
        KEY(ContainerProperty, Mpeg2TransportRandomAccessIndicator, "mpeg2.transport_stream.random_access_indicator"),
        KEY(ContainerProperty, Mpeg2TransportPatVersion, "mpeg2.transport_stream.pat_version"),
    });
}

TEST(PropertyKeys, ContainerWriterProperty)
{
    CheckSample("ContainerWriterProperty", ContainerWriterProperty::GetKeys(), {
        // Spellings that differ from their constants' names.
        KEY(ContainerWriterProperty, Mpeg2TransportPmtRepetitionRate, "mpeg2.transport_stream.mpt_repetition_rate"),
        KEY(ContainerWriterProperty, Mpeg2TransportPcrOnEveryPesHeader, "mpeg2.transport_stream.pcr_on_every_per_header"),
        KEY(ContainerWriterProperty, Mpeg2TransportAlignVideoPesPackets, "mpeg2.transport_stream.align_video_per_packets"),
        KEY(ContainerWriterProperty, Mpeg2TransportAlignAudioPesPackets, "mpeg2.transport_stream.align_audio_pes_packets"),
        KEY(ContainerWriterProperty, Mpeg2TransportNotLowDelay, "mpeg2.transport_stream.video_not_low_delay"),
        KEY(ContainerWriterProperty, Mpeg2TransportStreamDvbAc3Descriptor, "mpeg2.dvb_ac3_descriptor"),
        KEY(ContainerWriterProperty, ManzanitaGenerateConfigFile, "manzanita.transport_stream.generate_config_file"),
        KEY(ContainerWriterProperty, MovDataCompression, "mov.cmov_type"),
        // Ordinary ones.
        KEY(ContainerWriterProperty, Mpeg2TransportStreamInsertDvbAu, "mpeg2.transport_stream.insert_dvb_au"),
        KEY(ContainerWriterProperty, Mpeg2TransportStreamPcrPer, "mpeg2.transport_stream.pcr_per"),
        KEY(ContainerWriterProperty, Mpeg2TransportStreamPmtPatOnce, "mpeg2.transport_stream.pmt_pat_once"),
        KEY(ContainerWriterProperty, Mpeg2TransportStreamStartDts, "mpeg2.transport_stream.start_dts"),
        KEY(ContainerWriterProperty, Mpeg2TransportPacketTimestampPrecedesPacket, "mpeg2.transport_stream.packet_timestamp_precedes_packet"),
        KEY(ContainerWriterProperty, Mpeg2TransportPacketTimestampLittleEndian, "mpeg2.transport_stream.packet_timestamp_little_endian"),
        KEY(ContainerWriterProperty, Mpeg2TransportNoEmptyAdaptationFields, "mpeg2.transport_stream.no_empty_adaptation_fields"),
        KEY(ContainerWriterProperty, Mpeg2TransportPatRepetitionRate, "mpeg2.transport_stream.pat_repetition_rate"),
        KEY(ContainerWriterProperty, Mpeg2TransportAudioAccessUnitsPerPesPacket, "mpeg2.transport_stream.audio_access_units_per_pes_packet"),
        KEY(ContainerWriterProperty, Mpeg2TransportUseAtscBufferModel, "mpeg2.transport_stream.use_atsc_buffer_model"),
        KEY(ContainerWriterProperty, Mpeg2TransportVariableBitrate, "mpeg2.transport_stream.variable_bitrate"),
        KEY(ContainerWriterProperty, Mpeg2TransportVideoDescriptor1, "mpeg2.transport_stream.video_descriptor_1"),
        KEY(ContainerWriterProperty, Mpeg2TransportVideoDescriptor5, "mpeg2.transport_stream.video_descriptor_5"),
        KEY(ContainerWriterProperty, Mpeg2TransportAudioDescriptor3, "mpeg2.transport_stream.audio_descriptor_3"),
        KEY(ContainerWriterProperty, ManzanitaConfigFile, "manzanita.config_file"),
        KEY(ContainerWriterProperty, ManzanitaScte35Pid, "manzanita.scte35_pid"),
        KEY(ContainerWriterProperty, ManzanitaErrorBehavior, "manzanita.error_behavior"),
        KEY(ContainerWriterProperty, ManzanitaEnable2Pass, "manzanita.enable_2_pass"),
        KEY(ContainerWriterProperty, Mpeg4FastStart, "mpeg4.fast_start"),
        KEY(ContainerWriterProperty, Mpeg4MoovRate, "mpeg4.moov_rate"),
        KEY(ContainerWriterProperty, Mpeg4MdatAlignment, "mpeg4.mdat_alignment"),
        KEY(ContainerWriterProperty, Mpeg4TrimAudio, "mpeg4.trim_audio"),
        KEY(ContainerWriterProperty, MovClapMode, "mov.clap_mode"),
        KEY(ContainerWriterProperty, MovTaptMode, "mov.tapt_mode"),
        KEY(ContainerWriterProperty, MkvMaxClusterDuration, "mkv.max_cluster_duration"),
        KEY(ContainerWriterProperty, MkvWebMMode, "mkv.webm_mode"),
        KEY(ContainerWriterProperty, MkvReservedCueSpace, "mkv.reserved_cue_space"),
        KEY(ContainerWriterProperty, MxfOp1aPartitionStrategy, "mxf.op1a.partition.strategy"),
        KEY(ContainerWriterProperty, MxfOp1aPartitionDuration, "mxf.op1a.partition.duration"),
        KEY(ContainerWriterProperty, AafFrameChaseUpdateInterval, "aaf.frame.chase.update.interval"),
    });
}

TEST(PropertyKeys, CodeBookProperty)
{
    CheckSample("CodeBookProperty", CodeBookProperty::GetKeys(), {
        // Names or keys that are spelled unusually and must stay so.
        KEY(CodeBookProperty, X265VBVBufferSize, "x265_vbv_buffer_size.rf"),
        KEY(CodeBookProperty, NielsnWatermarkSleepTime, "nielsen_watermark_sleep_time"),
        KEY(CodeBookProperty, NielsenWatermarkSinatureProcessMask, "nielsen_watermark_signature_process_mask"),
        KEY(CodeBookProperty, PreferredFormats, "prefered_formats"),
        KEY(CodeBookProperty, DolbyEBitDepth, "E_BitDepth"),
        KEY(CodeBookProperty, DolbyE_BWLimitingLowPassFilter, "BW_Limiting_LowPassFilter"),
        KEY(CodeBookProperty, DolbyELFE_LowPassFilter, "EnableLFE_LowPassFilter"),
        KEY(CodeBookProperty, Dolby90DegreePhaseShift, "90DegreePhaseShift"),
        KEY(CodeBookProperty, DolbyE3dbAttenuation, "3dbAttenuation"),
        KEY(CodeBookProperty, DolbyERFLineMode, "DRC_RFMode"),
        KEY(CodeBookProperty, DolbyEDialNorm, "DialogNorm"),
        KEY(CodeBookProperty, DolbyEStereoDownMix, "StereoDownmixMode"),
        KEY(CodeBookProperty, Jpeg2000CODBlkDimensions, "kakadu_cod_block_dimensions"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataApplicationName, "nielsen_watermark_metadata_appname"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataApplicationVersion, "nielsen_watermark_metadata_appver"),
        KEY(CodeBookProperty, NielsenRtVodWatermarkType, "nielsen_rtvod_watermark_type"),
        KEY(CodeBookProperty, VideoDecompressorHalfSize, "video_decompressor.half"),
        KEY(CodeBookProperty, ReuseCount, "opencl.reuseqtyvideosample"),
        KEY(CodeBookProperty, X262GopLength, "x262_gop_length_N"),
        KEY(CodeBookProperty, X262InterIPFrames, "x262_inter_ip_frames_M"),
        KEY(CodeBookProperty, X265MaxBFrames, "x265_compressor.num_b_frames"),
        KEY(CodeBookProperty, X265ColorPrimaries, "x265_compressor.color_prim"),
        KEY(CodeBookProperty, X265IPRatio, "x265_compressor.ip_factor"),
        // Ordinary ones from each component family.
        KEY(CodeBookProperty, X265Profile, "x265_compressor.profile"),
        KEY(CodeBookProperty, X265Tuning, "x265_compressor.tune"),
        KEY(CodeBookProperty, X265Quantizer, "x265_quantizer.qp"),
        KEY(CodeBookProperty, X265RateFactor, "x265_rate_factor.rf"),
        KEY(CodeBookProperty, X265VBVInitialFill, "x265_vbv_init_fill.rf"),
        KEY(CodeBookProperty, X265BufferDelay, "x265_buffer_delay.cbr"),
        KEY(CodeBookProperty, X265KeyFrameInt, "x265_compressor.max_key_frame_interval"),
        KEY(CodeBookProperty, X265AdaptiveQuantizationStrength, "x265_compressor.aq_strength"),
        KEY(CodeBookProperty, DolbyEProgramConfig, "ProgramConfiguration"),
        KEY(CodeBookProperty, DolbyEEncoderDelay, "DolbyE_EncoderDelay"),
        KEY(CodeBookProperty, DolbyETimecodeWord3, "TimecodeWord3"),
        KEY(CodeBookProperty, DolbyEAudioProdRoomtype, "AudioProductionRoomtype"),
        KEY(CodeBookProperty, DolbyECopyRightProtected, "CopyRightProtected"),
        KEY(CodeBookProperty, DolbyE_LoRoSurroundMix, "LoRoSurroundMix"),
        KEY(CodeBookProperty, DolbyEDRCLineMode, "DRC_LineMode"),
        KEY(CodeBookProperty, Jpeg2000CODReversible, "kakadu_cod_reversible"),
        KEY(CodeBookProperty, Jpeg2000SIZTileSize, "kakadu_siz_tile_size"),
        KEY(CodeBookProperty, CoreAudioChannelConfiguration, "coreaudio_compressor.channel_configuration"),
        KEY(CodeBookProperty, MainconceptAACProfile, "mainconcept_aac_compressor.profile"),
        KEY(CodeBookProperty, NielsenWatermarkIpAddr, "nielsen_watermark_ipaddr"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataDsrcId, "nielsen_watermark_metadata_dsrcid"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataCommercialDistributor, "nielsen_watermark_metadata_commercial_distributor"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataLanguageTypeSecondary, "nielsen_watermark_metadata_languagetypesecondary"),
        KEY(CodeBookProperty, NielsenWatermarkMetadataClientName, "nielsen_watermark_metadata_clientname"),
        KEY(CodeBookProperty, AplRequestedSamples, "apl.requested_samples"),
        KEY(CodeBookProperty, DeinterlacerMode, "deinterlacer.mode"),
        KEY(CodeBookProperty, MixOutputGainArray, "mix.output_gain_array"),
        KEY(CodeBookProperty, PreferredAudioSampleRate, "apl.preferred_audio_sample_rate"),
        KEY(CodeBookProperty, AplTimeCompressionSpeech, "apl.time_compression.speech"),
        KEY(CodeBookProperty, VplEvaluationLogo, "vpl.evaluation_logo"),
        KEY(CodeBookProperty, SubtitleA53, "subtitle.a53"),
        KEY(CodeBookProperty, SubtitleBitmapHeight, "subtitle.bitmap.height"),
        KEY(CodeBookProperty, SubtitleCaptionXDS, "subtitle.caption.xds"),
        KEY(CodeBookProperty, SubtitleFrameOffset, "subtitle.subtitle_frame_offset"),
        KEY(CodeBookProperty, SubtitleEnable608to708, "subtitle.enable_608_to_708"),
        KEY(CodeBookProperty, VideoDecompressorQuarterSize, "video_decompressor.quarter_size"),
        KEY(CodeBookProperty, MergeRouteArray, "merge.route_array"),
        KEY(CodeBookProperty, FilterThreads, "filter.threads"),
        KEY(CodeBookProperty, Jpeg2000CompressorJp2cFraming, "jpeg2000_compressor.jp2c_framing"),
        KEY(CodeBookProperty, MplSectionIndex, "mpl.section_index"),
        KEY(CodeBookProperty, JpegCompressorRestartInterval, "jpeg.restart_interval"),
        KEY(CodeBookProperty, CaptionAnalyzerEnableWebVtt, "caption.enable_web_vtt"),
        KEY(CodeBookProperty, CaptionAnalyzerTtml, "caption.ttml"),
        KEY(CodeBookProperty, VideoFormatConverterBottomUp, "video_format_converter.bottom_up"),
        KEY(CodeBookProperty, TimeCompressionRatio, "time_compression_ratio"),
        KEY(CodeBookProperty, X262Chroma, "x262_chroma"),
        KEY(CodeBookProperty, X264OpenGop, "x264_open_gop"),
        KEY(CodeBookProperty, X264AdaptiveQuantizationStrength, "x264_aq_strength"),
        KEY(CodeBookProperty, X264RateControlMethod, "x264_compressor.rate_control_method"),
        KEY(CodeBookProperty, X264VBVMaxRate, "x264_vbv_max_rate.rf"),
        KEY(CodeBookProperty, X264HRDCompliance, "x264_hrd_compliance.rf"),
    });
}

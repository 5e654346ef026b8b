#include <vek/media/CodeBookProperty.h>

namespace Quorvex::Vek {

const char* const CodeBookProperty::X265Profile = "x265_compressor.profile";
const char* const CodeBookProperty::X265Preset = "x265_compressor.preset";
const char* const CodeBookProperty::X265Level = "x265_compressor.level";
const char* const CodeBookProperty::X265Tuning = "x265_compressor.tune";
const char* const CodeBookProperty::X265CommandLine = "x265_compressor.command_line";
const char* const CodeBookProperty::X265RateControlMethod = "x265_compressor.rate_control_method";
const char* const CodeBookProperty::X265Quantizer = "x265_quantizer.qp";
const char* const CodeBookProperty::X265RateFactor = "x265_rate_factor.rf";
const char* const CodeBookProperty::X265VBVBufferSize = "x265_vbv_buffer_size.rf";
const char* const CodeBookProperty::X265VBVInitialFill = "x265_vbv_init_fill.rf";
const char* const CodeBookProperty::X265VBVMaxRate = "x265_vbv_max_rate.rf";
const char* const CodeBookProperty::X265HRDCompliance = "x265_hrd_compliance.rf";
const char* const CodeBookProperty::X265BufferDelay = "x265_buffer_delay.cbr";
const char* const CodeBookProperty::DolbyEProgramConfig = "ProgramConfiguration";
const char* const CodeBookProperty::DolbyEBitDepth = "E_BitDepth";
const char* const CodeBookProperty::DolbyEKeyPresent = "KeyPresent";
const char* const CodeBookProperty::DolbyEFrameRate = "VideoFrameRate";
const char* const CodeBookProperty::DolbyEEncoderDelay = "DolbyE_EncoderDelay";
const char* const CodeBookProperty::DolbyEFrameCount = "FrameCount";
const char* const CodeBookProperty::DolbyETimecodeWord0 = "TimecodeWord0";
const char* const CodeBookProperty::DolbyETimecodeWord1 = "TimecodeWord1";
const char* const CodeBookProperty::DolbyETimecodeWord2 = "TimecodeWord2";
const char* const CodeBookProperty::DolbyETimecodeWord3 = "TimecodeWord3";
const char* const CodeBookProperty::DolbyEProgDescription = "ProgramDescription";
const char* const CodeBookProperty::DolbyEBitstreamMode = "BitstreamMode";
const char* const CodeBookProperty::DolbyEDialNorm = "DialogNorm";
const char* const CodeBookProperty::DolbyESurroundMode = "SurroundMode";
const char* const CodeBookProperty::DolbyEAudioProdEnabled = "AudioProductionEnabled";
const char* const CodeBookProperty::DolbyEAudioProdRoomtype = "AudioProductionRoomtype";
const char* const CodeBookProperty::DolbyEAudioProdMixLevel = "AudioProductionMixLevel";
const char* const CodeBookProperty::DolbyECopyRightProtected = "CopyRightProtected";
const char* const CodeBookProperty::DolbyEOriginalBitstream = "OriginalBitstream";
const char* const CodeBookProperty::DolbyE_DCHighPassFilter = "DCHighPassFilter";
const char* const CodeBookProperty::DolbyE_BWLimitingLowPassFilter = "BW_Limiting_LowPassFilter";
const char* const CodeBookProperty::DolbyEADConverterType = "ADConverterType";
const char* const CodeBookProperty::DolbyESurroundEXMode = "SurroundEXMode";
const char* const CodeBookProperty::DolbyELFE_LowPassFilter = "EnableLFE_LowPassFilter";
const char* const CodeBookProperty::Dolby90DegreePhaseShift = "90DegreePhaseShift";
const char* const CodeBookProperty::DolbyE3dbAttenuation = "3dbAttenuation";
const char* const CodeBookProperty::DolbyEStereoDownMix = "StereoDownmixMode";
const char* const CodeBookProperty::DolbyE_LtRtCenterMix = "LtRtCenterMix";
const char* const CodeBookProperty::DolbyE_LtRtSurroundMix = "LtRtSurroundMix";
const char* const CodeBookProperty::DolbyE_LoRoCenterMix = "LoRoCenterMix";
const char* const CodeBookProperty::DolbyE_LoRoSurroundMix = "LoRoSurroundMix";
const char* const CodeBookProperty::DolbyEDRCLineMode = "DRC_LineMode";
const char* const CodeBookProperty::DolbyERFLineMode = "DRC_RFMode";
const char* const CodeBookProperty::Jpeg2000CODReversible = "kakadu_cod_reversible";
const char* const CodeBookProperty::Jpeg2000CODKernels = "kakadu_cod_kernels";
const char* const CodeBookProperty::Jpeg2000CODUseSOP = "kakadu_cod_use_sop";
const char* const CodeBookProperty::Jpeg2000CODUseEPH = "kakadu_cod_use_eph";
const char* const CodeBookProperty::Jpeg2000CODDwtLevel = "kakadu_cod_dwt_level";
const char* const CodeBookProperty::Jpeg2000CODBlkDimensions = "kakadu_cod_block_dimensions";
const char* const CodeBookProperty::Jpeg2000CODProgressionOrder = "kakadu_cod_progression_order";
const char* const CodeBookProperty::Jpeg2000CODPrecinctDimensions = "kakadu_cod_precinct_dimensions";
const char* const CodeBookProperty::Jpeg2000CODQualityLayer = "kakadu_cod_quality_layer";
const char* const CodeBookProperty::Jpeg2000SIZProfile = "kakadu_siz_profile";
const char* const CodeBookProperty::Jpeg2000SIZBitDepth = "kakadu_siz_bit_depth";
const char* const CodeBookProperty::Jpeg2000SIZTileSize = "kakadu_siz_tile_size";
const char* const CodeBookProperty::CoreAudioAACProfile = "coreaudio_compressor.aac_profile";
const char* const CodeBookProperty::CoreAudioChannelConfiguration = "coreaudio_compressor.channel_configuration";
const char* const CodeBookProperty::MainconceptAACProfile = "mainconcept_aac_compressor.profile";
const char* const CodeBookProperty::NielsenWatermarkWorkflowType = "nielsen_watermark_workflow_type";
const char* const CodeBookProperty::NielsenWatermarkSid = "nielsen_watermark_sid";
const char* const CodeBookProperty::NielsenWatermarkIpAddr = "nielsen_watermark_ipaddr";
const char* const CodeBookProperty::NielsenWatermarkProcessType = "nielsen_watermark_process_type";
const char* const CodeBookProperty::NielsenWatermarkSourceType = "nielsen_watermark_source_type";
const char* const CodeBookProperty::NielsenWatermarkEncodeChannels = "nielsen_watermark_encode_channels";
const char* const CodeBookProperty::NielsnWatermarkSleepTime = "nielsen_watermark_sleep_time";
const char* const CodeBookProperty::NielsenWatermarkDuration = "nielsen_watermark_duration";
const char* const CodeBookProperty::NielsenWatermarkSinatureProcessMask = "nielsen_watermark_signature_process_mask";
const char* const CodeBookProperty::NielsenWatermarkDecodeChannelSelected = "nielsen_watermark_decode_channel_selected";
const char* const CodeBookProperty::NielsenWatermarkSamples = "nielsen_watermark_samples";
const char* const CodeBookProperty::NielsenWatermarkChannels = "nielsen_watermark_channels";
const char* const CodeBookProperty::NielsenWatermarkPackMode = "nielsen_watermark_pack_mode";
const char* const CodeBookProperty::NielsenWatermarkSourceName = "nielsen_watermark_source_name";
const char* const CodeBookProperty::NielsenWatermarkDirectory = "nielsen_watermark_directory";
const char* const CodeBookProperty::NielsenWatermarkMetadataDsrcId = "nielsen_watermark_metadata_dsrcid";
const char* const CodeBookProperty::NielsenWatermarkMetadataDsrcName = "nielsen_watermark_metadata_dsrcname";
const char* const CodeBookProperty::NielsenWatermarkMetadataAssetId = "nielsen_watermark_metadata_assetid";
const char* const CodeBookProperty::NielsenWatermarkMetadataAssetName = "nielsen_watermark_metadata_assetname";
const char* const CodeBookProperty::NielsenWatermarkMetadataEpisodeId = "nielsen_watermark_metadata_episodeid";
const char* const CodeBookProperty::NielsenWatermarkMetadataHDContent = "nielsen_watermark_metadata_hdcontent";
const char* const CodeBookProperty::NielsenWatermarkMetadataApplicationName = "nielsen_watermark_metadata_appname";
const char* const CodeBookProperty::NielsenWatermarkMetadataApplicationVersion = "nielsen_watermark_metadata_appver";
const char* const CodeBookProperty::NielsenWatermarkMetadataAdvertiserName = "nielsen_watermark_metadata_advertisername";
const char* const CodeBookProperty::NielsenWatermarkMetadataAdvertiserId = "nielsen_watermark_metadata_advertiserid";
const char* const CodeBookProperty::NielsenWatermarkMetadataAgencyName = "nielsen_watermark_metadata_agencyname";
const char* const CodeBookProperty::NielsenWatermarkMetadataAgencyId = "nielsen_watermark_metadata_agencyid";
const char* const CodeBookProperty::NielsenWatermarkMetadataBrandName = "nielsen_watermark_metadata_brandname";
const char* const CodeBookProperty::NielsenWatermarkMetadataBrandId = "nielsen_watermark_metadata_brandid";
const char* const CodeBookProperty::NielsenWatermarkMetadataClientMediaName = "nielsen_watermark_metadata_clientmedianame";
const char* const CodeBookProperty::NielsenWatermarkMetadataClientId = "nielsen_watermark_metadata_clientid";
const char* const CodeBookProperty::NielsenWatermarkMetadataCommercialDistributor = "nielsen_watermark_metadata_commercial_distributor";
const char* const CodeBookProperty::NielsenWatermarkMetadataCommercialType = "nielsen_watermark_metadata_commercial_type";
const char* const CodeBookProperty::NielsenWatermarkMetadataDuration = "nielsen_watermark_metadata_duration";
const char* const CodeBookProperty::NielsenWatermarkMetadataIntendedUse = "nielsen_watermark_metadata_intendeduse";
const char* const CodeBookProperty::NielsenWatermarkMetadataLanguageTypePrimary = "nielsen_watermark_metadata_languagetypeprimary";
const char* const CodeBookProperty::NielsenWatermarkMetadataLanguageTypeSecondary = "nielsen_watermark_metadata_languagetypesecondary";
const char* const CodeBookProperty::NielsenRtVodWatermarkType = "nielsen_rtvod_watermark_type";
const char* const CodeBookProperty::NielsenWatermarkMetadataClientName = "nielsen_watermark_metadata_clientname";
const char* const CodeBookProperty::AplRequestedSamples = "apl.requested_samples";
const char* const CodeBookProperty::DeinterlacerMode = "deinterlacer.mode";
const char* const CodeBookProperty::MixGainArray = "mix.gain_array";
const char* const CodeBookProperty::MixMatrix = "mix.matrix";
const char* const CodeBookProperty::MixOutputGainArray = "mix.output_gain_array";
const char* const CodeBookProperty::PreferredFormats = "prefered_formats";
const char* const CodeBookProperty::PreferredAudioDuration = "apl.preferred_audio_duration";
const char* const CodeBookProperty::PreferredAudioSampleRate = "apl.preferred_audio_sample_rate";
const char* const CodeBookProperty::AplTimeCompressionSpeech = "apl.time_compression.speech";
const char* const CodeBookProperty::VplEvaluationLogo = "vpl.evaluation_logo";
const char* const CodeBookProperty::SubtitleA53 = "subtitle.a53";
const char* const CodeBookProperty::SubtitleBitmapWidth = "subtitle.bitmap.width";
const char* const CodeBookProperty::SubtitleBitmapHeight = "subtitle.bitmap.height";
const char* const CodeBookProperty::SubtitleCaptionSearch = "subtitle.caption.search";
const char* const CodeBookProperty::SubtitleCaptionChannel = "subtitle.caption.channel";
const char* const CodeBookProperty::SubtitleCaptionXDS = "subtitle.caption.xds";
const char* const CodeBookProperty::SubtitleReorderQueueSize = "subtitle.reorder_queue_size";
const char* const CodeBookProperty::SubtitleScte20 = "subtitle.scte20";
const char* const CodeBookProperty::SubtitleScte21 = "subtitle.scte21";
const char* const CodeBookProperty::SubtitleSeiUserData = "subtitle.sei_user_data";
const char* const CodeBookProperty::SubtitleFrameOffset = "subtitle.subtitle_frame_offset";
const char* const CodeBookProperty::SubtitleStartingTimeOffset = "subtitle.subtitle_starting_time_offset";
const char* const CodeBookProperty::SubtitleEnable608to708 = "subtitle.enable_608_to_708";
const char* const CodeBookProperty::VideoDecompressorFlushEveryFrame = "video_decompressor.flush_every_frame";
const char* const CodeBookProperty::VideoDecompressorDeinterlace = "video_decompressor.deinterlace";
const char* const CodeBookProperty::VideoDecompressorDisableMetadata = "video_decompressor.disable_metadata";
const char* const CodeBookProperty::VideoDecompressorQuarterSize = "video_decompressor.quarter_size";
const char* const CodeBookProperty::VideoDecompressorHalfSize = "video_decompressor.half";
const char* const CodeBookProperty::MergeMixArray = "merge.mix_array";
const char* const CodeBookProperty::MergeRouteArray = "merge.route_array";
const char* const CodeBookProperty::FilterLowPriority = "filter.low_priority";
const char* const CodeBookProperty::FilterThreads = "filter.threads";
const char* const CodeBookProperty::Jpeg2000CompressorPackAdv212 = "jpeg2000_compressor.pack_adv212";
const char* const CodeBookProperty::Jpeg2000CompressorJp2cFraming = "jpeg2000_compressor.jp2c_framing";
const char* const CodeBookProperty::Jpeg2000CompressorQuickTimeMarker = "jpeg2000_compressor.quicktime_marker";
const char* const CodeBookProperty::MplDisableDeformatters = "mpl.disable_deformatters";
const char* const CodeBookProperty::MplSectionIndex = "mpl.section_index";
const char* const CodeBookProperty::MplUseScreen = "mpl.use_screen";
const char* const CodeBookProperty::JpegCompressorQuality = "jpeg.quality";
const char* const CodeBookProperty::JpegCompressorRestartInterval = "jpeg.restart_interval";
const char* const CodeBookProperty::CaptionAnalyzerEnableTtml = "caption.enable_ttml";
const char* const CodeBookProperty::CaptionAnalyzerEnableWebVtt = "caption.enable_web_vtt";
const char* const CodeBookProperty::CaptionAnalyzerTtml = "caption.ttml";
const char* const CodeBookProperty::CaptionAnalyzerWebVtt = "caption.web_vtt";
const char* const CodeBookProperty::VideoFormatConverterBottomUp = "video_format_converter.bottom_up";
const char* const CodeBookProperty::ReuseCount = "opencl.reuseqtyvideosample";
const char* const CodeBookProperty::TimeCompressionRatio = "time_compression_ratio";
const char* const CodeBookProperty::X262GopLength = "x262_gop_length_N";
const char* const CodeBookProperty::X262InterIPFrames = "x262_inter_ip_frames_M";
const char* const CodeBookProperty::X262IntraDCPrecision = "x262_intra_dc_precision";
const char* const CodeBookProperty::X262Chroma = "x262_chroma";
const char* const CodeBookProperty::X264OpenGop = "x264_open_gop";
const char* const CodeBookProperty::X264Profile = "x264_compressor.profile";
const char* const CodeBookProperty::X264Tuning = "x264_compressor.tune";
const char* const CodeBookProperty::X264Preset = "x264_compressor.preset";
const char* const CodeBookProperty::X264Level = "x264_compressor.level";
const char* const CodeBookProperty::X264CommandLine = "x264_compressor.command_line";
const char* const CodeBookProperty::X264AdaptiveQuantizationStrength = "x264_aq_strength";
const char* const CodeBookProperty::X264Lookahead = "x264_lookahead";
const char* const CodeBookProperty::X264IPRatio = "x264_ip_ratio";
const char* const CodeBookProperty::X264RateControlMethod = "x264_compressor.rate_control_method";
const char* const CodeBookProperty::X264Quantizer = "x264_quantizer.qp";
const char* const CodeBookProperty::X264RateFactor = "x264_rate_factor.rf";
const char* const CodeBookProperty::X264VBVBufferSize = "x264_vbv_buffer_size.rf";
const char* const CodeBookProperty::X264VBVInitialFill = "x264_vbv_init_fill.rf";
const char* const CodeBookProperty::X264VBVMaxRate = "x264_vbv_max_rate.rf";
const char* const CodeBookProperty::X264HRDCompliance = "x264_hrd_compliance.rf";
const char* const CodeBookProperty::X264BufferDelay = "x264_buffer_delay.cbr";
const char* const CodeBookProperty::X265KeyFrameInt = "x265_compressor.max_key_frame_interval";
const char* const CodeBookProperty::X265OpenGop = "x265_compressor.open_gop";
const char* const CodeBookProperty::X265SceneCutThreshold = "x265_compressor.scene_cut_threshold";
const char* const CodeBookProperty::X265MaxBFrames = "x265_compressor.num_b_frames";
const char* const CodeBookProperty::X265AdaptiveBFrameScheduling = "x265_compressor.adaptive_b_frames";
const char* const CodeBookProperty::X265BPyramid = "x265_compressor.b_frame_pyramid";
const char* const CodeBookProperty::X265MaxRefFrames = "x265_compressor.max_reference_frames";
const char* const CodeBookProperty::X265VideoFormat = "x265_compressor.video_format";
const char* const CodeBookProperty::X265ColorPrimaries = "x265_compressor.color_prim";
const char* const CodeBookProperty::X265TransferCharacteristics = "x265_compressor.transfer";
const char* const CodeBookProperty::X265ColorMatrix = "x265_compressor.color_matrix";
const char* const CodeBookProperty::X265Lookahead = "x265_compressor.lookahead";
const char* const CodeBookProperty::X265IPRatio = "x265_compressor.ip_factor";
const char* const CodeBookProperty::X265AdaptiveQuantizationStrength = "x265_compressor.aq_strength";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList CodeBookProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"X265Profile", CodeBookProperty::X265Profile},
        {"X265Preset", CodeBookProperty::X265Preset},
        {"X265Level", CodeBookProperty::X265Level},
        {"X265Tuning", CodeBookProperty::X265Tuning},
        {"X265CommandLine", CodeBookProperty::X265CommandLine},
        {"X265RateControlMethod", CodeBookProperty::X265RateControlMethod},
        {"X265Quantizer", CodeBookProperty::X265Quantizer},
        {"X265RateFactor", CodeBookProperty::X265RateFactor},
        {"X265VBVBufferSize", CodeBookProperty::X265VBVBufferSize},
        {"X265VBVInitialFill", CodeBookProperty::X265VBVInitialFill},
        {"X265VBVMaxRate", CodeBookProperty::X265VBVMaxRate},
        {"X265HRDCompliance", CodeBookProperty::X265HRDCompliance},
        {"X265BufferDelay", CodeBookProperty::X265BufferDelay},
        {"DolbyEProgramConfig", CodeBookProperty::DolbyEProgramConfig},
        {"DolbyEBitDepth", CodeBookProperty::DolbyEBitDepth},
        {"DolbyEKeyPresent", CodeBookProperty::DolbyEKeyPresent},
        {"DolbyEFrameRate", CodeBookProperty::DolbyEFrameRate},
        {"DolbyEEncoderDelay", CodeBookProperty::DolbyEEncoderDelay},
        {"DolbyEFrameCount", CodeBookProperty::DolbyEFrameCount},
        {"DolbyETimecodeWord0", CodeBookProperty::DolbyETimecodeWord0},
        {"DolbyETimecodeWord1", CodeBookProperty::DolbyETimecodeWord1},
        {"DolbyETimecodeWord2", CodeBookProperty::DolbyETimecodeWord2},
        {"DolbyETimecodeWord3", CodeBookProperty::DolbyETimecodeWord3},
        {"DolbyEProgDescription", CodeBookProperty::DolbyEProgDescription},
        {"DolbyEBitstreamMode", CodeBookProperty::DolbyEBitstreamMode},
        {"DolbyEDialNorm", CodeBookProperty::DolbyEDialNorm},
        {"DolbyESurroundMode", CodeBookProperty::DolbyESurroundMode},
        {"DolbyEAudioProdEnabled", CodeBookProperty::DolbyEAudioProdEnabled},
        {"DolbyEAudioProdRoomtype", CodeBookProperty::DolbyEAudioProdRoomtype},
        {"DolbyEAudioProdMixLevel", CodeBookProperty::DolbyEAudioProdMixLevel},
        {"DolbyECopyRightProtected", CodeBookProperty::DolbyECopyRightProtected},
        {"DolbyEOriginalBitstream", CodeBookProperty::DolbyEOriginalBitstream},
        {"DolbyE_DCHighPassFilter", CodeBookProperty::DolbyE_DCHighPassFilter},
        {"DolbyE_BWLimitingLowPassFilter", CodeBookProperty::DolbyE_BWLimitingLowPassFilter},
        {"DolbyEADConverterType", CodeBookProperty::DolbyEADConverterType},
        {"DolbyESurroundEXMode", CodeBookProperty::DolbyESurroundEXMode},
        {"DolbyELFE_LowPassFilter", CodeBookProperty::DolbyELFE_LowPassFilter},
        {"Dolby90DegreePhaseShift", CodeBookProperty::Dolby90DegreePhaseShift},
        {"DolbyE3dbAttenuation", CodeBookProperty::DolbyE3dbAttenuation},
        {"DolbyEStereoDownMix", CodeBookProperty::DolbyEStereoDownMix},
        {"DolbyE_LtRtCenterMix", CodeBookProperty::DolbyE_LtRtCenterMix},
        {"DolbyE_LtRtSurroundMix", CodeBookProperty::DolbyE_LtRtSurroundMix},
        {"DolbyE_LoRoCenterMix", CodeBookProperty::DolbyE_LoRoCenterMix},
        {"DolbyE_LoRoSurroundMix", CodeBookProperty::DolbyE_LoRoSurroundMix},
        {"DolbyEDRCLineMode", CodeBookProperty::DolbyEDRCLineMode},
        {"DolbyERFLineMode", CodeBookProperty::DolbyERFLineMode},
        {"Jpeg2000CODReversible", CodeBookProperty::Jpeg2000CODReversible},
        {"Jpeg2000CODKernels", CodeBookProperty::Jpeg2000CODKernels},
        {"Jpeg2000CODUseSOP", CodeBookProperty::Jpeg2000CODUseSOP},
        {"Jpeg2000CODUseEPH", CodeBookProperty::Jpeg2000CODUseEPH},
        {"Jpeg2000CODDwtLevel", CodeBookProperty::Jpeg2000CODDwtLevel},
        {"Jpeg2000CODBlkDimensions", CodeBookProperty::Jpeg2000CODBlkDimensions},
        {"Jpeg2000CODProgressionOrder", CodeBookProperty::Jpeg2000CODProgressionOrder},
        {"Jpeg2000CODPrecinctDimensions", CodeBookProperty::Jpeg2000CODPrecinctDimensions},
        {"Jpeg2000CODQualityLayer", CodeBookProperty::Jpeg2000CODQualityLayer},
        {"Jpeg2000SIZProfile", CodeBookProperty::Jpeg2000SIZProfile},
        {"Jpeg2000SIZBitDepth", CodeBookProperty::Jpeg2000SIZBitDepth},
        {"Jpeg2000SIZTileSize", CodeBookProperty::Jpeg2000SIZTileSize},
        {"CoreAudioAACProfile", CodeBookProperty::CoreAudioAACProfile},
        {"CoreAudioChannelConfiguration", CodeBookProperty::CoreAudioChannelConfiguration},
        {"MainconceptAACProfile", CodeBookProperty::MainconceptAACProfile},
        {"NielsenWatermarkWorkflowType", CodeBookProperty::NielsenWatermarkWorkflowType},
        {"NielsenWatermarkSid", CodeBookProperty::NielsenWatermarkSid},
        {"NielsenWatermarkIpAddr", CodeBookProperty::NielsenWatermarkIpAddr},
        {"NielsenWatermarkProcessType", CodeBookProperty::NielsenWatermarkProcessType},
        {"NielsenWatermarkSourceType", CodeBookProperty::NielsenWatermarkSourceType},
        {"NielsenWatermarkEncodeChannels", CodeBookProperty::NielsenWatermarkEncodeChannels},
        {"NielsnWatermarkSleepTime", CodeBookProperty::NielsnWatermarkSleepTime},
        {"NielsenWatermarkDuration", CodeBookProperty::NielsenWatermarkDuration},
        {"NielsenWatermarkSinatureProcessMask", CodeBookProperty::NielsenWatermarkSinatureProcessMask},
        {"NielsenWatermarkDecodeChannelSelected", CodeBookProperty::NielsenWatermarkDecodeChannelSelected},
        {"NielsenWatermarkSamples", CodeBookProperty::NielsenWatermarkSamples},
        {"NielsenWatermarkChannels", CodeBookProperty::NielsenWatermarkChannels},
        {"NielsenWatermarkPackMode", CodeBookProperty::NielsenWatermarkPackMode},
        {"NielsenWatermarkSourceName", CodeBookProperty::NielsenWatermarkSourceName},
        {"NielsenWatermarkDirectory", CodeBookProperty::NielsenWatermarkDirectory},
        {"NielsenWatermarkMetadataDsrcId", CodeBookProperty::NielsenWatermarkMetadataDsrcId},
        {"NielsenWatermarkMetadataDsrcName", CodeBookProperty::NielsenWatermarkMetadataDsrcName},
        {"NielsenWatermarkMetadataAssetId", CodeBookProperty::NielsenWatermarkMetadataAssetId},
        {"NielsenWatermarkMetadataAssetName", CodeBookProperty::NielsenWatermarkMetadataAssetName},
        {"NielsenWatermarkMetadataEpisodeId", CodeBookProperty::NielsenWatermarkMetadataEpisodeId},
        {"NielsenWatermarkMetadataHDContent", CodeBookProperty::NielsenWatermarkMetadataHDContent},
        {"NielsenWatermarkMetadataApplicationName", CodeBookProperty::NielsenWatermarkMetadataApplicationName},
        {"NielsenWatermarkMetadataApplicationVersion", CodeBookProperty::NielsenWatermarkMetadataApplicationVersion},
        {"NielsenWatermarkMetadataAdvertiserName", CodeBookProperty::NielsenWatermarkMetadataAdvertiserName},
        {"NielsenWatermarkMetadataAdvertiserId", CodeBookProperty::NielsenWatermarkMetadataAdvertiserId},
        {"NielsenWatermarkMetadataAgencyName", CodeBookProperty::NielsenWatermarkMetadataAgencyName},
        {"NielsenWatermarkMetadataAgencyId", CodeBookProperty::NielsenWatermarkMetadataAgencyId},
        {"NielsenWatermarkMetadataBrandName", CodeBookProperty::NielsenWatermarkMetadataBrandName},
        {"NielsenWatermarkMetadataBrandId", CodeBookProperty::NielsenWatermarkMetadataBrandId},
        {"NielsenWatermarkMetadataClientMediaName", CodeBookProperty::NielsenWatermarkMetadataClientMediaName},
        {"NielsenWatermarkMetadataClientId", CodeBookProperty::NielsenWatermarkMetadataClientId},
        {"NielsenWatermarkMetadataCommercialDistributor", CodeBookProperty::NielsenWatermarkMetadataCommercialDistributor},
        {"NielsenWatermarkMetadataCommercialType", CodeBookProperty::NielsenWatermarkMetadataCommercialType},
        {"NielsenWatermarkMetadataDuration", CodeBookProperty::NielsenWatermarkMetadataDuration},
        {"NielsenWatermarkMetadataIntendedUse", CodeBookProperty::NielsenWatermarkMetadataIntendedUse},
        {"NielsenWatermarkMetadataLanguageTypePrimary", CodeBookProperty::NielsenWatermarkMetadataLanguageTypePrimary},
        {"NielsenWatermarkMetadataLanguageTypeSecondary", CodeBookProperty::NielsenWatermarkMetadataLanguageTypeSecondary},
        {"NielsenRtVodWatermarkType", CodeBookProperty::NielsenRtVodWatermarkType},
        {"NielsenWatermarkMetadataClientName", CodeBookProperty::NielsenWatermarkMetadataClientName},
        {"AplRequestedSamples", CodeBookProperty::AplRequestedSamples},
        {"DeinterlacerMode", CodeBookProperty::DeinterlacerMode},
        {"MixGainArray", CodeBookProperty::MixGainArray},
        {"MixMatrix", CodeBookProperty::MixMatrix},
        {"MixOutputGainArray", CodeBookProperty::MixOutputGainArray},
        {"PreferredFormats", CodeBookProperty::PreferredFormats},
        {"PreferredAudioDuration", CodeBookProperty::PreferredAudioDuration},
        {"PreferredAudioSampleRate", CodeBookProperty::PreferredAudioSampleRate},
        {"AplTimeCompressionSpeech", CodeBookProperty::AplTimeCompressionSpeech},
        {"VplEvaluationLogo", CodeBookProperty::VplEvaluationLogo},
        {"SubtitleA53", CodeBookProperty::SubtitleA53},
        {"SubtitleBitmapWidth", CodeBookProperty::SubtitleBitmapWidth},
        {"SubtitleBitmapHeight", CodeBookProperty::SubtitleBitmapHeight},
        {"SubtitleCaptionSearch", CodeBookProperty::SubtitleCaptionSearch},
        {"SubtitleCaptionChannel", CodeBookProperty::SubtitleCaptionChannel},
        {"SubtitleCaptionXDS", CodeBookProperty::SubtitleCaptionXDS},
        {"SubtitleReorderQueueSize", CodeBookProperty::SubtitleReorderQueueSize},
        {"SubtitleScte20", CodeBookProperty::SubtitleScte20},
        {"SubtitleScte21", CodeBookProperty::SubtitleScte21},
        {"SubtitleSeiUserData", CodeBookProperty::SubtitleSeiUserData},
        {"SubtitleFrameOffset", CodeBookProperty::SubtitleFrameOffset},
        {"SubtitleStartingTimeOffset", CodeBookProperty::SubtitleStartingTimeOffset},
        {"SubtitleEnable608to708", CodeBookProperty::SubtitleEnable608to708},
        {"VideoDecompressorFlushEveryFrame", CodeBookProperty::VideoDecompressorFlushEveryFrame},
        {"VideoDecompressorDeinterlace", CodeBookProperty::VideoDecompressorDeinterlace},
        {"VideoDecompressorDisableMetadata", CodeBookProperty::VideoDecompressorDisableMetadata},
        {"VideoDecompressorQuarterSize", CodeBookProperty::VideoDecompressorQuarterSize},
        {"VideoDecompressorHalfSize", CodeBookProperty::VideoDecompressorHalfSize},
        {"MergeMixArray", CodeBookProperty::MergeMixArray},
        {"MergeRouteArray", CodeBookProperty::MergeRouteArray},
        {"FilterLowPriority", CodeBookProperty::FilterLowPriority},
        {"FilterThreads", CodeBookProperty::FilterThreads},
        {"Jpeg2000CompressorPackAdv212", CodeBookProperty::Jpeg2000CompressorPackAdv212},
        {"Jpeg2000CompressorJp2cFraming", CodeBookProperty::Jpeg2000CompressorJp2cFraming},
        {"Jpeg2000CompressorQuickTimeMarker", CodeBookProperty::Jpeg2000CompressorQuickTimeMarker},
        {"MplDisableDeformatters", CodeBookProperty::MplDisableDeformatters},
        {"MplSectionIndex", CodeBookProperty::MplSectionIndex},
        {"MplUseScreen", CodeBookProperty::MplUseScreen},
        {"JpegCompressorQuality", CodeBookProperty::JpegCompressorQuality},
        {"JpegCompressorRestartInterval", CodeBookProperty::JpegCompressorRestartInterval},
        {"CaptionAnalyzerEnableTtml", CodeBookProperty::CaptionAnalyzerEnableTtml},
        {"CaptionAnalyzerEnableWebVtt", CodeBookProperty::CaptionAnalyzerEnableWebVtt},
        {"CaptionAnalyzerTtml", CodeBookProperty::CaptionAnalyzerTtml},
        {"CaptionAnalyzerWebVtt", CodeBookProperty::CaptionAnalyzerWebVtt},
        {"VideoFormatConverterBottomUp", CodeBookProperty::VideoFormatConverterBottomUp},
        {"ReuseCount", CodeBookProperty::ReuseCount},
        {"TimeCompressionRatio", CodeBookProperty::TimeCompressionRatio},
        {"X262GopLength", CodeBookProperty::X262GopLength},
        {"X262InterIPFrames", CodeBookProperty::X262InterIPFrames},
        {"X262IntraDCPrecision", CodeBookProperty::X262IntraDCPrecision},
        {"X262Chroma", CodeBookProperty::X262Chroma},
        {"X264OpenGop", CodeBookProperty::X264OpenGop},
        {"X264Profile", CodeBookProperty::X264Profile},
        {"X264Tuning", CodeBookProperty::X264Tuning},
        {"X264Preset", CodeBookProperty::X264Preset},
        {"X264Level", CodeBookProperty::X264Level},
        {"X264CommandLine", CodeBookProperty::X264CommandLine},
        {"X264AdaptiveQuantizationStrength", CodeBookProperty::X264AdaptiveQuantizationStrength},
        {"X264Lookahead", CodeBookProperty::X264Lookahead},
        {"X264IPRatio", CodeBookProperty::X264IPRatio},
        {"X264RateControlMethod", CodeBookProperty::X264RateControlMethod},
        {"X264Quantizer", CodeBookProperty::X264Quantizer},
        {"X264RateFactor", CodeBookProperty::X264RateFactor},
        {"X264VBVBufferSize", CodeBookProperty::X264VBVBufferSize},
        {"X264VBVInitialFill", CodeBookProperty::X264VBVInitialFill},
        {"X264VBVMaxRate", CodeBookProperty::X264VBVMaxRate},
        {"X264HRDCompliance", CodeBookProperty::X264HRDCompliance},
        {"X264BufferDelay", CodeBookProperty::X264BufferDelay},
        {"X265KeyFrameInt", CodeBookProperty::X265KeyFrameInt},
        {"X265OpenGop", CodeBookProperty::X265OpenGop},
        {"X265SceneCutThreshold", CodeBookProperty::X265SceneCutThreshold},
        {"X265MaxBFrames", CodeBookProperty::X265MaxBFrames},
        {"X265AdaptiveBFrameScheduling", CodeBookProperty::X265AdaptiveBFrameScheduling},
        {"X265BPyramid", CodeBookProperty::X265BPyramid},
        {"X265MaxRefFrames", CodeBookProperty::X265MaxRefFrames},
        {"X265VideoFormat", CodeBookProperty::X265VideoFormat},
        {"X265ColorPrimaries", CodeBookProperty::X265ColorPrimaries},
        {"X265TransferCharacteristics", CodeBookProperty::X265TransferCharacteristics},
        {"X265ColorMatrix", CodeBookProperty::X265ColorMatrix},
        {"X265Lookahead", CodeBookProperty::X265Lookahead},
        {"X265IPRatio", CodeBookProperty::X265IPRatio},
        {"X265AdaptiveQuantizationStrength", CodeBookProperty::X265AdaptiveQuantizationStrength},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek

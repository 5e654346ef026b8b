#include <vek/media/ContainerWriterProperty.h>

namespace Quorvex::Vek {

const char* const ContainerWriterProperty::Mpeg2TransportStreamDvbAc3Descriptor = "mpeg2.dvb_ac3_descriptor";
const char* const ContainerWriterProperty::Mpeg2TransportStreamInsertDvbAu = "mpeg2.transport_stream.insert_dvb_au";
const char* const ContainerWriterProperty::Mpeg2TransportStreamPcrPer = "mpeg2.transport_stream.pcr_per";
const char* const ContainerWriterProperty::Mpeg2TransportStreamPmtPatOnce = "mpeg2.transport_stream.pmt_pat_once";
const char* const ContainerWriterProperty::Mpeg2TransportStreamStartDts = "mpeg2.transport_stream.start_dts";
const char* const ContainerWriterProperty::Mpeg2TransportStreamEnablePrivateData = "mpeg2.transport_stream.enable_private_data";
const char* const ContainerWriterProperty::Mpeg2TransportInsertPacketTimestamp = "mpeg2.transport_stream.insert_packet_timestamp";
const char* const ContainerWriterProperty::Mpeg2TransportPacketTimestampPrecedesPacket = "mpeg2.transport_stream.packet_timestamp_precedes_packet";
const char* const ContainerWriterProperty::Mpeg2TransportPacketTimestampSizeBits = "mpeg2.transport_stream.packet_timestamp_size_bits";
const char* const ContainerWriterProperty::Mpeg2TransportPacketTimestampSizeBytes = "mpeg2.transport_stream.packet_timestamp_size_bytes";
const char* const ContainerWriterProperty::Mpeg2TransportPacketTimestampLittleEndian = "mpeg2.transport_stream.packet_timestamp_little_endian";
const char* const ContainerWriterProperty::Mpeg2TransportQuadByteAlignment = "mpeg2.transport_stream.quad_byte_alignment";
const char* const ContainerWriterProperty::Mpeg2TransportNoEmptyAdaptationFields = "mpeg2.transport_stream.no_empty_adaptation_fields";
const char* const ContainerWriterProperty::Mpeg2TransportPatRepetitionRate = "mpeg2.transport_stream.pat_repetition_rate";
const char* const ContainerWriterProperty::Mpeg2TransportPmtRepetitionRate = "mpeg2.transport_stream.mpt_repetition_rate";
const char* const ContainerWriterProperty::Mpeg2TransportPcrOnEveryPesHeader = "mpeg2.transport_stream.pcr_on_every_per_header";
const char* const ContainerWriterProperty::Mpeg2TransportAlignVideoPesPackets = "mpeg2.transport_stream.align_video_per_packets";
const char* const ContainerWriterProperty::Mpeg2TransportAlignAudioPesPackets = "mpeg2.transport_stream.align_audio_pes_packets";
const char* const ContainerWriterProperty::Mpeg2TransportAudioAccessUnitsPerPesPacket = "mpeg2.transport_stream.audio_access_units_per_pes_packet";
const char* const ContainerWriterProperty::Mpeg2TransportUseAtscBufferModel = "mpeg2.transport_stream.use_atsc_buffer_model";
const char* const ContainerWriterProperty::Mpeg2TransportVariableBitrate = "mpeg2.transport_stream.variable_bitrate";
const char* const ContainerWriterProperty::Mpeg2TransportVideoBitrate = "mpeg2.transport_stream.video_bitrate";
const char* const ContainerWriterProperty::Mpeg2TransportNotLowDelay = "mpeg2.transport_stream.video_not_low_delay";
const char* const ContainerWriterProperty::Mpeg2TransportVideoDescriptor1 = "mpeg2.transport_stream.video_descriptor_1";
const char* const ContainerWriterProperty::Mpeg2TransportVideoDescriptor2 = "mpeg2.transport_stream.video_descriptor_2";
const char* const ContainerWriterProperty::Mpeg2TransportVideoDescriptor3 = "mpeg2.transport_stream.video_descriptor_3";
const char* const ContainerWriterProperty::Mpeg2TransportVideoDescriptor4 = "mpeg2.transport_stream.video_descriptor_4";
const char* const ContainerWriterProperty::Mpeg2TransportVideoDescriptor5 = "mpeg2.transport_stream.video_descriptor_5";
const char* const ContainerWriterProperty::Mpeg2TransportAudioDescriptor1 = "mpeg2.transport_stream.audio_descriptor_1";
const char* const ContainerWriterProperty::Mpeg2TransportAudioDescriptor2 = "mpeg2.transport_stream.audio_descriptor_2";
const char* const ContainerWriterProperty::Mpeg2TransportAudioDescriptor3 = "mpeg2.transport_stream.audio_descriptor_3";
const char* const ContainerWriterProperty::Mpeg2TransportAudioDescriptor4 = "mpeg2.transport_stream.audio_descriptor_4";
const char* const ContainerWriterProperty::Mpeg2TransportAudioDescriptor5 = "mpeg2.transport_stream.audio_descriptor_5";
const char* const ContainerWriterProperty::ManzanitaConfigFile = "manzanita.config_file";
const char* const ContainerWriterProperty::ManzanitaScte35File = "manzanita.scte35_file";
const char* const ContainerWriterProperty::ManzanitaScte35Pid = "manzanita.scte35_pid";
const char* const ContainerWriterProperty::ManzanitaNullStreamPid = "manzanita.null_stream_pid";
const char* const ContainerWriterProperty::ManzanitaNullStreamRate = "manzanita.null_stream_rate";
const char* const ContainerWriterProperty::ManzanitaErrorBehavior = "manzanita.error_behavior";
const char* const ContainerWriterProperty::ManzanitaErrorThreshold = "manzanita.error_threshold";
const char* const ContainerWriterProperty::ManzanitaGenerateConfigFile = "manzanita.transport_stream.generate_config_file";
const char* const ContainerWriterProperty::ManzanitaEnable2Pass = "manzanita.enable_2_pass";
const char* const ContainerWriterProperty::Mpeg4FastStart = "mpeg4.fast_start";
const char* const ContainerWriterProperty::Mpeg4MoovRate = "mpeg4.moov_rate";
const char* const ContainerWriterProperty::Mpeg4FreeSize = "mpeg4.free_size";
const char* const ContainerWriterProperty::Mpeg4MdatAlignment = "mpeg4.mdat_alignment";
const char* const ContainerWriterProperty::Mpeg4TrimAudio = "mpeg4.trim_audio";
const char* const ContainerWriterProperty::MovDataCompression = "mov.cmov_type";
const char* const ContainerWriterProperty::MovClapMode = "mov.clap_mode";
const char* const ContainerWriterProperty::MovTaptMode = "mov.tapt_mode";
const char* const ContainerWriterProperty::MkvMaxClusterDuration = "mkv.max_cluster_duration";
const char* const ContainerWriterProperty::MkvMinClusterDuration = "mkv.min_cluster_duration";
const char* const ContainerWriterProperty::MkvWebMMode = "mkv.webm_mode";
const char* const ContainerWriterProperty::MkvReservedCueSpace = "mkv.reserved_cue_space";
const char* const ContainerWriterProperty::MxfOp1aPartitionStrategy = "mxf.op1a.partition.strategy";
const char* const ContainerWriterProperty::MxfOp1aPartitionDuration = "mxf.op1a.partition.duration";
const char* const ContainerWriterProperty::AafFrameChaseUpdateInterval = "aaf.frame.chase.update.interval";

// Built on first call rather than at load, so a caller in another
// translation unit may walk the keys from its own static initialisers.
PropertyKeyList ContainerWriterProperty::GetKeys()
{
    static const PropertyKeyEntry entries[] = {
        {"Mpeg2TransportStreamDvbAc3Descriptor", ContainerWriterProperty::Mpeg2TransportStreamDvbAc3Descriptor},
        {"Mpeg2TransportStreamInsertDvbAu", ContainerWriterProperty::Mpeg2TransportStreamInsertDvbAu},
        {"Mpeg2TransportStreamPcrPer", ContainerWriterProperty::Mpeg2TransportStreamPcrPer},
        {"Mpeg2TransportStreamPmtPatOnce", ContainerWriterProperty::Mpeg2TransportStreamPmtPatOnce},
        {"Mpeg2TransportStreamStartDts", ContainerWriterProperty::Mpeg2TransportStreamStartDts},
        {"Mpeg2TransportStreamEnablePrivateData", ContainerWriterProperty::Mpeg2TransportStreamEnablePrivateData},
        {"Mpeg2TransportInsertPacketTimestamp", ContainerWriterProperty::Mpeg2TransportInsertPacketTimestamp},
        {"Mpeg2TransportPacketTimestampPrecedesPacket", ContainerWriterProperty::Mpeg2TransportPacketTimestampPrecedesPacket},
        {"Mpeg2TransportPacketTimestampSizeBits", ContainerWriterProperty::Mpeg2TransportPacketTimestampSizeBits},
        {"Mpeg2TransportPacketTimestampSizeBytes", ContainerWriterProperty::Mpeg2TransportPacketTimestampSizeBytes},
        {"Mpeg2TransportPacketTimestampLittleEndian", ContainerWriterProperty::Mpeg2TransportPacketTimestampLittleEndian},
        {"Mpeg2TransportQuadByteAlignment", ContainerWriterProperty::Mpeg2TransportQuadByteAlignment},
        {"Mpeg2TransportNoEmptyAdaptationFields", ContainerWriterProperty::Mpeg2TransportNoEmptyAdaptationFields},
        {"Mpeg2TransportPatRepetitionRate", ContainerWriterProperty::Mpeg2TransportPatRepetitionRate},
        {"Mpeg2TransportPmtRepetitionRate", ContainerWriterProperty::Mpeg2TransportPmtRepetitionRate},
        {"Mpeg2TransportPcrOnEveryPesHeader", ContainerWriterProperty::Mpeg2TransportPcrOnEveryPesHeader},
        {"Mpeg2TransportAlignVideoPesPackets", ContainerWriterProperty::Mpeg2TransportAlignVideoPesPackets},
        {"Mpeg2TransportAlignAudioPesPackets", ContainerWriterProperty::Mpeg2TransportAlignAudioPesPackets},
        {"Mpeg2TransportAudioAccessUnitsPerPesPacket", ContainerWriterProperty::Mpeg2TransportAudioAccessUnitsPerPesPacket},
        {"Mpeg2TransportUseAtscBufferModel", ContainerWriterProperty::Mpeg2TransportUseAtscBufferModel},
        {"Mpeg2TransportVariableBitrate", ContainerWriterProperty::Mpeg2TransportVariableBitrate},
        {"Mpeg2TransportVideoBitrate", ContainerWriterProperty::Mpeg2TransportVideoBitrate},
        {"Mpeg2TransportNotLowDelay", ContainerWriterProperty::Mpeg2TransportNotLowDelay},
        {"Mpeg2TransportVideoDescriptor1", ContainerWriterProperty::Mpeg2TransportVideoDescriptor1},
        {"Mpeg2TransportVideoDescriptor2", ContainerWriterProperty::Mpeg2TransportVideoDescriptor2},
        {"Mpeg2TransportVideoDescriptor3", ContainerWriterProperty::Mpeg2TransportVideoDescriptor3},
        {"Mpeg2TransportVideoDescriptor4", ContainerWriterProperty::Mpeg2TransportVideoDescriptor4},
        {"Mpeg2TransportVideoDescriptor5", ContainerWriterProperty::Mpeg2TransportVideoDescriptor5},
        {"Mpeg2TransportAudioDescriptor1", ContainerWriterProperty::Mpeg2TransportAudioDescriptor1},
        {"Mpeg2TransportAudioDescriptor2", ContainerWriterProperty::Mpeg2TransportAudioDescriptor2},
        {"Mpeg2TransportAudioDescriptor3", ContainerWriterProperty::Mpeg2TransportAudioDescriptor3},
        {"Mpeg2TransportAudioDescriptor4", ContainerWriterProperty::Mpeg2TransportAudioDescriptor4},
        {"Mpeg2TransportAudioDescriptor5", ContainerWriterProperty::Mpeg2TransportAudioDescriptor5},
        {"ManzanitaConfigFile", ContainerWriterProperty::ManzanitaConfigFile},
        {"ManzanitaScte35File", ContainerWriterProperty::ManzanitaScte35File},
        {"ManzanitaScte35Pid", ContainerWriterProperty::ManzanitaScte35Pid},
        {"ManzanitaNullStreamPid", ContainerWriterProperty::ManzanitaNullStreamPid},
        {"ManzanitaNullStreamRate", ContainerWriterProperty::ManzanitaNullStreamRate},
        {"ManzanitaErrorBehavior", ContainerWriterProperty::ManzanitaErrorBehavior},
        {"ManzanitaErrorThreshold", ContainerWriterProperty::ManzanitaErrorThreshold},
        {"ManzanitaGenerateConfigFile", ContainerWriterProperty::ManzanitaGenerateConfigFile},
        {"ManzanitaEnable2Pass", ContainerWriterProperty::ManzanitaEnable2Pass},
        {"Mpeg4FastStart", ContainerWriterProperty::Mpeg4FastStart},
        {"Mpeg4MoovRate", ContainerWriterProperty::Mpeg4MoovRate},
        {"Mpeg4FreeSize", ContainerWriterProperty::Mpeg4FreeSize},
        {"Mpeg4MdatAlignment", ContainerWriterProperty::Mpeg4MdatAlignment},
        {"Mpeg4TrimAudio", ContainerWriterProperty::Mpeg4TrimAudio},
        {"MovDataCompression", ContainerWriterProperty::MovDataCompression},
        {"MovClapMode", ContainerWriterProperty::MovClapMode},
        {"MovTaptMode", ContainerWriterProperty::MovTaptMode},
        {"MkvMaxClusterDuration", ContainerWriterProperty::MkvMaxClusterDuration},
        {"MkvMinClusterDuration", ContainerWriterProperty::MkvMinClusterDuration},
        {"MkvWebMMode", ContainerWriterProperty::MkvWebMMode},
        {"MkvReservedCueSpace", ContainerWriterProperty::MkvReservedCueSpace},
        {"MxfOp1aPartitionStrategy", ContainerWriterProperty::MxfOp1aPartitionStrategy},
        {"MxfOp1aPartitionDuration", ContainerWriterProperty::MxfOp1aPartitionDuration},
        {"AafFrameChaseUpdateInterval", ContainerWriterProperty::AafFrameChaseUpdateInterval},
    };
    return PropertyKeyList{entries, static_cast<int32_t>(sizeof(entries) / sizeof(entries[0]))};
}

} // namespace Quorvex::Vek

#pragma once

// Settings of container writers (transport stream multiplexers, MP4 and
// QuickTime, Matroska, MXF, AAF).
// Every key is a fixed string; components find values by string equality.
#include <vek/media/PropertyKeyList.h>

namespace Quorvex::Vek {

class VEK_API ContainerWriterProperty {
public:
    ContainerWriterProperty() = delete;

    static const char* const Mpeg2TransportStreamDvbAc3Descriptor; // "mpeg2.dvb_ac3_descriptor"
    static const char* const Mpeg2TransportStreamInsertDvbAu; // "mpeg2.transport_stream.insert_dvb_au"
    static const char* const Mpeg2TransportStreamPcrPer; // "mpeg2.transport_stream.pcr_per"
    static const char* const Mpeg2TransportStreamPmtPatOnce; // "mpeg2.transport_stream.pmt_pat_once"
    static const char* const Mpeg2TransportStreamStartDts; // "mpeg2.transport_stream.start_dts"
    static const char* const Mpeg2TransportStreamEnablePrivateData; // "mpeg2.transport_stream.enable_private_data"
    static const char* const Mpeg2TransportInsertPacketTimestamp; // "mpeg2.transport_stream.insert_packet_timestamp"
    static const char* const Mpeg2TransportPacketTimestampPrecedesPacket; // "mpeg2.transport_stream.packet_timestamp_precedes_packet"
    static const char* const Mpeg2TransportPacketTimestampSizeBits; // "mpeg2.transport_stream.packet_timestamp_size_bits"
    static const char* const Mpeg2TransportPacketTimestampSizeBytes; // "mpeg2.transport_stream.packet_timestamp_size_bytes"
    static const char* const Mpeg2TransportPacketTimestampLittleEndian; // "mpeg2.transport_stream.packet_timestamp_little_endian"
    static const char* const Mpeg2TransportQuadByteAlignment; // "mpeg2.transport_stream.quad_byte_alignment"
    static const char* const Mpeg2TransportNoEmptyAdaptationFields; // "mpeg2.transport_stream.no_empty_adaptation_fields"
    static const char* const Mpeg2TransportPatRepetitionRate; // "mpeg2.transport_stream.pat_repetition_rate"
    // The key says "mpt", not "pmt": stored settings use this spelling.
    static const char* const Mpeg2TransportPmtRepetitionRate; // "mpeg2.transport_stream.mpt_repetition_rate"
    // The key says "per", not "pes": stored settings use this spelling.
    static const char* const Mpeg2TransportPcrOnEveryPesHeader; // "mpeg2.transport_stream.pcr_on_every_per_header"
    // The key says "per", not "pes" (unlike the audio key beside it).
    static const char* const Mpeg2TransportAlignVideoPesPackets; // "mpeg2.transport_stream.align_video_per_packets"
    static const char* const Mpeg2TransportAlignAudioPesPackets; // "mpeg2.transport_stream.align_audio_pes_packets"
    static const char* const Mpeg2TransportAudioAccessUnitsPerPesPacket; // "mpeg2.transport_stream.audio_access_units_per_pes_packet"
    static const char* const Mpeg2TransportUseAtscBufferModel; // "mpeg2.transport_stream.use_atsc_buffer_model"
    static const char* const Mpeg2TransportVariableBitrate; // "mpeg2.transport_stream.variable_bitrate"
    static const char* const Mpeg2TransportVideoBitrate; // "mpeg2.transport_stream.video_bitrate"
    static const char* const Mpeg2TransportNotLowDelay; // "mpeg2.transport_stream.video_not_low_delay"
    static const char* const Mpeg2TransportVideoDescriptor1; // "mpeg2.transport_stream.video_descriptor_1"
    static const char* const Mpeg2TransportVideoDescriptor2; // "mpeg2.transport_stream.video_descriptor_2"
    static const char* const Mpeg2TransportVideoDescriptor3; // "mpeg2.transport_stream.video_descriptor_3"
    static const char* const Mpeg2TransportVideoDescriptor4; // "mpeg2.transport_stream.video_descriptor_4"
    static const char* const Mpeg2TransportVideoDescriptor5; // "mpeg2.transport_stream.video_descriptor_5"
    static const char* const Mpeg2TransportAudioDescriptor1; // "mpeg2.transport_stream.audio_descriptor_1"
    static const char* const Mpeg2TransportAudioDescriptor2; // "mpeg2.transport_stream.audio_descriptor_2"
    static const char* const Mpeg2TransportAudioDescriptor3; // "mpeg2.transport_stream.audio_descriptor_3"
    static const char* const Mpeg2TransportAudioDescriptor4; // "mpeg2.transport_stream.audio_descriptor_4"
    static const char* const Mpeg2TransportAudioDescriptor5; // "mpeg2.transport_stream.audio_descriptor_5"
    static const char* const ManzanitaConfigFile; // "manzanita.config_file"
    static const char* const ManzanitaScte35File; // "manzanita.scte35_file"
    static const char* const ManzanitaScte35Pid; // "manzanita.scte35_pid"
    static const char* const ManzanitaNullStreamPid; // "manzanita.null_stream_pid"
    static const char* const ManzanitaNullStreamRate; // "manzanita.null_stream_rate"
    static const char* const ManzanitaErrorBehavior; // "manzanita.error_behavior"
    static const char* const ManzanitaErrorThreshold; // "manzanita.error_threshold"
    static const char* const ManzanitaGenerateConfigFile; // "manzanita.transport_stream.generate_config_file"
    static const char* const ManzanitaEnable2Pass; // "manzanita.enable_2_pass"
    static const char* const Mpeg4FastStart; // "mpeg4.fast_start"
    static const char* const Mpeg4MoovRate; // "mpeg4.moov_rate"
    static const char* const Mpeg4FreeSize; // "mpeg4.free_size"
    static const char* const Mpeg4MdatAlignment; // "mpeg4.mdat_alignment"
    static const char* const Mpeg4TrimAudio; // "mpeg4.trim_audio"
    static const char* const MovDataCompression; // "mov.cmov_type"
    static const char* const MovClapMode; // "mov.clap_mode"
    static const char* const MovTaptMode; // "mov.tapt_mode"
    static const char* const MkvMaxClusterDuration; // "mkv.max_cluster_duration"
    static const char* const MkvMinClusterDuration; // "mkv.min_cluster_duration"
    static const char* const MkvWebMMode; // "mkv.webm_mode"
    static const char* const MkvReservedCueSpace; // "mkv.reserved_cue_space"
    static const char* const MxfOp1aPartitionStrategy; // "mxf.op1a.partition.strategy"
    static const char* const MxfOp1aPartitionDuration; // "mxf.op1a.partition.duration"
    static const char* const AafFrameChaseUpdateInterval; // "aaf.frame.chase.update.interval"

    // Every (constant name, key) pair of the family, in declaration order.
    static PropertyKeyList GetKeys();
};

} // namespace Quorvex::Vek

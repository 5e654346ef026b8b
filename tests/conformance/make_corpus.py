#!/usr/bin/env python3
"""Writes the container conformance corpus and the facts the readers must match.

Every file is written by an independent program (ffmpeg, sox, libsndfile's
sndfile-convert and sndfile-metadata-set, Python's wave and aifc modules);
none is written by this library. The facts a reader must report are then
asked of the independent readers (ffprobe, soxi, sndfile-info,
sndfile-metadata-get, Python's wave and aifc), never typed here, and the
sound data is extracted by ffmpeg copying the PCM packets unchanged into a
headerless file. Where the tools disagree the disagreement is recorded in the
file's manifest next to the value that was trusted (see TRUST).

Usage: make_corpus.py OUTPUT_FOLDER

Writes OUTPUT_FOLDER/media/*       the corpus files
       OUTPUT_FOLDER/raw/*.raw     each file's sound bytes, as ffmpeg copies them
       OUTPUT_FOLDER/manifest/*.json  every tool's answers per file
       OUTPUT_FOLDER/expected.tsv  the trusted facts, one file per line, for the test
Exit status 77 when a tool is missing (the test is then skipped), 1 on failure.
"""

import concurrent.futures
import hashlib
import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import warnings

warnings.filterwarnings("ignore", category=DeprecationWarning)
import wave  # noqa: E402

try:
    import aifc  # noqa: E402  (deprecated in 3.11, removed in 3.13)
except ImportError:  # pragma: no cover - newer Pythons
    aifc = None

SKIP = 77
TOOLS = ["ffmpeg", "ffprobe", "sox", "soxi", "sndfile-convert", "sndfile-info",
         "sndfile-metadata-get", "sndfile-metadata-set"]

# Which tool is trusted for which fact, and why. Written into every manifest.
TRUST = {
    "sample_rate, channels": "ffprobe; soxi, sndfile-info and wave/aifc must agree (checked)",
    "bits": "ffprobe bits_per_sample (the container's sample width); soxi's precision "
            "is not the stored width for float files",
    "codec": "ffprobe codec_name: it names byte order and signedness as stored",
    "frames": "ffprobe duration_ts: the data size over the block size, which is what a "
              "reader must give; sndfile-info and wave/aifc must agree (checked), soxi's "
              "sample count is recorded only",
    "channel_mask": "sndfile-info: it prints the extensible record's mask field as stored; "
                    "ffprobe only gives a layout name",
    "bext text": "sndfile-metadata-get: it prints the fields as stored; ffprobe renames them "
                 "(comment, encoded_by, date, creation_time) and must agree (checked). The coding "
                 "history and files libsndfile refuses come from ffprobe: sndfile-metadata-get prints "
                 "the first line of a history only",
    "bext umid": "ffprobe: sndfile-metadata-get prints the UMID bytes unconverted",
    "sound bytes": "ffmpeg -c:a copy into the raw muxer of the stored sample format: the "
                   "packets are copied, not decoded; Python wave/aifc readframes must give "
                   "the same bytes (checked); sox converts through 32-bit integers, so its "
                   "bytes are compared and recorded only",
}

# (name, writer, recipe). Rates, widths, layouts and durations are spread so
# that every reader meets each byte order, width and layout, odd sizes and a
# last sample shorter than one second.
CORPUS = [
    # ffmpeg: WAV (24-bit and wider, and any layout beyond stereo, are written
    # as WAVE_FORMAT_EXTENSIBLE), RF64, broadcast wave, Wave64, AIFF.
    ("ff_wav_u8_mono_8000", "ffmpeg", dict(codec="pcm_u8", rate=8000, layout="mono", seconds=2.25)),
    ("ff_wav_s16_stereo_44100", "ffmpeg", dict(codec="pcm_s16le", rate=44100, layout="stereo", seconds=1.5)),
    ("ff_wav_s24_mono_96000", "ffmpeg", dict(codec="pcm_s24le", rate=96000, layout="mono", seconds=0.5)),
    ("ff_wav_s32_stereo_11025", "ffmpeg", dict(codec="pcm_s32le", rate=11025, layout="stereo", seconds=2.25)),
    ("ff_wav_f32_stereo_48000", "ffmpeg", dict(codec="pcm_f32le", rate=48000, layout="stereo", seconds=0.5)),
    ("ff_wav_f64_mono_22050", "ffmpeg", dict(codec="pcm_f64le", rate=22050, layout="mono", seconds=1.25)),
    ("ff_wav_s16_51_48000", "ffmpeg", dict(codec="pcm_s16le", rate=48000, layout="5.1", seconds=0.25)),
    ("ff_wav_s24_71_22050", "ffmpeg", dict(codec="pcm_s24le", rate=22050, layout="7.1", seconds=0.5)),
    ("ff_wav_s16_21_8000", "ffmpeg", dict(codec="pcm_s16le", rate=8000, layout="2.1", seconds=1.5)),
    ("ff_rf64_s16_stereo_48000", "ffmpeg", dict(codec="pcm_s16le", rate=48000, layout="stereo", seconds=1.25,
                                                rf64=True)),
    ("ff_rf64_s24_51_8000", "ffmpeg", dict(codec="pcm_s24le", rate=8000, layout="5.1", seconds=1.5, rf64=True)),
    ("ff_bext_s24_stereo_22050", "ffmpeg", dict(codec="pcm_s24le", rate=22050, layout="stereo", seconds=1.5,
                                                bext=True)),
    ("ff_bext_rf64_s16_mono_192000", "ffmpeg", dict(codec="pcm_s16le", rate=192000, layout="mono", seconds=0.5,
                                                    bext=True, rf64=True)),
    ("ff_w64_u8_mono_8000", "ffmpeg", dict(codec="pcm_u8", rate=8000, layout="mono", seconds=1.5, muxer="w64")),
    ("ff_w64_s16_stereo_44100", "ffmpeg", dict(codec="pcm_s16le", rate=44100, layout="stereo", seconds=0.5,
                                               muxer="w64")),
    ("ff_w64_s24_mono_96000", "ffmpeg", dict(codec="pcm_s24le", rate=96000, layout="mono", seconds=0.5,
                                             muxer="w64")),
    ("ff_w64_s32_mono_22050", "ffmpeg", dict(codec="pcm_s32le", rate=22050, layout="mono", seconds=2.25,
                                             muxer="w64")),
    ("ff_w64_f32_stereo_11025", "ffmpeg", dict(codec="pcm_f32le", rate=11025, layout="stereo", seconds=1.5,
                                               muxer="w64")),
    ("ff_w64_f64_mono_48000", "ffmpeg", dict(codec="pcm_f64le", rate=48000, layout="mono", seconds=0.5,
                                             muxer="w64")),
    ("ff_w64_s16_51_8000", "ffmpeg", dict(codec="pcm_s16le", rate=8000, layout="5.1", seconds=1.5, muxer="w64")),
    ("ff_aiff_s8_mono_8000", "ffmpeg", dict(codec="pcm_s8", rate=8000, layout="mono", seconds=1.5, muxer="aiff")),
    ("ff_aiff_s16_stereo_44100", "ffmpeg", dict(codec="pcm_s16be", rate=44100, layout="stereo", seconds=1.5,
                                                muxer="aiff")),
    ("ff_aiff_s24_mono_22050", "ffmpeg", dict(codec="pcm_s24be", rate=22050, layout="mono", seconds=2.25,
                                              muxer="aiff")),
    ("ff_aiff_s32_stereo_11025", "ffmpeg", dict(codec="pcm_s32be", rate=11025, layout="stereo", seconds=1.5,
                                                muxer="aiff")),
    ("ff_aiff_s16_51_48000", "ffmpeg", dict(codec="pcm_s16be", rate=48000, layout="5.1", seconds=0.25,
                                            muxer="aiff")),
    # sox: WAV (extensible beyond two channels or 16 bits, with a fact chunk),
    # AIFF (a COMT chunk before COMM), Wave64.
    ("sx_wav_u8_stereo_22050", "sox", dict(ext="wav", bits=8, rate=22050, channels=2, seconds=0.5)),
    ("sx_wav_s16_mono_192000", "sox", dict(ext="wav", bits=16, rate=192000, channels=1, seconds=0.5)),
    ("sx_wav_s24_6ch_22050", "sox", dict(ext="wav", bits=24, rate=22050, channels=6, seconds=0.5)),
    ("sx_wav_s32_stereo_8000", "sox", dict(ext="wav", bits=32, rate=8000, channels=2, seconds=2.25)),
    ("sx_wav_f32_stereo_11025", "sox", dict(ext="wav", bits=32, float=True, rate=11025, channels=2, seconds=1.5)),
    ("sx_wav_f64_mono_8000", "sox", dict(ext="wav", bits=64, float=True, rate=8000, channels=1, seconds=1.5)),
    ("sx_aiff_s8_mono_11025", "sox", dict(ext="aiff", bits=8, rate=11025, channels=1, seconds=2.25)),
    ("sx_aiff_s16_mono_22050", "sox", dict(ext="aiff", bits=16, rate=22050, channels=1, seconds=0.5)),
    ("sx_aiff_s24_stereo_8000", "sox", dict(ext="aiff", bits=24, rate=8000, channels=2, seconds=1.5)),
    ("sx_w64_s16_stereo_22050", "sox", dict(ext="w64", bits=16, rate=22050, channels=2, seconds=1.5)),
    ("sx_w64_s24_4ch_8000", "sox", dict(ext="w64", bits=24, rate=8000, channels=4, seconds=0.5)),
    # libsndfile: WAV, WAVEX, RF64, W64, AIFF, and broadcast wave with INFO
    # strings (extra chunks around the data) written by sndfile-metadata-set.
    ("sf_wav_u8_mono_11025", "sndfile", dict(ext="wav", encoding="-pcmu8", rate=11025, channels=1, seconds=1.5)),
    ("sf_wav_s16_stereo_44100", "sndfile", dict(ext="wav", encoding="-pcm16", rate=44100, channels=2,
                                                seconds=0.5)),
    ("sf_wavex_s24_stereo_22050", "sndfile", dict(ext="wavex", encoding="-pcm24", rate=22050, channels=2,
                                                  seconds=1.5)),
    ("sf_wavex_f64_6ch_8000", "sndfile", dict(ext="wavex", encoding="-float64", rate=8000, channels=6,
                                              seconds=0.5)),
    ("sf_rf64_s32_mono_96000", "sndfile", dict(ext="rf64", encoding="-pcm32", rate=96000, channels=1,
                                               seconds=0.5)),
    ("sf_w64_f32_stereo_8000", "sndfile", dict(ext="w64", encoding="-float32", rate=8000, channels=2,
                                               seconds=2.25)),
    ("sf_aiff_s24_mono_44100", "sndfile", dict(ext="aif", encoding="-pcm24", rate=44100, channels=1,
                                               seconds=1.5)),
    ("sf_aiff_s8_mono_8000", "sndfile", dict(ext="aif", encoding="-pcms8", rate=8000, channels=1, seconds=0.5)),
    ("sf_bext_s16_stereo_22050", "sndfile", dict(ext="wav", encoding="-pcm16", rate=22050, channels=2,
                                                 seconds=1.5, bext=True)),
    # Python's wave (plain PCM records, 24-bit without the extensible form,
    # a pad byte after an odd-sized data chunk) and aifc (plain AIFF).
    ("py_wav_u8_mono_11025", "wave", dict(width=1, rate=11025, channels=1, seconds=0.5)),
    ("py_wav_s16_stereo_11025", "wave", dict(width=2, rate=11025, channels=2, seconds=2.25)),
    ("py_wav_s24_mono_48000", "wave", dict(width=3, rate=48000, channels=1, seconds=1.5)),
    ("py_wav_s32_mono_96000", "wave", dict(width=4, rate=96000, channels=1, seconds=0.5)),
    ("py_aiff_s8_mono_22050", "aifc", dict(width=1, rate=22050, channels=1, seconds=0.5)),
    ("py_aiff_s16_stereo_8000", "aifc", dict(width=2, rate=8000, channels=2, seconds=2.25)),
    ("py_aiff_s24_mono_192000", "aifc", dict(width=3, rate=192000, channels=1, seconds=0.25)),
    ("py_aiff_s32_mono_44100", "aifc", dict(width=4, rate=44100, channels=1, seconds=1.5)),
]

BEXT_FIELDS = {
    # library key suffix: (ffmpeg -metadata name, sndfile-metadata-set option,
    #                      sndfile-metadata-get label, ffprobe tag)
    "description": ("description", "--bext-description", "Description", "comment"),
    "originator": ("originator", "--bext-originator", "Originator", "encoded_by"),
    "originator_reference": ("originator_reference", "--bext-orig-ref", "Origination ref",
                             "originator_reference"),
    "origination_date": ("origination_date", "--bext-orig-date", "Origination date", "date"),
    "origination_time": ("origination_time", "--bext-orig-time", "Origination time", "creation_time"),
    "coding_history": ("coding_history", "--bext-coding-hist", "Coding history", "coding_history"),
}


def bext_values(name):
    """Distinct texts per file, so that a reader mixing up files or fields shows."""
    return {
        "description": "Conformance take of " + name,
        "originator": "Vek corpus " + name.split("_")[0],
        "originator_reference": "REF" + hashlib.sha1(name.encode()).hexdigest()[:12].upper(),
        "origination_date": "2024-05-06",
        "origination_time": "12:34:56",
        "coding_history": "A=PCM,F=48000,W=24,M=stereo,T=corpus",
    }


class ToolError(Exception):
    pass


def run(args, binary=False):
    done = subprocess.run(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if done.returncode != 0:
        raise ToolError("%s failed (%d): %s" % (" ".join(args), done.returncode,
                                                done.stderr.decode(errors="replace")[-400:]))
    return done.stdout if binary else done.stdout.decode(errors="replace")


def frames_of(rate, seconds):
    return int(round(rate * seconds))


def aevalsrc(channels, rate, seconds):
    # A different tone per channel plus noise, so swapped channels, swapped
    # bytes and dropped low bits all change the bytes.
    exprs = "|".join("0.5*sin(%d*2*PI*t)+0.4*(random(%d)-0.5)" % (220 + 170 * i, i) for i in range(channels))
    return "aevalsrc=exprs=%s:s=%d:d=%s" % (exprs, rate, repr(seconds))


LAYOUT_CHANNELS = {"mono": 1, "stereo": 2, "2.1": 3, "5.1": 6, "7.1": 8}


def ffmpeg_output_args(path, r, name):
    """Output options of one ffmpeg-written file; its input is the lavfi source."""
    args = ["-channel_layout", r["layout"], "-c:a", r["codec"]]
    if r.get("rf64"):
        args += ["-rf64", "always"]
    if r.get("bext"):
        args += ["-write_bext", "1"]
        for key, value in bext_values(name).items():
            args += ["-metadata", "%s=%s" % (BEXT_FIELDS[key][0], value)]
        args += ["-metadata", "umid=0x060A2B340101010501010D43130000001234567890ABCDEF1122334455667788"]
    return args + ["-f", r.get("muxer", "wav"), path]


def write_ffmpeg_all(items):
    """Every ffmpeg-written file in one process: each start of ffmpeg costs
    more than writing a corpus file."""
    inputs, outputs = [], []
    for index, (path, r, name) in enumerate(items):
        channels = LAYOUT_CHANNELS[r["layout"]]
        inputs += ["-f", "lavfi", "-i", aevalsrc(channels, r["rate"], r["seconds"])]
        outputs += ["-map", "%d:a" % index] + ffmpeg_output_args(path, r, name)
    run(["ffmpeg", "-nostdin", "-hide_banner", "-loglevel", "error", "-y"] + inputs + outputs)


def write_sox(path, r, name):
    tones = []
    for i in range(r["channels"]):
        tones += ["sine", str(220 + 170 * i)]
    args = ["sox", "-V1", "-n", "-r", str(r["rate"]), "-c", str(r["channels"]), "-b", str(r["bits"])]
    if r.get("float"):
        args += ["-e", "floating-point"]
    run(args + ["-t", r["ext"], path, "synth", repr(r["seconds"])] + tones + ["vol", "0.7"])


def write_sndfile(path, r, name, scratch):
    # A 64-bit float source from sox; sndfile-convert writes the corpus file
    # from it in the wanted container and encoding.
    source = os.path.join(scratch, name + "-source.wav")
    write_sox(source, dict(ext="wav", bits=64, float=True, rate=r["rate"], channels=r["channels"],
                           seconds=r["seconds"]), name)
    target = path if not r.get("bext") else os.path.join(scratch, name + "-plain." + r["ext"])
    run(["sndfile-convert", r["encoding"], source, target])
    if r.get("bext"):
        args = ["sndfile-metadata-set"]
        for key, value in bext_values(name).items():
            args += [BEXT_FIELDS[key][1], value]
        args += ["--str-title", "Conformance " + name, "--str-artist", "Vek corpus", target, path]
        run(args)


def pcm_bytes(count, name):
    return random.Random(name).randbytes(count)


def write_wave(path, r, name):
    frames = frames_of(r["rate"], r["seconds"])
    with wave.open(path, "wb") as out:
        out.setnchannels(r["channels"])
        out.setsampwidth(r["width"])
        out.setframerate(r["rate"])
        out.writeframes(pcm_bytes(frames * r["channels"] * r["width"], name))


def write_aifc(path, r, name):
    frames = frames_of(r["rate"], r["seconds"])
    out = aifc.open(path, "wb")
    out.aiff()
    out.setnchannels(r["channels"])
    out.setsampwidth(r["width"])
    out.setframerate(r["rate"])
    out.writeframes(pcm_bytes(frames * r["channels"] * r["width"], name))
    out.close()


EXTENSIONS = {"ffmpeg": None, "sox": None, "sndfile": None, "wave": "wav", "aifc": "aiff"}


def extension(writer, r):
    if writer == "ffmpeg":
        return {"wav": "wav", "w64": "w64", "aiff": "aiff"}[r.get("muxer", "wav")]
    if writer in ("sox", "sndfile"):
        return r["ext"]
    return EXTENSIONS[writer]


# ---------------------------------------------------------------- the oracles

def ask_ffprobe(path):
    data = json.loads(run(["ffprobe", "-v", "error", "-print_format", "json", "-show_streams",
                           "-show_format", path]))
    audio = [s for s in data.get("streams", []) if s.get("codec_type") == "audio"]
    if len(audio) != 1:
        raise ToolError("ffprobe finds %d audio streams in %s" % (len(audio), path))
    return data


def run_tolerant(args):
    done = subprocess.run(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    return done.returncode, (done.stdout + done.stderr).decode(errors="replace")


def ask_soxi(path):
    status, text = run_tolerant(["soxi", "-V1", path])
    facts = {"text": text, "status": status}
    for key, pattern in (("channels", r"Channels\s*:\s*(\d+)"), ("sample_rate", r"Sample Rate\s*:\s*(\d+)"),
                         ("samples", r"=\s*(\d+) samples"), ("bits", r"Sample Encoding:\s*(\d+)-bit")):
        match = re.search(pattern, text)
        facts[key] = int(match.group(1)) if match else None
    match = re.search(r"Sample Encoding:\s*(.*)", text)
    facts["encoding"] = match.group(1).strip() if match else None
    return facts


def ask_sndfile_info(path):
    # sndfile-info prints the header records it walked before any refusal,
    # so the fields it reached are still its answer.
    status, text = run_tolerant(["sndfile-info", path])
    facts = {"text": text, "status": status}
    for key, pattern in (("channels", r"^Channels\s*:\s*(\d+)"), ("sample_rate", r"^Sample Rate\s*:\s*(\d+)"),
                         ("frames", r"^Frames\s*:\s*(\d+)")):
        match = re.search(pattern, text, re.M)
        facts[key] = int(match.group(1)) if match else None
    match = re.search(r"^Format\s*:\s*0x([0-9A-Fa-f]{8})", text, re.M)
    facts["format"] = int(match.group(1), 16) if match else None
    match = re.search(r"Channel Mask\s*:\s*0x([0-9A-Fa-f]+)", text)
    facts["channel_mask"] = int(match.group(1), 16) if match else 0
    return facts


def ask_sndfile_bext(path):
    args = ["sndfile-metadata-get"] + [field[1].replace("--bext-", "--bext-") for field in BEXT_FIELDS.values()]
    status, text = run_tolerant(args + [path])
    if status != 0:
        return {"refused": text.strip()}
    found = {}
    for key, field in BEXT_FIELDS.items():
        match = re.search(r"^%s\s*:\s?(.*)$" % re.escape(field[2]), text, re.M)
        found[key] = match.group(1).rstrip("\r") if match else None
    return found


def ask_python(path, family):
    if family == "AIFF":
        if aifc is None:
            return None
        reader = aifc.open(path, "rb")
    elif family == "WAV":
        try:
            reader = wave.open(path, "rb")
        except (wave.Error, EOFError) as error:  # extensible and float records are not read
            return {"refused": str(error)}
    else:
        return None
    try:
        params = reader.getparams()
        data = reader.readframes(params.nframes)
    finally:
        reader.close()
    return {"channels": params.nchannels, "sample_width": params.sampwidth, "sample_rate": params.framerate,
            "frames": params.nframes, "data_sha256": hashlib.sha256(data).hexdigest(), "data_length": len(data)}


# sndfile's major format numbers (the upper half of its format word).
SNDFILE_MAJOR = {0x01: "WAV", 0x13: "WAVEX", 0x22: "RF64", 0x0B: "W64", 0x02: "AIFF"}
# The container family each major format belongs to.
FAMILY = {"WAV": "WAV", "WAVEX": "WAV", "RF64": "WAV", "W64": "W64", "AIFF": "AIFF"}


def media_path(folder, name, writer, recipe):
    return os.path.join(folder, "media", "%s.%s" % (name, extension(writer, recipe)))


def write(folder, name, writer, recipe, scratch):
    path = media_path(folder, name, writer, recipe)
    if writer == "sox":
        write_sox(path, recipe, name)
    elif writer == "sndfile":
        write_sndfile(path, recipe, name, scratch)
    elif writer == "wave":
        write_wave(path, recipe, name)
    elif writer == "aifc":
        write_aifc(path, recipe, name)


# The container each file signature names (the first four bytes).
SIGNATURES = {b"RIFF": "WAV", b"RF64": "RF64", b"riff": "W64", b"FORM": "AIFF"}


def probe(folder, name, writer, recipe):
    """Asks every tool about one file; the sound bytes are extracted later."""
    path = media_path(folder, name, writer, recipe)
    with open(path, "rb") as f:
        signature = f.read(4)
    if signature not in SIGNATURES:
        raise ToolError("%s starts with %r" % (path, signature))
    ffprobe = ask_ffprobe(path)
    info = ask_sndfile_info(path)
    kind = SIGNATURES[signature]
    if kind == "WAV" and "WAVE_FORMAT_EXTENSIBLE" in info["text"]:
        kind = "WAVEX"
    family = FAMILY[kind]
    stream = [s for s in ffprobe["streams"] if s.get("codec_type") == "audio"][0]
    codec = stream["codec_name"]
    if not codec.startswith("pcm_"):
        raise ToolError("%s: codec %s is not PCM" % (path, codec))
    return {"path": path, "name": name, "writer": writer, "kind": kind, "family": family,
            "ffprobe": ffprobe, "sndfile_info": info, "soxi": ask_soxi(path), "python": ask_python(path, family),
            "bext": ask_sndfile_bext(path) if family == "WAV" and re.search(r"^bext\s*:", info["text"], re.M)
            else None}


def extract_all(folder, probed):
    """The sound bytes of every file, copied by one ffmpeg process into the
    raw muxer of each file's stored sample format (copied, not decoded)."""
    args = ["ffmpeg", "-nostdin", "-hide_banner", "-loglevel", "error", "-y"]
    for p in probed:
        args += ["-i", p["path"]]
    for index, p in enumerate(probed):
        codec = [s for s in p["ffprobe"]["streams"] if s.get("codec_type") == "audio"][0]["codec_name"]
        p["raw"] = os.path.join(folder, "raw", p["name"] + ".raw")
        args += ["-map", "%d:a:0" % index, "-c:a", "copy", "-f", codec[4:], p["raw"]]
    run(args)


def conclude(folder, p):
    """The trusted facts of one file and every disagreement among the tools."""
    stream = [s for s in p["ffprobe"]["streams"] if s.get("codec_type") == "audio"][0]
    info, soxi, python = p["sndfile_info"], p["soxi"], p["python"]
    facts = {
        "name": p["name"], "writer": p["writer"], "file": os.path.relpath(p["path"], folder),
        "raw": os.path.relpath(p["raw"], folder), "container": p["kind"], "family": p["family"],
        "codec": stream["codec_name"], "sample_rate": int(stream["sample_rate"]),
        "channels": int(stream["channels"]), "bits": int(stream["bits_per_sample"]),
        "frames": int(stream["duration_ts"]),
        "channel_mask": info["channel_mask"] if p["family"] != "AIFF" else 0,
    }
    disagreements = []

    def compare(fact, tool, value, trusted, recorded_only=False):
        if value is not None and value != trusted:
            entry = {"fact": fact, "tool": tool, "value": value, "trusted": trusted}
            if recorded_only:
                entry["recorded only"] = True
            disagreements.append(entry)

    for tool, answer in (("sndfile-info", info), ("soxi", soxi)):
        if answer["status"] != 0:
            disagreements.append({"fact": "file", "tool": tool, "value": "refused the file (status %d)"
                                  % answer["status"], "trusted": "ffprobe reads it", "recorded only": True})
    compare("sample_rate", "soxi", soxi["sample_rate"], facts["sample_rate"])
    compare("sample_rate", "sndfile-info", info["sample_rate"], facts["sample_rate"])
    compare("channels", "soxi", soxi["channels"], facts["channels"])
    compare("channels", "sndfile-info", info["channels"], facts["channels"])
    compare("bits", "soxi", soxi["bits"], facts["bits"])
    # sndfile-info and soxi count the frames the data chunk holds; an AIFF
    # file's COMM count is the authority there (ffprobe and aifc use it).
    compare("frames", "sndfile-info", info["frames"], facts["frames"], p["family"] == "AIFF")
    compare("frames", "soxi", soxi["samples"], facts["frames"], True)
    if python and "frames" in python:
        compare("sample_rate", "python", python["sample_rate"], facts["sample_rate"])
        compare("channels", "python", python["channels"], facts["channels"])
        compare("frames", "python", python["frames"], facts["frames"])
        compare("bits", "python", python["sample_width"] * 8, facts["bits"])

    with open(p["raw"], "rb") as raw:
        data = raw.read()
    length = facts["frames"] * facts["channels"] * facts["bits"] // 8
    if len(data) > length:
        # ffmpeg copies the whole SSND chunk of an AIFF file, a pad byte
        # counted in the chunk size included; the sound is the COMM count.
        compare("data length", "ffmpeg copy", len(data), length, True)
        data = data[:length]
        with open(p["raw"], "wb") as raw:
            raw.write(data)
    else:
        compare("data length", "ffmpeg copy", len(data), length)
    sha = hashlib.sha256(data).hexdigest()
    if python and "data_sha256" in python:
        compare("sound bytes sha256", "python", python["data_sha256"], sha)
    sox_bytes = subprocess.run(["sox", "-V1", p["path"], "-t", "raw", "-B" if p["family"] == "AIFF" else "-L",
                                "-"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    compare("sound bytes sha256", "sox", hashlib.sha256(sox_bytes).hexdigest(), sha, True)

    bext = {}
    if p["bext"] is not None:
        tags = p["ffprobe"].get("format", {}).get("tags", {})
        for key, field in BEXT_FIELDS.items():
            if "refused" in p["bext"]:
                # libsndfile cannot open the file (its RF64 walk does not
                # skip the pad byte after an odd-sized chunk): ffprobe's
                # tags are the only answer.
                bext[key] = tags.get(field[3], "")
            elif key == "coding_history":
                # sndfile-metadata-get prints the first line of a history
                # only; ffprobe gives all of it.
                bext[key] = tags.get(field[3], "")
                compare("bext " + key, "sndfile-metadata-get", p["bext"][key], bext[key].split("\r\n")[0]
                        .split("\n")[0])
            else:
                bext[key] = p["bext"][key]
                compare("bext " + key, "ffprobe", tags.get(field[3]), bext[key])
        umid = tags.get("umid", "")
        umid = umid[2:] if umid.lower().startswith("0x") else umid
        bext["umid"] = (umid.upper() + "0" * 128)[:128]
    facts["bext"] = bext

    manifest = {"facts": facts, "ffprobe": p["ffprobe"], "soxi": soxi, "sndfile_info": info, "python": python,
                "sndfile_metadata_get": p["bext"], "sound_sha256": sha, "disagreements": disagreements,
                "trust": TRUST}
    with open(os.path.join(folder, "manifest", p["name"] + ".json"), "w") as out:
        json.dump(manifest, out, indent=2, sort_keys=True)
    return facts, disagreements


def tsv_field(value):
    return str(value).replace("\\", "\\\\").replace("\t", "\\t").replace("\n", "\\n").replace("\r", "\\r")


def main():
    if len(sys.argv) != 2:
        print(__doc__)
        return 1
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    folder = os.path.abspath(sys.argv[1])
    os.makedirs(folder, exist_ok=True)
    marker = os.path.join(folder, "skipped")
    if os.path.exists(marker):
        os.remove(marker)
    if missing or aifc is None:
        print("conformance corpus skipped: missing %s" % ", ".join(missing or ["Python aifc"]))
        with open(marker, "w") as out:
            out.write("missing %s\n" % ", ".join(missing or ["Python aifc"]))
        return SKIP
    for sub in ("media", "raw", "manifest"):
        shutil.rmtree(os.path.join(folder, sub), ignore_errors=True)
        os.makedirs(os.path.join(folder, sub))
    expected = os.path.join(folder, "expected.tsv")
    if os.path.exists(expected):
        os.remove(expected)

    results = {}
    try:
        with tempfile.TemporaryDirectory() as scratch, concurrent.futures.ThreadPoolExecutor(2) as pool:
            others = [pool.submit(write, folder, name, writer, recipe, scratch)
                      for name, writer, recipe in CORPUS if writer != "ffmpeg"]
            write_ffmpeg_all([(media_path(folder, name, writer, recipe), recipe, name)
                              for name, writer, recipe in CORPUS if writer == "ffmpeg"])
            for job in others:
                job.result()
            probed = list(pool.map(lambda entry: probe(folder, *entry), CORPUS))
        extract_all(folder, probed)
        for p in probed:
            results[p["name"]] = conclude(folder, p)
    except ToolError as error:
        print("conformance corpus: %s" % error)
        return 1

    trusted_conflicts = 0
    for name, _, _ in CORPUS:
        if name not in results:
            continue
        for d in results[name][1]:
            note = " (recorded only)" if d.get("recorded only") else ""
            trusted_conflicts += 0 if note else 1
            print("%s: %s from %s is %r, trusted %r%s" % (name, d["fact"], d["tool"], d["value"], d["trusted"],
                                                         note))

    columns = ["name", "file", "raw", "writer", "container", "family", "codec", "sample_rate", "channels",
               "bits", "frames", "channel_mask"] + ["bext." + key for key in list(BEXT_FIELDS) + ["umid"]]
    with open(expected + ".part", "w", newline="\n") as out:
        out.write("\t".join(columns) + "\n")
        for name, _, _ in CORPUS:
            facts = results[name][0]
            row = [facts[c] for c in columns if not c.startswith("bext.")]
            for key in list(BEXT_FIELDS) + ["umid"]:
                value = facts["bext"].get(key)
                row.append("-" if value is None else "=" + value)
            out.write("\t".join(tsv_field(v) for v in row) + "\n")
    os.replace(expected + ".part", expected)
    size = sum(os.path.getsize(os.path.join(folder, "media", f)) for f in os.listdir(os.path.join(folder, "media")))
    print("conformance corpus: %d files, %.1f MB, %d disagreements among trusted tools" %
          (len(results), size / 1e6, trusted_conflicts))
    return 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Writes samples/broadcast.wav, the file the main job probes: 1.5 seconds of
a 440/660 Hz stereo tone at 8 kHz, 16-bit, as a broadcast wave with a 'bext'
chunk (description, originator, date, time, time reference, loudness values,
coding history) and a LIST/INFO chunk the reader skips. Written by hand with
struct so that it depends on no audio library."""
import math
import os
import struct

RATE, CHANNELS, BITS, SECONDS = 8000, 2, 16, 1.5


def padded(text, width):
    data = text.encode("ascii")
    return data[:width] + b"\0" * (width - min(len(data), width))


def chunk(identifier, payload):
    pad = b"\0" if len(payload) % 2 else b""
    return identifier + struct.pack("<I", len(payload)) + payload + pad


def bext():
    fixed = (padded("DesktopVek sample: 440 Hz left, 660 Hz right", 256)
             + padded("DesktopVek", 32)
             + padded("VEK-SAMPLE-0001", 32)
             + padded("2026-11-23", 10)
             + padded("12:00:00", 8)
             + struct.pack("<Q", 8000 * 3600)        # time reference: one hour
             + struct.pack("<H", 2)                  # version
             + bytes(64)                             # UMID
             + struct.pack("<hhhhh", -2300, 700, -100, -1800, -2000)
             + bytes(180))                           # reserved
    return fixed + b"A=PCM,F=8000,W=16,M=stereo,T=make_broadcast_wave.py\r\n"


def tone():
    frames = int(RATE * SECONDS)
    out = bytearray()
    for n in range(frames):
        for frequency in (440.0, 660.0):
            out += struct.pack("<h", int(12000 * math.sin(2 * math.pi * frequency * n / RATE)))
    return bytes(out)


def main():
    block = CHANNELS * BITS // 8
    fmt = struct.pack("<HHIIHH", 1, CHANNELS, RATE, RATE * block, block, BITS)
    info = b"INFO" + chunk(b"ISFT", b"make_broadcast_wave.py\0")
    body = b"WAVE" + chunk(b"bext", bext()) + chunk(b"fmt ", fmt) + chunk(b"LIST", info) + chunk(b"data", tone())
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "broadcast.wav")
    with open(path, "wb") as f:
        f.write(b"RIFF" + struct.pack("<I", len(body)) + body)


if __name__ == "__main__":
    main()

#!/usr/bin/env bash
# Installs what building and testing DesktopVek needs on a Debian machine.
# Installs only what is missing, so a second run costs a few dpkg queries.
set -euo pipefail

packages=(
    cmake ninja-build pkg-config ccache g++
    # The fuzz preset names clang++-14: compiler and sanitizer/fuzzer runtime
    # of the same version.
    clang-14 libclang-rt-14-dev
    googletest libgtest-dev libgmock-dev libbenchmark-dev
    liburiparser-dev libsndfile1-dev
    # Rivals of the conversion benches (optional there).
    libswscale-dev libswresample-dev libavutil-dev
    # The rival of the H.264 index bench (optional there).
    libavformat-dev libavcodec-dev
    # Independent writers and oracles of the container conformance tests
    # (tests/conformance), and libsndfile's programs for its corpus files.
    ffmpeg sox libsox-fmt-all sndfile-programs python3
    # GStreamer's QuickTime and MP4 muxers (qtmux, mp4mux; good), with
    # h264parse and timecodestamper (bad), x264enc (ugly) and the test
    # sources (base): the second writer of the QuickTime/MP4 reader tests.
    # (GPAC's MP4Box, the third, is not packaged in this Debian release.)
    gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good
    gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly
    g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix wine wine64
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if ((${#missing[@]})); then
    echo "installing: ${missing[*]}"
    sudo_cmd=()
    if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

#!/usr/bin/env bash
# orvansrc_launch_test.sh SCRATCH: orvansrc from the shell, as the README shows it: the
# documented properties, camera naming, the display-free example pipelines and a clear error
# for a camera that is not there. Every check runs; the script fails when any of them did.
set -u

SCRATCH=$1
cd "$SCRATCH" || exit 1
export ORVAN_VIRTUAL_CAMERAS=Mono,Color
FAST="Width=320 Height=240 ExposureTime=100 AcquisitionFrameRate=200"

failures=0
fail() {
    echo "FAIL $*" >&2
    sed 's/^/  output: /' "$SCRATCH/out" | tail -20 >&2
    failures=$((failures + 1))
}

# run ARGS...: gst-launch-1.0's output lands in out, its exit code in rc.
run() {
    timeout 60 gst-launch-1.0 -q "$@" >"$SCRATCH/out" 2>&1
    rc=$?
}

expect_ok() {
    [ "$rc" -eq 0 ] || fail "$1: exit code $rc"
}

# Every property has a description, and the settings and statistics are all there.
gst-inspect-1.0 orvansrc >"$SCRATCH/out" 2>&1 || fail "gst-inspect-1.0 orvansrc"
for property in camera buffers features feature-file timeout delivered lost incomplete \
    outstanding do-timestamp num-buffers; do
    grep -qE "^  $property +: [A-Za-z]" "$SCRATCH/out" || fail "property $property undocumented"
done
grep -q "video/x-bayer" "$SCRATCH/out" || fail "no Bayer caps in the template"

# Naming a camera the way the orvan tool does.
for camera in OV200001 1 169.254.2.2; do
    run orvansrc camera=$camera num-buffers=3 features="$FAST" ! fakesink
    expect_ok "camera=$camera"
done

run orvansrc camera=NoSuchCamera num-buffers=3 ! fakesink
[ "$rc" -ne 0 ] && grep -q "NoSuchCamera" "$SCRATCH/out" || fail "missing camera: no clear error"

# Recording to Matroska, then reading the recording back.
run orvansrc num-buffers=30 features="$FAST" ! videoconvert ! jpegenc ! matroskamux ! \
    filesink location=recording.mkv
expect_ok "record"
run filesrc location=recording.mkv ! matroskademux ! jpegdec ! fakesink
expect_ok "play the recording back"

# Encoding to H.264 where an encoder is installed.
if gst-inspect-1.0 openh264enc >/dev/null 2>&1; then
    run orvansrc num-buffers=30 features="$FAST" ! videoconvert ! openh264enc ! h264parse ! \
        mp4mux ! filesink location=encoded.mp4
    expect_ok "encode"
    [ -s encoded.mp4 ] || fail "encode: empty file"
fi

# Raw video over RTP to another machine (here: this one, with a receiver listening).
timeout 30 gst-launch-1.0 -q udpsrc port=50604 num-buffers=1 \
    caps="application/x-rtp,media=video,clock-rate=90000,encoding-name=RAW,sampling=YCbCr-4:2:2,depth=(string)8,width=(string)320,height=(string)240,colorimetry=(string)BT601-5,payload=96" \
    ! fakesink >"$SCRATCH/receiver" 2>&1 &
receiver=$!
sleep 1
run orvansrc camera=1 num-buffers=30 features="PixelFormat=YCbCr422_8 $FAST" ! videoconvert ! \
    video/x-raw,format=UYVY ! rtpvrawpay ! udpsink host=127.0.0.1 port=50604
expect_ok "rtp send"
wait "$receiver" || fail "rtp: nothing received"

exit $((failures > 0))

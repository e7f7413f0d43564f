#!/usr/bin/env bash
# orvan_cli_test.sh ORVAN LOG_PEER GROUP: runs one group of checks of the orvan tool against the
# virtual cameras. Every check runs; the script fails when any of them did.
set -u

ORVAN=$1
LOG_PEER=$2
GROUP=$3

SCRATCH=$(mktemp -d "${TMPDIR:-/tmp}/orvan-cli-XXXXXX")
trap 'rm -rf "$SCRATCH"' EXIT
# The SDK reads its logger configuration from the working directory; run in an empty one.
cd "$SCRATCH" || exit 1
unset ORVAN_VIRTUAL_CAMERAS
# GigE discovery on no network interface: cameras that other programs on this machine serve
# must not enter the lists the checks count.
export ORVAN_GIGE_INTERFACES=
# Nor may the GenTL producers installed on this machine.
export ORVAN_GENTL_PRODUCERS=0

failures=0
fail() {
    echo "FAIL [$GROUP] $*" >&2
    echo "  exit code: $rc" >&2
    sed 's/^/  stdout: /' "$SCRATCH/out" >&2
    sed 's/^/  stderr: /' "$SCRATCH/err" >&2
    failures=$((failures + 1))
}

# run ARGS...: the tool's output lands in out/err, its exit code in rc.
run() {
    "$ORVAN" "$@" >"$SCRATCH/out" 2>"$SCRATCH/err"
    rc=$?
}

expect_ok() {
    [ "$rc" -eq 0 ] && [ ! -s "$SCRATCH/err" ] || fail "$1: expected success"
}

expect_out() {
    grep -qE -- "$2" "$SCRATCH/out" || fail "$1: stdout lacks /$2/"
}

expect_no_out() {
    ! grep -qE -- "$2" "$SCRATCH/out" || fail "$1: stdout has /$2/"
}

# expect_error NAME CODE PATTERN: exit code CODE, nothing but one "orvan: error:" line on stderr.
expect_error() {
    [ "$rc" -eq "$2" ] || fail "$1: expected exit code $2"
    [ "$(wc -l <"$SCRATCH/err")" -eq 1 ] && grep -qE -- "^orvan: error: .*$3" "$SCRATCH/err" ||
        fail "$1: expected one error line matching /$3/"
}

# wait_for FILE PATTERN SECONDS: polls until the file holds the pattern.
wait_for() {
    local tries=$(($3 * 10))
    while [ $tries -gt 0 ]; do
        grep -qE -- "$2" "$1" 2>/dev/null && return 0
        sleep 0.1
        tries=$((tries - 1))
    done
    return 1
}

# wait_exit PID SECONDS: waits for a background child, killing it if it overstays; sets rc.
wait_exit() {
    local tries=$(($2 * 10))
    while kill -0 "$1" 2>/dev/null && [ $tries -gt 0 ]; do
        sleep 0.1
        tries=$((tries - 1))
    done
    kill -0 "$1" 2>/dev/null && kill -KILL "$1"
    wait "$1"
    rc=$?
}

group_list() {
    run list
    expect_ok "list"
    expect_out "list" "^VirtualIF0 +127\.0\.0\.1 +255\.0\.0\.0 +02:4f:52:56:00:00$"
    expect_out "list" "^0 +VirtualMono +OV100000 +Orvan +169\.254\.1\.1 +02:4f:56:01:00:00 +ReadWrite +libOrvanGenTL\S*$"

    export ORVAN_VIRTUAL_CAMERAS="Mono,NoSuchModel,Color,LineScan"
    run list
    expect_ok "list of chosen cameras"
    expect_out "unknown models dropped" "^1 +VirtualColor +OV200001 "
    expect_out "unknown models dropped" "^2 +VirtualLineScan +OV300002 "
    # Serial number, index and IP address name the same kinds of camera.
    for name in OV300002 2 169.254.3.3; do
        run get "$name" DeviceModelName
        expect_ok "camera named $name"
        expect_out "camera named $name" "^DeviceModelName=VirtualLineScan$"
    done
    for name in OV999999 3 169.254.9.9 -1; do
        run get "$name" Width
        expect_error "unknown camera $name" 1 "no camera '$name' among 3"
    done

    export ORVAN_VIRTUAL_CAMERAS="Nothing,Known"
    run list
    expect_out "nothing valid keeps the default" "^0 +VirtualMono "
    expect_no_out "nothing valid keeps the default" "^1 "
    unset ORVAN_VIRTUAL_CAMERAS

    run
    expect_error "no subcommand" 2 "subcommand"
    run frobnicate
    expect_error "unknown subcommand" 2 ""
    run get 0
    expect_error "missing feature" 2 "features"
    run --version
    expect_ok "--version"
    expect_out "--version" "^0\.1\.104\.0$"
    for command in list info get set exec stream save-features load-features xml log; do
        run "$command" --help
        expect_ok "$command --help"
        expect_out "$command --help" "^Usage: orvan $command"
    done
}

group_features() {
    run info OV100000
    expect_ok "info"
    expect_out "identity" "^serial: OV100000$"
    expect_out "identity" "^model: VirtualMono$"
    expect_out "categories" "^ImageFormatControl$"
    expect_out "features indented" "^  Width \(Integer, RW\)$"
    expect_out "nested categories" "^  EventExposureEndData$"

    run info 0 --values --filter wIdTh
    expect_ok "info filtered"
    expect_out "filter any case" "^  Width \(Integer, RW\) = 1280$"
    expect_no_out "filter drops the rest" "Height|^AcquisitionControl"

    run info 0 --json --values --filter PixelFormat
    expect_ok "info json"
    jq -e '.camera.serial == "OV100000" and
           ([.features[] | .features[]? | select(.name == "PixelFormat")][0].value == "Mono8")' \
        "$SCRATCH/out" >/dev/null || fail "info json: document lacks the camera or its value"

    run get 0 Width PixelFormat ExposureTime
    expect_ok "get"
    [ "$(cat "$SCRATCH/out")" = $'Width=1280\nPixelFormat=Mono8\nExposureTime=5000' ] ||
        fail "get: values in the order asked"
    run get 0 Width NoSuchFeature
    expect_error "unknown feature" 1 "unknown feature 'NoSuchFeature'"
    [ ! -s "$SCRATCH/out" ] || fail "unknown feature: nothing printed before the error"
    run get 0 DeviceReset
    expect_error "command read as a value" 1 "is a command"

    run set 0 Width=320 PixelFormat=Mono12 ExposureTime=250.5
    expect_ok "set"
    [ "$(cat "$SCRATCH/out")" = $'Width=320\nPixelFormat=Mono12\nExposureTime=250.5' ] ||
        fail "set: values read back"
    run set 0 Height=abc
    expect_error "bad integer" 1 "cannot set 'Height' to 'abc'"
    run set 0 PixelFormat=Mono99
    expect_error "bad enumeration entry" 1 "cannot set 'PixelFormat' to 'Mono99'"
    run set 0 Width=999999
    expect_error "out of range" 1 "cannot set 'Width'"
    run set 0 WidthMax=64
    expect_error "read-only" 1 "'WidthMax' is not writable"
    run set 0 NoSuchFeature=1
    expect_error "set unknown feature" 1 "unknown feature"
    run set 0 Width
    expect_error "assignment without =" 2 "expected FEATURE=VALUE"

    run exec 0 TimestampLatch
    expect_ok "exec"
    expect_out "exec" "^TimestampLatch: done$"
    run exec 0 Width
    expect_error "exec of a value" 1 "not a command"
    run exec 0 NoSuchCommand
    expect_error "exec unknown" 1 "unknown feature"

    run save-features 0 camera.txt
    expect_ok "save-features"
    head -2 camera.txt | grep -q "GenApi persistence file" || fail "save-features: file header"
    grep -qP "^Width\t1280$" camera.txt || fail "save-features: Width line"
    sed -i 's/^Width\t1280$/Width\t640/' camera.txt
    run load-features 0 camera.txt
    expect_ok "load-features"
    run load-features 0 missing.txt
    expect_error "load missing file" 1 "cannot read 'missing.txt'"
    echo "Width 640" >plain.txt
    run load-features 0 plain.txt
    expect_error "load foreign file" 1 "cannot load 'plain.txt'"
    run save-features 0 no/such/dir/camera.txt
    expect_error "save to bad path" 1 "cannot write"

    run xml 0
    expect_ok "xml to stdout"
    head -c 200 "$SCRATCH/out" | grep -q "^<?xml" || fail "xml: starts as XML"
    expect_out "xml" "<RegisterDescription"
    cp "$SCRATCH/out" stdout.xml
    run xml OV100000 camera.xml
    expect_ok "xml to file"
    cmp -s stdout.xml camera.xml || fail "xml: file and stdout differ"
    [ ! -e OV100000.xml ] || fail "xml: left the SDK's download in the working directory"
    run xml 0 no/such/dir/camera.xml
    expect_error "xml to bad path" 1 "cannot write"
}

group_stream() {
    run stream 0 --count 5 --buffers 3 --verbose
    expect_ok "stream --count"
    expect_out "counts" "^done: images 5, lost 0, incomplete 0, "
    expect_out "latency" "^latency, camera timestamp to delivery \(host clock\): p50 [0-9.]+ ms, p90 [0-9.]+ ms, p99 [0-9.]+ ms, max [0-9.]+ ms$"
    expect_out "buffers" "^buffers: announced 3, still announced after stop 0$"

    # Into a pipe the progress is plain lines, once a second.
    run stream 0 --seconds 2.5
    expect_ok "stream --seconds"
    expect_out "progress line" "^images [0-9]+, lost"
    expect_out "summary" "^done: images [1-9]"
    ! grep -q $'\r' "$SCRATCH/out" || fail "stream: carriage return into a pipe"

    run stream 0 --count 2 --save pgm --format pgm
    expect_ok "stream --save pgm"
    [ "$(ls pgm | wc -l)" -eq 2 ] && [ "$(head -c 2 pgm/frame-000001.pgm)" = "P5" ] ||
        fail "stream --save pgm: two PGM files"
    run stream 0 --count 1 --save png
    expect_ok "stream --save png"
    [ "$(head -c 4 png/frame-000001.png | tail -c 3)" = "PNG" ] || fail "stream --save: PNG by default"

    export ORVAN_VIRTUAL_CAMERAS=Color
    run stream 0 --count 1 --save bayer --format pgm
    expect_error "format the image has no form in" 1 "BayerRG8"
    unset ORVAN_VIRTUAL_CAMERAS

    run stream 0 --save x --format bmp
    expect_error "unknown format" 2 "unknown image format 'bmp'"
    run stream 0 --format pgm
    expect_error "format without save" 2 "--save"
    run stream 0 --count 0
    expect_error "zero count" 2 "count"
    run stream 0 --buffers 0
    expect_error "zero buffers" 2 "buffers"
    run stream nosuchcamera --count 1
    expect_error "unknown camera" 1 "no camera"

    # Ctrl-C: the stream stops, every buffer is revoked, the summary is printed, exit 130.
    "$ORVAN" stream 0 --verbose >"$SCRATCH/out" 2>"$SCRATCH/err" &
    local pid=$!
    wait_for "$SCRATCH/out" "^streaming with" 30 || fail "ctrl-c: stream never started"
    sleep 0.5
    kill -INT "$pid"
    wait_exit "$pid" 30
    [ "$rc" -eq 130 ] || fail "ctrl-c: exit code 130"
    expect_out "ctrl-c summary" "^interrupted: images [0-9]+, lost 0, incomplete 0, "
    expect_out "ctrl-c buffers" "^buffers: announced [1-9][0-9]*, still announced after stop 0$"
    [ ! -s "$SCRATCH/err" ] || fail "ctrl-c: nothing on stderr"
}

group_log() {
    run log 0
    expect_error "port 0" 2 "port"
    run log http
    expect_error "port not a number" 2 "port"

    # A port pair per process, away from the common ones, so parallel runs do not collide.
    local port=$((20000 + ($$ % 20000)))
    cat >morlu_log.conf <<CONF
{"ports": {"orvan_in": $((port + 1)), "orvan_out": $((port + 2)), "ez_in": $port},
 "levels": {"orvan": 400},
 "logging": {"console": false, "json": false, "file": false}}
CONF
    "$ORVAN" log "$port" >"$SCRATCH/out" 2>"$SCRATCH/err" &
    local pid=$!
    # The viewer may not listen yet when the first record leaves: send until one arrives.
    local tries=100
    until grep -q "(peer) hello viewer" "$SCRATCH/out" || [ $tries -eq 0 ]; do
        "$LOG_PEER" "$SCRATCH" "hello viewer"
        sleep 0.1
        tries=$((tries - 1))
    done
    grep -qE "WARNING.*\(peer\) hello viewer" "$SCRATCH/out" || fail "log: record printed"
    kill -INT "$pid"
    wait_exit "$pid" 30
    [ "$rc" -eq 0 ] || fail "log: exit code 0 after Ctrl-C"
}

"group_$GROUP"
if [ "$failures" -ne 0 ]; then
    echo "$failures check(s) failed in group $GROUP" >&2
    exit 1
fi
echo "group $GROUP: all checks passed"

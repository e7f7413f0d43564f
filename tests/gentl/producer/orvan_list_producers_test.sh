#!/usr/bin/env bash
# orvan_list_producers_test.sh ORVAN PRODUCER_DIR: orvan list names the producer of every camera
# and the producers it skipped, and ORVAN_GENTL_PRODUCERS=0 keeps them all out.
set -u
ORVAN=$1
DIR=$2
SCRATCH=$(mktemp -d "${TMPDIR:-/tmp}/orvan-producers-XXXXXX")
trap 'rm -rf "$SCRATCH"' EXIT
cd "$SCRATCH" || exit 1
export ORVAN_GIGE_INTERFACES= ORVAN_VIRTUAL_CAMERAS=Mono
export GENICAM_GENTL64_PATH="$DIR/good:$DIR/mixed"
failures=0

expect() {
    grep -qE -- "$2" out || { echo "FAIL $1: no line /$2/" >&2; sed 's/^/  /' out >&2; failures=$((failures + 1)); }
}

"$ORVAN" list >out 2>&1
expect "own camera" "^0 +VirtualMono .* libOrvanGenTL\S*$"
expect "foreign camera" "^[0-9]+ +TestCam +TW-0001 +TestWorks .* TestProducer\.cti$"
expect "control-only camera" "^[0-9]+ +TestCam +TW-0000 +TestWorks .* ControlOnly\.cti$"
expect "skip" "^Skipped producer .*/FailsInit\.cti: GCInitLib failed with -1001: no frame grabber found$"

ORVAN_GENTL_PRODUCERS=0 "$ORVAN" list >out 2>&1
if grep -qE "TestCam|Skipped" out; then
    echo "FAIL ORVAN_GENTL_PRODUCERS=0 still loads producers" >&2
    failures=$((failures + 1))
fi
exit $((failures > 0))

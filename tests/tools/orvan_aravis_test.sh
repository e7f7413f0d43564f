#!/usr/bin/env bash
# orvan_aravis_test.sh ORVAN: streams from Debian's independent GigE Vision camera emulator on
# loopback with the tool's defaults, as a new user would: no buffer count, no tuning. That
# camera states no throughput, so the automatic buffer count has to do without it.
set -u

ORVAN=$1
SERIAL=ORVCLI01
EMULATOR=$(command -v arv-fake-gv-camera-0.8) || {
    echo "arv-fake-gv-camera-0.8 is missing (Debian package aravis-tools)" >&2
    exit 1
}

SCRATCH=$(mktemp -d "${TMPDIR:-/tmp}/orvan-aravis-XXXXXX")
"$EMULATOR" -i 127.0.0.1 -s "$SERIAL" >"$SCRATCH/emulator.log" 2>&1 &
emulator=$!
trap 'kill $emulator 2>/dev/null; wait $emulator 2>/dev/null; rm -rf "$SCRATCH"' EXIT
cd "$SCRATCH" || exit 1
export ORVAN_GIGE_INTERFACES=lo

# The emulator answers discovery once it has bound its port.
for _ in $(seq 100); do
    "$ORVAN" list >list.txt 2>&1 && grep -q "$SERIAL" list.txt && break
    kill -0 $emulator 2>/dev/null || { cat "$SCRATCH/emulator.log" >&2; exit 1; }
    sleep 0.2
done
grep -q "$SERIAL" list.txt || { echo "FAIL: the emulator was never listed" >&2; cat list.txt >&2; exit 1; }

"$ORVAN" stream "$SERIAL" --count 100 >out.txt 2>err.txt
rc=$?
if [ $rc -ne 0 ] || ! grep -qE "^done: images 100, lost 0, incomplete 0, " out.txt; then
    echo "FAIL: orvan stream $SERIAL --count 100 (exit code $rc)" >&2
    sed 's/^/  stdout: /' out.txt >&2
    sed 's/^/  stderr: /' err.txt >&2
    exit 1
fi
echo "orvan stream $SERIAL: 100 images, none lost"

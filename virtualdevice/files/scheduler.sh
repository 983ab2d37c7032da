#!/bin/sh
# What can happen to the print scheduler of a virtual device.
# scheduler kill|start|pause|resume|pid|run
set -eu
place=${0%/*}

has_state() {
    grep -q "^State:[[:space:]]*$1" "/proc/$pid/status" 2>/dev/null
}

# Not somebody else who got the number after the scheduler had gone, nor what is left of it.
runs() {
    [ "$(readlink "/proc/$pid/exe")" = "$place/cupsd" ]
}

must_run() {
    runs || { echo "The scheduler does not run." >&2; exit 1; }
}

# A device has its scheduler from the beginning; PID is empty only for `run`, before that.
pid=
[ ! -e "$place/pid" ] || read -r pid <"$place/pid"

case ${1-} in
kill)
    must_run
    kill -s KILL "$pid"
    until ! kill -s 0 "$pid" 2>/dev/null || has_state Z; do sleep 0.005; done
    ;;
start)
    if runs; then
        echo "The scheduler runs already, as process $pid." >&2
        exit 1
    fi
    setsid "$0" run </dev/null >>"$ZBVIRTUALDEVICE_DIRECTORY/log/cupsd.log" 2>&1 &
    until CUPS_SERVER=$place/cups.sock LC_ALL=C lpstat -r | grep -q 'is running'; do
        kill -s 0 $! || exit 1
        sleep 0.005
    done
    ;;
pause)
    must_run
    kill -s STOP "$pid"
    until has_state T; do sleep 0.005; done
    ;;
resume)
    must_run
    kill -s CONT "$pid"
    ;;
pid)
    echo "$pid"
    ;;
run)
    echo $$ >"$place/pid"
    exec "$place/cupsd" -f -c "$place/etc/cupsd.conf" -s "$place/etc/cups-files.conf"
    ;;
*)
    sed -n '2,3s/^# //p' "$0" >&2
    exit 2
    ;;
esac

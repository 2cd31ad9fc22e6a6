#!/usr/bin/env bash
# Measures Varnel against the floor program (bench/floor.cpp) side by side in one run and prints
# the ratios. A benchmark, not a test: the figures depend on the machine, only their ratios mean
# something.
#
#   ./scripts/bench.sh [build-dir]
#
# Knobs (environment): IDLE_SECONDS (30), SYSCALL_SECONDS (20), PAIRS (10), SETTLE_SECONDS (12).
# Both programs run from throw-away copies of the install folder, with a private HOME, runtime
# folder, temp folder and session bus, and desktop settings kept in memory.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
build=$(realpath "${1:-build}")
idle_seconds=${IDLE_SECONDS:-30}
syscall_seconds=${SYSCALL_SECONDS:-20}
pairs=${PAIRS:-10}
settle=${SETTLE_SECONDS:-12}

# Tools: strace and valgrind are only needed here, so they are installed here.
missing=()
for tool in strace:strace valgrind:valgrind Xvfb:xvfb dbus-daemon:dbus; do
  command -v "${tool%%:*}" >/dev/null || missing+=("${tool#*:}")
done
if [ "${#missing[@]}" -gt 0 ]; then
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}"
fi

if [ ! -x "$build/stage/varnel" ] || [ ! -x "$build/bench/varnel-floor" ] ||
  [ ! -f "$build/bench/libvarnel-benchhook.so" ]; then
  ./scripts/build.sh "$build"
fi
hook=$build/bench/libvarnel-benchhook.so

work=$(mktemp -d /tmp/varnel-bench.XXXXXX)
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# One install folder per situation: hidden in the tray, shown, shown with power modes on.
make_install() { # name, then "key=value" lines for settings/varnel.ini
  local dir=$work/$1
  shift
  cp -a "$build/stage" "$dir"
  cp "$build/bench/varnel-floor" "$dir/"
  mkdir -p "$dir/settings"
  { echo "[settings]"; printf '%s\n' "$@"; } >"$dir/settings/varnel.ini"
}
make_install hidden start_hidden=true
make_install shown start_hidden=false
make_install modes start_hidden=false enable_power_modes=true powermode=normal

export HOME=$work/home XDG_CONFIG_HOME=$work/home/.config XDG_RUNTIME_DIR=$work/run \
  TMPDIR=$work/tmp GSETTINGS_BACKEND=memory QT_LOGGING_RULES="*.debug=false"
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$TMPDIR" && mkdir -m 700 "$XDG_RUNTIME_DIR"
unset DBUS_SESSION_BUS_ADDRESS
read -r bus_address bus_pid < <(dbus-daemon --session --fork --print-address=1 --print-pid=1 |
  paste -sd' ')
pids+=("$bus_pid")
export DBUS_SESSION_BUS_ADDRESS=$bus_address

program() { [ "$1" = varnel ] && echo ./varnel || echo ./varnel-floor; }

# Nanoseconds on the CPU of every thread of a process, from its schedstat.
cpu_ns() {
  local sum=0 t
  for t in /proc/"$1"/task/*/schedstat; do
    read -r run _ <"$t" 2>/dev/null && sum=$((sum + run))
  done
  echo "$sum"
}

# Counts what a process does while left alone: every syscall, and the ones that create, delete,
# rewrite or sync a file, or list a folder.
idle_trace() { # pid, log
  timeout -s INT "$syscall_seconds" strace -f -qq -o "$2" -p "$1" 2>/dev/null || true
}
syscalls() { grep -cv 'resumed>\|^[0-9]* +++\|^[0-9]* ---' "$1" || true; }
file_changes() {
  grep -cE 'openat\(.*O_(WRONLY|RDWR|CREAT)|unlink|rename|mkdir|rmdir|fsync|fdatasync|ftruncate' "$1" || true
}
folder_scans() { grep -c 'getdents' "$1" || true; }

declare -A idle_ms rss_kb calls changes scans instr start_ms stall_ms

echo "Idle, hidden in the tray, offscreen: both programs, settling ${settle} s..." >&2
cd "$work/hidden"
declare -A pid
for p in varnel floor; do
  QT_QPA_PLATFORM=offscreen $(program $p) >/dev/null 2>&1 &
  pid[$p]=$!
  pids+=("${pid[$p]}")
done
sleep "$settle"
# Three slices; the median slice, scaled to the whole time, keeps one stray wake-up (of either
# program, or of the machine) from deciding the ratio.
declare -A cpu0 slices
for slice in 1 2 3; do
  for p in varnel floor; do cpu0[$p]=$(cpu_ns "${pid[$p]}"); done
  sleep "$(awk -v s="$idle_seconds" 'BEGIN{print s/3}')"
  for p in varnel floor; do slices[$p]+="$(($(cpu_ns "${pid[$p]}") - cpu0[$p])) "; done
done
for p in varnel floor; do
  idle_ms[$p]=$(echo "${slices[$p]}" | tr ' ' '\n' | grep . | sort -n | sed -n 2p |
    awk '{printf "%.2f", $1 * 3 / 1e6}')
  rss_kb[$p]=$(awk '/^VmRSS/ {print $2}' /proc/"${pid[$p]}"/status)
done
echo "Idle syscalls for ${syscall_seconds} s..." >&2
for p in varnel floor; do idle_trace "${pid[$p]}" "$work/$p.strace" & done
wait_traces() { while pgrep -f "strace -f -qq -o $work" >/dev/null; do sleep 1; done; }
sleep "$syscall_seconds"
wait_traces
for p in varnel floor; do
  calls[$p]=$(syscalls "$work/$p.strace")
  changes[$p]=$(file_changes "$work/$p.strace")
  scans[$p]=$(folder_scans "$work/$p.strace")
  kill "${pid[$p]}" 2>/dev/null || true
done
wait "${pid[varnel]}" "${pid[floor]}" 2>/dev/null || true

echo "Instructions from exec to the first idle event loop (callgrind)..." >&2
for p in varnel floor; do
  VARNEL_BENCH_HOOK=idle LD_PRELOAD=$hook QT_QPA_PLATFORM=offscreen \
    valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$work/$p.callgrind" \
    $(program $p) >/dev/null 2>&1 &
  pid[$p]=$!
done
wait "${pid[varnel]}" "${pid[floor]}" || true
for p in varnel floor; do
  instr[$p]=$(awk '/Collected :/ {print $NF}' "$work/$p.callgrind")
done

# The GUI runs below need a display: a private Xvfb on a free display number.
display=""
for n in $(shuf -i 200-599 -n 20); do
  [ -e /tmp/.X11-unix/X$n ] || [ -e /tmp/.X$n-lock ] && continue
  Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
  pids+=($!)
  sleep 1
  [ -e /tmp/.X11-unix/X$n ] && { display=":$n"; break; }
done
[ -n "$display" ] || { echo "no Xvfb display could be started" >&2; exit 1; }

echo "Exec to window mapped, $pairs alternating pairs under Xvfb..." >&2
cd "$work/shown"
declare -A starts
for i in $(seq 1 "$pairs"); do
  order="varnel floor"
  [ $((i % 2)) -eq 0 ] && order="floor varnel"
  for p in $order; do
    out=$work/$p.mapped
    rm -f "$out"
    begin=${EPOCHREALTIME/./}
    DISPLAY=$display VARNEL_BENCH_HOOK=mapped VARNEL_BENCH_OUT=$out LD_PRELOAD=$hook \
      $(program $p) >/dev/null 2>&1 || true
    mapped=$(awk '{print $2}' "$out")
    starts[$p]+="$(((mapped / 1000 - begin) / 1000)) "
  done
done
median() { tr ' ' '\n' | grep . | sort -n | awk '{v[NR]=$1} END {print v[int((NR+1)/2)]}'; }
for p in varnel floor; do start_ms[$p]=$(echo "${starts[$p]}" | median); done

echo "Longest GUI-thread stall after start-up, window shown, first ticks included..." >&2
for p in varnel floor; do
  out=$work/$p.stall
  DISPLAY=$display VARNEL_BENCH_HOOK=stall VARNEL_BENCH_SECONDS=8 VARNEL_BENCH_OUT=$out \
    LD_PRELOAD=$hook $(program $p) >/dev/null 2>&1 || true
  stall_ms[$p]=$(awk '{print $2}' "$out")
done

echo "Power-mode switches from the tray..." >&2
cd "$work/modes"
out=$work/varnel.switch
QT_QPA_PLATFORM=offscreen VARNEL_BENCH_HOOK=switch VARNEL_BENCH_OUT=$out LD_PRELOAD=$hook \
  ./varnel >/dev/null 2>&1 || true
read -r _ switch_median switch_max switch_first wall_median wall_max <"$out" || true

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b > 0) printf "%.2fx", a / b; else print "-" }'; }
row() { printf '%-50s %14s %10s %8s   %s\n' "$@"; }
echo
echo "Varnel against the floor, $(date -u '+%Y-%m-%d %H:%M UTC'), commit $(git -C "$root" rev-parse --short HEAD)"
echo "$(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg); idle ${idle_seconds} s after ${settle} s, syscalls ${syscall_seconds} s, $pairs pairs"
row "measure" "varnel" "floor" "ratio" "target"
row "idle CPU time, ms in ${idle_seconds} s (median third x3)" "${idle_ms[varnel]}" "${idle_ms[floor]}" \
  "$(ratio "${idle_ms[varnel]}" "${idle_ms[floor]}")" "at most 3x"
row "idle syscalls in ${syscall_seconds} s" "${calls[varnel]}" "${calls[floor]}" \
  "$(ratio "${calls[varnel]}" "${calls[floor]}")" "at most 10x"
row "idle files created/deleted/rewritten/synced" "${changes[varnel]}" "${changes[floor]}" "" "none"
row "idle folder listings" "${scans[varnel]}" "${scans[floor]}" "" "none"
row "instructions to first idle loop, M" \
  "$(awk -v n="${instr[varnel]}" 'BEGIN{printf "%.1f", n/1e6}')" \
  "$(awk -v n="${instr[floor]}" 'BEGIN{printf "%.1f", n/1e6}')" \
  "$(ratio "${instr[varnel]}" "${instr[floor]}")" "at most 2.5x"
row "steady RSS offscreen, KiB" "${rss_kb[varnel]}" "${rss_kb[floor]}" \
  "$(ratio "${rss_kb[varnel]}" "${rss_kb[floor]}")" "at most 1.3x"
row "exec to window mapped, median ms" "${start_ms[varnel]}" "${start_ms[floor]}" \
  "$(ratio "${start_ms[varnel]}" "${start_ms[floor]}")" "close to 1x"
row "longest GUI-thread stall after start, ms" "${stall_ms[varnel]}" "${stall_ms[floor]}" "" \
  "under 50 ms"
row "power-mode switch, GUI-thread CPU, median / max ms" "${switch_median:-?} / ${switch_max:-?}" \
  "" "" "under 10 ms"
row "  the first switch (decodes the tray icons), ms" "${switch_first:-?}" "" "" ""
row "  wall time, disk writes included, median / max ms" "${wall_median:-?} / ${wall_max:-?}" "" "" ""

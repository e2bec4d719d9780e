#!/usr/bin/env bash
# End-to-end checks: the real ksetup in a real pseudo-terminal (a private tmux server), one
# fresh program directory per case. Keys go in with `tmux send-keys`, the screen comes back with
# `tmux capture-pane`, and every wait polls for a condition with a generous timeout.
#
#   run.sh <path of ksetup> <build dir>
#
# Exit status: 0 all passed, 1 a case failed, 77 skipped (no tmux).
set -u

if [ $# -ne 2 ]; then
  echo "usage: $0 <path of ksetup> <build dir>" >&2
  exit 2
fi
KSETUP_BIN=$1
BUILD_DIR=$2

if ! command -v tmux >/dev/null 2>&1; then
  echo "tmux is not installed: end-to-end tests skipped"
  exit 77
fi

# Everything on the screen is compared as UTF-8 text.
export LC_ALL=C.UTF-8

WORK=$(mktemp -d "${TMPDIR:-/tmp}/ks-e2e.XXXXXX")
SOCKET=ks-e2e-$$
tmx() { tmux -L "$SOCKET" -f /dev/null "$@"; }
cleanup() {
  tmx kill-server >/dev/null 2>&1
  rm -rf "$WORK"
}
trap cleanup EXIT
trap 'exit 1' INT TERM HUP

# A private copy of the binary: a setup.ksx lying beside the real one (a developer's own test
# run in the build directory) would win over KESTRA and point every case at the wrong file.
mkdir "$WORK/bin"
cp "$KSETUP_BIN" "$WORK/bin/ksetup" || exit 1
KSETUP=$WORK/bin/ksetup
MKDEMO=$BUILD_DIR/mkdemo

TIMEOUT_TICKS=200 # 10 s at one look every 0.05 s
SETUP_SIZE=17884
PAST=946684800 # 2000-01-01 00:00:00 UTC, the time stamp the cases put on setup.ksx

failures=0
SESSION=
DIR=
STATUS=
WHY=

# ---- helpers --------------------------------------------------------------------------------

# start NAME DIR [ARGS...]: runs ksetup on program directory DIR in a new 80x25 session. When
# the program ends its exit status goes to $STATUS; the pane then stays as the program left it
# until the server is killed at the end of the run. $START_ENV holds further NAME=VALUE words
# for the program's otherwise empty environment.
start() {
  SESSION=$1
  DIR=$2
  shift 2
  STATUS=$WORK/$SESSION.status
  WHY=
  tmx new-session -d -s "$SESSION" -x 80 -y 25 -- \
    sh -c 'st=$1; shift; "$@"; echo "EXIT=$?" > "$st.new"; mv "$st.new" "$st"; exec tail -f /dev/null' \
    sh "$STATUS" env -i PATH=/usr/bin:/bin HOME="$WORK" LC_ALL=C.UTF-8 TERM=xterm-256color \
    ${START_ENV:-} KESTRA="$DIR" "$KSETUP" "$@"
}

pane() { tmx capture-pane -p -t "$SESSION"; }
row() { pane | sed -n "$1p"; }
keys() { tmx send-keys -t "$SESSION" "$@"; }

# wait_text TEXT [ROW]: until TEXT shows on the screen (on row ROW when given).
wait_text() {
  local i
  for ((i = 0; i < TIMEOUT_TICKS; i++)); do
    if [ $# -ge 2 ]; then
      case $(row "$2") in *"$1"*) return 0 ;; esac
    else
      pane | grep -qF -- "$1" && return 0
    fi
    sleep 0.05
  done
  WHY="\"$1\" did not appear${2:+ on row $2}"
  return 1
}

# wait_exit: until the program has ended with status 0.
wait_exit() {
  local i
  for ((i = 0; i < TIMEOUT_TICKS; i++)); do
    if [ -f "$STATUS" ]; then
      [ "$(cat "$STATUS")" = "EXIT=0" ] && return 0
      WHY="program ended with $(cat "$STATUS"), expected EXIT=0"
      return 1
    fi
    sleep 0.05
  done
  WHY="program did not end"
  return 1
}

fail() {
  WHY=$1
  return 1
}

mtime() { stat -c %Y "$1"; }
first_byte() { od -An -tu1 -N1 "$1" | tr -d ' '; }

# check_setup FILE: the setup file has its fixed size and revision byte.
check_setup() {
  [ -f "$1" ] || fail "$1 missing" || return 1
  [ "$(stat -c %s "$1")" = "$SETUP_SIZE" ] || fail "$1 is $(stat -c %s "$1") bytes" || return 1
  [ "$(first_byte "$1")" = 18 ] || fail "$1 starts with byte $(first_byte "$1")"
}

# check_header_left: after the end only the four header rows stay, the rest is blank.
check_header_left() {
  local screen
  screen=$(pane)
  case $(sed -n 1p <<<"$screen") in "╔"*"╗") ;; *) fail "row 1 is not the header frame" || return 1 ;; esac
  case $(sed -n 2p <<<"$screen") in "║ KESTRA 6.1.7-"*) ;; *) fail "row 2 is not the header" || return 1 ;; esac
  case $(sed -n 4p <<<"$screen") in "╚"*"╝") ;; *) fail "row 4 is not the header frame" || return 1 ;; esac
  [ -z "$(sed -n '5,$p' <<<"$screen" | tr -d ' \n')" ] || fail "rows below the header not cleared"
}

new_dir() { mktemp -d "$WORK/dir.XXXXXX"; }

demo_dir() {
  local d
  d=$(new_dir)
  "$MKDEMO" "$d" >/dev/null || return 1
  touch -d @"$PAST" "$d/setup.ksx"
  echo "$d"
}

# run_case NAME FUNCTION: one line per case; on failure the reason and the screen.
run_case() {
  local name=$1
  if "$2"; then
    echo "ok   $name"
  else
    echo "FAIL $name: ${WHY:-failed}"
    if [ -n "$SESSION" ]; then
      echo "---- screen of session $SESSION ----"
      pane 2>/dev/null | sed 's/^/| /'
      echo "-------------------------------------"
    fi
    failures=$((failures + 1))
  fi
  [ -n "$SESSION" ] && tmx kill-session -t "$SESSION" >/dev/null 2>&1
  SESSION=
}

# ---- cases ----------------------------------------------------------------------------------

case_create() {
  start create "$(new_dir)"
  wait_text "File not found, create a new one?" || return 1
  wait_text "Yes    No" || return 1
  [ ! -e "$DIR/setup.ksx" ] || fail "setup.ksx written before the answer" || return 1
  keys Enter
  wait_text "Miscellaneous system parameters" 25 || return 1
  pane | grep -qF "═ Main ═" || fail "no Main menu box" || return 1
  pane | grep -qF "║ System data " || fail "no System data item" || return 1
  pane | grep -qF "║ Exit program " || fail "no Exit program item" || return 1
  check_setup "$DIR/setup.ksx" || return 1
  keys F10
  wait_exit || return 1
  check_setup "$DIR/setup.ksx" || return 1
  check_header_left
}

case_usage() {
  start usage "$(new_dir)" /mono
  wait_exit || return 1
  local screen
  screen=$(pane)
  # The banner comes first, in yellow, then the rights line, a blank line and the usage text.
  case $(sed -n 1p <<<"$screen") in "KESTRA 6.1.7-"*" Setup program "*) ;; *) fail "no banner on row 1" || return 1 ;; esac
  tmx capture-pane -p -e -t "$SESSION" | head -n 1 | grep -qF $'\e[93m' ||
    fail "banner is not yellow" || return 1
  local expected
  expected=$(printf '%s\n' "Usage:" "" "   KSETUP [command] [switches]" "" "Commands" \
    "   Index    Rebuild index files" "   Pack     Pack data files" "" "Switches" \
    "   -Mono    Force mono mode" "   -Color   Force color mode" \
    "   -SFI     Force Speech Friendly Interface")
  [ "$(sed -n 4,15p <<<"$screen")" = "$expected" ] || fail "usage text differs" || return 1
  [ ! -e "$DIR/setup.ksx" ] || fail "setup.ksx created"
}

case_busy() {
  local d before
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  touch "$d/kestra.bsy"
  before=$(cd "$d" && ls -l --time-style=+%s && cksum setup.ksx)
  start busy "$d" Index
  wait_exit || return 1
  pane | grep -qxF "KESTRA/KSETUP is currently busy in another task" ||
    fail "no busy message" || return 1
  case $(row 1) in "KESTRA 6.1.7-"*) ;; *) fail "no banner on row 1" || return 1 ;; esac
  [ "$(cd "$d" && ls -l --time-style=+%s && cksum setup.ksx)" = "$before" ] ||
    fail "program directory changed while busy"
}

case_f10_f9() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  cp "$d/setup.ksx" "$WORK/demo.ksx"
  start f10 "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  wait_text "2:280/5555" 2 || return 1
  keys F10
  wait_exit || return 1
  check_setup "$d/setup.ksx" || return 1
  [ "$(mtime "$d/setup.ksx")" -gt "$PAST" ] || fail "F10 did not write setup.ksx" || return 1
  cmp -s "$d/setup.ksx" "$WORK/demo.ksx" || fail "F10 changed an unchanged configuration" || return 1
  check_header_left || return 1
  tmx kill-session -t "$SESSION"

  touch -d @"$PAST" "$d/setup.ksx"
  start f9 "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  keys F9
  wait_exit || return 1
  [ "$(mtime "$d/setup.ksx")" = "$PAST" ] || fail "F9 wrote setup.ksx" || return 1
  cmp -s "$d/setup.ksx" "$WORK/demo.ksx" || fail "F9 changed setup.ksx" || return 1
  # The atomic save leaves no temporary file behind.
  local extra
  extra=$(ls "$d" | grep -vxE 'KESTRA\.DOC|KS_DOC\.IDX|FILEAREA\.LST|setup\.ksx|[A-Z]+\.(KSX|IDX)' | tr '\n' ' ')
  [ -z "$extra" ] || fail "unexpected files: $extra" || return 1
  check_header_left
}

case_exit_item() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start exit "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  keys End
  wait_text "Exit program" 25 || return 1
  keys Enter
  # An unchanged configuration ends without the save question.
  wait_exit || return 1
  [ "$(mtime "$d/setup.ksx")" = "$PAST" ] || fail "setup.ksx written" || return 1
  check_header_left
}

case_help_chart() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start help "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  # F1 shows the highlighted item's own topic ...
  keys F1
  wait_text "F-find" 25 || return 1
  wait_text "═ System data ═" 5 || return 1
  keys Escape
  wait_text "Miscellaneous system parameters" 25 || return 1
  # ... and the menu's topic for an item without one ("Echomail system").
  keys Down Down
  wait_text "Echomail configuration" 25 || return 1
  keys F1
  wait_text "F-find" 25 || return 1
  wait_text "═ KSETUP main menu ═" 5 || return 1
  keys Escape
  wait_text "Echomail configuration" 25 || return 1
  pane | grep -qF "═ Main ═" || fail "main menu not back after the help" || return 1
  # Alt-Z opens the character chart from anywhere.
  keys M-z
  wait_text "═ Character chart ═" || return 1
  keys Escape
  wait_text "Echomail configuration" 25 || return 1
  ! pane | grep -qF "Character chart" || fail "chart still open" || return 1
  keys F9
  wait_exit
}

size() { stat -c %s "$1"; }

case_index_pack() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  [ "$(size "$d/FAREAS.KSX")" = $((5 * 2539)) ] || fail "demo FAREAS.KSX has $(size "$d/FAREAS.KSX") bytes" || return 1
  # A damaged index is rebuilt by Index: five 44-byte entries, "FIDOSOFT" first.
  head -c 50 "$d/FAREAS.IDX" >"$d/idx" && mv "$d/idx" "$d/FAREAS.IDX"
  rm "$d/HATCH.IDX"
  start index "$d" Index
  wait_exit || return 1
  check_header_left || return 1
  [ "$(size "$d/FAREAS.IDX")" = 220 ] || fail "FAREAS.IDX has $(size "$d/FAREAS.IDX") bytes" || return 1
  [ "$(head -c 9 "$d/FAREAS.IDX" | tail -c 8)" = FIDOSOFT ] || fail "FAREAS.IDX not sorted" || return 1
  [ ! -e "$d/HATCH.IDX" ] || fail "HATCH without index was not skipped" || return 1
  # Dropping the first index entry deletes that fileecho; Pack removes its record for good.
  tail -c 176 "$d/FAREAS.IDX" >"$d/idx" && mv "$d/idx" "$d/FAREAS.IDX"
  start pack "$d" pack
  wait_exit || return 1
  check_header_left || return 1
  [ "$(size "$d/FAREAS.KSX")" = $((4 * 2539)) ] || fail "FAREAS.KSX has $(size "$d/FAREAS.KSX") bytes after Pack" || return 1
  [ "$(size "$d/FAREAS.IDX")" = 176 ] || fail "FAREAS.IDX has $(size "$d/FAREAS.IDX") bytes after Pack" || return 1
  ! grep -q FIDOSOFT "$d/FAREAS.KSX" || fail "the deleted fileecho survived the pack" || return 1
  [ ! -e "$d/FAREAS.\$\$\$" ] || fail "scratch file left behind"
}

# byte_at FILE OFFSET: one byte as a number.
byte_at() { od -An -tu1 -j "$2" -N1 "$1" | tr -d ' '; }
# str_at FILE OFFSET: the length-prefixed string at OFFSET.
str_at() { dd if="$1" bs=1 skip=$(($2 + 1)) count="$(byte_at "$1" "$2")" 2>/dev/null; }

case_lists() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start lists "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  # FileFind areas (records of 8400 bytes, index entries of 58): copy, edit, delete.
  keys Down Enter
  wait_text "Local FileFind requests" || return 1
  keys F6
  wait_text "Adding new entry" || return 1
  keys "Zeta area" Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text " 2/2 " || return 1
  [ "$(size "$d/AREAS.KSX")" = 16800 ] || fail "AREAS.KSX has $(size "$d/AREAS.KSX") bytes" || return 1
  [ "$(str_at "$d/AREAS.IDX" 58)" = "Zeta area" ] || fail "new entry not second in AREAS.IDX" || return 1
  keys Enter
  wait_text "Editing entry" || return 1
  keys End " II" Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "Zeta area II" || return 1
  [ "$(size "$d/AREAS.KSX")" = 16800 ] || fail "the edit appended a record" || return 1
  [ "$(str_at "$d/AREAS.KSX" 8400)" = "Zeta area II" ] || fail "edit not written in place" || return 1
  keys Home Delete
  wait_text "Delete this entry?" || return 1
  keys Tab Enter
  wait_text " 1/1 " || return 1
  [ "$(size "$d/AREAS.IDX")" = 58 ] || fail "AREAS.IDX has $(size "$d/AREAS.IDX") bytes" || return 1
  [ "$(str_at "$d/AREAS.IDX" 0)" = "Zeta area II" ] || fail "wrong entry deleted" || return 1
  [ "$(byte_at "$d/AREAS.KSX" 0)" = 0 ] || fail "deleted record keeps its key" || return 1
  keys Escape
  wait_text "FileFind message area configuration" 25 || return 1
  # Hatch manager (records of 242 bytes, entries of 43): add an entry that sorts first, delete
  # the one that was there.
  keys Down Down Enter
  wait_text "Fileecho maintenance" 25 || return 1
  keys Down Down Down Enter
  wait_text "The weekly nodelist" || return 1
  keys Insert
  wait_text "Adding new entry" || return 1
  keys LINUX Tab "/srv/iso/*.iso" Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text " 1/2 " || return 1
  [ "$(size "$d/HATCH.KSX")" = 484 ] || fail "HATCH.KSX has $(size "$d/HATCH.KSX") bytes" || return 1
  [ "$(str_at "$d/HATCH.KSX" 242)" = LINUX ] || fail "hatch area not upper case" || return 1
  [ "$(str_at "$d/HATCH.KSX" 283)" = "/srv/iso/*.iso" ] || fail "hatch file spec" || return 1
  keys End Delete
  wait_text "Delete this entry?" || return 1
  keys Tab Enter
  wait_text " 1/1 " || return 1
  [ "$(size "$d/HATCH.IDX")" = 43 ] || fail "HATCH.IDX has $(size "$d/HATCH.IDX") bytes" || return 1
  [ "$(str_at "$d/HATCH.IDX" 0)" = LINUX ] || fail "wrong hatch entry deleted" || return 1
  keys F10
  wait_text "Internal hatch manager" 25 || return 1
  keys F10
  wait_text "Fileecho configuration" 25 || return 1
  keys F9
  wait_exit || return 1
  # The companion files are gone with the lists.
  ! ls "$d"/C*0.tmp >/dev/null 2>&1 || fail "companion file left behind"
}

# esc N: N presses of Esc, apart, so that the terminal does not take two as one Esc pair.
esc() {
  local i
  for ((i = 0; i < $1; i++)); do
    keys Escape
    sleep 0.15
  done
}

# hex FILE: the whole file as one line of hexadecimal digits.
hex() { od -An -tx1 -v "$1" | tr -d ' \n'; }
# Network addresses as they lie in the records: zone, net, node, point, each 16-bit LE.
ADDR_200=02001801c8000000  # 2:280/200
ADDR_300=020018012c010000  # 2:280/300

case_fileecho_node() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start fenode "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  # A new node, 2:280/200.
  keys Down Down Down Down Down Down Down Down Enter
  wait_text "Node manager" || return 1
  keys Insert
  wait_text "Adding new entry" || return 1
  keys "2:280/200" Down "New Sysop" Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "New Sysop" || return 1
  keys Escape
  wait_text "Connected systems configuration" 25 || return 1
  # A new fileecho with the node connected, and the node added to an existing one.
  keys Up Up Up Up Up Enter
  wait_text "Fileecho maintenance" 25 || return 1
  keys Enter
  wait_text "F2-global F3-advanced" || return 1
  keys Insert
  wait_text "Adding new entry" || return 1
  keys NEWECHO Down "New files" Down "$d/newecho" Down
  wait_text "Create directory?" || return 1
  keys Enter PgDn Enter Insert "2:280/200"
  esc 3
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "NEWECHO" || return 1
  [ -d "$d/newecho" ] || fail "destination directory not created" || return 1
  keys Home Enter PgDn Enter Insert "2:280/200"
  esc 3
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text " 1/6 " || return 1
  [ "$(size "$d/FAREAS.KSX")" = $((6 * 2539)) ] || fail "FAREAS.KSX has $(size "$d/FAREAS.KSX") bytes" || return 1
  [ "$(hex "$d/FAREAS.KSX" | grep -o "$ADDR_200" | wc -l)" = 2 ] || fail "node not connected to two fileechos" || return 1
  keys F10
  wait_text "Fileecho maintenance" 25 || return 1
  keys F10
  wait_text "Fileecho configuration" 25 || return 1
  # The node's address changes to 2:280/300 everywhere.
  keys Down Down Down Down Down Enter
  wait_text "Node manager" || return 1
  keys F4
  wait_text "to search for" || return 1
  keys "2:280/200" Enter
  wait_text "New Sysop" || return 1
  keys Enter "2:280/300" Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "Replace node in rest of setup?" || return 1
  keys Enter
  wait_text "Replaced node in 2 place(s)" || return 1
  keys Enter Escape
  wait_text "Connected systems configuration" 25 || return 1
  keys F9
  wait_exit || return 1
  local f
  for f in FAREAS NODEFILE; do
    hex "$d/$f.KSX" | grep -q "$ADDR_200" && { fail "2:280/200 left in $f.KSX"; return 1; }
  done
  [ "$(hex "$d/FAREAS.KSX" | grep -o "$ADDR_300" | wc -l)" = 2 ] || fail "FAREAS.KSX does not name 2:280/300 twice" || return 1
  hex "$d/NODEFILE.KSX" | grep -q "$ADDR_300" || fail "NODEFILE.KSX lacks 2:280/300" || return 1
  # Files that did not name the node are byte-identical to the demo's.
  local fresh
  fresh=$(new_dir)
  "$MKDEMO" "$fresh" >/dev/null
  for f in MGICFILE REPORTS GRPFILE MAREAS HATCH; do
    cmp -s "$d/$f.KSX" "$fresh/$f.KSX" || { fail "$f.KSX changed"; return 1; }
  done
}

# drawn W H STATUS TEXT: the screen is drawn for W x H: the header across the width with the
# address two columns and "F1=Help" nine columns from the right edge, STATUS at the start of the
# last row, desktop on the row above it, and TEXT somewhere. WHY says what is not.
drawn() {
  local w=$1 h=$2 screen line
  screen=$(pane)
  line=$(sed -n 1p <<<"$screen")
  [ "${#line}" = "$w" ] && [ "${line: -1}" = "╗" ] || fail "row 1 is not a header of $w columns" || return 1
  line=$(sed -n 2p <<<"$screen")
  [ "${#line}" = "$w" ] && [ "${line: -12}" = "2:280/5555 ║" ] || fail "address not at the right edge" || return 1
  line=$(sed -n 3p <<<"$screen")
  [ "${line: -10}" = "F1=Help  ║" ] || fail "F1=Help not at the right edge" || return 1
  case $(sed -n "${h}p" <<<"$screen") in "$3"*) ;; *) fail "\"$3\" not on row $h" || return 1 ;; esac
  [ "$(sed -n "$((h - 1))p" <<<"$screen")" = "$(printf '▒%.0s' $(seq "$w"))" ] ||
    fail "row $((h - 1)) is not desktop" || return 1
  grep -qF -- "$4" <<<"$screen" || fail "\"$4\" missing at ${w}x$h"
}

# check_drawn W H STATUS TEXT: waits until the screen is drawn so (a resize takes a moment).
check_drawn() {
  local i
  for ((i = 0; i < TIMEOUT_TICKS; i++)); do
    drawn "$@" && return 0
    sleep 0.05
  done
  return 1
}

# resize_cycle STATUS TEXT: 80x25 -> 100x30 -> 80x25 -> 60x20 -> 80x25. Below 80x25 a message
# asks for a larger window; at every step the program lives on and is drawn for the size.
resize_cycle() {
  local size
  for size in 100x30 80x25 60x20 80x25; do
    tmx resize-window -t "$SESSION" -x "${size%x*}" -y "${size#*x}"
    if [ "$size" = 60x20 ]; then
      wait_text "needs a window of at least 80x25 (now 60x20)" || return 1
    else
      check_drawn "${size%x*}" "${size#*x}" "$1" "$2" || return 1
    fi
    [ ! -f "$STATUS" ] || fail "program ended at $size" || return 1
  done
}

case_resize() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start resize "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  resize_cycle "Miscellaneous system parameters" "═ Main ═" || return 1
  # The same inside a fileecho page, with an edit going on before, during and after.
  keys Down Down Down Enter
  wait_text "Fileecho maintenance" 25 || return 1
  keys Enter
  wait_text "F2-global F3-advanced" || return 1
  keys Enter
  wait_text "Editing entry" 4 || return 1
  keys Down End " XY"
  wait_text "software XY" || return 1
  resize_cycle "Fileecho description" "FidoNet related software XY " || return 1
  tmx resize-window -t "$SESSION" -x 100 -y 30
  check_drawn 100 30 "Fileecho description" "Editing entry" || return 1
  keys Z
  wait_text "software XYZ" || return 1
  keys Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "Enter-edit" 30 || return 1
  keys Escape
  wait_text "Fileecho maintenance" 30 || return 1
  keys F9
  wait_text "Fileecho configuration" 30 || return 1
  keys F9
  wait_exit || return 1
  grep -qa "FidoNet related software XYZ" "$d/FAREAS.KSX" || fail "the edit did not reach FAREAS.KSX"
}

# ---- settings screens -----------------------------------------------------------------------

u8_at() { od -An -tu1 -j "$2" -N1 "$1" | tr -d ' '; }
u16_at() { od -An -tu2 -j "$2" -N2 "$1" | tr -d ' '; }
# pstr_at FILE OFFSET: the length-prefixed string at OFFSET.
pstr_at() { dd if="$1" bs=1 skip=$(($2 + 1)) count="$(u8_at "$1" "$2")" status=none; }

# wait_byte FILE OFFSET VALUE: until the byte at OFFSET of FILE is VALUE.
wait_byte() {
  local i
  for ((i = 0; i < TIMEOUT_TICKS; i++)); do
    [ "$(u8_at "$1" "$2")" = "$3" ] && return 0
    sleep 0.05
  done
  WHY="byte $2 of $1 is $(u8_at "$1" "$2"), not $3"
  return 1
}

# open_item TITLE [DOWNS]: from a menu, highlights the item DOWNS rows down and waits for the
# window titled TITLE.
open_item() {
  local i
  for ((i = 0; i < ${2:-0}; i++)); do keys Down; done
  keys Enter
  wait_text " $1 ═"
}

case_settings() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start settings "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  open_item "System data" || return 1
  # A main address shorter than the old one, a fake point and the BBS name.
  open_item "Address maint" || return 1
  open_item "Addresses" || return 1
  keys "2:280/9" Down 7 Escape
  wait_text "Main address, fake point" 25 || return 1
  open_item "Site information" 1 || return 1
  keys "Test BBS" Escape
  open_item "Aka matching" 1 || return 1
  esc 1
  open_item "Domain names" 1 || return 1
  esc 2
  wait_text "Network address, domain, site information" 25 || return 1
  # Every other item opens its window; the message base path is typed in part 1.
  open_item "Pathnames" 1 || return 1
  keys "$d" Escape
  local item
  for item in "Pathnames" "Filenames" "Internet settings" "Origin lines" \
    "External programs (OS2)" "External program options" "Global options" \
    "Miscellaneous options"; do
    open_item "$item" 1 || return 1
    esc 1
  done
  esc 1
  # The header shows the new main address, with nothing left of the longer old one.
  wait_text "Miscellaneous system parameters" 25 || return 1
  case $(row 2) in *" 2:280/9 ║") ;; *) fail "header row 2: $(row 2)" || return 1 ;; esac
  # The items of the other menus.
  open_item "Request processor" 7 || return 1
  esc 1
  keys Up Up Up Up Enter
  wait_text "═ Fileecho system ═" || return 1
  local n
  for n in "Fileecho options:1" "LongDesc options:1" "AreaMgr uplink manager:4" "Uplink options:1"; do
    open_item "${n%:*}" "${n#*:}" || return 1
    esc 1
  done
  esc 1
  keys Up
  open_item "Echomail system" || return 1
  open_item "Echomail options" 1 || return 1
  esc 2
  keys F10
  wait_exit || return 1
  [ "$(u16_at "$d/setup.ksx" 17104)" = 2 ] && [ "$(u16_at "$d/setup.ksx" 17108)" = 9 ] ||
    fail "main address not 2:280/9" || return 1
  [ "$(u16_at "$d/setup.ksx" 17616)" = 7 ] || fail "fake point not 7" || return 1
  [ "$(pstr_at "$d/setup.ksx" 1216)" = "Test BBS" ] || fail "BBS name not saved" || return 1
  [ "$(pstr_at "$d/setup.ksx" 123)" = "$d/" ] || fail "MSG path not saved"
}

case_settings_checks() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  mkdir "$d/in" "$d/out" "$d/sent"
  start checks "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  open_item "System data" || return 1
  # Inbound and Queue path alike: the Queue warning comes first; the values stay.
  open_item "Pathnames" 1 || return 1
  keys Down Down Down "$d/in" PageDown "$d/in" Escape
  wait_text "The Queue path must be a unique directory." || return 1
  keys Enter
  wait_text "Message base, netmail" 25 || return 1
  # The Sent queue must differ from the Out queue: the page stays open on it.
  open_item "Internet settings" 3 || return 1
  keys Down Down Down "$d/out" Down "$d/out" F10
  wait_text "The Sent queue must be different from the Out queue" || return 1
  keys Enter
  wait_text "store sent emails" 25 || return 1
  keys "$d/sent" F10
  wait_text "Internet address, email program" 25 || return 1
  # Ctrl-F finds a setting by a word of its help line and opens it on its field.
  keys C-f
  wait_text "Find setting:" || return 1
  keys "phone number" Enter
  wait_text "Site information » Phone 2" || return 1
  keys Down Enter
  wait_text "The phone number of the BBS system, line 2" 25 || return 1
  keys 555 Escape
  wait_text "Site information » Phone 1" || return 1
  esc 2
  keys F10
  wait_exit || return 1
  [ "$(pstr_at "$d/setup.ksx" 428)" = "$d/in/" ] && [ "$(pstr_at "$d/setup.ksx" 184)" = "$d/in/" ] ||
    fail "paths not kept" || return 1
  [ "$(pstr_at "$d/setup.ksx" 1407)" = "555" ] || fail "Phone 2 not saved"
}

# global_systems: from the main menu to the "Number of systems" field of Global options.
global_systems() {
  open_item "System data" || return 1
  open_item "Global options" 8 || return 1
  keys Down Down Down Down Down Down Down Down
  wait_text "maximum number of systems" 25
}

case_number_of_systems() {
  local d fa ma
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  fa=$(stat -c %s "$d/FAREAS.KSX")
  ma=$(stat -c %s "$d/MAREAS.KSX")
  start systems "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  global_systems || return 1
  # No keeps everything.
  keys 0 Enter
  wait_text "!! Warning !!" || return 1
  wait_text "from 200 to 0" || return 1
  wait_text "5 fileechos" || return 1
  wait_text "hold more systems than that;" || return 1
  keys Enter
  wait_text "maximum number of systems" 25 || return 1
  [ "$(stat -c %s "$d/FAREAS.KSX")" = "$fa" ] || fail "FAREAS changed after No" || return 1
  # Yes rewrites both files and stores the number in setup.ksx at once.
  keys 0 Enter
  wait_text "!! Warning !!" || return 1
  keys Y
  wait_byte "$d/setup.ksx" 9334 0 || return 1
  wait_text "Log style" || return 1
  [ $(($(stat -c %s "$d/FAREAS.KSX") * 2539)) = $((fa * 739)) ] || fail "FAREAS not rewritten" || return 1
  [ $(($(stat -c %s "$d/MAREAS.KSX") * 2767)) = $((ma * 967)) ] || fail "MAREAS not rewritten" || return 1
  esc 2
  keys F9
  wait_exit || return 1
  # setup.ksx told 50 while the files hold 200 systems: changing it to 200 finds them fitting.
  d=$(demo_dir) || return 1
  printf '\062' | dd of="$d/setup.ksx" bs=1 seek=9334 conv=notrunc status=none
  fa=$(cksum <"$d/FAREAS.KSX")
  start fitting "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  global_systems || return 1
  keys 200 Enter
  wait_text "!! Warning !!" || return 1
  keys Y
  wait_text "No changes necessary to data file" || return 1
  wait_text "FAREAS.KSX" || return 1
  keys Enter
  wait_text "MAREAS.KSX" || return 1
  keys Enter
  wait_byte "$d/setup.ksx" 9334 200 || return 1
  [ "$(cksum <"$d/FAREAS.KSX")" = "$fa" ] || fail "FAREAS changed"
}

[ -x "$MKDEMO" ] || { echo "FAIL setup: $MKDEMO not built"; exit 1; }
tmx new-session -d -s idle -x 80 -y 25 || { echo "FAIL setup: tmux server did not start"; exit 1; }

run_case "create setup.ksx on first start, F10, header left" case_create
run_case "usage text for /mono" case_usage
run_case "busy marker with the Index command" case_busy
run_case "F10 saves, F9 leaves setup.ksx untouched" case_f10_f9
run_case "Exit program without changes asks nothing" case_exit_item
run_case "F1 help viewer and Alt-Z character chart" case_help_chart
run_case "Index rebuilds a damaged index, Pack drops a deleted record" case_index_pack
run_case "FileFind areas and hatch manager: add, edit, delete" case_lists
run_case "fileecho and node managers: connect a new node, change its address" case_fileecho_node
run_case "resizes in the main menu and in a fileecho page, below 80x25 and back" case_resize
run_case "every settings screen opens; typed values reach setup.ksx; header address" case_settings
run_case "path and queue warnings, Ctrl-F finds and opens a setting" case_settings_checks
run_case "Number of systems: No, Yes with systems cut, already fitting" case_number_of_systems

# The cases of the other screens, one file each, each running its own cases.
for more in "$(dirname "$0")"/cases_*.sh; do
  # shellcheck source=/dev/null
  [ -f "$more" ] && . "$more"
done

if [ "$failures" -gt 0 ]; then
  echo "$failures case(s) failed"
  exit 1
fi
echo "all cases passed"

# Import data: each of the eight sources imports its sample file from tests/e2e/import/ into a
# fresh demo directory with the counts and records it should add, and adds nothing the second
# time; a missing file is reported as not found, and a cut short binary file changes nothing.
# Sourced by run.sh, whose helpers it uses.

IMPORT_SAMPLES=$(cd "$(dirname "${BASH_SOURCE[0]}")/import" && pwd)

# Record sizes in the demo (200 systems per area) and its record counts.
FAREA_SIZE=2539
MAREA_SIZE=2767
NODE_SIZE=398
DEMO_FAREAS=5
DEMO_MAREAS=2
DEMO_NODES=3

# import_open DIR: ksetup on DIR with the "Import data" window open.
import_open() {
  start import "$1"
  wait_text "Miscellaneous system parameters" 25 || return 1
  open_item "Utilities" 9 || return 1
  open_item "Import data" 2 || return 1
  wait_text "Import the TICK fileecho and system configuration (TIC.CFG)" 25
}

# import_pick ENTRY PROMPT ANSWER: the entry ENTRY rows down, its prompt answered with ANSWER.
import_pick() {
  local i
  keys Home
  for ((i = 0; i < $1; i++)); do keys Down; done
  keys Enter
  wait_text "$2" || return 1
  keys C-y
  keys -l "$3"
  keys Enter
}

# import_once ENTRY PROMPT ANSWER LINE...: an import whose summary shows each LINE.
import_once() {
  local entry=$1 prompt=$2 answer=$3 line
  shift 3
  import_pick "$entry" "$prompt" "$answer" || return 1
  for line in "$@"; do wait_text "$line" || return 1; done
  keys Enter
  wait_text "║ TICK configuration"
}

# import_close: back through Utilities to the main menu, and out with F9.
import_close() {
  keys Escape
  wait_text " Utilities ═" || return 1
  keys Escape
  wait_text " Main ═" || return 1
  keys F9
  wait_exit
}

# records FILE SIZE: how many records of SIZE bytes FILE holds.
records() { echo $(($(size "$1") / $2)); }

# import_source ENTRY PROMPT ANSWER FILE SIZE AREAS SYSTEMS FIRST_TAG: one source imported
# twice into a fresh demo directory.
import_source() {
  local entry=$1 prompt=$2 answer=$3 file=$4 rec=$5 areas=$6 systems=$7 tag=$8 d base before
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  base=$(records "$d/$file.KSX" "$rec")
  import_open "$d" || return 1
  local lines=("$areas areas added")
  [ "$systems" = 0 ] || lines+=("$systems systems added")
  import_once "$entry" "$prompt" "$answer" "${lines[@]}" \
    "Note: KESTRA has many different options. Please check" || return 1
  [ "$(records "$d/$file.KSX" "$rec")" = $((base + areas)) ] ||
    fail "$file.KSX has $(records "$d/$file.KSX" "$rec") records" || return 1
  [ "$(size "$d/$file.IDX")" = $(((base + areas) * 44)) ] || fail "$file.IDX size" || return 1
  [ "$(pstr_at "$d/$file.KSX" $((base * rec)))" = "$tag" ] || fail "first new tag" || return 1
  [ "$(records "$d/NODEFILE.KSX" $NODE_SIZE)" = $((DEMO_NODES + systems)) ] ||
    fail "NODEFILE.KSX has $(records "$d/NODEFILE.KSX" $NODE_SIZE) records" || return 1
  [ "$(size "$d/NODEFILE.IDX")" = $(((DEMO_NODES + systems) * 10)) ] || fail "NODEFILE.IDX" || return 1
  if [ "$systems" != 0 ]; then
    [ "$(pstr_at "$d/NODEFILE.KSX" $((DEMO_NODES * NODE_SIZE + 8)))" = Sysop ] ||
      fail "new node's sysop" || return 1
  fi
  before=$(cat "$d"/*.KSX "$d"/*.IDX | md5sum)
  import_once "$entry" "$prompt" "$answer" "0 fileechos and 0 systems added" || return 1
  [ "$(cat "$d"/*.KSX "$d"/*.IDX | md5sum)" = "$before" ] || fail "second import changed files" || return 1
  import_close
}

TICK_PROMPT="Enter the path and file name of the TICK configuration file to import"
FB_PROMPT="Enter the path and file name of the FILEBONE.NA/NO"

case_import_tick() {
  import_source 0 "$TICK_PROMPT" "$IMPORT_SAMPLES/tick/TIC.CFG" FAREAS $FAREA_SIZE 2 2 TK_NODEDIFF
}
case_import_filebone() {
  import_source 1 "$FB_PROMPT" "$IMPORT_SAMPLES/FILEBONE.NA" FAREAS $FAREA_SIZE 3 0 FB_NODE
}
case_import_gecho100() {
  import_source 2 "Directory:" "$IMPORT_SAMPLES/ge100" MAREAS $MAREA_SIZE 3 2 GE_LINUX
}
case_import_gecho120() {
  import_source 3 "Directory:" "$IMPORT_SAMPLES/ge120" MAREAS $MAREA_SIZE 2 2 G2_LINUX
}
case_import_fastecho() {
  import_source 4 "Directory:" "$IMPORT_SAMPLES/fastecho" MAREAS $MAREA_SIZE 3 2 FE_SQUISH
}
case_import_fmail() {
  import_source 5 "Directory:" "$IMPORT_SAMPLES/fmail" MAREAS $MAREA_SIZE 2 2 FM_JAM
}
case_import_squish() {
  import_source 6 "Directory:" "$IMPORT_SAMPLES/squish" MAREAS $MAREA_SIZE 3 2 SQ_LINUX
}
case_import_areas_bbs() {
  import_source 7 "Directory:" "$IMPORT_SAMPLES/areasbbs" MAREAS $MAREA_SIZE 4 3 AB_LOCAL
}

# A missing file and a cut short AREAFILE.GE: a message each, and no data file changes.
case_import_refused() {
  local d cut before
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  cut=$(new_dir)
  head -c -1 "$IMPORT_SAMPLES/ge100/AREAFILE.GE" >"$cut/AREAFILE.GE"
  before=$(cat "$d"/*.KSX "$d"/*.IDX | md5sum)
  import_open "$d" || return 1
  import_once 6 "Directory:" "$cut" "Path" "$cut/SQUISH.CFG" " not found" || return 1
  import_once 2 "Directory:" "$cut" "$cut/AREAFILE.GE" "record 3 is cut short" \
    "Nothing was imported" || return 1
  import_once 0 "$TICK_PROMPT" "$cut/none.cfg" "Path" " not found" || return 1
  [ "$(cat "$d"/*.KSX "$d"/*.IDX | md5sum)" = "$before" ] || fail "data files changed" || return 1
  import_close
}

run_case "import: TICK configuration, twice" case_import_tick
run_case "import: FILEBONE.NA, twice" case_import_filebone
run_case "import: GEcho 1.00 AREAFILE.GE, twice" case_import_gecho100
run_case "import: GEcho 1.20 areafile.ge (lower-case name), twice" case_import_gecho120
run_case "import: FastEcho FASTECHO.CFG, twice" case_import_fastecho
run_case "import: FMail FMAIL.AR, twice" case_import_fmail
run_case "import: SQUISH.CFG, twice" case_import_squish
run_case "import: AREAS.BBS, twice" case_import_areas_bbs
run_case "import: a missing file, a cut short binary file" case_import_refused

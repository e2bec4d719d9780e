# Group manager: group 1 of the demo (two fileechos, a report, three nodes, and here also the
# first uplink and the fileecho list filter) renumbered to 7, with every file compared byte for
# byte against a copy patched by hand; then a new, unused group deleted with "Removed 0" and no
# index rebuilt. Sourced by run.sh, whose helpers it uses.

# or_byte FILE OFFSET BITS / put_byte FILE OFFSET VALUE: change one byte in place.
put_byte() { printf "\\$(printf %03o "$3")" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none; }
or_byte() { put_byte "$1" "$2" $(($(u8_at "$1" "$2") | $3)); }

# renumber_set FILE OFFSET: group 1 (bit 1 of byte 0) moved to group 7 (bit 7) in the set at
# OFFSET; prints 1 when the set held group 1.
renumber_set() {
  local b
  b=$(u8_at "$1" "$2")
  if ((b & 2)); then
    put_byte "$1" "$2" $(((b & ~2) | 128))
    echo 1
  else
    echo 0
  fi
}

# group_expect DIR OUT: copies of the files in OUT with group 1 renumbered to 7 by hand;
# prints the places changed.
group_expect() {
  local d=$1 out=$2 n=0 i off
  cp "$d/setup.ksx" "$d/FAREAS.KSX" "$d/REPORTS.KSX" "$d/NODEFILE.KSX" "$out/"
  for off in 14890 $(seq 12101 141 14780) 10058 10220 10382; do
    n=$((n + $(renumber_set "$out/setup.ksx" "$off")))
  done
  for ((i = 0; i < $(size "$d/FAREAS.KSX") / 2539; i++)); do
    off=$((i * 2539 + 110))
    if [ "$(u8_at "$out/FAREAS.KSX" $off)" = 1 ]; then
      put_byte "$out/FAREAS.KSX" $off 7
      n=$((n + 1))
    fi
  done
  for ((i = 0; i < $(size "$d/REPORTS.KSX") / 2637; i++)); do
    n=$((n + $(renumber_set "$out/REPORTS.KSX" $((i * 2637)))))
  done
  for ((i = 0; i < $(size "$d/NODEFILE.KSX") / 398; i++)); do
    n=$((n + $(renumber_set "$out/NODEFILE.KSX" $((i * 398 + 65)))))
    n=$((n + $(renumber_set "$out/NODEFILE.KSX" $((i * 398 + 289)))))
  done
  echo "$n"
}

case_groups() {
  local d want n f ino off
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  or_byte "$d/setup.ksx" 14890 2           # the fileecho list shows group 1
  or_byte "$d/setup.ksx" $((12064 + 37)) 2 # the first uplink serves group 1
  want=$(mktemp -d "$WORK/want.XXXXXX")
  n=$(group_expect "$d" "$want")
  [ "$n" -ge 8 ] || fail "the demo uses group 1 in $n places only" || return 1
  start groups "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  open_item "Fileecho system" 3 || return 1
  open_item "Group manager" 5 || return 1
  wait_text "FidoNet" || return 1
  keys Enter
  wait_text "Editing entry" || return 1
  keys 7 Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "new group number in rest of setup?" || return 1
  keys Enter
  wait_text "The group was updated in $n place(s)" || return 1
  keys Enter
  for f in FAREAS REPORTS NODEFILE; do
    cmp -s "$d/$f.KSX" "$want/$f.KSX" || fail "$f.KSX differs from the renumbered copy" || return 1
  done
  [ "$(u8_at "$d/GRPFILE.KSX" 110)" = 7 ] || fail "the group record keeps its old number" || return 1
  # A new group 50, used nowhere, deleted: nothing removed, no index rebuilt.
  ino=$(stat -c %i "$d/FAREAS.IDX" "$d/MGICFILE.IDX" "$d/HATCH.IDX")
  keys Insert
  wait_text "Adding new entry" || return 1
  keys 50 Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text " 4/4 " || return 1
  keys Delete
  wait_text "Delete this entry?" || return 1
  keys Right Enter
  wait_text "Delete group from rest of setup?" || return 1
  keys Enter
  wait_text "Removed 0 fileechos, hatch, and" || return 1
  keys Enter
  wait_text " 3/3 " || return 1
  [ "$(stat -c %i "$d/FAREAS.IDX" "$d/MGICFILE.IDX" "$d/HATCH.IDX")" = "$ino" ] ||
    fail "an index was rebuilt" || return 1
  # The configuration's sets are saved with F10 in the main menu.
  esc 2
  wait_text " Main ═" || return 1
  keys F10
  wait_exit || return 1
  for off in 14890 $(seq 12101 141 14780) 10058 10220 10382; do
    [ "$(u8_at "$d/setup.ksx" "$off")" = "$(u8_at "$want/setup.ksx" "$off")" ] ||
      fail "group set at $off of setup.ksx not renumbered" || return 1
  done
}

run_case "group manager: renumber a used group byte for byte, delete an unused one" case_groups

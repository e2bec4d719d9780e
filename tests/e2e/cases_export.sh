# Export data: each of the five lists written under the name offered, in the current
# directory, byte for byte: all groups, then group 3 only, the cross check against uplink 1's
# FILEBONE.NA list (a relative name, found in the program directory), the nodes to fileechos
# break down and the destination directories. Sourced by run.sh, whose helpers it uses.

# Uplink 1 of setup.ksx: its "Areas filename" and its "File format" byte.
UPLINK1_AREAS_FILE=12134
UPLINK1_FILE_FORMAT=12195

# wait_file FILE: until FILE exists (an export renames it into place complete).
wait_file() {
  local i
  for ((i = 0; i < TIMEOUT_TICKS; i++)); do
    [ -f "$1" ] && return 0
    sleep 0.05
  done
  WHY="$1 was not written"
  return 1
}

# same_bytes FILE EXPECTED: FILE holds exactly the bytes of the text EXPECTED.
same_bytes() {
  printf '%s' "$2" >"$WORK/expected"
  cmp -s "$1" "$WORK/expected" || fail "$(basename "$1") differs: $(diff "$WORK/expected" "$1" | head -5 | tr '\n' '|')"
}

pad() { printf '%-41s' "$1"; }

case_export() {
  local d ver tag expected
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  printf '\013FILEBONE.NA' | dd of="$d/setup.ksx" bs=1 seek=$UPLINK1_AREAS_FILE conv=notrunc status=none
  printf '\001' | dd of="$d/setup.ksx" bs=1 seek=$UPLINK1_FILE_FORMAT conv=notrunc status=none
  printf 'Area LINUX 0 ! Linux\r\nArea NODELIST 0 ! Nodelist\r\n' >"$d/FILEBONE.NA"
  # The session starts in the program directory, where the names offered are written.
  pushd "$d" >/dev/null || return 1
  start export "$d"
  popd >/dev/null || return 1
  wait_text "Miscellaneous system parameters" 25 || return 1
  ver=$(row 2 | sed -n 's/^║ KESTRA \([^ ]*\) .*/\1/p')
  open_item "Utilities" 9 || return 1
  open_item "Export" 1 || return 1
  wait_text "Create a list of the fileechos" 25 || return 1
  pane | grep -qF "║ Nodes═►Echos breakdown " || fail "no Nodes═►Echos breakdown entry" || return 1

  keys Enter
  wait_text "File name: ECHOLIST.TXT" || return 1
  keys Enter
  wait_text "Select groups" || return 1
  keys F2 Escape
  wait_file "$d/ECHOLIST.TXT" || return 1
  same_bytes "$d/ECHOLIST.TXT" "$(pad FIDOSOFT)FidoNet related software
$(pad HAMRADIO)Amateur radio programs
$(pad LINUX)Linux distributions and tools
$(pad NODEDIFF)FidoNet nodelist differences
$(pad NODELIST)FidoNet nodelist, weekly
" || return 1

  keys Down Enter
  wait_text "File name: TAGLIST.TXT" || return 1
  keys Enter
  wait_text "Select groups" || return 1
  keys Down Down Space Escape # group 3, Hobby
  wait_file "$d/TAGLIST.TXT" || return 1
  same_bytes "$d/TAGLIST.TXT" "$(pad HAMRADIO)
$(pad LINUX)
" || return 1

  keys Down Enter
  wait_text "File name: CROSCHCK.TXT" || return 1
  keys Enter
  wait_file "$d/CROSCHCK.TXT" || return 1
  same_bytes "$d/CROSCHCK.TXT" "KESTRA $ver List of unlisted fileechos

The following FILEBONE.xx and TAG files were scanned:


${d}/FILEBONE.NA
  $(printf '%076d' 0 | tr 0 -)
The following fileechos were not listed in the above file(s):


FIDOSOFT
HAMRADIO
NODEDIFF
" || return 1

  keys Down Enter
  wait_text "File name: NODEECHO.TXT" || return 1
  keys Enter
  wait_file "$d/NODEECHO.TXT" || return 1
  same_bytes "$d/NODEECHO.TXT" "KESTRA $ver  Nodes -> Fileechos break down

2:280/1
Hub Sysop
  $(pad FIDOSOFT)$(pad HAMRADIO)
  $(pad LINUX)$(pad NODEDIFF)
  $(pad NODELIST)

2:280/77
Downlink Sysop
  

2:280/5555.1
Point Operator
  

" || return 1

  keys Down Enter
  wait_text "File name: DESTDIRS.TXT" || return 1
  keys Enter
  wait_file "$d/DESTDIRS.TXT" || return 1
  expected="KESTRA $ver Fileecho area destination directories
"$'\n'
  for tag in FIDOSOFT HAMRADIO LINUX NODEDIFF NODELIST; do
    expected+="$(pad $tag)/var/spool/files/$tag"$'\n'
  done
  same_bytes "$d/DESTDIRS.TXT" "$expected" || return 1

  esc 3
  wait_exit
}

run_case "export data: the five lists, byte for byte" case_export

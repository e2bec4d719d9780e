# Magic file names: a MoveToArea rule typed in, refused while its two fileechos are the same,
# then saved with the from area taken from the "Select fileecho" list; the record's bytes in
# MGICFILE.KSX. Sourced by run.sh, whose helpers it uses.

MAGIC_SIZE=2556

case_magic() {
  local d rec
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  start magic "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  open_item "Fileecho system" 3 || return 1
  open_item "Magic filenames" 4 || return 1
  wait_text "UpdateAlias" || return 1
  keys Insert
  wait_text "Select type" || return 1
  keys Down Down Down Down Down Down Down Enter # MoveToArea
  wait_text "Adding new entry 2/2" || return 1
  keys Down "*.ZIP" Enter linux Enter LINUX Escape
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text "The from area must be different than the to area" || return 1
  keys Enter
  wait_text "F6-list of fileechos" 25 || return 1
  keys F6
  wait_text "Select fileecho" || return 1
  keys Home Down Down Enter # past "*** ALL ***" and FIDOSOFT: HAMRADIO
  wait_text "HAMRADIO" || return 1
  esc 1
  wait_text "Save changes?" || return 1
  keys Enter
  wait_text " 1/2 " || return 1 # "*.ZIP" sorts before the demo's "NODELIST.*"
  [ "$(size "$d/MGICFILE.KSX")" = $((2 * MAGIC_SIZE)) ] || fail "MGICFILE.KSX has $(size "$d/MGICFILE.KSX") bytes" || return 1
  [ "$(size "$d/MGICFILE.IDX")" = 32 ] || fail "MGICFILE.IDX has $(size "$d/MGICFILE.IDX") bytes" || return 1
  rec=$MAGIC_SIZE
  [ "$(u8_at "$d/MGICFILE.KSX" $rec)" = 4 ] || fail "type byte is not MoveToArea" || return 1
  [ "$(pstr_at "$d/MGICFILE.KSX" $((rec + 1)))" = "*.ZIP" ] || fail "file mask" || return 1
  [ "$(pstr_at "$d/MGICFILE.KSX" $((rec + 14)))" = HAMRADIO ] || fail "from area" || return 1
  [ "$(pstr_at "$d/MGICFILE.KSX" $((rec + 55)))" = LINUX ] || fail "to area" || return 1
  keys F10
  wait_text "Magic file name maintenance" 25 || return 1
  keys F10
  wait_text "Fileecho configuration" 25 || return 1
  keys F9
  wait_exit
}

run_case "magic file names: add a rule, a refusal, the fileecho list, the bytes in MGICFILE" case_magic

# Template editor: a report template viewed as a file report (blocks, @test, @pos/@len,
# @overflow after @just on @filedesc) twice without a TMP.OUT left; the failure messages; with
# EDITOR=true the internal editor is offered, F9 drops typed text, F10 saves it, and Alt-D F1
# writes byte 218. Sourced by run.sh, whose helpers it uses.

case_templates() {
  local d
  d=$(demo_dir) || fail "mkdemo failed" || return 1
  cat >"$d/NEWFILES.APL" <<'APL'
; sample new-files report
New files for @msgto (@len(@msgto) letters, "sysop" at @pos(@msgto,"sysop"))
@areabegin
Area @fileecho - @echodesc
@filebegin
@test(@filename,=,SAMPLE2.ZIP)
* @just(@filename,L,12) @just(@filedesc,L,45)
@else
  @just(@filename,L,12) @just(@filedesc,L,45)
@end
               @overflow
@end
@end
Total @totalfiles files
APL
  printf '@filebegin\nx\n' >"$d/BAD.APL"
  printf ';only a comment\n' >"$d/empty.apl"
  START_ENV="EDITOR=true" start templates "$d"
  wait_text "Miscellaneous system parameters" 25 || return 1
  open_item "Utilities" 9 || return 1
  open_item "Template files" || return 1
  wait_text "Enter-edit Ins-new Del-delete F3-view Esc-exit" 25 || return 1
  local view
  for view in 1 2; do
    keys End F3
    wait_text " View as ═" || return 1
    keys Down Enter
    wait_text " View template ═" || return 1
    wait_text 'New files for Some sysop (10 letters, "sysop" at 5)' || return 1
    wait_text "║ * SAMPLE2.ZIP  This is the description for file number 2. It " || return 1
    wait_text "║                has been lengthened so that it will not fit  " || return 1
    wait_text "║ Total 3 files" || return 1
    [ -e "$d/TMP.OUT" ] || fail "no TMP.OUT while viewing" || return 1
    keys Escape
    wait_text "Enter-edit Ins-new Del-delete F3-view Esc-exit" 25 || return 1
    [ ! -e "$d/TMP.OUT" ] || fail "TMP.OUT left after viewing $view time(s)" || return 1
  done
  keys Home F3 Down Enter
  wait_text "Template contains a syntax error" || return 1
  wait_text "The number of @end macros is incorrect" || return 1
  keys Enter Down F3 Down Enter
  wait_text "Unable to open template file" || return 1
  keys Enter Home Enter
  wait_text "Unable to execute external editor" || return 1
  wait_text "(0)" || return 1
  wait_text "Use internal editor?" || return 1
  keys Enter
  wait_text "/BAD.APL ═" || return 1
  keys "dropped" F9
  wait_text "Enter-edit Ins-new Del-delete F3-view Esc-exit" 25 || return 1
  [ "$(cat "$d/BAD.APL")" = "$(printf '@filebegin\nx')" ] || fail "F9 changed BAD.APL" || return 1
  keys Enter
  wait_text "Use internal editor?" || return 1
  keys Enter
  wait_text "/BAD.APL ═" || return 1
  keys "X" M-d
  wait_text "Function key: 1-┌" 25 || return 1
  keys F1 M-d M-d M-d M-d M-d # draw mode: set 1, through sets 2 to 5, then off
  wait_text "Esc-done" 25 || return 1
  keys F10
  wait_text "Enter-edit Ins-new Del-delete F3-view Esc-exit" 25 || return 1
  [ "$(od -An -tu1 -N3 "$d/BAD.APL" | tr -s ' ')" = " 88 218 64" ] || fail "BAD.APL begins $(od -An -tu1 -N3 "$d/BAD.APL")" || return 1
  keys Escape
  wait_text " Utilities ═" || return 1
  keys Escape
  wait_text " Main ═" || return 1
  keys F9
  wait_exit
}

run_case "template editor: view a report twice, failure messages, internal editor via EDITOR=true" case_templates

// The field input engine: an edit page is a table of fields, each with its kind, place on the
// page, place in the record, limits, picture, prompt and help line. The engine draws the page,
// moves between the fields, edits each according to its kind, and writes every accepted value
// straight into the record.
#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/sorttype.h"

namespace ks {

// One field of a page. Columns and rows are relative to the page origin given to Draw/Run.
//
// Kinds and what they edit in the record:
//   Str       a length-prefixed string of `size` characters; `picture`, when given, must be
//             exactly `size` long: '!' takes any character and makes it a capital, '#' a
//             digit, '@' a letter, 'H' a hexadecimal digit (a capital) or a blank, any other
//             picture character any character. `upper` makes the whole string capitals. With
//             `get_text`/`set_text` the field edits `size` characters of a form of its own.
//   Path      a string of `size` characters naming a directory: a trailing "/" is added, and a
//             missing directory may be created ("Create directory?").
//   Ext       a string of 3 characters, a file extension, in capitals.
//   Int       a signed integer of `size` bytes (1, 2 or 4; one byte counts as unsigned
//             unless `low` is below 0),
//             between `low` and `high`. With `group` set it is a single group number, typed
//             or chosen from the group pick list with Space or F2.
//   Wrd/Long  an unsigned integer of `size` bytes (Wrd 1 or 2, Long 4) between `low` and `high`.
//   Rel       an 8-byte real shaped by a numeric `picture` such as "####.##".
//   Bol       Yes/No: a byte (0/1), or the bits of `mask` in a byte or word of `size` bytes.
//   Chrs      one of `choices`: the byte value, or the value of the bits of `mask` (shifted down
//             to the mask's lowest bit) in a byte or word of `size` bytes. Space/+ and - step.
//   Aka       a network address (8 bytes) entered through 22 positions; with `zone_net` only
//             zone and net (two words) through 10 positions.
//   GrpArray  a 32-byte group set chosen from the "Select groups" pick list.
// An action field (`select` given) takes no typed input: Enter, Space or F2 calls `select`, and
// `show` gives the text drawn for it. Bol toggles with Space, + and -, and takes Y and N; a
// group set opens its pick list with Space or F2.
struct FieldDef {
  SortType type = Str;
  int col = 0, row = 0;              // where the value is drawn
  std::uint16_t offset = 0;          // where the value lies in the record
  std::uint8_t size = 0;             // string capacity, or bytes of a number/bit word
  std::int64_t low = 0;              // numbers: the lowest value accepted
  std::int64_t high = 0;             // numbers: the highest value accepted
  std::string picture;               // Str: same length as the string; Rel: "###.##"
  std::string prompt;                // drawn at (prompt_col, row)
  std::string help;                  // shown on the status line while the field is current
  int prompt_col = 2;                //
  std::uint16_t mask = 0;            // Bol/Chrs: the bits that hold the value (0 = whole byte)
  std::vector<std::string> choices;  // Chrs
  int width = 0;                     // cells the value takes on screen (0 = from the kind)
  bool upper = false;                // Str: capitals only
  bool zone_net = false;             // Aka: zone:net only
  bool group = false;                // Int: a single group from the pick list
  bool na_when_empty = false;        // shows "n/a" for 0, an empty string or a zero address
  // False when the value does not apply to this record: the field shows "n/a" and is skipped.
  std::function<bool(const std::uint8_t* rec)> applies;
  // False hides the field for this record: neither prompt nor value is drawn and it is never
  // current. Pages whose fields depend on the kind of record (one page per kind) use it;
  // fields hidden for one kind may share their place with the fields of another.
  std::function<bool(const std::uint8_t* rec)> shown;
  // Action fields: Enter calls `select`, which returns true when it changed the record.
  std::function<bool(std::uint8_t* rec)> select;
  std::function<std::string(const std::uint8_t* rec)> show;
  std::string mark;    // drawn in front of the prompt, e.g. a tree connector
  bool label = false;  // a caption: only the prompt is drawn, and it is never current
  // A text kept in the record in a form of its own: `get_text` gives the text to edit,
  // `set_text` stores a typed one and returns why it is refused ("" when it was stored).
  std::function<std::string(const std::uint8_t* rec)> get_text;
  std::function<std::string(std::uint8_t* rec, const std::string& text)> set_text;
  // Numbers: asked once a changed value is in the record, with the value it had; false puts
  // the old value back. Leaving the page with Esc drops a change such a field has.
  std::function<bool(std::int64_t old_value, std::uint8_t* rec)> confirm;
};

// How Run ended.
struct PageResult {
  std::uint8_t key = 0;  // 27 for Esc, else the scan code of an exit key
  int field = 0;         // the field the cursor was on
};

class EditPage {
 public:
  // A string picture whose length differs from its string's ends the program with
  // "Definition-error 01: Picture-length <> String-length" and "Program aborted". A real
  // picture with fewer than two digits before the period is refused with "Number of digits
  // before the period must be greater than 1" and the field is not editable.
  explicit EditPage(std::vector<FieldDef> fields);

  // Draws every prompt and value of the page for `rec`, with (left, top) as the origin.
  void Draw(const std::uint8_t* rec, int left, int top) const;

  // Edits `rec` in place, starting on field `first` (a field that does not apply moves the
  // cursor on to the next one). Keys: Enter/Tab/Down next field, Shift-Tab/Up previous,
  // PgUp/PgDn first/last field, Esc leaves the page, F1 the page's help topic; in a text:
  // Left, Right, Home, End, Backspace, Del, Ins (insert/overwrite), Ctrl-Y clears. A value
  // that is refused keeps the cursor on its field with the typed text.
  PageResult Run(std::uint8_t* rec, int left, int top, int first = 0);

  // Extended keys (scan codes) that leave the page besides Esc, e.g. F10.
  std::bitset<256> exit_keys;
  // Further keys while a field is current; true when handled (the page is drawn again).
  std::function<bool(std::uint8_t scan, int field, std::uint8_t* rec)> on_key;
  int topic = 0;
  // A page taller than its window scrolls: the window shows `rows` rows from page row `top`
  // on, `cols` cells wide from column `left`, and the view follows the cursor. Arrows in the
  // view's last column tell that there is more above or below.
  void SetView(int top, int rows, int left, int cols);
  int scroll_top() const { return scroll_top_; }

  std::size_t size() const { return fields_.size(); }
  const FieldDef& field(int i) const { return fields_[static_cast<std::size_t>(i)]; }
  // The field whose value is drawn at (col, row), or -1.
  int FieldAt(int col, int row) const;
  // The text a field shows for `rec` ("n/a" when it does not apply).
  std::string ValueText(const FieldDef& f, const std::uint8_t* rec) const;

 private:
  bool Editable(int i, const std::uint8_t* rec) const;
  // The first editable field from `from` on, stepping by `step` and wrapping round.
  int Seek(int from, int step, const std::uint8_t* rec) const;
  // Scrolls the view so that field `i` is in it; true when it moved.
  bool Follow(int i);
  bool Visible(const FieldDef& f) const;

  std::vector<FieldDef> fields_;
  std::vector<bool> broken_;  // definition refused: shown, never edited
  int scroll_top_ = 0;        // page rows scrolled out of view at the top
  int view_top_ = 0, view_rows_ = 0, view_left_ = 0, view_cols_ = 0;  // no view: all shown
};

}  // namespace ks

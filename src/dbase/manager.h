// The entry list editor: one generic editor for every keyed list of the configuration. A
// manager declares its file pair, keys, list columns, edit fields, hot keys and callbacks; the
// editor shows one entry at a time in a framed window and does the moving, adding, copying,
// editing, deleting, finding, browsing and global changes through the record database.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dbase/companion.h"
#include "dbase/database.h"
#include "dbase/maintain.h"
#include "tui/fields.h"
#include "tui/picklist.h"

namespace ks {

// A column of the browse list.
struct ListColumn {
  SortType type = Str;
  std::uint16_t offset = 0;
  std::uint8_t length = 0;  // bytes in the record
  std::uint8_t width = 0;   // cells on screen
  std::string caption;
};

// A key with a procedure of the editor's own, active while the cursor is on the field drawn
// at (col, row) of the edit page.
struct ManagerHotKey {
  int col = 0, row = 0;
  std::uint8_t scan = 0;                        // extended key
  std::function<bool(std::uint8_t* rec)> proc;  // true when it changed the record
};

// A further key of the entry loop: its procedure gets the current record and the window's
// column and row; the record is then written back in place and shown again.
struct FunctionKey {
  bool extended = true;
  std::uint8_t code = 0;
  std::function<void(std::uint8_t* rec, int col, int row)> proc;
};

// Result of adding an entry.
enum class AddType { SuccessFull, AlreadyInDataBase, NextPage };

class ManagerOBJ {
 public:
  enum class StartMode { kNone, kAdd, kEdit };

  static constexpr std::size_t kMaxColumns = 5;
  static constexpr std::size_t kMaxFields = 100;
  static constexpr std::size_t kMaxHotKeys = 20;
  static constexpr int kMaxMarks = 4096;

  // The window: (left, top)-(right, bottom) with `title`.
  ManagerOBJ(std::string dir, std::string base, std::size_t record_size, int left, int top,
             int right, int bottom, std::string title);
  virtual ~ManagerOBJ();
  ManagerOBJ(const ManagerOBJ&) = delete;
  ManagerOBJ& operator=(const ManagerOBJ&) = delete;

  // Declarations; a sixth key or column, a 101st field or a 21st hot key is ignored.
  void AddKey(std::string_view name, SortType type, std::uint16_t offset, std::uint8_t length);
  void AddColumn(ListColumn column);
  void AddField(FieldDef field);
  void AddFields(std::vector<FieldDef> fields);
  void AddHotKey(ManagerHotKey hot);
  void AddFunctionKey(FunctionKey fk);

  int max_entries = 255;
  bool unique = true;
  bool searchable = true;
  // The entries can be looked at and deleted, not added or changed (lists the processor
  // writes): Enter, Ins and F6 do nothing.
  bool view_only = false;
  int topic = 0;  // F1
  // The edit page's title carries the entry's place and the count: "Editing entry 3/12".
  bool numbered_title = false;
  // Further keys the manager offers, shown at the right of the window's bottom frame
  // ("~F2~-global").
  std::string key_line;
  StartMode start_mode = StartMode::kNone;
  std::vector<std::uint8_t> start_record;  // kEdit: the entry to find (its key fields)

  // Callbacks (all optional).
  std::function<void(std::uint8_t* rec)> init;  // InitProc: defaults of a new record
  // Asked before the page of a new entry (not a copy) opens, after `init`: settles what the
  // entry is (the kind of a magic file name); false cancels the add.
  std::function<bool(std::uint8_t* rec)> choose_new;
  // An entry's page opens on `rec` (a new entry: adding is true) and, after a save, the entry
  // as saved. The group manager renumbers a group across the setup with these two.
  std::function<void(const std::uint8_t* rec, bool adding)> on_open;
  std::function<void(const std::uint8_t* rec, bool adding)> after_save;
  // CheckFieldsType: validates a record before it is saved; returns -1 when it may be saved,
  // else the index of the field at fault (after showing its own message).
  std::function<int(std::uint8_t* rec, bool adding)> check;
  std::function<bool(const std::uint8_t* rec)> on_delete;  // DelProc: false keeps the entry
  PackProc pack;
  // DispType: draws the extra parts of the shown entry (window origin given).
  std::function<void(const std::uint8_t* rec, int left, int top)> display;
  // EditType: the manager's own edit screen, bound to F3; true when it changed the record.
  std::function<bool(std::uint8_t* rec)> edit;
  // Global change: `global_ok` once after "Process changes ?" (asks what to change; false
  // cancels), `global_edit` on each marked record (true when it changed it), `global_done`
  // once at the end with the numbers of marked and changed records.
  std::function<bool()> global_ok;
  std::function<bool(std::uint8_t* rec)> global_edit;
  std::function<void(int marked, int changed)> global_done;
  // A filter for choosing the entries of a global change: F3 in the marking list calls it; it
  // asks what to look for and returns the test a record must pass (empty to cancel), and
  // every entry that passes is marked.
  std::function<std::function<bool(const std::uint8_t* rec)>()> mark_filter;
  // ViewPicFuncType: the text of a browse cell; empty function = the column's field as text.
  std::function<std::string(const std::uint8_t* rec, int column)> cell;

  // Opens the file pair and runs the editor until the user leaves it. `companion`, when open,
  // is kept in step with the index and enables browse (F5) and global change (F2).
  void Run(CompanionFile* companion = nullptr);

  // State, for managers' callbacks and tests.
  ksDataBase& db() { return *db_; }
  const std::string& dir() const { return dir_; }
  const std::string& help_line() const { return help_line_; }
  EditPage& page() { return *page_; }
  int left() const { return left_; }
  int top() const { return top_; }

 private:
  friend class ViewMgrOBJ;

  void BuildHelpLine(bool companion_open);
  void DrawWindow(const std::string& title);
  void ShowEntry();
  void EntryLoop();
  bool AskAddWhenEmpty();
  void AddFlow(bool copy);
  void EditFlow();
  void DeleteFlow();
  void FindFlow(std::string typed);
  void JumpByLetter(char letter);
  void BrowseFlow();
  void GlobalFlow();
  // Runs the page on the edit buffer until it is left without changes, saved, or not saved.
  // Returns true when the record was saved (inserted or rewritten).
  bool EditRecord(bool adding, int editing);
  bool HasEditing() const { return !fields_.empty() || static_cast<bool>(edit); }
  bool FindRecord(const std::uint8_t* rec);
  void TypedKey(char c);
  void LimitMessage();
  int KeyField() const;  // the page field of the active key
  int FindByKey(const KeyDef& kd, const std::string& text) const;
  // Companion rows follow the index: a new entry's row, a moved entry's row, a changed one.
  void InsertRow(int pos);
  void MoveRow(int from, int to);
  void ForgetRow(int pos);
  std::string CellText(const std::uint8_t* rec, int column) const;

  std::string dir_, base_;
  std::size_t record_size_;
  int left_, top_, right_, bottom_;
  std::string title_;
  KeySet keys_;
  std::vector<ListColumn> columns_;
  std::vector<FieldDef> fields_;
  std::vector<ManagerHotKey> hot_keys_;
  std::vector<FunctionKey> function_keys_;
  std::unique_ptr<ksDataBase> db_;
  std::unique_ptr<EditPage> page_;
  std::vector<std::uint8_t> record_, edit_;
  CompanionFile* companion_ = nullptr;
  std::string help_line_;
};

// The browse list of an entry list editor: every entry as a row of the declared columns,
// read from the data file only for the rows on screen. With marks it is the chooser of the
// global change.
class ViewMgrOBJ {
 public:
  explicit ViewMgrOBJ(ManagerOBJ& mgr) : mgr_(mgr) {}
  // Shows the list from the current entry; returns the entry picked with Enter, or -1.
  int Browse();
  // Lets the user mark entries (Space, F2); false when the list could not be shown.
  bool ChooseMarks(std::vector<bool>& marks);

 private:
  std::string Row(int pos);
  std::string Header() const;
  int RowWidth() const;
  PickList List(std::vector<bool>* marks);

  ManagerOBJ& mgr_;
};

}  // namespace ks

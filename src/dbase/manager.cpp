#include "dbase/manager.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "common/cp437.h"
#include "common/netaddr.h"
#include "tui/dialog.h"
#include "tui/frame.h"
#include "tui/inputline.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

template <class T>
T Load(const std::uint8_t* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

// The text of a length-prefixed string of `length` bytes (length byte included).
std::string StrField(const std::uint8_t* p, std::size_t length) {
  if (length == 0) return {};
  const std::size_t n = std::min<std::size_t>(p[0], length - 1);
  return std::string(reinterpret_cast<const char*>(p + 1), n);
}

// A field of a record or an index entry as text, by its kind.
std::string FieldText(SortType type, const std::uint8_t* p, std::size_t length) {
  switch (type) {
    case Str:
    case Path:
    case Ext:
      return StrField(p, length);
    case Aka: {
      if (length < sizeof(NetAddr)) return {};
      NetAddr a;
      std::memcpy(&a, p, sizeof a);
      return a.zone ? FormatAddr(a) : std::string();
    }
    case Bol:
      return p[0] ? "Yes" : "No";
    case GrpArray: {
      if (length < sizeof(GroupSet)) return {};
      GroupSet g;
      std::memcpy(&g, p, sizeof g);
      return GroupSetText(g);
    }
    case Int:
      if (length == 1) return std::to_string(p[0]);
      if (length == 2) return std::to_string(Load<std::int16_t>(p));
      return std::to_string(Load<std::int32_t>(p));
    case Wrd:
    case Long:
      if (length == 1) return std::to_string(p[0]);
      if (length == 2) return std::to_string(Load<std::uint16_t>(p));
      return std::to_string(Load<std::uint32_t>(p));
    default:
      return {};
  }
}

std::string Fit(std::string s, std::size_t width) {
  s.resize(width, ' ');
  return s;
}

}  // namespace

ManagerOBJ::ManagerOBJ(std::string dir, std::string base, std::size_t record_size, int left,
                       int top, int right, int bottom, std::string title)
    : dir_(std::move(dir)),
      base_(std::move(base)),
      record_size_(record_size),
      left_(left),
      top_(top),
      right_(right),
      bottom_(bottom),
      title_(std::move(title)) {}

ManagerOBJ::~ManagerOBJ() = default;

void ManagerOBJ::AddKey(std::string_view name, SortType type, std::uint16_t offset,
                        std::uint8_t length) {
  keys_.Declare(name, type, offset, length);
}

void ManagerOBJ::AddColumn(ListColumn column) {
  if (columns_.size() < kMaxColumns) columns_.push_back(std::move(column));
}

void ManagerOBJ::AddField(FieldDef field) {
  if (fields_.size() < kMaxFields) fields_.push_back(std::move(field));
}

void ManagerOBJ::AddFields(std::vector<FieldDef> fields) {
  for (auto& f : fields) AddField(std::move(f));
}

void ManagerOBJ::AddHotKey(ManagerHotKey hot) {
  if (hot_keys_.size() < kMaxHotKeys) hot_keys_.push_back(std::move(hot));
}

void ManagerOBJ::AddFunctionKey(FunctionKey fk) {
  function_keys_.push_back(std::move(fk));
}

void ManagerOBJ::BuildHelpLine(bool companion_open) {
  help_line_.clear();
  if (view_only)
    help_line_ = "~Del~ete";
  else if (HasEditing())
    help_line_ = "~Enter~-edit ~Ins~ert ~Del~ete";
  if (searchable) help_line_ += " ~F4~-find";
  if (companion_open) help_line_ += " ~F5~-browse";
  if (!view_only) help_line_ += " ~F6~-copy";
}

void ManagerOBJ::DrawWindow(const std::string& title) {
  const auto& c = ui().colours;
  DrawFrame(left_, top_, right_, bottom_, c[kWindowFrame], kDoubleFrame);
  DrawFrameTitle(right_, top_, c[kWindowTitle], title);
}

void ManagerOBJ::ShowEntry() {
  Screen& s = scr();
  const auto& c = ui().colours;
  s.FillRect(left_ + 1, top_ + 1, right_ - 1, bottom_ - 1, ' ', c[kWindowText]);
  DrawWindow(title_);
  const int pos = db_->current();
  if (pos < 0 || !db_->ReadRecord(pos, record_.data()))
    std::fill(record_.begin(), record_.end(), std::uint8_t{0});
  page_->Draw(record_.data(), left_, top_);
  if (display) display(record_.data(), left_, top_);
  if (pos >= 0) {
    const std::string where =
        " " + std::to_string(pos + 1) + "/" + std::to_string(db_->count()) + " ";
    s.WriteStr(left_ + 2, bottom_, c[kWindowTitle], where);
  }
  if (!key_line.empty()) {
    const std::string keys = " " + key_line + " ";
    const int width = Screen::VisibleLength(KeyText(keys, 0, 0));
    s.WriteStr(right_ - 1 - width, bottom_, c[kWindowTitle],
               KeyText(keys, c[kWindowTitle], c[kWindowKey]));
  }
}

void ManagerOBJ::Run(CompanionFile* companion) {
  db_ = std::make_unique<ksDataBase>(base_, record_size_, keys_);
  db_->unique = unique;
  db_->pack = pack;
  const ksDataBase::OpenResult opened = db_->Open(dir_);
  if (opened != ksDataBase::OpenResult::kOk) {
    // A corrupt data file has had its message; a file that cannot be opened or created (a
    // data path that does not exist, no permission) gets one here.
    if (opened == ksDataBase::OpenResult::kFailed)
      ErrorBox("/Unable to open " + DataFileName(dir_, base_));
    db_.reset();
    return;
  }
  companion_ =
      companion && companion->is_open() && companion->Reset(db_->count()) ? companion : nullptr;
  page_ = std::make_unique<EditPage>(fields_);
  page_->topic = topic;
  page_->on_key = [this](std::uint8_t scan, int field, std::uint8_t* rec) {
    for (auto& hk : hot_keys_) {
      if (hk.scan == scan && page_->FieldAt(hk.col, hk.row) == field && hk.proc) {
        hk.proc(rec);
        return true;
      }
    }
    return false;
  };
  record_.assign(record_size_, 0);
  edit_.assign(record_size_, 0);
  BuildHelpLine(companion_ != nullptr);
  {
    const Dialog window(left_, top_, right_, bottom_, title_.c_str());
    switch (start_mode) {
      case StartMode::kAdd:
        AddFlow(false);
        break;
      case StartMode::kEdit:
        if (FindRecord(start_record.data())) {
          ShowEntry();
          EditFlow();
        } else {
          ErrorBox("Unable to find entry");
        }
        break;
      case StartMode::kNone:
        EntryLoop();
        break;
    }
  }
  page_.reset();
  db_->Close();
  db_.reset();
  companion_ = nullptr;
}

bool ManagerOBJ::FindRecord(const std::uint8_t* rec) {
  if (!rec || start_record.size() < keys_.record_extent()) return false;
  std::vector<std::uint8_t> key(keys_.length());
  keys_.MakeKey(rec, key.data());
  for (int i = 0; i < db_->count(); ++i) {
    if (keys_.Compare(db_->Key(i), key.data(), db_->active_key()) == 0) {
      db_->set_current(i);
      return true;
    }
  }
  return false;
}

bool ManagerOBJ::AskAddWhenEmpty() {
  if (view_only) {
    MessageBox("There are currently no entries", {"Ok"}, static_cast<std::uint8_t>(topic));
    return false;
  }
  if (MessageBox("There are currently no entries/Would you like to add one?", {"Yes", "No"},
                 static_cast<std::uint8_t>(topic)) != 'Y')
    return false;
  AddFlow(false);
  return true;
}

void ManagerOBJ::EntryLoop() {
  Screen& s = scr();
  for (;;) {
    if (db_->count() == 0) {
      if (!AskAddWhenEmpty()) return;
      continue;
    }
    ShowEntry();
    ShowStatus(help_line_);
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    const int pos = db_->current();
    const auto fk = std::find_if(
        function_keys_.begin(), function_keys_.end(),
        [&](const FunctionKey& f) { return f.extended == extended && f.code == k && f.proc; });
    if (fk != function_keys_.end()) {
      fk->proc(record_.data(), left_, top_);
      if (db_->WriteInPlace(pos, record_.data())) ForgetRow(pos);
    } else if (!extended) {
      if (k == key::kEsc) return;
      if (k == key::kEnter) {
        if (HasEditing() && !view_only) EditFlow();
      } else if (k >= key::kSpace && k != 127) {
        TypedKey(static_cast<char>(k));
      }
    } else {
      switch (k) {
        case key::kF9:
        case key::kF10:
          return;
        case key::kIns:
        case key::kF6:
          if (HasEditing() && !view_only) AddFlow(k == key::kF6);
          break;
        case key::kDel:
          if (HasEditing() || view_only) DeleteFlow();
          break;
        case key::kF1:
          RequestHelp(topic);
          break;
        case key::kF2:
          if (companion_ && global_edit) GlobalFlow();
          break;
        case key::kF3:
          if (edit && edit(record_.data()) && db_->Rewrite(pos, record_.data()))
            MoveRow(pos, db_->current());
          break;
        case key::kF4:
          if (searchable) FindFlow({});
          break;
        case key::kF5:
          if (companion_) BrowseFlow();
          break;
        case key::kHome:
          db_->set_current(0);
          break;
        case key::kEnd:
          db_->set_current(db_->count() - 1);
          break;
        case key::kLeft:
          if (pos > 0) db_->set_current(pos - 1);
          break;
        case key::kRight:
          if (pos + 1 < db_->count()) db_->set_current(pos + 1);
          break;
        default:
          HandleCommonKey(k, topic);
          break;
      }
    }
    db_->set_current(db_->current());  // clamped to the entries there are
  }
}

void ManagerOBJ::TypedKey(char c) {
  const KeyDef* kd = keys_.Find(db_->active_key());
  if (!kd) return;
  const bool digit = std::isdigit(static_cast<unsigned char>(c)) != 0;
  if (searchable) {
    if (kd->type == Str ||
        ((kd->type == Int || kd->type == Aka || kd->type == Wrd || kd->type == Long) && digit))
      FindFlow(std::string(1, c));
  } else if (kd->type == Str) {
    JumpByLetter(c);
  }
}

void ManagerOBJ::LimitMessage() {
  MessageBox("You can not enter more than " + std::to_string(max_entries) + " entries", {"Ok"});
}

void ManagerOBJ::AddFlow(bool copy) {
  if (db_->count() >= max_entries) {
    LimitMessage();
    return;
  }
  if (copy) {
    edit_ = record_;
  } else {
    std::fill(edit_.begin(), edit_.end(), std::uint8_t{0});
    if (init) init(edit_.data());
    if (choose_new && !choose_new(edit_.data())) return;
  }
  EditRecord(true, -1);
}

void ManagerOBJ::EditFlow() {
  edit_ = record_;
  EditRecord(false, db_->current());
}

int ManagerOBJ::KeyField() const {
  const KeyDef* kd = keys_.Find(db_->active_key());
  for (std::size_t i = 0; kd && i < page_->size(); ++i)
    if (page_->field(static_cast<int>(i)).offset == kd->rec_offset) return static_cast<int>(i);
  return 0;
}

bool ManagerOBJ::EditRecord(bool adding, int editing) {
  Screen& s = scr();
  const auto& c = ui().colours;
  s.FillRect(left_ + 1, top_ + 1, right_ - 1, bottom_ - 1, ' ', c[kWindowText]);
  std::string title = adding ? "Adding new entry" : "Editing entry";
  if (numbered_title) {
    const int total = db_->count() + (adding ? 1 : 0);
    title += " " + std::to_string(adding ? total : editing + 1) + "/" + std::to_string(total);
  }
  DrawWindow(title);
  const std::vector<std::uint8_t> original = edit_;
  if (on_open) on_open(original.data(), adding);
  int first = 0;
  bool saved = false;
  for (;;) {
    page_->Draw(edit_.data(), left_, top_);
    page_->Run(edit_.data(), left_, top_, first);
    if (edit_ == original) break;
    if (!AskYesNo("Save changes?")) break;
    if (check) {
      const int fault = check(edit_.data(), adding);
      if (fault >= 0) {
        first = fault;
        continue;
      }
    }
    if (unique && db_->IsDuplicate(edit_.data(), editing)) {
      ErrorBox("Duplicate entry");
      first = KeyField();
      continue;
    }
    if (adding ? db_->Insert(edit_.data()) : db_->Rewrite(editing, edit_.data())) {
      if (adding)
        InsertRow(db_->current());
      else
        MoveRow(editing, db_->current());
      saved = true;
      if (after_save) after_save(edit_.data(), adding);
      break;
    }
    ErrorBox("Error writing the entry to disk");
  }
  DrawWindow(title_);
  return saved;
}

void ManagerOBJ::DeleteFlow() {
  if (ui().confirm_delete && MessageBox("Delete this entry?", {"No", "Yes"}) != 'Y') return;
  if (on_delete && !on_delete(record_.data())) return;
  const int pos = db_->current();
  if (db_->Remove(pos) && companion_) companion_->Remove(pos);
}

// --- Companion rows ------------------------------------------------------------------------

void ManagerOBJ::InsertRow(int pos) {
  if (!companion_) return;
  const std::vector<std::uint8_t> empty(companion_->row_size());
  companion_->Insert(pos, empty.data());
}

void ManagerOBJ::MoveRow(int from, int to) {
  if (!companion_) return;
  companion_->Remove(from);
  InsertRow(to);
}

void ManagerOBJ::ForgetRow(int pos) {
  if (!companion_) return;
  const std::vector<std::uint8_t> empty(companion_->row_size());
  companion_->Write(pos, empty.data());
}

// --- Finding --------------------------------------------------------------------------------

void ManagerOBJ::FindFlow(std::string typed) {
  const KeyDef* kd = keys_.Find(db_->active_key());
  if (!kd) return;
  int max_len = 5;
  if (kd->type == Str)
    max_len = std::max(1, kd->length - 1);
  else if (kd->type == Aka)
    max_len = 22;
  else if (kd->type == Long)
    max_len = 10;
  else if (kd->type == Int && kd->length == 1)
    max_len = 3;
  const std::string caption(kd->name);
  const auto text = AskText(title_, "Enter " + caption + " to search for: ", max_len, typed);
  if (!text || text->empty()) return;
  const int found = FindByKey(*kd, *text);
  if (found < 0)
    ErrorBox("Unable to find entry");
  else
    db_->set_current(found);
}

int ManagerOBJ::FindByKey(const KeyDef& kd, const std::string& text) const {
  const auto field = [&](int i) { return db_->Key(i) + kd.key_offset; };
  if (kd.type == Str) {
    // Strings match by their beginning, case folded: typing part of a tag finds it.
    const std::string want = Upper(text);
    for (int i = 0; i < db_->count(); ++i)
      if (Upper(StrField(field(i), kd.length)).starts_with(want)) return i;
    return -1;
  }
  std::vector<std::uint8_t> want(kd.length);
  if (kd.type == Aka) {
    const auto addr = ParseAddr(text);
    if (!addr) return -1;
    std::memcpy(want.data(), &*addr, std::min(want.size(), sizeof(NetAddr)));
  } else {
    char* end = nullptr;
    const unsigned long long v = std::strtoull(text.c_str(), &end, 10);
    if (*end != '\0') return -1;
    for (std::size_t b = 0; b < want.size(); ++b) want[b] = static_cast<std::uint8_t>(v >> (8 * b));
  }
  for (int i = 0; i < db_->count(); ++i)
    if (std::memcmp(field(i), want.data(), want.size()) == 0) return i;
  return -1;
}

void ManagerOBJ::JumpByLetter(char letter) {
  const KeyDef* kd = keys_.Find(db_->active_key());
  if (!kd || kd->type != Str) return;
  const char want = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  const auto begins = [&](int i) {
    const std::string s = StrField(db_->Key(i) + kd->key_offset, kd->length);
    return !s.empty() && std::toupper(static_cast<unsigned char>(s[0])) == want;
  };
  // Only a match after the current entry moves the position, and then to the first match of
  // the whole list: an earlier match alone never does.
  bool later = false;
  for (int i = db_->current() + 1; i < db_->count() && !later; ++i) later = begins(i);
  if (!later) return;
  for (int i = 0; i < db_->count(); ++i) {
    if (begins(i)) {
      db_->set_current(i);
      return;
    }
  }
}

// --- Browse and global change --------------------------------------------------------------

void ManagerOBJ::BrowseFlow() {
  ViewMgrOBJ view(*this);
  const int pos = view.Browse();
  if (pos >= 0) db_->set_current(pos);
}

void ManagerOBJ::GlobalFlow() {
  if (db_->count() > kMaxMarks) {
    ErrorBox("There is not enough memory for this operation");
    return;
  }
  std::vector<bool> marks(static_cast<std::size_t>(db_->count()));
  ViewMgrOBJ view(*this);
  if (!view.ChooseMarks(marks)) return;
  if (!AskYesNo("Process changes ?")) return;
  if (global_ok && !global_ok()) return;
  ShowStatus("~Working...~");
  scr().Flush();
  // Record numbers stay put while entries move, so the marked entries are visited by record
  // number in the index order they had when they were marked.
  std::vector<std::uint16_t> recnos;
  for (int i = 0; i < db_->count(); ++i)
    if (marks[static_cast<std::size_t>(i)]) recnos.push_back(db_->RecNo(i));
  int changed = 0;
  std::vector<std::uint8_t> rec(record_size_);
  for (const std::uint16_t recno : recnos) {
    int pos = -1;
    for (int i = 0; i < db_->count() && pos < 0; ++i)
      if (db_->RecNo(i) == recno) pos = i;
    if (pos < 0 || !db_->ReadRecord(pos, rec.data())) continue;
    if (!global_edit(rec.data())) continue;
    if (db_->Rewrite(pos, rec.data())) {
      MoveRow(pos, db_->current());
      ++changed;
    }
  }
  if (global_done) global_done(static_cast<int>(recnos.size()), changed);
}

std::string ManagerOBJ::CellText(const std::uint8_t* rec, int column) const {
  const ListColumn& col = columns_[static_cast<std::size_t>(column)];
  std::string text = cell ? cell(rec, column) : FieldText(col.type, rec + col.offset, col.length);
  return Fit(std::move(text), col.width);
}

int ViewMgrOBJ::RowWidth() const {
  int w = 0;
  for (const auto& c : mgr_.columns_) w += c.width + 1;
  return std::max(w - 1, 1);
}

std::string ViewMgrOBJ::Header() const {
  std::string h;
  for (const auto& c : mgr_.columns_) h += Fit(c.caption, c.width) + " ";
  if (!h.empty()) h.pop_back();
  return h;
}

std::string ViewMgrOBJ::Row(int pos) {
  CompanionFile* comp = mgr_.companion_;
  const std::size_t width = static_cast<std::size_t>(RowWidth());
  std::vector<std::uint8_t> row;
  if (comp && comp->row_size() > 1) {
    row.resize(comp->row_size());
    if (comp->Read(pos, row.data()) && row[0] == 1)
      return Fit(std::string(row.begin() + 1, row.end()), width);
  }
  std::vector<std::uint8_t> rec(mgr_.record_size_);
  if (!mgr_.db_->ReadRecord(pos, rec.data())) return Fit({}, width);
  std::string text;
  for (std::size_t i = 0; i < mgr_.columns_.size(); ++i)
    text += mgr_.CellText(rec.data(), static_cast<int>(i)) + " ";
  text = Fit(std::move(text), width);
  if (!row.empty()) {
    row[0] = 1;
    const std::size_t n = std::min(text.size(), row.size() - 1);
    std::memcpy(row.data() + 1, text.data(), n);
    comp->Write(pos, row.data());
  }
  return text;
}

PickList ViewMgrOBJ::List(std::vector<bool>* marks) {
  PickList list;
  list.title = "View";
  list.header = (marks ? "  " : "") + Header();
  list.count = mgr_.db_->count();
  list.row = [this](int pos) { return Row(pos); };
  list.marks = marks;
  list.key_line =
      marks ? "~Space~-select ~F2~-(de)select all ~Esc~/~Enter~-done" : "~Esc~/~Enter~-done";
  list.empty_message = "There are no entries to display";
  list.current = std::max(0, mgr_.db_->current());
  list.width = RowWidth();
  list.topic = mgr_.topic;
  return list;
}

int ViewMgrOBJ::Browse() {
  PickList list = List(nullptr);
  return RunPickList(list);
}

bool ViewMgrOBJ::ChooseMarks(std::vector<bool>& marks) {
  if (mgr_.db_->count() == 0) {
    ErrorBox("There are no entries to display");
    return false;
  }
  PickList list = List(&marks);
  if (mgr_.mark_filter) {
    list.key_line += " ~F3~-filter";
    list.on_key = [&](std::uint8_t scan) {
      if (scan != key::kF3) return false;
      const auto passes = mgr_.mark_filter();
      if (!passes) return true;
      std::vector<std::uint8_t> rec(mgr_.record_size_);
      for (int i = 0; i < mgr_.db_->count(); ++i)
        if (mgr_.db_->ReadRecord(i, rec.data()) && passes(rec.data()))
          marks[static_cast<std::size_t>(i)] = true;
      return true;
    };
  }
  RunPickList(list);
  return true;
}

}  // namespace ks

#pragma once
// The controls of a window, held as plain data so that a window's behaviour
// runs and is tested without a display.

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace tervalo {

struct TextBox {
  std::string text;
  bool visible = true;
  bool enabled = true;
  // What the window says of the field beside its text (a point number not
  // found in the point list); shown as its tip, with a warning tint.
  std::string note{};
};

struct Label {
  std::string caption;
  bool visible = true;
  bool enabled = true;
  // Files named in the caption that the window makes clickable, each
  // opening the folder it lies in (the files an export wrote).
  std::vector<std::string> links{};
};

struct Frame {
  std::string caption;
  bool visible = true;
  bool enabled = true;
};

struct CheckBox {
  bool checked = false;
  std::string caption;
  bool visible = true;
  bool enabled = true;
};

struct OptionButton {
  bool checked = false;
  std::string caption;
  bool visible = true;
  bool enabled = true;
};

struct ComboBox {
  std::string text;
  std::vector<std::string> items;
  bool visible = true;
  bool enabled = true;
};

struct ListBox {
  std::vector<std::string> items;
  int selected = -1;  // the row the user picked, -1 for none
  bool visible = true;
  bool enabled = true;
};

struct Button {
  std::string caption;
  bool visible = true;
  bool enabled = true;
};

// An entry of the window's menu bar (a submenu title is one too).
struct MenuItem {
  std::string caption;
  bool visible = true;
  bool enabled = true;
  std::string parent;  // name of the submenu it sits in, "" on the bar itself
  bool separatorBefore = false;  // a line above it, setting it apart from the entries before
};

using ControlRef = std::variant<TextBox*, Label*, Frame*, CheckBox*, OptionButton*, ComboBox*, ListBox*, Button*, MenuItem*>;

// One row of a window's control table: the control's name, the member that
// holds it, and its events. The binder, the job runner and the JSON result
// all walk this one table, in screen order.
struct ControlEntry {
  std::string name;
  ControlRef control;
  std::string group;  // option buttons of one group clear each other
  std::function<void()> onChange;
  std::function<void()> onLostFocus;
  std::function<void()> onClick;
  // A text box read as a number by the classic rule: text that is not a
  // plain number is shown with what it reads as; a required one left empty
  // is marked too (it reads 0).
  bool number = false;
  bool required = false;

  ControlEntry& numeric(bool isRequired = false) {
    number = true;
    required = isRequired;
    return *this;
  }
  ControlEntry& change(std::function<void()> f) { onChange = std::move(f); return *this; }
  ControlEntry& lostFocus(std::function<void()> f) { onLostFocus = std::move(f); return *this; }
  ControlEntry& click(std::function<void()> f) { onClick = std::move(f); return *this; }
};

// The text a control shows: a text box's or combo's text, any caption.
std::string controlText(const ControlRef& control);
bool controlVisible(const ControlRef& control);
bool controlEnabled(const ControlRef& control);
// "text box", "label", ... for messages.
const char* controlKindName(const ControlRef& control);

}  // namespace tervalo

#include "app/controls.h"

namespace tervalo {
namespace {

template <class... F>
struct Overload : F... {
  using F::operator()...;
};
template <class... F>
Overload(F...) -> Overload<F...>;

}  // namespace

std::string controlText(const ControlRef& control) {
  return std::visit(Overload{[](const TextBox* c) { return c->text; }, [](const ComboBox* c) { return c->text; },
                             [](const ListBox*) { return std::string(); }, [](const auto* c) { return c->caption; }},
                    control);
}

bool controlVisible(const ControlRef& control) {
  return std::visit([](const auto* c) { return c->visible; }, control);
}

bool controlEnabled(const ControlRef& control) {
  return std::visit([](const auto* c) { return c->enabled; }, control);
}

const char* controlKindName(const ControlRef& control) {
  static const char* const names[] = {"text box", "label",    "frame",  "check box", "option button",
                                      "combo box", "list box", "button", "menu item"};
  return names[control.index()];
}

}  // namespace tervalo

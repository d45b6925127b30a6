// The text rules on any text: numbers (Val and the strict reading), format
// masks, stations and angles. Each either answers or refuses with the
// program's own fault; a finite answer formats back without a crash.

#include <cstdint>
#include <string>
#include <string_view>

#include "text/angle.h"
#include "text/encoding.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"
#include "text/station.h"

namespace {

template <class Rule>
void tryRule(Rule rule) {
  try {
    rule();
  } catch (const tervalo::ProgramFault&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  // A mask before the first newline, the text after it.
  const auto cut = input.find('\n');
  const std::string mask = cut == std::string::npos ? "###0.0000" : input.substr(0, cut);
  const std::string text = cut == std::string::npos ? input : input.substr(cut + 1);

  tryRule([&] {
    const double v = tervalo::Val(text);
    tervalo::Format(v, mask);
    tervalo::CStr(v);
    tervalo::decimalToDms(v);
    tervalo::decimalToDmsCarried(v);
    tervalo::toInt16(v);
  });
  tryRule([&] {
    if (const auto v = tervalo::strictNumber(text)) tervalo::Format(*v, "####+##.0000");
  });
  tryRule([&] {
    if (text.find('+') != std::string::npos) tervalo::Format(tervalo::stationToNumber(text).number, "###+##.00");
  });
  tryRule([&] {
    std::string packed = text;
    tervalo::dmsToDecimal(packed);
  });
  tryRule([&] {
    const std::string decoded = tervalo::decodeText(text);
    tervalo::rightJustify(decoded, 12);
    tervalo::leftJustify(decoded, 3);
  });
  return 0;
}

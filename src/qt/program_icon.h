#pragma once
// The program's icon for every window, drawn from the PNGs made at build
// time, each read only when a window system asks for that size.

#include <QIcon>

namespace tervalo {

QIcon programIcon();

}  // namespace tervalo

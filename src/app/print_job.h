#pragma once
// A text a window prints as it stands in its file: fixed pitch, columns
// intact, a new page at each form feed, and perhaps a picture on a page of
// its own after the text. Toolkit-free; the desktop program paints it.

#include <optional>
#include <string>
#include <vector>

#include "app/picture.h"

namespace tervalo {

struct PrintJob {
  std::string title;  // the document's name, in each page's footer
  std::vector<std::string> lines;
  std::optional<Picture> picture;  // its own page after the text
};

// The text's pages: a form feed starts a new page (a form feed in the
// middle of a line breaks it there), a page holds at most `linesPerPage`
// lines, and no page is empty unless the text is.
std::vector<std::vector<std::string>> textPages(const std::vector<std::string>& lines, int linesPerPage);

// The most characters any line holds: what the font must fit across a page.
int widestLine(const std::vector<std::string>& lines);

}  // namespace tervalo

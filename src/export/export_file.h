#pragma once
// What the export buttons share: the file kind a chosen name asks for, the
// time stamp of a document, and writing a document whole.

#include <filesystem>
#include <string>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "app/shell.h"
#include "export/landxml.h"
#include "text/date.h"

namespace tervalo {

// ".xml", ".csv", ...: the name's ending in lower case, "" when it has none.
std::string exportKind(const std::filesystem::path& file);

// `today` as the document's date, the local clock's time.
XmlStamp stampOf(const Date& today);

// Writes `text` as it stands (no line-end changes), whole or not at all.
void writeDocument(const std::filesystem::path& file, const std::string& text);

// One writer per file ending offered (".csv", ...), in the order offered.
using ExportWriters = std::vector<std::pair<std::string, std::function<void()>>>;

// Writes an export as both export buttons do: the writer of the chosen
// name's ending runs; a fault of the file (an ending not offered, a field
// the kind cannot hold, a file that cannot be written) is said in a box
// titled `title`, and nothing is written and nothing ends; a written file
// is told to the shell. Returns the file written, or nothing.
std::optional<std::filesystem::path> exportFile(Shell& shell, const std::string& title, const std::filesystem::path& file,
                                                const ExportWriters& writers);

}  // namespace tervalo

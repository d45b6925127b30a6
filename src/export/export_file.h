#pragma once
// What the export buttons share: the file kind a chosen name asks for, the
// time stamp of a document, and writing a document whole.

#include <filesystem>
#include <string>

#include "export/landxml.h"
#include "text/date.h"

namespace tervalo {

// ".xml", ".csv", ...: the name's ending in lower case, "" when it has none.
std::string exportKind(const std::filesystem::path& file);

// `today` as the document's date, the local clock's time.
XmlStamp stampOf(const Date& today);

// Writes `text` as it stands (no line-end changes), whole or not at all.
void writeDocument(const std::filesystem::path& file, const std::string& text);

}  // namespace tervalo

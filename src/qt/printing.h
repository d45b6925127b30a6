#pragma once
// Printing a window's text (and its picture) on paper or into a PDF file.

#include <filesystem>

#include "app/print_job.h"

class QPagedPaintDevice;
class QWidget;

namespace tervalo {

// Paints `job` onto the device's pages: the text in a fixed-pitch font
// small enough that the widest line fits across the page (at most 10
// points), a footer with the title and page number, and the picture, if
// any, on a landscape page of its own. Returns the pages painted.
int paintPrintJob(QPagedPaintDevice& device, const PrintJob& job);

// Writes `job` as a PDF file, whole or not at all.
void writePrintPdf(const PrintJob& job, const std::filesystem::path& file);

// The print dialog over `parent`; a PDF chosen there is written whole like
// every output file. Returns the file written, if the job went to one.
std::optional<std::filesystem::path> printWithDialog(const PrintJob& job, QWidget* parent);

}  // namespace tervalo

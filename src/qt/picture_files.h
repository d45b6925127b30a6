#pragma once
// A picture as a file for other programs, by the name's ending: SVG, PNG or
// PDF, painted by the same painter as on screen, on a white page (a file is
// a document, whatever the window's theme).

#include <QFont>
#include <QPainter>
#include <filesystem>

#include "app/picture.h"

namespace tervalo {

// The picture's file kinds, as the save dialog lists them.
inline const char* const kPictureFilters[] = {"SVG drawing (*.svg)", "PNG image (*.png)", "PDF document (*.pdf)"};

// Paints `picture` into `area` of a page (device pixels) black on white,
// its lines and labels sized for paper whatever the device's resolution:
// labels of `points` points.
void paintOnPaper(QPainter& painter, const Picture& picture, const QRectF& area, double points = 9);

// Writes `picture` to `file` (whole, like every output file); the ending
// chooses the kind and an unknown one is a RunTimeError saying which exist.
void writePictureFile(const Picture& picture, const std::filesystem::path& file, const QFont& font);

}  // namespace tervalo

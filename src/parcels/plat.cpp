#include "parcels/plat.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "cogo/cogo.h"
#include "text/format.h"

namespace tervalo {
namespace {

constexpr double kRadian = std::numbers::pi / 180;

using P = PicturePoint;

P operator+(P a, P b) { return {a.x + b.x, a.y + b.y}; }
P operator-(P a, P b) { return {a.x - b.x, a.y - b.y}; }
P operator*(P a, double k) { return {a.x * k, a.y * k}; }

double crossOf(P o, P a, P b) { return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x); }

bool segmentsTouch(P a, P b, P c, P d) {
  const double d1 = crossOf(c, d, a), d2 = crossOf(c, d, b), d3 = crossOf(a, b, c), d4 = crossOf(a, b, d);
  return ((d1 > 0) != (d2 > 0) || d1 == 0 || d2 == 0) && ((d3 > 0) != (d4 > 0) || d3 == 0 || d4 == 0) &&
         !(d1 == 0 && d2 == 0 && d3 == 0 && d4 == 0 &&
           (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x) ||
            std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y)));
}

bool inside(const std::array<P, 4>& q, P p) {
  bool pos = false, neg = false;
  for (std::size_t i = 0; i < 4; ++i) {
    const double c = crossOf(q[i], q[(i + 1) % 4], p);
    pos = pos || c > 0;
    neg = neg || c < 0;
  }
  return !(pos && neg);
}

bool quadsMeet(const std::array<P, 4>& a, const std::array<P, 4>& b) {
  for (std::size_t i = 0; i < 4; ++i)
    for (std::size_t j = 0; j < 4; ++j)
      if (segmentsTouch(a[i], a[(i + 1) % 4], b[j], b[(j + 1) % 4])) return true;
  return inside(a, b[0]) || inside(b, a[0]);
}

bool quadMeetsSegment(const std::array<P, 4>& q, P a, P b) {
  for (std::size_t i = 0; i < 4; ++i)
    if (segmentsTouch(q[i], q[(i + 1) % 4], a, b)) return true;
  return inside(q, a);
}

using QuadPolygon = std::vector<P>;

// Within a closed outline, by the crossings of a ray to the east.
bool insidePolygon(const QuadPolygon& polygon, P p) {
  bool in = false;
  for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const P& a = polygon[i];
    const P& b = polygon[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) in = !in;
  }
  return in;
}

std::array<P, 4> markBox(const SheetMark& m) {
  const double r = m.size / 2;
  return {P{m.at.x - r, m.at.y - r}, P{m.at.x + r, m.at.y - r}, P{m.at.x + r, m.at.y + r}, P{m.at.x - r, m.at.y + r}};
}

// A course on the ground as x (east) and y (north), an arc in chords of two degrees or less.
std::vector<P> groundTrace(const Course& c) {
  std::vector<P> out;
  for (const CoursePoint& q : tracedCourse(c, std::max(8, static_cast<int>(c.delta / 2)))) out.push_back({q.e, q.n});
  return out;
}

std::string lengthText(double v, const std::string& unit) { return Format(v, "0.00") + (unit == "m" ? " m" : "'"); }

// Words of a paragraph in lines no wider than `width` at `height`.
std::vector<std::string> wrapped(const std::string& text, double width, double height) {
  std::vector<std::string> lines;
  std::string line, word;
  const auto flush = [&] {
    if (word.empty()) return;
    const std::string tried = line.empty() ? word : line + " " + word;
    if (!line.empty() && textWidth(tried, height) > width) {
      lines.push_back(line);
      line = word;
    } else {
      line = tried;
    }
    word.clear();
  };
  for (char c : text) {
    if (c == ' ') {
      flush();
    } else {
      word += c;
    }
  }
  flush();
  if (!line.empty()) lines.push_back(line);
  return lines;
}

struct Layout {
  Sheet sheet;
  double h = 0.08;  // the labels' height
  // Obstacles: the lines as segments with their sheet line, the marks, the texts placed.
  struct Segment {
    P a, b;
    int line;
  };
  std::vector<Segment> segments;

  void addLine(SheetLine l) {
    const int id = static_cast<int>(sheet.lines.size());
    for (std::size_t i = 0; i + 1 < l.points.size(); ++i) segments.push_back({l.points[i], l.points[i + 1], id});
    if (l.filled && l.points.size() > 2) segments.push_back({l.points.back(), l.points.front(), id});
    sheet.lines.push_back(std::move(l));
  }
  bool clear(const SheetText& t) const {
    const auto box = t.box();
    for (const SheetText& o : sheet.texts)
      if (quadsMeet(box, o.box())) return false;
    for (const Segment& s : segments)
      if (s.line != t.line && quadMeetsSegment(box, s.a, s.b)) return false;
    for (const SheetMark& m : sheet.marks)
      if (quadsMeet(box, markBox(m))) return false;
    return true;
  }
  bool place(const SheetText& t) {
    if (!clear(t)) return false;
    sheet.texts.push_back(t);
    return true;
  }
  SheetText text(P at, const std::string& s, double height, const char* on, double angle = 0, bool bold = false) const {
    SheetText t;
    t.at = at;
    t.text = s;
    t.height = height;
    t.angle = angle;
    t.width = textWidth(s, height);
    t.layer = on;
    t.bold = bold;
    return t;
  }
  // A text centred on `middle` (its box's middle), level.
  SheetText centred(P middle, const std::string& s, double height, const char* on, bool bold = false) const {
    const double w = textWidth(s, height);
    return text({middle.x - w / 2, middle.y - height * 0.375}, s, height, on, 0, bold);
  }
  void frame(double x0, double y0, double x1, double y1, const char* on, double weight = 0.35) {
    SheetLine l;
    l.points = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}, {x0, y0}};
    l.layer = on;
    l.weight = weight;
    addLine(std::move(l));
  }
};

struct Edge {
  Course course;
  int uses = 0;
  std::vector<P> paper;
};

std::string key(double n, double e) { return Format(n, "0.000") + "," + Format(e, "0.000"); }

}  // namespace

std::optional<SheetSize> sheetSizeOf(const std::string& word) {
  if (word == "letter") return SheetSize::Letter;
  if (word == "tabloid") return SheetSize::Tabloid;
  if (word == "archd") return SheetSize::ArchD;
  return std::nullopt;
}

double textWidth(const std::string& text, double height) {
  // Characters, not bytes: the degree sign is one.
  double n = 0;
  for (unsigned char c : text) n += (c & 0xC0) != 0x80 ? 1 : 0;
  return n * 0.85 * height;
}

std::array<PicturePoint, 4> SheetText::box() const {
  const double c = std::cos(angle * kRadian), s = std::sin(angle * kRadian);
  const P along{c, s}, up{-s, c};
  const P low = at - up * (height * 0.25);
  return {low, low + along * width, low + along * width + up * (height * 1.25), low + up * (height * 1.25)};
}

const std::vector<double>& plattingScales() {
  static const std::vector<double> scales{10,  20,  30,  40,   50,   60,   80,   100,  120,  150,  200,   250,   300,  400,
                                          500, 600, 800, 1000, 1200, 1500, 2000, 2500, 3000, 4000, 5000, 6000, 8000, 10000};
  return scales;
}

Sheet drawPlat(const PlatInput& input, const PlatOptions& options) {
  if (input.parcels.empty()) throw DeedError("there is no parcel to draw");
  Layout L;
  Sheet sheet;  // the paper's size; each pass draws on a fresh one
  double margin = 0.5, strip = 1.9, h = 0.07;
  switch (options.size) {
    case SheetSize::Letter: sheet.width = 11, sheet.height = 8.5; break;
    case SheetSize::Tabloid: sheet.width = 17, sheet.height = 11, h = 0.08, strip = 2.2; break;
    case SheetSize::ArchD: sheet.width = 36, sheet.height = 24, h = 0.1, margin = 1.0, strip = 3.2; break;
  }
  const double gap = h * 0.45;

  // The edges of the parcels, each once: a line two parcels share is labelled once.
  std::vector<Edge> edges;
  std::map<std::string, std::size_t> edgeOf;
  double minE = 1e300, maxE = -1e300, minN = 1e300, maxN = -1e300;
  for (const PlatParcel& p : input.parcels)
    for (const Course& c : p.courses) {
      for (const P& q : groundTrace(c)) {
        minE = std::min(minE, q.x), maxE = std::max(maxE, q.x), minN = std::min(minN, q.y), maxN = std::max(maxN, q.y);
      }
      const std::string a = key(c.fromN, c.fromE), b = key(c.toN, c.toE);
      const std::string k = (a < b ? a + "|" + b : b + "|" + a) + (c.curve ? "|" + Format(c.radius, "0.000") : "");
      const auto [at, added] = edgeOf.emplace(k, edges.size());
      if (added) edges.push_back({c, 0, {}});
      ++edges[at->second].uses;
    }

  const double left = margin + 0.15, right = sheet.width - margin - 0.15;
  const double bottom = margin + strip + 0.15, top = sheet.height - margin - 0.15;

  // Again with room for more table rows while a pass tables more lines than
  // the last made room for: a smaller scale finds room for fewer labels.
  std::size_t rows = 0;  // the table rows room is made for
  for (int pass = 0; pass < 6; ++pass) {
    L = Layout{};
    L.h = h;
    L.sheet.width = sheet.width, L.sheet.height = sheet.height, L.sheet.title = input.title;
    Sheet& s = L.sheet;
    const std::size_t curveRows = static_cast<std::size_t>(std::count_if(edges.begin(), edges.end(), [](const Edge& e) { return e.course.curve; }));
    const double rowHeight = h * 1.7, columnWidth = textWidth("C00  R 00000.00'  L 00000.00'  D 000°00'00\"", h) + 0.3;
    const std::size_t wanted = rows + 2 * curveRows + 3;  // with the headers
    const std::size_t perColumn = std::max<std::size_t>(1, static_cast<std::size_t>((top - bottom - h) / rowHeight));
    const std::size_t columns = rows + curveRows == 0 ? 0 : (wanted + perColumn - 1) / perColumn;
    const double tableWidth = static_cast<double>(columns) * columnWidth;
    if (tableWidth > (right - left) * 0.6)
      throw DeedError("the labels of " + std::to_string(rows + curveRows) + " lines do not fit a table on this sheet: choose a larger sheet");
    const double areaRight = right - tableWidth;
    const double pad = 4 * h;  // room round the figure for the labels outside it
    const double availW = areaRight - left - 2 * pad, availH = top - bottom - 2 * pad;
    const double spanE = std::max(maxE - minE, 1e-9), spanN = std::max(maxN - minN, 1e-9);
    double scale = options.scale;
    if (scale <= 0) {
      scale = plattingScales().back();
      for (double candidate : plattingScales())
        if (spanE / candidate <= availW && spanN / candidate <= availH) {
          scale = candidate;
          break;
        }
    }
    if (spanE / scale > availW + 1e-9 || spanN / scale > availH + 1e-9)
      throw DeedError("at 1\" = " + Format(scale, "0") + (input.unit == "m" ? " m" : "'") + " the parcels take " + Format(spanE / scale, "0.0") +
                      " by " + Format(spanN / scale, "0.0") + " inches; the sheet has room for " + Format(availW, "0.0") + " by " +
                      Format(availH, "0.0") + ": choose a smaller scale or a larger sheet");
    s.scale = scale;
    const P origin{(left + areaRight) / 2 - (minE + maxE) / 2 / scale, (bottom + top) / 2 - (minN + maxN) / 2 / scale};
    const auto paper = [&](double e, double n) { return P{origin.x + e / scale, origin.y + n / scale}; };

    // The border and the blocks of the strip beneath the drawing.
    L.frame(margin, margin, sheet.width - margin, sheet.height - margin, layer::Border, 0.7);
    const double stripTop = margin + strip, third = (sheet.width - 2 * margin) / 3;
    const double certRight = margin + third * 1.15, notesRight = margin + third * 2.1;
    L.frame(margin, margin, certRight, stripTop, layer::Certificate);
    L.frame(certRight, margin, notesRight, stripTop, layer::Notes);
    L.frame(notesRight, margin, sheet.width - margin, stripTop, layer::Title);

    // The parcels' lines: outer lines heavy, shared ones light.
    std::vector<int> lineOfEdge;
    for (Edge& e : edges) {
      e.paper.clear();
      for (const P& q : groundTrace(e.course)) e.paper.push_back(paper(q.x, q.y));
      SheetLine l;
      l.points = e.paper;
      l.layer = e.uses > 1 ? layer::Parcel : layer::Boundary;
      l.weight = e.uses > 1 ? 0.3 : 0.6;
      lineOfEdge.push_back(static_cast<int>(s.lines.size()));
      L.addLine(std::move(l));
    }
    for (const PlatCorner& c : input.corners) s.marks.push_back({paper(c.e, c.n), c.kind, h * 1.1, layer::Monument});

    // Bearing above and distance below each line, along it, where they fit;
    // otherwise a tag and the line in the line table. Curves in the curve table.
    std::vector<std::size_t> nowTabled;
    std::vector<std::pair<std::string, std::size_t>> tags;
    int lineTags = 0, curveTags = 0;
    for (std::size_t i = 0; i < edges.size(); ++i) {
      const Edge& e = edges[i];
      const int owner = lineOfEdge[i];
      const P a = e.paper.front(), b = e.paper.back();
      bool labelled = false;
      if (!e.course.curve) {
        // Upright: left to right, and bottom to top along a line within ten degrees of north.
        double angle = std::atan2(b.y - a.y, b.x - a.x) / kRadian;
        while (angle > 100) angle -= 180;
        while (angle <= -80) angle += 180;
        const P along{std::cos(angle * kRadian), std::sin(angle * kRadian)}, up{-along.y, along.x};
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        // A line's bearing as a plat states it, toward the north (a due east or west line toward the east).
        const double az = e.course.azimuth;
        const bool turned = !input.courseBearings && az > 90 + 1e-9 && az <= 270 + 1e-9;
        const std::string bearing = bearingWords(turned ? std::fmod(az + 180, 360) : az, 0);
        const std::string distance = lengthText(e.course.length, input.unit);
        for (double t : {0.5, 0.4, 0.6, 0.3, 0.7, 0.22, 0.78}) {
          const P mid = a + (b - a) * t;
          const auto labelAt = [&](const std::string& text, bool above) {
            SheetText lt = L.text({}, text, h, layer::Dimension, angle);
            lt.line = owner;
            lt.at = mid - along * (lt.width / 2) + up * (above ? gap + h * 0.25 : -(gap + h));
            return lt;
          };
          const double room = std::max(textWidth(bearing, h), textWidth(distance, h)) + 2 * h;
          if (room > std::min(t, 1 - t) * 2 * length) continue;
          for (bool bearingAbove : {true, false}) {
            const SheetText one = labelAt(bearing, bearingAbove), two = labelAt(distance, !bearingAbove);
            if (L.clear(one)) {
              L.sheet.texts.push_back(one);
              if (L.clear(two)) {
                L.sheet.texts.push_back(two);
                labelled = true;
                break;
              }
              L.sheet.texts.pop_back();
            }
          }
          if (labelled) break;
        }
      }
      if (labelled) continue;
      // A tag beside the middle of the line or arc.
      const std::string tag = e.course.curve ? "C" + std::to_string(++curveTags) : "L" + std::to_string(++lineTags);
      const P mid = e.paper[e.paper.size() / 2];
      const P dir = e.paper.size() > 2 ? e.paper[e.paper.size() / 2 + 1] - e.paper[e.paper.size() / 2 - 1] : b - a;
      const double dl = std::max(std::hypot(dir.x, dir.y), 1e-12);
      const P normal{-dir.y / dl, dir.x / dl};
      bool placed = false;
      for (double off : {1.0, 1.8, 2.8, 4.0})
        for (double side : {1.0, -1.0}) {
          if (placed) break;
          SheetText tt = L.centred(mid + normal * (side * off * h * 1.2), tag, h, layer::Dimension);
          tt.line = owner;
          placed = L.place(tt);
        }
      tags.emplace_back(tag, i);
      nowTabled.push_back(i);
    }
    const std::size_t tabledLines = nowTabled.size() - curveRows;
    if (tabledLines > rows) {
      rows = tabledLines;
      continue;  // again, with room for the table
    }

    // The tables, top right of the drawing.
    double y = top - h * 1.5, tx = areaRight + 0.15;
    const auto row = [&](const std::string& text, bool bold = false) {
      if (y < bottom) {  // the next column
        y = top - h * 1.5;
        tx += columnWidth;
      }
      L.sheet.texts.push_back(L.text({tx, y}, text, h, layer::Table, 0, bold));
      y -= rowHeight;
    };
    bool lineHeader = false, curveHeader = false;
    for (const auto& [tag, i] : tags) {
      const Course& c = edges[i].course;
      if (!c.curve) {
        if (!lineHeader) row("LINE TABLE", lineHeader = true);
        row(tag + "  " + bearingWords(c.azimuth, 0) + "  " + lengthText(c.length, input.unit));
      }
    }
    for (const auto& [tag, i] : tags) {
      const Course& c = edges[i].course;
      if (!c.curve) continue;
      if (!curveHeader) {
        y -= lineHeader ? h : 0;
        row("CURVE TABLE", curveHeader = true);
      }
      row(tag + "  R " + lengthText(c.radius, input.unit) + "  L " + lengthText(c.arc, input.unit) + "  D " + angleText(c.delta, 0));
      row("     CH " + bearingWords(c.azimuth, 0) + "  " + lengthText(c.length, input.unit));
    }

    // Each parcel's name and area, in the clear within it, near its middle:
    // the name whole, or broken in two lines, or the name alone.
    for (const PlatParcel& p : input.parcels) {
      double twice = 0, cx = 0, cy = 0;
      QuadPolygon outline;
      for (const Course& c : p.courses) {
        const P q = paper(c.fromE, c.fromN), r = paper(c.toE, c.toN);
        const double k = q.x * r.y - r.x * q.y;
        twice += k, cx += (q.x + r.x) * k, cy += (q.y + r.y) * k;
        const std::vector<P> traced = groundTrace(c);
        for (std::size_t j = 0; j + 1 < traced.size(); ++j) outline.push_back(paper(traced[j].x, traced[j].y));
      }
      const P middle = std::fabs(twice) > 1e-12 ? P{cx / (3 * twice), cy / (3 * twice)} : outline.front();
      // The name's lines are bold; the section and the area beneath are not.
      struct Variant {
        std::vector<std::string> lines;
        std::size_t bold = 1;
      };
      std::vector<std::string> whole{p.name}, broken;
      if (const auto cut = p.name.find("1/4 "); cut != std::string::npos) broken = {p.name.substr(0, cut + 3), p.name.substr(cut + 4)};
      const auto variant = [&p](const std::vector<std::string>& name, bool area) {
        Variant v{name, name.size()};
        if (!p.under.empty()) v.lines.push_back(p.under);
        if (area) v.lines.insert(v.lines.end(), p.areaLines.begin(), p.areaLines.end());
        return v;
      };
      std::vector<Variant> variants{variant(whole, true)};
      if (!broken.empty()) variants.push_back(variant(broken, true));
      variants.push_back(variant(whole, false));
      if (!broken.empty()) variants.push_back(variant(broken, false));
      const double step = h * 1.6;
      bool placed = false;
      for (const Variant& v : variants) {
        for (int ring = 0; ring <= 8 && !placed; ++ring)
          for (int k = 0; k < (ring ? 8 : 1) && !placed; ++k) {
            const double a = k * 45 * kRadian;
            const P at = middle + P{std::cos(a), std::sin(a)} * (ring * h);
            std::vector<SheetText> block;
            bool within = true;
            for (std::size_t j = 0; j < v.lines.size(); ++j) {
              block.push_back(L.centred(at + P{0, ((v.lines.size() - 1) / 2.0 - static_cast<double>(j)) * step}, v.lines[j], h,
                                        layer::Name, j < v.bold));
              for (const P& corner : block.back().box()) within = within && insidePolygon(outline, corner);
            }
            if (!within) continue;
            const std::size_t before = L.sheet.texts.size();
            bool all = true;
            for (const SheetText& t : block) all = all && L.place(t);
            if (all) placed = true;
            else L.sheet.texts.resize(before);
          }
        if (placed) break;
      }
      if (!placed) L.sheet.unplaced.push_back(p.name + ": its name and area");
    }

    // Point numbers beside their monuments, in the first clear quarter.
    for (std::size_t i = 0; i < input.corners.size(); ++i) {
      const PlatCorner& c = input.corners[i];
      if (c.number.empty()) continue;
      const P at = paper(c.e, c.n);
      const double ph = h * 0.8, w = textWidth(c.number, ph), off = h * 0.9;
      for (const P corner : {P{off, off}, P{-off - w, off}, P{off, -off - ph}, P{-off - w, -off - ph}})
        if (L.place(L.text(at + corner, c.number, ph, layer::Point))) break;
    }

    // The blocks of the strip: texts at their height, or smaller where a
    // long certificate or many notes would not otherwise fit their box.
    const double pad2 = h * 1.2, boxHeight = strip - 2 * pad2;
    const auto blockLine = [&](double x, double& yy, const std::string& text, const char* on, double height, bool bold = false) {
      L.sheet.texts.push_back(L.text({x, yy}, text, height, on, 0, bold));
      yy -= height * 1.7;
    };
    const auto fitted = [&](const std::vector<std::string>& paragraphs, double width, double height, double room) {
      std::vector<std::string> lines;
      for (; height > h * 0.4; height *= 0.92) {
        lines.clear();
        for (const std::string& paragraph : paragraphs)
          for (const std::string& line : wrapped(paragraph, width, height)) lines.push_back(line);
        if (static_cast<double>(lines.size()) * height * 1.7 <= room) break;
      }
      return std::pair{lines, height};
    };

    // The certificate, the signature line and who signs.
    double cy = stripTop - pad2 - h;
    blockLine(margin + pad2, cy, "SURVEYOR'S CERTIFICATE", layer::Certificate, h, true);
    {
      const auto [lines, height] = fitted(input.certificate, certRight - margin - 2 * pad2, h * 0.9, boxHeight - h * 7);
      for (const std::string& line : lines) blockLine(margin + pad2, cy, line, layer::Certificate, height);
      double sy = margin + pad2 + h * 2.2;
      SheetLine sign;
      sign.points = {{margin + pad2, sy + h * 1.6}, {margin + pad2 + (certRight - margin) * 0.55, sy + h * 1.6}};
      sign.layer = layer::Certificate;
      L.addLine(sign);
      std::string who = input.surveyor.empty() ? "Land Surveyor" : input.surveyor;
      if (!input.license.empty()) who += ", License No. " + input.license;
      blockLine(margin + pad2, sy, who, layer::Certificate, h * 0.9);
      if (!input.date.empty()) blockLine(margin + pad2, sy, "Date: " + input.date, layer::Certificate, h * 0.9);
    }

    // The notes, then the legend beneath them.
    double ny = stripTop - pad2 - h;
    blockLine(certRight + pad2, ny, "NOTES", layer::Notes, h, true);
    {
      const double legendHeight = h * 1.7 * 4 + h * 0.4;
      const auto [lines, height] = fitted(input.notes, notesRight - certRight - 2 * pad2, h * 0.85, boxHeight - h * 1.7 - legendHeight);
      for (const std::string& line : lines) blockLine(certRight + pad2, ny, line, layer::Notes, height);
    }
    ny -= h * 0.4;
    blockLine(certRight + pad2, ny, "LEGEND", layer::Legend, h, true);
    for (const auto& [kind, words] : {std::pair{Monument::Found, "Monument found"}, {Monument::Set, "Monument set"},
                                      {Monument::Computed, "Computed position, not monumented"}}) {
      L.sheet.marks.push_back({{certRight + pad2 + h * 0.6, ny + h * 0.5}, kind, h * 1.1, layer::Legend});
      blockLine(certRight + pad2 + h * 2, ny, words, layer::Legend, h * 0.85);
    }

    // The title block: the title, what it shows, the firm and date, then at
    // its foot the scale bar and the stated scale, the north arrow beside.
    double ty = stripTop - pad2 - h * 1.4;
    const double titleLeft = notesRight + pad2, titleWidth = sheet.width - margin - notesRight - 2 * pad2;
    for (const std::string& line : wrapped(input.title, titleWidth, h * 1.4)) blockLine(titleLeft, ty, line, layer::Title, h * 1.4, true);
    for (const std::string& sub : input.subtitle)
      for (const std::string& line : wrapped(sub, titleWidth, h)) blockLine(titleLeft, ty, line, layer::Title, h);
    ty -= h * 0.5;
    if (!input.firm.empty()) blockLine(titleLeft, ty, input.firm, layer::Title, h);
    if (!input.date.empty()) blockLine(titleLeft, ty, "Date: " + input.date, layer::Title, h * 0.9);
    // Four blocks of a round length, alternately filled.
    const double barRoom = titleWidth - 0.6;
    const double barUnit = [&] {
      const double target = barRoom * 0.8 * scale / 4;
      double best = 1;
      for (double p = 1; p <= 1e6; p *= 10)
        for (double m : {1.0, 2.0, 5.0})
          if (m * p <= target) best = m * p;
      return best;
    }();
    const double bx = titleLeft, by = margin + pad2 + h * 1.8, bw = barUnit / scale, bh = h * 0.7;
    for (int k = 0; k < 4; ++k) {
      SheetLine block;
      block.points = {{bx + k * bw, by}, {bx + (k + 1) * bw, by}, {bx + (k + 1) * bw, by + bh}, {bx + k * bw, by + bh}, {bx + k * bw, by}};
      block.layer = layer::Scale;
      block.filled = k % 2 == 0;
      L.addLine(block);
    }
    const std::string unitWord = input.unit == "m" ? " METRES" : " FEET";
    for (int k = 0; k <= 4; k += 2) {
      // Each number centred over its tick (the first from the bar's start); the last followed by the unit.
      const std::string number = Format(barUnit * k, "0");
      const double x = k == 0 ? bx : bx + k * bw - textWidth(number, h * 0.8) / 2;
      L.sheet.texts.push_back(L.text({x, by + bh + h * 0.5}, number + (k == 4 ? unitWord : ""), h * 0.8, layer::Scale));
    }
    L.sheet.texts.push_back(L.text({bx, by - h * 1.6}, "SCALE: 1\" = " + Format(scale, "0") + (input.unit == "m" ? " m" : "'"), h * 0.85, layer::Scale));
    {
      // Grid north up the sheet, at the block's right.
      const double ax = sheet.width - margin - pad2 - 0.15, ay = margin + pad2, len = std::min(0.8, strip * 0.4);
      SheetLine shaft;
      shaft.points = {{ax, ay}, {ax, ay + len}};
      shaft.layer = layer::North;
      L.addLine(shaft);
      SheetLine head;
      head.points = {{ax, ay + len}, {ax - 0.07, ay + len - 0.22}, {ax, ay + len - 0.16}, {ax, ay + len}};
      head.layer = layer::North;
      head.filled = true;
      L.addLine(head);
      L.sheet.texts.push_back(L.centred({ax, ay + len + h * 1.2}, "N", h * 1.2, layer::North, true));
    }
    return std::move(L.sheet);
  }
  return std::move(L.sheet);
}

std::vector<std::string> sheetClashes(const Sheet& sheet) {
  std::vector<std::string> out;
  std::vector<std::array<P, 4>> boxes;
  for (const SheetText& t : sheet.texts) boxes.push_back(t.box());
  for (std::size_t i = 0; i < sheet.texts.size(); ++i) {
    for (std::size_t j = i + 1; j < sheet.texts.size(); ++j)
      if (quadsMeet(boxes[i], boxes[j]))
        out.push_back("label \"" + sheet.texts[i].text + "\" overlaps label \"" + sheet.texts[j].text + "\"");
    for (std::size_t l = 0; l < sheet.lines.size(); ++l) {
      if (static_cast<int>(l) == sheet.texts[i].line) continue;
      const auto& pts = sheet.lines[l].points;
      for (std::size_t k = 0; k + 1 < pts.size(); ++k)
        if (quadMeetsSegment(boxes[i], pts[k], pts[k + 1])) {
          out.push_back("label \"" + sheet.texts[i].text + "\" lies over a line of " + sheet.lines[l].layer);
          break;
        }
    }
  }
  return out;
}

}  // namespace tervalo

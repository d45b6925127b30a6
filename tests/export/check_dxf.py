"""Reads a section drawing with ezdxf, a DXF reader nobody here wrote, and
checks what a CAD user relies on: an audit that finds nothing to fix, the
layers (sixteenth lines dashed), one point per corner, true coordinates in
US survey feet, a drawing that opens on itself (its header's extents those
ezdxf measures, the active view centred on them), texts upright along their
lines and carrying their alignment point.

usage: check_dxf.py FILE POINTS NAME X Y [LINE_LAYER [UNITS]]

LINE_LAYER is the layer the drawing's main lines stand on: SEC for a
section (with its quarter and dashed sixteenth layers), TRAV for a traverse.
UNITS is the drawing's $INSUNITS: 21 US survey feet (the default), 6 metres;
$MEASUREMENT must agree with it (1 metric, 0 imperial).
"""
import logging
import sys

import ezdxf
from ezdxf import bbox

logging.disable(logging.WARNING)  # ezdxf's notes on the fonts it finds

path, points, name, x, y = sys.argv[1], int(sys.argv[2]), sys.argv[3], float(sys.argv[4]), float(sys.argv[5])
line_layer = sys.argv[6] if len(sys.argv) > 6 else "SEC"
units = int(sys.argv[7]) if len(sys.argv) > 7 else 21
doc = ezdxf.readfile(path)
auditor = doc.audit()
failures = []
if auditor.has_errors or auditor.has_fixes:
    failures.append("audit: %s" % [e.message for e in auditor.errors + auditor.fixes])
layers = {layer.dxf.name for layer in doc.layers}
for wanted in (line_layer, "EWQ", "NSQ", "EWSX", "NSSX", "POINTS", "ANNO"):
    if wanted not in layers:
        failures.append("no layer " + wanted)
msp = doc.modelspace()
corners = msp.query('POINT[layer=="POINTS"]')
if len(corners) != points:
    failures.append("%d points, not %d" % (len(corners), points))
labels = {t.dxf.text: t for t in msp.query('TEXT[layer=="POINTS"]')}
if name not in labels:
    failures.append("no label " + name)
if not any(abs(p.dxf.location.x - x) < 1e-6 and abs(p.dxf.location.y - y) < 1e-6 for p in corners):
    failures.append("no point at %s %s" % (x, y))
if doc.header.get("$INSUNITS") != units:
    failures.append("$INSUNITS is %s, not %d" % (doc.header.get("$INSUNITS"), units))
if doc.header.get("$MEASUREMENT") != (1 if units == 6 else 0):
    failures.append("$MEASUREMENT %s does not agree with $INSUNITS %d" % (doc.header.get("$MEASUREMENT"), units))
if not msp.query('LINE[layer=="%s"]' % line_layer) or not msp.query('TEXT[layer=="ANNO"]'):
    failures.append("no lines on %s or no annotations" % line_layer)
for layer in ("EWSX", "NSSX"):
    if doc.layers.get(layer).dxf.linetype != "DASHED" or "DASHED" not in doc.linetypes:
        failures.append(layer + " is not dashed")

# The header's extents take in every line and corner, and reach no further
# than the texts do as ezdxf estimates them (its estimate follows the fonts
# at hand: a tenth of the drawing's size is allowed), and the first view
# looks at them.
geometry = bbox.extents(msp.query("LINE POINT"))
measured = bbox.extents(msp)
low, high = doc.header.get("$EXTMIN"), doc.header.get("$EXTMAX")
size = max(measured.size.x, measured.size.y)
if low is None or high is None:
    failures.append("no $EXTMIN or $EXTMAX")
else:
    if low[0] > geometry.extmin.x or low[1] > geometry.extmin.y or high[0] < geometry.extmax.x or high[1] < geometry.extmax.y:
        failures.append("the extents %s %s leave out part of the drawing %s %s" % (low, high, geometry.extmin, geometry.extmax))
    for said, found in ((low[0], measured.extmin.x), (low[1], measured.extmin.y), (high[0], measured.extmax.x), (high[1], measured.extmax.y)):
        if abs(said - found) > 0.1 * size:
            failures.append("extents say %.1f where the drawing reaches %.1f" % (said, found))
    view = doc.viewports.get("*Active")[0]
    centre = view.dxf.center
    if abs(centre.x - (low[0] + high[0]) / 2) > 1e-6 * size + 1e-6 or abs(centre.y - (low[1] + high[1]) / 2) > 1e-6 * size + 1e-6:
        failures.append("the active view looks at %s, not the drawing's middle" % (centre,))
    if view.dxf.height < high[1] - low[1] or view.dxf.height * view.dxf.aspect_ratio < high[0] - low[0]:
        failures.append("the active view does not take in the whole drawing")

# Texts read upright (left to right, bottom to top along a north-south line)
# and a left-aligned name's alignment point is its insertion point.
for text in msp.query("TEXT"):
    if not -80 < text.dxf.rotation <= 100:
        failures.append("text %r turned %.2f degrees" % (text.dxf.text, text.dxf.rotation))
        break
for text in msp.query('TEXT[layer=="POINTS"]'):
    if text.dxf.get("align_point") is not None and (text.dxf.align_point - text.dxf.insert).magnitude > 1e-9:
        failures.append("name %r is aligned elsewhere than it stands" % text.dxf.text)
        break
for line in failures:
    print("FAIL:", line)
print("%s: %d points, %d lines, layers %s" % (path, len(corners), len(msp.query("LINE")), sorted(layers)))
sys.exit(1 if failures else 0)

"""Reads a section drawing with ezdxf, a DXF reader nobody here wrote, and
checks what a CAD user relies on: a clean audit, the layers, one point per
corner, true coordinates in US survey feet.

usage: check_dxf.py FILE POINTS NAME X Y
"""
import sys

import ezdxf

path, points, name, x, y = sys.argv[1], int(sys.argv[2]), sys.argv[3], float(sys.argv[4]), float(sys.argv[5])
doc = ezdxf.readfile(path)
auditor = doc.audit()
failures = []
if auditor.has_errors:
    failures.append("audit errors: %s" % [e.message for e in auditor.errors])
layers = {layer.dxf.name for layer in doc.layers}
for wanted in ("SEC", "EWQ", "NSQ", "EWSX", "NSSX", "POINTS", "ANNO"):
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
if doc.header.get("$INSUNITS") != 21:
    failures.append("units are not US survey feet")
if not msp.query('LINE[layer=="SEC"]') or not msp.query('TEXT[layer=="ANNO"]'):
    failures.append("no section lines or no annotations")
for line in failures:
    print("FAIL:", line)
print("%s: %d points, %d lines, layers %s" % (path, len(corners), len(msp.query("LINE")), sorted(layers)))
sys.exit(1 if failures else 0)

#!/usr/bin/env bash
# tervalo-cli alignment on the example: its key points in the shape DESIGN.md
# gives; a station's point comes back as that station by --point; its
# LandXML validates against the schema and reads back the same; a
# stakeout lists every key point once among the round stations; a station
# in the equation's gap and a file with a bad PI are refused with 2.
#   alignment_cli.sh TERVALO_CLI
set -euo pipefail
cli=$1
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
fail() { echo "FAIL: $*"; exit 1; }
example=examples/highway.alignment.json

"$cli" alignment "$example" --json >"$out/keys.json"
"$cli" alignment "$example" --station 22+00 --offset -12 --json >"$out/station.json"
read -r n e < <(/usr/bin/python3 -c "import json; s = json.load(open('$out/station.json')); print(s['northing'], s['easting'])")
"$cli" alignment "$example" --point "$n" "$e" --json >"$out/point.json"
"$cli" alignment "$example" --every 100 --json >"$out/stakeout.json"
/usr/bin/python3 - "$out" <<'PY'
import json, sys
d = sys.argv[1]
keys = json.load(open(d + "/keys.json"))
names = [k["name"] for k in keys["key_points"]]
assert names == ["POT", "TS", "SC", "CS", "ST", "POT"], names
assert set(keys["key_points"][1]) == {"name", "station", "northing", "easting"}
assert keys["curves"][0]["spiral_in"]["length"] == 200.0
s = json.load(open(d + "/station.json"))
assert {"northing", "easting", "elevation", "grade"} <= set(s), s
p = json.load(open(d + "/point.json"))
assert p["station"] == "22+00.00" and abs(p["offset"] + 12) < 1e-6 and p["element"] == "curve at PI 2", p
rows = json.load(open(d + "/stakeout.json"))["stakeout"]
named = [r["name"] for r in rows if r["name"]]
assert named == names, named
assert "25+50.00" not in [r["station"] for r in rows]  # in the equation's gap
assert all("deflection" in r for r in rows if r["name"] in ("SC", "CS"))
print("ok: key points, station and point both ways, stakeout")
PY

# As LandXML: valid against the schema, and read back to the same key points and profile.
"$cli" alignment "$example" --landxml "$out/highway.xml" >/dev/null
xmllint --noout --schema tests/export/LandXML-1.2.xsd "$out/highway.xml" 2>"$out/xmllint" || fail "$(cat "$out/xmllint")"
"$cli" alignment "$out/highway.xml" --json >"$out/back.json"
"$cli" alignment "$out/highway.xml" --station 22+00 --offset -12 --json >"$out/back-station.json"
/usr/bin/python3 - "$out" <<'PY'
import json, sys
d = sys.argv[1]
a, b = json.load(open(d + "/keys.json")), json.load(open(d + "/back.json"))
for x, y in zip(a["key_points"], b["key_points"]):
    assert x["name"] == y["name"] and x["station"] == y["station"], (x, y)
    assert abs(x["northing"] - y["northing"]) < 1e-6 and abs(x["easting"] - y["easting"]) < 1e-6, (x, y)
s, t = json.load(open(d + "/station.json")), json.load(open(d + "/back-station.json"))
assert all(abs(s[k] - t[k]) < 1e-6 for k in ("northing", "easting", "elevation", "grade")), (s, t)
print("ok: LandXML validates and reads back to the same stations")
PY

# The plan in DXF, read by ezdxf: nothing to fix, the centreline's five elements, a label at
# every full station (the equation's back station named by the equation), each key point.
"$cli" alignment "$example" --dxf "$out/highway.dxf" >/dev/null
/usr/bin/python3 - "$out" <<'PY'
import json, logging, sys
import ezdxf
logging.disable(logging.WARNING)
d = sys.argv[1]
doc = ezdxf.readfile(d + "/highway.dxf")
audit = doc.audit()
assert not audit.has_errors and not audit.has_fixes, [e.message for e in audit.errors + audit.fixes]
assert doc.header["$INSUNITS"] == 21
msp = doc.modelspace()
assert len(msp.query("*[layer=='ALIGN']")) == 5
labels = sorted(t.dxf.text for t in msp.query("TEXT[layer=='STATION']"))
full = sorted("%d+00" % s for s in range(10, 38) if s != 25)  # 25+00 is the equation's back station
assert labels == full, (labels, full)
keys = [t.dxf.text for t in msp.query("TEXT[layer=='KEYPOINT']")]
assert "TS 16+03.16" in keys and "EQ 25+00.00 BK = 26+00.00 AH" in keys, keys
print("ok: the plan in DXF")
PY

set +e
"$cli" alignment "$example" --station 25+50 2>"$out/err"; status=$?
set -e
[ $status -eq 2 ] || fail "a station in the gap ended with $status"
grep -q "is in the gap of station equation 1" "$out/err" || fail "$(cat "$out/err")"
sed -e 's/"radius": 1000.0/"radius": -5/' "$example" >"$out/bad.alignment.json"
set +e
"$cli" alignment "$out/bad.alignment.json" 2>"$out/err"; status=$?
set -e
[ $status -eq 2 ] || fail "a negative radius ended with $status"
grep -q "PI 2: a radius of -5.000; a curve's radius is more than 0" "$out/err" || fail "$(cat "$out/err")"
echo "ok: refusals"

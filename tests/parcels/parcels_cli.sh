#!/usr/bin/env bash
# The example section's parcels and plat from the command line, read by
# readers nobody here wrote: the JSON by Python, the PDF by pdftotext, the
# DXF by ezdxf's audit, the SVG by xmllint. Run from the project's top folder:
#   parcels_cli.sh TERVALO_CLI PAPER
# PAPER is "paper" where the build has the paper module (PDF and SVG), else
# "nopaper": a PDF is then refused with the program's own reason.
set -euo pipefail
cli=$1
paper=${2:-paper}
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
fail() { echo "FAIL: $*"; exit 1; }

# The aliquot parts add up to the section, to the hundredth of an acre.
"$cli" parcels examples/secsub.job.json --json --data-dir "$out/" >"$out/parcels.json"
/usr/bin/python3 - "$out/parcels.json" <<'PY'
import json, sys
d = json.load(open(sys.argv[1]))
parts, section = d["parcels"], d["sections"][0]
assert len(parts) == 16, len(parts)
assert abs(sum(p["acres"] for p in parts) - section["acres"]) < 0.005, (sum(p["acres"] for p in parts), section["acres"])
assert abs(section["parts_acres"] - section["acres"]) < 1e-6
ne_nw = next(p for p in parts if p["name"] == "NE 1/4 NW 1/4")
assert ne_nw["description"].startswith("The Northeast Quarter of the Northwest Quarter (NE 1/4 NW 1/4) of Section 14,"), ne_nw
assert ne_nw["corners"][0] == "1002", ne_nw["corners"]
print("ok: 16 parts of", round(section["acres"], 2), "acres")
PY

# The example deeds: the published closure, and a curve's exact area.
"$cli" project new "$out/deed.gpkg" >/dev/null
deeds=$("$cli" cogo "$out/deed.gpkg" examples/deed.cogo)
for words in "Misclosure 0.8833 S 37°07'36\" E  (latitude -0.7043, departure 0.5332)" "Precision 1:2,792  perimeter 2466.0500" \
             "Misclosure 0.0000  (latitude 0.0000, departure 0.0000)" "area 55707.96 sq ft, 1.2789 acres"; do
  grep -qF "$words" <<<"$deeds" || fail "the example deeds do not say \"$words\""
done
echo "ok: the example deeds"

# The plat on each sheet, each format read back.
if [ "$paper" = paper ]; then
  "$cli" plat examples/secsub.job.json --out "$out/plat.pdf" --data-dir "$out/" --today 2026-11-25 >/dev/null
  text=$(pdftotext -layout "$out/plat.pdf" -)
  for words in "PLAT OF SECTION 14" "NE 1/4 NW 1/4" "39.90 AC." "SURVEYOR'S CERTIFICATE" "SCALE: 1\" = 1200'" "Monument found"; do
    grep -qF "$words" <<<"$text" || fail "the PDF does not say \"$words\""
  done
  echo "ok: the PDF reads"
  "$cli" plat examples/secsub.job.json --out "$out/plat.svg" --sheet tabloid --data-dir "$out/" >/dev/null
  xmllint --noout "$out/plat.svg"
else
  set +e
  "$cli" plat examples/secsub.job.json --out "$out/plat.pdf" --data-dir "$out/" 2>"$out/err"
  status=$?
  set -e
  [ $status -eq 3 ] || fail "a PDF without the paper module ended with $status"
  grep -q "painted by the paper module, which could not be loaded" "$out/err" || fail "$(cat "$out/err")"
  [ ! -e "$out/plat.pdf" ] || fail "a PDF was left behind"
  echo "ok: no paper module in this build: a PDF refused"
fi
"$cli" plat examples/township.plan.json --out "$out/plat.dxf" --sheet archd --data-dir "$out/" >/dev/null
/usr/bin/python3 - "$out/plat.dxf" <<'PY'
import logging, sys
import ezdxf
logging.disable(logging.WARNING)
doc = ezdxf.readfile(sys.argv[1])
audit = doc.audit()
assert not audit.has_errors and not audit.has_fixes, [e.message for e in audit.errors + audit.fixes]
layers = {e.dxf.layer for e in doc.modelspace()}
for layer in ["BOUNDARY", "PARCEL-LINES", "MONUMENTS", "BEARING-DISTANCE", "PARCEL-NAMES", "NORTH-ARROW", "SCALE-BAR",
              "LEGEND", "TITLE-BLOCK", "CERTIFICATE"]:
    assert layer in layers, (layer, layers)
texts = doc.modelspace().query("TEXT")
assert all(t.dxf.halign == 5 for t in texts), "a text not fitted to its box"
assert sum(1 for t in texts if t.dxf.layer == "PARCEL-NAMES" and t.dxf.text.startswith("SEC.")) == 64
print("ok: the DXF passes ezdxf's audit with", len(texts), "texts")
PY

# A plan on a project: its points read from it, its plat signed as the project says.
"$cli" project new "$out/firm.gpkg" --surveyor "A. Surveyor" --license 12345 --firm "Survey Firm" >/dev/null
"$cli" project import "$out/firm.gpkg" examples/township.csv >/dev/null
sed -e "s|\"source\": \"township.csv\"|\"project\": \"$out/firm.gpkg\"|" examples/township.plan.json >"$out/firm.plan.json"
"$cli" plat "$out/firm.plan.json" --out "$out/firm.dxf" --sheet archd --data-dir "$out/" >/dev/null
for words in "A. Surveyor, License No. 12345" "Survey Firm" "PLAT OF SECTIONS 14, 13, 23, 24"; do
  grep -qF "$words" "$out/firm.dxf" || fail "the plan's plat does not say \"$words\""
done
echo "ok: a plan's plat signed from its project"

# What cannot be drawn or read is refused with its reason.
set +e
"$cli" plat examples/secsub.job.json --out "$out/plat.dxf" --scale 100 --data-dir "$out/" 2>"$out/err"
status=$?
set -e
[ $status -eq 2 ] || fail "a scale the sheet cannot hold ended with $status"
grep -q "choose a smaller scale or a larger sheet" "$out/err" || fail "$(cat "$out/err")"
set +e
"$cli" parcels examples/hcurve.job.json 2>"$out/err"
status=$?
set -e
[ $status -eq 2 ] || fail "a curve job ended with $status"
grep -q "parcels come from a section subdivision job" "$out/err" || fail "$(cat "$out/err")"
echo "ok: refusals"

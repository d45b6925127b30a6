#!/usr/bin/env bash
# full_disk.sh CLI EXAMPLES: a disk that is really full, as a small tmpfs in
# a mount namespace of this test's own. Every writer (the plain text writer
# of the CSV, the LandXML document, dxflib's DXF, GDAL's GeoPackage) says "No space left on
# device", and an export with another hard link keeps its old text under
# both names. Skipped (77) where no mount namespace can be made.
set -u
cli=$1 examples=$2
unshare -rm true 2>/dev/null || { echo "SKIPPED: no mount namespace here"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$examples/section14.sdms" "$work/"
exec unshare -rm bash -s "$cli" "$work" <<'INSIDE'
set -u
cli=$1 work=$2
full=$work/full
mkdir -p "$full" && mount -t tmpfs -o size=512k tmpfs "$full" || { echo "SKIPPED: cannot mount a tmpfs"; exit 77; }
job() {  # the example section, its own files beside the job, its exports on the small disk
  cat >"$work/job.json" <<JOB
{ "calculator": "secsub", "crs": { "epsg": 3419 },
  "steps": [ { "form": "frmMain", "set": { "txtInFile": "section14.sdms", "txtOutInp": "$work/SecSub.inp",
                                           "txtReport": "$work/SecSub.rpt" }, "click": "btnContinue" },
             { "form": "frmSecSub",
               "set": { "txtSection": "14", "txtTwp": "115", "txtRange": "22", "optWest": true,
                        "txt0pn": "1001", "txt2pn": "1002", "txt4pn": "1003", "txt10pn": "1004",
                        "txt14pn": "1005", "txt20pn": "1006", "txt22pn": "1007", "txt24pn": "1008", "txtIncr": "2001" },
               "click": ["btnContinue", "btnExport", "btnExport", "btnExport", "btnExport"] } ],
  "files": ["$full/Section14.csv", "$full/Section14.xml", "$full/Section14.dxf", "$full/Section14.gpkg"] }
JOB
}
job
"$cli" run "$work/job.json" --data-dir "$work/data" >/dev/null 2>&1 || { echo "FAIL: the first export did not run"; exit 1; }
ln "$full/Section14.dxf" "$full/kept.dxf"
cp "$full/Section14.dxf" "$work/before.dxf"
dd if=/dev/zero of="$full/filler" bs=4k 2>/dev/null  # until the disk is full
"$cli" run "$work/job.json" --data-dir "$work/data" >"$work/out" 2>&1
fails=0
for kind in csv xml dxf gpkg; do
  if ! grep -q "Section14.$kind\": No space left on device" "$work/out"; then
    echo "FAIL: the .$kind export did not say the disk is full"; fails=1
  fi
done
for name in Section14.dxf kept.dxf; do
  cmp -s "$full/$name" "$work/before.dxf" || { echo "FAIL: $name lost its old text"; fails=1; }
done
[ "$(find "$full" -name '.tervalo-*' | wc -l)" -eq 0 ] || { echo "FAIL: temporary files left behind"; fails=1; }
[ $fails -eq 0 ] && echo "ok: every writer said the disk is full, and the hard-linked export kept its text"
exit $fails
INSIDE

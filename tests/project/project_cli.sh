#!/usr/bin/env bash
# project_cli.sh CLI EXAMPLES: a survey project made, filled from every kind
# of file and read back by GDAL's ogrinfo and ogr2ogr, which nobody here
# wrote; duplicates taken as asked; bad files refused with nothing stored;
# an import killed midway leaves the last committed state.
set -u
cli=$1 examples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
fail() { echo "FAIL: $*"; exit 1; }
count() { "$cli" project list "$1" --json | python3 -c 'import json, sys; print(len(json.load(sys.stdin)["points"]))'; }

"$cli" project new job.gpkg --epsg 3419 >/dev/null || fail "project new"
"$cli" project new job.gpkg >/dev/null 2>&1 && fail "a second project new over the first"
# The section's points, then the raw traverse over them renumbered, then a PNEZD CSV, LandXML and
# a blank-separated file by --columns.
imported=$("$cli" project import job.gpkg "$examples/section14.sdms" --json)
[ "$(python3 -c 'import json, sys; d = json.loads(sys.argv[1]); print(d["read"], d["stored"], d["skipped"])' "$imported")" = "9 9 0" ] ||
  fail "section14.sdms: $imported"
renumbered=$("$cli" project import job.gpkg "$examples/section14.rw5" --on-duplicate renumber --json)
[ "$(python3 -c 'import json, sys; d = json.loads(sys.argv[1]); print(d["stored"], d["renumbered"])' "$renumbered")" = "10 8" ] ||
  fail "section14.rw5 renumbered: $renumbered"
printf 'Point,Northing,Easting,Elevation,Description\r\n5001,289000.5,513000.25,1250.125,"FENCE, CORNER"\r\n1001,1,2,,REPLACED\r\n' >pnezd.csv
"$cli" project import job.gpkg pnezd.csv --on-duplicate replace --json | grep -q '"replaced": 1' || fail "pnezd.csv replace"
printf '6001 288000 512000 1249.5 IRON PIN SET\n' >blank.txt
"$cli" project import job.gpkg blank.txt --columns pnezd >/dev/null || fail "blank-separated PNEZD"
"$cli" run "$examples/export.job.json" --data-dir "$work/section/" >/dev/null 2>&1
"$cli" project import job.gpkg section/Section14.xml --on-duplicate skip --json | grep -q '"stored": 17' || fail "LandXML CgPoints"
[ "$(count job.gpkg)" = 38 ] || fail "38 points, not $(count job.gpkg)"

# GDAL reads what was stored, in EPSG:3419; the elevation empty where unknown, never 0.
points=$(ogrinfo -ro -al job.gpkg points)
grep -q 'ID\["EPSG",3419\]' <<<"$points" || fail "the project is not in EPSG:3419"
grep -q "number (String) = 5001" <<<"$points" && grep -q "description (String) = FENCE, CORNER" <<<"$points" || fail "5001 not stored"
grep -q "elevation (Real) = 1250.125" <<<"$points" || fail "no elevation 1250.125"
one=$(ogrinfo -ro -al job.gpkg points -where "number='1002'")
grep -q "elevation (Real) = (null)" <<<"$one" || fail "1002 has an elevation: $one"
grep -q "description (String) = REPLACED" <<<"$(ogrinfo -ro -al job.gpkg points -where "number='1001'")" || fail "1001 not replaced"
read -r lon lat < <(ogr2ogr -f CSV /vsistdout/ job.gpkg points -t_srs EPSG:4269 -where "number='1003'" -lco GEOMETRY=AS_XY -select number |
  tail -1 | cut -d, -f1,2 | tr , ' ')
read -r wlon wlat _ < <(echo "517601.786 289872.136" | cs2cs -f %.12f EPSG:3419 EPSG:4269 | awk '{print $2, $1}')
python3 -c "import sys; sys.exit(0 if abs($lon - $wlon) < 1e-9 and abs($lat - $wlat) < 1e-9 else 1)" || fail "1003 at $lon $lat, cs2cs $wlon $wlat"
# The shapes other tools read.
"$cli" project list job.gpkg --json | python3 -c '
import json, sys
d = json.load(sys.stdin)
assert d["unit"] == "ft" and d["crs"] == {"epsg": 3419}, d["crs"]
p = d["points"][1]
assert list(p) == ["number", "northing", "easting", "elevation", "description", "feature", "evidence", "source"], list(p)
assert p["source"] == "import section14.sdms", p["source"]' || fail "list --json"
"$cli" project export job.gpkg out.csv >/dev/null || fail "export"
grep -q '^5001,289000.5000,513000.2500,1250.1250,"FENCE, CORNER"' out.csv || fail "the export lost 5001: $(grep 5001 out.csv)"

# A traverse file naming the project: its stations by number from it, the adjusted ones stored in it.
python3 -c 'import json, sys
d = json.load(open(sys.argv[1]))
d["project"] = "job.gpkg"
d["start"] = d["close"] = {"point": "1001"}
for c in d["courses"]:
    c["to"] = "1001" if c["to"] == "1" else c["to"]
json.dump(d, open("loop.traverse.json", "w"))' "$examples/loop.traverse.json"
"$cli" traverse loop.traverse.json --data-dir data >out 2>&1 || fail "the traverse on the project: $(cat out)"
grep -q "Stored 3 adjusted points in" out || fail "the traverse stored nothing: $(cat out)"
station=$(ogrinfo -ro -al job.gpkg points -where "number='2'")
grep -q "source (String) = traverse loop.traverse.json adjusted by compass" <<<"$station" || fail "station 2: $station"
grep -q "description (String) = REPLACED" <<<"$(ogrinfo -ro -al job.gpkg points -where "number='1001'")" || fail "the held 1001 was changed"
"$cli" project import job.gpkg blank.txt --columns PNEZD --on-duplicate skip >/dev/null

# A restoration file naming a project: its controls from it, the restored corners stored in it.
"$cli" project new town.gpkg --epsg 3419 >/dev/null && "$cli" project import town.gpkg "$examples/township.csv" >/dev/null || fail "town.gpkg"
python3 -c 'import json, sys
d = json.load(open(sys.argv[1]))
del d["source"]
d["project"] = "town.gpkg"
json.dump(d, open("lost.restore.json", "w"))' "$examples/section14.restore.json"
"$cli" restore lost.restore.json --data-dir data >out 2>&1 || fail "the restoration on the project: $(cat out)"
grep -q "Stored 2 restored corners in" out || fail "the restoration stored nothing: $(cat out)"
corner=$(ogr2ogr -f CSV /vsistdout/ town.gpkg points -where "number='SEC COR 13-14-23-24'" -select number,easting,northing,source)
grep -q 'SEC COR 13-14-23-24,517623.535,284593.475,"restoration lost.restore.json by double proportion' <<<"$corner" ||
  fail "the restored corner: $corner"

# A local project in metres is declared as a local engineering system, placed nowhere on the earth.
"$cli" project new local.gpkg --unit m >/dev/null || fail "local project"
grep -q 'ENGCRS\["Tervalo local coordinates"' <<<"$(ogrinfo -ro -so local.gpkg points)" || fail "local project's system"

# Bad files: the program's word, the file and line named, nothing stored.
before=$(count job.gpkg)
printf 'Point,Northing,Easting\n7001,1,2\n7002,north,2\n' >text.csv
"$cli" project import job.gpkg text.csv >out 2>&1; [ $? -eq 2 ] && grep -q '"text.csv" line 3: the northing is not a number: "north"' out || fail "text in a number column: $(cat out)"
printf '8001,1,2,IP,A\n8001,3,4,IP,B\n' >twice.txt
"$cli" project import job.gpkg twice.txt >out 2>&1; [ $? -eq 2 ] && grep -q "point 8001 is given twice" out || fail "one number twice: $(cat out)"
[ "$(count job.gpkg)" = "$before" ] || fail "a refused import stored points"
ogr2ogr -f GPKG foreign.gpkg "$examples/section14.csv" 2>/dev/null
"$cli" project list foreign.gpkg >out 2>&1; [ $? -eq 2 ] && grep -q "not a Tervalo project" out || fail "a foreign GeoPackage: $(cat out)"
printf 'not a database' >damaged.gpkg
"$cli" project list damaged.gpkg >out 2>&1; [ $? -eq 2 ] && grep -q "is not a GeoPackage" out || fail "a damaged file: $(cat out)"

# A project from a newer Tervalo is refused; a second writer holding the file is said as one.
cp local.gpkg newer.gpkg
ogrinfo -update newer.gpkg -sql "UPDATE tervalo_project SET value='9' WHERE key='schema'" >/dev/null 2>&1
"$cli" project list newer.gpkg >out 2>&1; [ $? -eq 2 ] && grep -q "comes from a newer Tervalo (project version 9)" out || fail "a newer project: $(cat out)"
python3 -c 'import sqlite3, sys, time
c = sqlite3.connect(sys.argv[1], isolation_level=None)
c.execute("BEGIN EXCLUSIVE")
time.sleep(14)' local.gpkg &
sleep 0.5
"$cli" project import local.gpkg blank.txt --columns PNEZD >out 2>&1; [ $? -eq 2 ] && grep -q "is being changed by another program" out ||
  fail "a second writer: $(cat out)"
wait

# An import killed midway: the project holds what it held before, whole.
python3 -c '
for i in range(300000): print("%d,%d.5,%d.25,,SHOT" % (100000 + i, 200000 + i, 300000 + i))' >big.txt
"$cli" project import job.gpkg big.txt --columns PNEZD >/dev/null 2>&1 &
sleep 1
kill -9 $! 2>/dev/null
wait 2>/dev/null
after=$(count job.gpkg)
[ "$after" = "$before" ] || [ "$after" = $((before + 300000)) ] || fail "a killed import left $after points (before $before)"
ogrinfo -ro -so job.gpkg points >/dev/null || fail "GDAL cannot open the project after the kill"
echo "ok: projects made, filled, read back by GDAL, refused and killed as they should be"

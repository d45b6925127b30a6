#!/usr/bin/env bash
# Every exported file read back by a reader nobody here wrote: ezdxf and
# GDAL's ogrinfo for the drawings, ogrinfo for the PNEZD points, xmllint
# against the LandXML 1.2 schema. Run from the project's top folder:
#   outside_readers.sh TERVALO_CLI WHAT
# WHAT is "dxf", "csv", "landxml" or "gis"; the public LandXML 1.2 schema is
# kept beside this script, so every clone validates.
set -euo pipefail
cli=$1
what=$2
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
schema=tests/export/LandXML-1.2.xsd

"$cli" run examples/export.job.json --data-dir "$out/regular/" >/dev/null
"$cli" run tests/export/irregular.job.json --data-dir "$out/irregular/" >/dev/null
"$cli" run tests/export/vcurve.job.json --data-dir "$out/vcurve/" >/dev/null
"$cli" township examples/township.plan.json --data-dir "$out/township/" >/dev/null
"$cli" township examples/township-restored.plan.json --data-dir "$out/restored/" >/dev/null
"$cli" run examples/gis.job.json --data-dir "$out/gis/" >/dev/null
"$cli" run tests/export/utm-foot.job.json --data-dir "$out/utm-foot/" >/dev/null
"$cli" run tests/export/utm-metres.job.json --data-dir "$out/utm-metres/" >/dev/null
# The raw traverse round section 14: 8 stations and 2 side shots, 8 courses.
"$cli" traverse examples/section14.rw5 --data-dir "$out/traverse/" --export traverse.csv --export traverse.xml \
  --export traverse.dxf --export traverse.gpkg >/dev/null

count() {  # the feature count ogrinfo finds
  ogrinfo -ro -so -al "$@" | sed -n 's/^Feature Count: //p'
}
fail() { echo "FAIL: $*"; exit 1; }
expect() {  # what, wanted, found
  if [ "$2" != "$3" ]; then echo "FAIL: $1: wanted $2, found $3"; exit 1; fi
  echo "ok: $1: $3"
}

case $what in
  dxf)
    /usr/bin/python3 tests/export/check_dxf.py "$out/regular/Section14.dxf" 25 1001 512313.489 289841.989
    /usr/bin/python3 tests/export/check_dxf.py "$out/irregular/irregular.dxf" 25 "S,16" 513660.8 284569.5
    # Coordinates in a system's metres: a metric drawing.
    /usr/bin/python3 tests/export/check_dxf.py "$out/utm-metres/Section14.dxf" 25 1001 512313.489 289841.989 SEC 6
    # 25 points, 25 names, 40 lines and their 40 annotations, the text naming the system, and
    # the evidence found at the 8 corners the source describes.
    expect "ogrinfo DXF features" 139 "$(count "$out/regular/Section14.dxf")"
    # Four sections: 81 corners and 144 lines, each once, with their names and annotations, and
    # the evidence found at 21 corners.
    expect "ogrinfo township DXF features" 472 "$(count "$out/township/Township.dxf")"
    # The restored corner ringed on its own layer, where a found one had its evidence: as many features.
    /usr/bin/python3 tests/export/check_dxf.py "$out/restored/Township.dxf" 81 SNE1411522 517623.535 284593.475
    expect "ogrinfo restored township DXF features" 472 "$(count "$out/restored/Township.dxf")"
    # The traverse: its courses on TRAV, 1001 held; 10 points and names, 8 courses and
    # their annotations, the system's text and the 2 side shots' notes.
    /usr/bin/python3 tests/export/check_dxf.py "$out/traverse/traverse.dxf" 10 1001 512313.489 289841.989 TRAV
    expect "ogrinfo traverse DXF features" 39 "$(count "$out/traverse/traverse.dxf")"
    ;;
  csv)
    for f in "$out/regular/Section14.csv" "$out/irregular/irregular.csv" "$out/township/Township.csv"; do
      wanted=25
      [ "$(basename "$f")" = Township.csv ] && wanted=81
      expect "ogrinfo PNEZD points in $(basename "$f")" $wanted \
        "$(count -oo X_POSSIBLE_NAMES=Easting -oo Y_POSSIBLE_NAMES=Northing "$f")"
    done
    # The quoted name survives as one field.
    ogrinfo -ro -al "$out/irregular/irregular.csv" | grep -q "Point (String) = S,16" ||
      { echo "FAIL: the name S,16 did not survive"; exit 1; }
    echo "ok: the name S,16 survives"
    # The designation then the evidence found; a township corner with the surveyor's numbers.
    section=$(ogrinfo -ro -al "$out/regular/Section14.csv")
    grep -q "Description (String) = NE 15-115-22 / FD STONE NW COR SEC 14" <<<"$section" || fail "no evidence after the designation"
    township=$(ogrinfo -ro -al -where "Point='XENE1411522'" "$out/township/Township.csv")
    grep -q "Number (String) = 2007" <<<"$township" && grep -q "Other Numbers (String) = 3003" <<<"$township" ||
      fail "the township CSV does not carry the numbers 2007 and 3003 of XENE1411522"
    echo "ok: evidence and the surveyor's numbers"
    traverse=$(ogrinfo -ro -al -oo X_POSSIBLE_NAMES=Easting -oo Y_POSSIBLE_NAMES=Northing "$out/traverse/traverse.csv")
    expect "ogrinfo traverse points" 10 "$(sed -n 's/^Feature Count: //p' <<<"$traverse")"
    grep -q "Description (String) = SIDE SHOT / FENCE CORNER" <<<"$traverse" || fail "the side shot's note is not in the CSV"
    ;;
  landxml)
    xmllint --noout --schema "$schema" "$out/regular/Section14.xml" "$out/irregular/irregular.xml" "$out/vcurve/profile.xml" \
      "$out/township/Township.xml" "$out/restored/Township.xml" "$out/traverse/traverse.xml"
    expect "traverse courses in the LandXML" 8 "$(grep -c '<Line name=' "$out/traverse/traverse.xml")"
    # The aliquot parts as Parcels: sixteen in a section, sixty-four in four sections.
    expect "parcels in the section LandXML" 16 "$(grep -c '<Parcel ' "$out/regular/Section14.xml")"
    expect "parcels in the township LandXML" 64 "$(grep -c '<Parcel ' "$out/township/Township.xml")"
    grep -q '<Property label="status" value="restored"' "$out/restored/Township.xml" ||
      { echo "FAIL: the restored corner's status is not in the LandXML"; exit 1; }
    for property in 'label="evidence" value="COR 00"' 'label="pointNumber" value="2007"' \
                    'label="otherPointNumber" value="3003"'; do
      grep -q "<Property $property" "$out/township/Township.xml" || fail "no <Property $property> in the township LandXML"
    done
    ;;
  gis)
    g=$out/gis
    # The GeoPackage: a corners and a lines layer with their fields, in EPSG:3419.
    # (Whole outputs are read into variables: grep -q ending a pipe early would fail it.)
    corners=$(ogrinfo -ro -so "$g/Section14.gpkg" corners)
    lines=$(ogrinfo -ro -al "$g/Section14.gpkg" lines)
    expect "GeoPackage corners" 25 "$(sed -n 's/^Feature Count: //p' <<<"$corners")"
    expect "GeoPackage lines" 40 "$(sed -n 's/^Feature Count: //p' <<<"$lines")"
    grep -q 'ID\["EPSG",3419\]' <<<"$corners" || fail "the GeoPackage is not in EPSG:3419"
    for field in name point description evidence feature status rule; do
      grep -q "^$field: String" <<<"$corners" || fail "no field $field"
    done
    grep -q "^group: String" <<<"$lines" || fail "no field group"
    grep -q "^other_points: String" <<<"$corners" || fail "no field other_points"
    grep -q "group (String) = sixteenth" <<<"$lines" || fail "no sixteenth lines"
    # GeoJSON and KML in WGS 84 longitude and latitude, where cs2cs puts the corner too by the
    # operation PROJ chooses (NAD83 to WGS 84 is a metre here: 1e-7 degrees is a centimetre).
    expect "GeoJSON features" 65 "$(count "$g/Section14.geojson")"
    read -r wlon wlat _ < <(echo "512313.489 289841.989" | cs2cs -f %.12f EPSG:3419 OGC:CRS84)
    for file in Section14.geojson Section14.kml; do
      read -r lon lat < <(ogrinfo -ro -al -where "name='1001'" "$g/$file" | sed -n 's/.*POINT (\([-0-9.]*\) \([-0-9.]*\)).*/\1 \2/p')
      python3 -c "import sys; sys.exit(0 if abs($lon - $wlon) < 1.5e-7 and abs($lat - $wlat) < 1.5e-7 else 1)" ||
        fail "$file puts 1001 at $lon $lat, cs2cs at $wlon $wlat"
      echo "ok: $file puts 1001 at $lon $lat as cs2cs has it"
    done
    grep -q '"description": "WGS 84 longitudes and latitudes from NAD83 \\/ Kansas North (ftUS) by PROJ.s operation .*(accuracy 0.1 m)"' \
      "$g/Section14.geojson" || fail "the GeoJSON does not name the operation to WGS 84"
    expect "KML corners" 25 "$(ogrinfo -ro -so "$g/Section14.kml" corners | sed -n 's/^Feature Count: //p')"
    # Feet on a metric system: the GeoPackage holds the system's metres, so ogr2ogr places the
    # corner where cs2cs puts the feet given.
    read -r lon lat < <(ogr2ogr -f CSV /vsistdout/ "$out/utm-foot/Section14.gpkg" corners -t_srs EPSG:4269 \
      -where "name='1001'" -lco GEOMETRY=AS_XY -select name | tail -1 | cut -d, -f1,2 | tr , ' ')
    read -r wlon wlat _ < <(echo "512313.489 289841.989" | cs2cs -f %.12f +proj=utm +zone=14 +datum=NAD83 +units=us-ft \
      +to +proj=longlat +datum=NAD83)
    python3 -c "import sys; sys.exit(0 if abs($lon - $wlon) < 1e-9 and abs($lat - $wlat) < 1e-9 else 1)" ||
      fail "the GeoPackage in UTM with feet puts 1001 at $lon $lat, cs2cs at $wlon $wlat"
    echo "ok: the GeoPackage in UTM with feet puts 1001 at $lon $lat as cs2cs has it"
    # The PNEZD CSV with its .prj beside it, and the LandXML naming the system.
    csv=$(ogrinfo -ro -so -al -oo X_POSSIBLE_NAMES=Easting -oo Y_POSSIBLE_NAMES=Northing "$g/Section14.csv")
    grep -q "Kansas North" <<<"$csv" || fail "the CSV's .prj does not name the system"
    xmllint --noout --schema "$schema" "$g/Section14.xml"
    grep -q 'epsgCode="3419"' "$g/Section14.xml" || fail "the LandXML does not name EPSG:3419"
    # The whole township in one GeoPackage, its restored corner marked with the rule.
    township=$(ogrinfo -ro -al "$out/restored/Township.gpkg" corners)
    expect "township GeoPackage corners" 81 "$(sed -n 's/^Feature Count: //p' <<<"$township")"
    grep -q 'ID\["EPSG",3419\]' <<<"$township" || fail "the township GeoPackage is not in EPSG:3419"
    expect "restored corners in the township GeoPackage" 1 "$(grep -c 'status (String) = restored' <<<"$township")"
    grep -q "other_points (String) = 3003" <<<"$township" || fail "the township GeoPackage has no other numbers"
    expect "traverse GeoPackage lines" 8 "$(ogrinfo -ro -al "$out/traverse/traverse.gpkg" lines | grep -c 'group (String) = traverse')"
    expect "township GeoPackage lines" 144 "$(ogrinfo -ro -so "$out/township/Township.gpkg" lines | sed -n 's/^Feature Count: //p')"
    ;;
esac

#!/usr/bin/env bash
# shared_cli.sh CLI EXAMPLES SERVER: a shared project on a PostgreSQL server
# of this test's own (SERVER is scripts/pg-test-server): made, filled and
# read by the command line, read by GDAL's ogrinfo and by psql, which nobody
# here wrote; copied to a GeoPackage and compared; COGO and a traverse file
# naming it; then the server stopped in the middle of an import, which
# stores nothing and says the connection was lost.
set -u
cli=$1 examples=$2 server=$3
work=$(mktemp -d)
srv=/tmp/tervalo-pg-cli-$$
trap '"$server" stop "$srv" >/dev/null 2>&1; rm -rf "$work"' EXIT
cd "$work" || exit 1
fail() { echo "FAIL: $*"; exit 1; }
"$server" start "$srv" >/dev/null || fail "the test server did not start"
sql() { psql -X -q -t -A -v ON_ERROR_STOP=1 -h "$srv" -U tervalo "$@"; }
sql -d postgres -c "CREATE DATABASE job TEMPLATE tervalo_template" || fail "createdb"
P="PG:host=$srv user=tervalo dbname=job"
count() { "$cli" project list "$1" --json | python3 -c 'import json, sys; print(len(json.load(sys.stdin)["points"]))'; }

"$cli" project new "$P" --epsg 3419 --firm "Field & Office" | grep -qx "Project made: $P" || fail "project new"
"$cli" project new "$P" >out 2>&1 && fail "a second project new in one database"
grep -q "holds a project already" out || fail "the second project new: $(cat out)"
"$cli" project import "$P" "$examples/section14.sdms" --json | grep -q '"stored": 9' || fail "import section14.sdms"
"$cli" project import "$P" "$examples/section14.rw5" --on-duplicate renumber --json | grep -q '"renumbered": 8' || fail "import section14.rw5"
printf 'Point,Northing,Easting,Elevation,Description\r\n5001,289000.5,513000.25,1250.125,"FENCE, O'"'"'NEIL"\r\n' >pnezd.csv
"$cli" project import "$P" pnezd.csv --json | grep -q '"stored": 1' || fail "pnezd.csv"
[ "$(count "$P")" = 20 ] || fail "20 points, not $(count "$P")"

# GDAL's PostgreSQL driver reads the layer it made, in EPSG:3419, the elevation empty where unknown.
one=$(ogrinfo -ro "$P" points -where "number='5001'")
grep -q 'ID\["EPSG",3419\]' <<<"$one" || fail "the shared project is not in EPSG:3419"
grep -q "description (String) = FENCE, O'NEIL" <<<"$one" && grep -q "elevation (Real) = 1250.125" <<<"$one" || fail "5001: $one"
grep -q "POINT (513000.25 289000.5)" <<<"$one" || fail "5001's geometry: $one"
grep -q "elevation (Real) = (null)" <<<"$(ogrinfo -ro "$P" points -where "number='1002'")" || fail "1002 has an elevation"
# psql: the journal of every change, and each point's version.
[ "$(sql -d job -c "SELECT count(*) FROM tervalo_journal")" = 4 ] || fail "journal: $(sql -d job -c 'TABLE tervalo_journal')"
[ "$(sql -d job -c "SELECT count(DISTINCT version) FROM points")" = 20 ] || fail "versions"

# Copied to a GeoPackage, the same points; COGO and a traverse file on the shared project.
"$cli" project copy "$P" job.gpkg --json | grep -q '"points": 20' || fail "copy"
"$cli" project list "$P" --json >pg.json && "$cli" project list job.gpkg --json >gpkg.json
cmp -s pg.json gpkg.json || fail "the copy differs: $(diff pg.json gpkg.json | head)"
"$cli" project export "$P" out.csv >/dev/null && grep -q '^5001,289000.5000,513000.2500,1250.1250,"FENCE, O'"'"'NEIL"' out.csv || fail "export"
printf 'INVERSE 1001 1002\nPOINT 7001 288000 513000 1250.5 "WITNESS POST"\n' >job.cogo
"$cli" cogo "$P" job.cogo >out 2>&1 || fail "cogo: $(cat out)"
[ "$(sql -d job -c "SELECT description FROM points WHERE number = '7001'")" = "WITNESS POST" ] || fail "cogo stored nothing"
python3 -c 'import json, sys
d = json.load(open(sys.argv[1]))
d["project"] = sys.argv[2]
d["start"] = d["close"] = {"point": "1001"}
for c in d["courses"]:
    c["to"] = "1001" if c["to"] == "1" else c["to"]
json.dump(d, open("loop.traverse.json", "w"))' "$examples/loop.traverse.json" "$P"
"$cli" traverse loop.traverse.json --data-dir data >out 2>&1 || fail "the traverse on the shared project: $(cat out)"
grep -q "Stored 3 adjusted points in" out || fail "the traverse stored nothing: $(cat out)"

# The server stops while an import is writing: nothing stored, the connection named as lost.
sql -d job -c "CREATE FUNCTION slow() RETURNS trigger LANGUAGE plpgsql AS \$\$ BEGIN IF NEW.number = '9002' THEN PERFORM pg_sleep(60); END IF;
  RETURN NEW; END \$\$; CREATE TRIGGER slow BEFORE INSERT ON points FOR EACH ROW EXECUTE FUNCTION slow()" || fail "the slow trigger"
before=$(count "$P")
printf '9001,1000,2000,,A\n9002,1001,2001,,B\n9003,1002,2002,,C\n' >late.csv
"$cli" project import "$P" late.csv >import.out 2>&1 &
importer=$!
for _ in $(seq 100); do
  [ "$(sql -d job -c "SELECT count(*) FROM pg_stat_activity WHERE wait_event = 'PgSleep'")" = 1 ] && break
  sleep 0.1
done
"$server" halt "$srv" || fail "the server did not stop"
wait $importer
status=$?
[ $status = 2 ] || fail "the import ended $status: $(cat import.out)"
grep -q "the connection to the server was lost, and nothing was stored" import.out || fail "the import said: $(cat import.out)"
"$server" resume "$srv" || fail "the server did not start again"
[ "$(count "$P")" = "$before" ] || fail "$(count "$P") points after the lost import, not $before"
echo "ok"

#!/usr/bin/env bash
# cogo_cli.sh CLI EXAMPLES: the README's command file runs as written on a
# copy of the example project, answering in the JSON shape the contract
# gives and storing its new points where ogrinfo finds them; a file with a
# bad line is refused by its line number with nothing of it stored.
set -u
cli=$1 examples=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
fail() { echo "FAIL: $*"; exit 1; }
features() { ogrinfo -ro -so job.gpkg points | sed -n 's/^Feature Count: //p'; }

cp "$examples/section14.gpkg" job.gpkg
before=$(features)
"$cli" cogo job.gpkg "$examples/section14.cogo" --json >answer.json || fail "the example command file"
python3 - answer.json <<'PY' || fail "the JSON answer"
import json, sys
d = json.load(open(sys.argv[1]))
r = d["results"]
assert [x["command"] for x in r] == ["INVERSE", "LOCATE", "LOCATE", "LOCATE", "INTERSECT", "INTERSECT", "INTERSECT", "STATION",
                                     "POINTAT", "DIVIDE", "POINT", "AREA", "AREA", "MAPCHECK"], [x["command"] for x in r]
assert set(r[0]["legs"][0]) == {"from", "to", "azimuth", "bearing", "distance"}, r[0]
assert set(r[1]["point"]) == {"number", "northing", "easting", "elevation"} and r[1]["point"]["elevation"] is None
assert len(r[5]["solutions"]) == 2 and set(r[7]) == {"line", "command", "station", "offset"}
assert [p["number"] for p in r[9]["points"]] == ["3010", "3011", "3012"]
assert 640 < r[11]["acres"] < 640.5 and set(r[11]) == {"line", "command", "area", "acres", "hectares", "perimeter"}
assert r[13]["line"] == 16 and r[13]["precision"] == 58563
assert d["stored"] == ["3001", "3002", "3003", "3004", "3005", "3006", "3007", "3010", "3011", "3012", "3020"], d["stored"]
PY
[ "$(features)" = $((before + 11)) ] || fail "11 points stored, not $(( $(features) - before ))"
grep -q "description (String) = WITNESS POST" <<<"$(ogrinfo -ro -al job.gpkg points -where "number='3020'")" || fail "3020 not stored"
# The text answer: each command as written, its answer under it.
echo 'INVERSE 1001 1002' >inverse.cogo
"$cli" cogo job.gpkg inverse.cogo | grep -q '1001 to 1002  N 89°47'"'"'24" E' || fail "the text answer"
"$cli" cogo job.gpkg inverse.cogo --seconds 2 | grep -q '1001 to 1002  N 89°47'"'"'23.99" E' || fail "the answer to hundredths of a second"

# A bad line: its number and reason, exit 2, and the good lines before it stored nothing.
printf 'LOCATE 4001 FROM 1001 AZIMUTH 90 DISTANCE 10\n\n# a comment\nINTERSECT 4002 DISTANCE 1001 10 DISTANCE 1008 10\n' >bad.cogo
said=$("$cli" cogo job.gpkg bad.cogo 2>&1)
[ $? -eq 2 ] || fail "a bad line is not exit 2: $said"
grep -q "bad.cogo line 4: the distances from 1001 and 1008 do not reach each other" <<<"$said" || fail "the refusal: $said"
[ "$(features)" = $((before + 11)) ] || fail "a refused file stored points"
"$cli" cogo job.gpkg "$examples/section14.cogo" 2>&1 | grep -q "line 4: point 3001 is in the project already" || fail "a second run over the same numbers"
# The published worked examples as a command file, on a new project, to their published precision.
"$cli" project new worked.gpkg >/dev/null || fail "project new"
"$cli" cogo worked.gpkg "$examples/worked.cogo" --json >worked.json || fail "worked.cogo"
python3 - worked.json <<'PY' || fail "the worked examples"
import json, sys
r = json.load(open(sys.argv[1]))["results"]
def near(a, b, t): assert abs(a - b) <= t, (a, b)
p = {x["point"]["number"]: x["point"] for x in r if "point" in x}
near(p["2"]["northing"], 480.951, 5e-4); near(p["2"]["easting"], 1811.082, 5e-4)
near(p["LR"]["northing"], 836.445, 5e-4); near(p["LR"]["easting"], 1450.051, 5e-4)
near(p["FP"]["northing"], 463.846, 5e-4); near(p["FP"]["easting"], 2435.613, 5e-4)
legs = [x for x in r if x["command"] == "INVERSE"][0]["legs"]
near(legs[0]["distance"], 573.754, 1e-3); near(legs[1]["distance"], 1053.642, 1e-3)
near([x for x in r if x["command"] == "AREA"][0]["area"], 140494, 2)
PY
echo "ok"

#!/usr/bin/env bash
# faults.sh CLI CASE: one fault of the command line, named after it, with the
# exit status and the words the user must see. Each case makes its own files.
set -u
cli=$1 case=$2
work=$(mktemp -d)
trap 'chmod -R u+w "$work" 2>/dev/null; rm -rf "$work"' EXIT
cd "$work" || exit 1
hcurve='{"calculator":"hcurve","steps":[{"set":{"txtDelta":"30","txtRadius":"1000","txtCurvePt":"10+00"},"click":["btnCalculate","btnOutput"]}]}'

expect() {  # expect STATUS TEXT: the last command's status and a line of its output
  if [ "$status" -ne "$1" ] || ! grep -qF -- "$2" out; then
    echo "case $case: expected status $1 and \"$2\", got status $status:" >&2
    cat out >&2
    exit 1
  fi
}

case $case in
  number_beyond_a_double_in_a_job)
    echo '{"calculator":"hcurve","steps":[1e400]}' >job.json
    "$cli" run job.json >out 2>&1; status=$?
    expect 2 "not valid JSON: number overflow parsing '1e400' at line 1" ;;
  duplicate_key_in_a_job)
    echo '{"calculator":"hcurve","calculator":"vcurve"}' >job.json
    "$cli" run job.json >out 2>&1; status=$?
    expect 2 'the key "calculator" is given twice' ;;
  folder_as_job_file)
    "$cli" run "$work" >out 2>&1; status=$?
    expect 2 "it is a folder, not a job file" ;;
  folder_as_coordinate_file)
    "$cli" points "$work" >out 2>&1; status=$?
    expect 2 "is a folder, not a coordinate file" ;;
  unknown_option)
    "$cli" run --no-such-option job.json >out 2>&1; status=$?
    expect 2 "no-such-option" ;;
  extra_argument)
    echo "$hcurve" >job.json
    "$cli" run job.json extra >out 2>&1; status=$?
    expect 2 "not expected" ;;
  help_is_no_error)
    "$cli" run --help >out 2>&1; status=$?
    expect 0 "--data-dir" ;;
  result_to_a_full_disk)
    echo "$hcurve" >job.json
    "$cli" run job.json --json --data-dir data >/dev/full 2>out; status=$?
    expect 1 "cannot be written to standard output" ;;
  result_to_a_closed_pipe)
    echo "$hcurve" >job.json
    # The reader is gone before the result is written.
    { sleep 0.3; "$cli" run job.json --json --data-dir data 2>out; echo $? >status; } | true
    status=$(cat status)
    expect 1 "cannot be written to standard output" ;;
  working_folder_gone_under_a_relative_data_folder)
    echo "$hcurve" >job.json
    mkdir gone && cd gone && rmdir ../gone
    "$cli" run ../job.json --data-dir data >../out 2>&1; status=$?
    cd .. && expect 3 "The working folder no longer exists" ;;
  working_folder_gone_under_a_relative_output_name)
    echo '{"calculator":"hcurve","steps":[{"set":{"txtDelta":"30","txtRadius":"1000","txtCurvePt":"10+00","txtOut":"out.txt"},"click":["btnCalculate","btnOutput"]}]}' >job.json
    mkdir -p data gone && cd gone && rmdir ../gone
    "$cli" run ../job.json --data-dir "$work/data" >../out 2>&1; status=$?
    cd .. && expect 3 "Run-time Error" && expect 3 "The working folder no longer exists" ;;
  overflow_in_a_coordinate_file)
    printf '1001,1e400,5000,IP\r\n' >points.csv
    "$cli" points points.csv >out 2>&1; status=$?
    expect 3 "Overflow" && expect 3 "Line: 1" ;;
  deep_json_in_a_job_plan_or_recent_list)
    python3 -c 'print("[" * 75000 + "]" * 75000)' >deep.json
    "$cli" run deep.json >out 2>&1; status=$?
    expect 2 "nested deeper than 64 levels"
    "$cli" township deep.json >out 2>&1; status=$?
    expect 2 "nested deeper than 64 levels"
    # A recent list nested so deep is started afresh: the job runs.
    echo "$hcurve" >job.json && mkdir -p data && cp deep.json data/recent.json
    "$cli" run job.json --data-dir data >out 2>&1; status=$?
    expect 0 "outHfile.txt" ;;
  special_files_never_opened_for_reading)
    mkfifo pipe
    for command in run township points; do
      timeout 20 "$cli" $command pipe >out 2>&1; status=$?
      expect 2 "not a regular file"
      timeout 20 "$cli" $command /dev/zero >out 2>&1; status=$?
      expect 2 "not a regular file"
    done
    # A pipe where the recent list should be neither hangs nor stops a job.
    echo "$hcurve" >job.json && mkdir -p data && mkfifo data/recent.json
    timeout 20 "$cli" run job.json --data-dir data >out 2>&1; status=$?
    expect 0 "outHfile.txt" ;;
  file_too_large_to_be_what_it_claims)
    truncate -s 65M big.json
    for command in run township points; do
      "$cli" $command big.json >out 2>&1; status=$?
      expect 2 "larger than 64 MB"
    done ;;
  a_system_that_cannot_hold_corners)
    # Geographic, geocentric, vertical, or not in PROJ's database: every kind of file is refused
    # before anything runs, and nothing is written.
    examples=$(cd "$(dirname "$0")/../../examples" && pwd)
    for code in 4326 4978 5714 999999; do
      for pair in "run $examples/secsub.job.json" "township $examples/township.plan.json" \
                  "restore $examples/section14.restore.json" "traverse $examples/loop.traverse.json"; do
        read -r command file <<<"$pair"
        python3 -c 'import json, sys; d = json.load(open(sys.argv[1])); d["crs"] = {"epsg": int(sys.argv[2])}
if "source" in d: d["source"] = sys.argv[1].rsplit("/", 1)[0] + "/" + d["source"]
json.dump(d, open(sys.argv[3], "w"))' "$file" $code "in.json"
        "$cli" $command in.json --data-dir data >out 2>&1; status=$?
        if [ $code = 999999 ]; then expect 2 "EPSG:999999 is not a coordinate system in PROJ's database"
        else expect 2 "is not a projected system: corners need plane coordinates"; fi
        [ -z "$(find data -type f 2>/dev/null)" ] || { echo "case $case: $command wrote into the data folder" >&2; exit 1; }
      done
    done ;;
  raw_files_as_they_come_from_the_field)
    examples=$(cd "$(dirname "$0")/../../examples" && pwd)
    # A radial survey with one broken shot: every other point, the line named, exit 4.
    printf 'SP,PN1,N 5000,E 3000,EL100\r\nOC,OP1,N 5000,E 3000,EL100\r\nBK,OP1,BS0.0000,BC0\r\nLS,HI5,HR5\r\n%s\r\n%s\r\n%s\r\n' \
      'SS,OP1,FP2,AR90,ZE90,SD100' 'SS,OP1,FP3,AR90,ZE90' 'SS,OP1,FP4,AR180,ZE90,SD50' >radial.rw5
    "$cli" traverse radial.rw5 --data-dir data >out 2>&1; status=$?
    expect 4 "Not reduced: line 6: a SS record gives its distance with HD, or SD with ZE or VA."
    grep -q '^4,4950.0000,3000.0000,100.0000,' data/radial-points.csv || { echo "case $case: point 4 not written" >&2; exit 1; }
    # A traverse with its backsight circle recorded wrongly: the blunder said, its points written, exit 4.
    sed 's/BK,OP1003,BP1002,BC0.0000/BK,OP1003,BP1002,BC10.0000/' "$examples/section14.rw5" >blunder.rw5
    "$cli" traverse blunder.rw5 --data-dir data >out 2>&1; status=$?
    expect 4 "is worse than the allowable 1:5,000"
    [ -s data/blunder-adjusted.txt ] || { echo "case $case: the failing traverse's points were not written" >&2; exit 1; }
    # Not a raw file at all, and GNSS alone with no system: refused, exit 2.
    printf 'hello\nworld\n' >letter.rw5
    "$cli" traverse letter.rw5 --data-dir data >out 2>&1; status=$?
    expect 2 "it is not a data collector's raw file"
    printf 'GPS,PN7,LA39.0949512,LN-100.8192595,EL1250.0\n' >gnss.rw5
    "$cli" traverse gnss.rw5 --data-dir data >out 2>&1; status=$?
    expect 2 "holds only GNSS points (1 GPS record) and no coordinate system"
    # With a system, PROJ places it where cs2cs does; its height as given.
    "$cli" traverse gnss.rw5 --epsg 3419 --data-dir data >out 2>&1; status=$?
    expect 0 "N 289841.9874  E 512313.4812"
    grep -q '^7,289841.9874,512313.4812,1250.0000,' data/gnss-points.csv || { echo "case $case: the GNSS point is not on the grid" >&2; exit 1; }
    read -r e n _ < <(echo "-100.8192595 39.0949512" | cs2cs -f %.4f OGC:CRS83 EPSG:3419)
    [ "$n $e" = "289841.9874 512313.4812" ] || { echo "case $case: cs2cs puts it at N $n E $e" >&2; exit 1; } ;;
  *) echo "no case $case" >&2; exit 1 ;;
esac

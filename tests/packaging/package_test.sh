#!/usr/bin/env bash
# The Debian package as a user's machine gets it: built by CPack from this
# build, accepted by lintian (no error or warning, pedantic tags too), desktop-file-validate and
# appstreamcli, then unpacked into a temporary folder where the packaged
# runner plays the packaged example job and the packaged program answers
# --version. Run in the build folder: package_test.sh SOURCE_DIR
set -euo pipefail
source_dir=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cpack -G DEB -B "$work/out" >/dev/null
deb=$(ls "$work"/out/tervalo_*.deb)
lintian --fail-on error,warning --pedantic "$deb"
desktop-file-validate "$source_dir/packaging/org.tervalo.Tervalo.desktop"
# The MIME types, read by the desktop's own database builder: each of Tervalo's endings has its type.
mime=$work/mime
mkdir -p "$mime/packages"
cp "$source_dir/packaging/org.tervalo.Tervalo.mime.xml" "$mime/packages/org.tervalo.Tervalo.xml"
update-mime-database "$mime"
for glob in tervalo-inputs:tervalo.json tervalo-plan:plan.json tervalo-restoration:restore.json tervalo-traverse:traverse.json; do
  grep -q "application/x-${glob%%:*}:\*\.${glob#*:}" "$mime/globs2" || { echo "FAIL: no MIME type for *.${glob#*:}"; exit 1; }
  grep -q "application/x-${glob%%:*};" "$source_dir/packaging/org.tervalo.Tervalo.desktop" ||
    { echo "FAIL: the desktop entry does not open application/x-${glob%%:*}"; exit 1; }
done
appstreamcli validate --no-net "$source_dir/packaging/org.tervalo.Tervalo.metainfo.xml"

dpkg-deb -x "$deb" "$work/root"
root=$work/root/usr
for f in bin/tervalo bin/tervalo-cli share/applications/org.tervalo.Tervalo.desktop \
         share/icons/hicolor/scalable/apps/org.tervalo.Tervalo.svg share/icons/hicolor/256x256/apps/org.tervalo.Tervalo.png \
         share/metainfo/org.tervalo.Tervalo.metainfo.xml share/doc/tervalo/copyright \
         share/doc/tervalo/README.md share/tervalo/examples/secsub.job.json lib/*/tervalo/libtervalo_geo.so lib/*/tervalo/libtervalo_paper.so \
         share/man/man1/tervalo.1.gz share/man/man1/tervalo-cli.1.gz share/mime/packages/org.tervalo.Tervalo.xml; do
  compgen -G "$root/$f" >/dev/null || { echo "FAIL: the package has no $f"; exit 1; }
done
(cd "$root/share/tervalo" && "$root/bin/tervalo-cli" run examples/secsub.job.json --data-dir "$work/data" >/dev/null)
[ -s "$work/data/SecSub.inp" ] && [ -s "$work/data/SecSub.rpt" ] || { echo "FAIL: the packaged example wrote nothing"; exit 1; }
# The coordinate system module is found beside the packaged program and does its work.
(cd "$root/share/tervalo" && "$root/bin/tervalo-cli" run examples/gis.job.json --data-dir "$work/gis" >/dev/null)
[ -s "$work/gis/Section14.gpkg" ] || { echo "FAIL: the packaged GIS example wrote no GeoPackage"; exit 1; }
# The packaged raw traverse closes and its adjusted points are a source file.
"$root/bin/tervalo-cli" traverse "$root/share/tervalo/examples/section14.rw5" --data-dir "$work/traverse" >/dev/null
"$root/bin/tervalo-cli" points "$work/traverse/section14-adjusted.txt" | grep -q "^Points read: 10$" ||
  { echo "FAIL: the packaged raw traverse gave no adjusted points"; exit 1; }
version=$(QT_QPA_PLATFORM=offscreen "$root/bin/tervalo" --version)
case $version in *1.0*) echo "ok: $version" ;; *) echo "FAIL: tervalo --version said: $version"; exit 1 ;; esac

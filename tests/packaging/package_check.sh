#!/bin/sh
# package_check.sh BUILD_DIR: builds the Debian package from the built tree, holds Debian's
# package checker against it and unpacks it to check what a user of apt gets.
set -eu
build="$1"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }
for tool in cpack lintian dpkg-deb dpkg-parsechangelog man lexgrog readelf; do
  command -v "$tool" >/dev/null || fail "$tool is missing (sh tools/deps.sh installs it)"
done

(cd "$build" && cpack -G DEB -B "$tmp/out" >"$tmp/cpack.log" 2>&1) || { cat "$tmp/cpack.log"; fail "cpack failed"; }
set -- "$tmp"/out/*.deb
[ $# -eq 1 ] && [ -f "$1" ] || fail "cpack made no single package: $*"
deb="$1"
version=$(dpkg-deb -f "$deb" Version)

# Every error, warning and note fails (the notes include the hardening a Debian build has:
# PIE, read-only relocations bound at start, fortified calls); pedantic and experimental tags
# are listed for the reader. An overridden tag shows as O:, below its reason.
lintian -I --pedantic --display-experimental --show-overrides "$deb" >"$tmp/lintian.log" 2>&1 || true
echo "lintian $(lintian --version | sed 's/^Lintian v//'):"
grep -v '^running with root' "$tmp/lintian.log" || echo "(nothing)"
echo
grep -Eq '^[EWI]: ' "$tmp/lintian.log" && fail "lintian reports errors, warnings or notes"
grep -Eq '^(internal error|.*Cannot |.*[Ff]ailed)' "$tmp/lintian.log" && fail "lintian did not finish"

dpkg-deb -x "$deb" "$tmp/root"
root="$tmp/root"
for f in usr/lib/marvento/marvento usr/lib/marvento/Marvento.pdf usr/bin/marvento-nmea-sim \
         usr/share/applications/org.marvento.Marvento.desktop \
         usr/share/metainfo/org.marvento.Marvento.metainfo.xml \
         usr/share/icons/hicolor/scalable/apps/org.marvento.Marvento.svg \
         usr/share/icons/hicolor/48x48/apps/org.marvento.Marvento.png \
         usr/share/doc/marvento/copyright usr/share/doc/marvento/changelog.gz; do
  [ -f "$root/$f" ] || fail "the package has no $f"
done
[ "$(readlink "$root/usr/bin/marvento")" = "../lib/marvento/marvento" ] || fail "usr/bin/marvento is no link to the program"
grep -q "<release version=\"$version\"" "$root/usr/share/metainfo/org.marvento.Marvento.metainfo.xml" \
  || fail "the AppStream file has no release $version"

# Overrides stand in the package, each below a comment that gives its reason.
overrides="$root/usr/share/lintian/overrides/marvento"
if [ -f "$overrides" ]; then
  awk '/^#/ { reason = 1; next } NF && !reason { print "override without a reason: " $0; bad = 1 }
       { reason = 0 } END { exit bad }' "$overrides" || fail "an override has no reason"
fi

# Debian's gzip files carry no name and no time stamp (gzip -n), so every build of a
# version gives the same bytes: flag byte 3 has no name bit, bytes 4-7 are zero.
no_stamp() {
  set -- $(od -An -tu1 -j3 -N5 "$1")
  [ $(($1 & 8)) -eq 0 ] && [ "$2$3$4$5" = "0000" ]
}

# The changelog is one Debian dpkg can read, and its latest entry is this version.
gzip -t "$root/usr/share/doc/marvento/changelog.gz"
no_stamp "$root/usr/share/doc/marvento/changelog.gz" || fail "changelog.gz has a name or time stamp"
zcat "$root/usr/share/doc/marvento/changelog.gz" >"$tmp/changelog"
[ "$(dpkg-parsechangelog -l "$tmp/changelog" -S Version)" = "$version" ] \
  || fail "the changelog's latest entry is not version $version"

# copyright: machine-readable, and every licence a Files paragraph names has its text.
copyright="$root/usr/share/doc/marvento/copyright"
head -n 1 "$copyright" | grep -qx 'Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/' \
  || fail "copyright is not in the machine-readable format"
awk '
  /^[^ \t]/ { field = $1 }
  /^$/ { if (files && !(copyr && lic)) { print "Files paragraph without Copyright or License: " files; bad = 1 }
         files = copyr = lic = "" ; next }
  field == "Files:" && /^Files:/ { files = $0 }
  field == "Copyright:" && /^Copyright:/ { copyr = 1 }
  /^License:/ {
    lic = 1
    if (files) { n = split(substr($0, 10), names, / and | or |, /); for (i = 1; i <= n; ++i) used[names[i]] = files }
    else if (NF == 2) text[$2] = 1
  }
  END {
    if (files && !(copyr && lic)) { print "Files paragraph without Copyright or License: " files; bad = 1 }
    for (name in used) { gsub(/ /, "", name); if (!(name in text)) { print "no text for licence " name; bad = 1 } }
    exit bad
  }' "$copyright" || fail "copyright is incomplete"

# Every program in /usr/bin has its manual page in English and in German, and every page
# belongs to a program. Each one reads without a warning from groff and names its program.
for program in "$root"/usr/bin/*; do
  name=$(basename "$program")
  for dir in man1 de/man1; do
    [ -f "$root/usr/share/man/$dir/$name.1.gz" ] || fail "no manual page $dir/$name.1.gz"
  done
done
read_page() {  # PAGE NAME HEADING
  warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings -l "$1" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "$1: $warnings"
  lexgrog "$1" | grep -q ": \"$2 - " || fail "$1 has no NAME line for $2"
  LC_ALL=C.UTF-8 MANWIDTH=80 man -l "$1" 2>/dev/null | grep -qx "$3" \
    || fail "$1 does not start as a page in its language ($3)"
}
for page in "$root"/usr/share/man/man1/*.1.gz "$root"/usr/share/man/de/man1/*.1.gz; do
  name=$(basename "$page" .1.gz)
  [ -e "$root/usr/bin/$name" ] || fail "$page belongs to no program"
  no_stamp "$page" || fail "$page has a name or time stamp"
done
# The pages of programs this tree does not build are written all the same; they are read too.
for page in "$build"/man/man1/*.1.gz; do
  read_page "$page" "$(basename "$page" .1.gz)" NAME
done
for page in "$build"/man/de/man1/*.1.gz; do
  read_page "$page" "$(basename "$page" .1.gz)" BEZEICHNUNG
done

# A command-line program's pages name every option its --help lists, so that neither runs
# ahead of the other.
for program in "$root"/usr/bin/*; do
  name=$(basename "$program")
  [ "$name" = marvento ] && continue  # the window; it has no options of its own
  options=$(timeout 10 "$program" --help 2>&1 | grep -o -- '--[a-z][a-z-]*' | sort -u)
  [ -n "$options" ] || fail "$name --help lists no options"
  for page in "$root/usr/share/man/man1/$name.1.gz" "$root/usr/share/man/de/man1/$name.1.gz"; do
    documented=$(LC_ALL=C.UTF-8 MANWIDTH=200 man -l "$page" 2>/dev/null | grep -o -- '--[a-z][a-z-]*' | sort -u)
    for option in $options; do
      echo "$documented" | grep -qx -- "$option" || fail "$page does not name $option"
    done
  done
done

# Depends names the package of every library the programs link, as dpkg-shlibdeps found it.
depends=$(dpkg-deb -f "$deb" Depends | tr ',|' '\n\n' | sed 's/^ *//; s/[ (:].*//')
for elf in $(find "$root/usr" -type f -perm -u+x); do
  for soname in $(readelf -d "$elf" 2>/dev/null | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
    owners=$(dpkg -S "*/$soname" 2>/dev/null | cut -d: -f1 | tr ',' '\n' | sed 's/^ *//' | sort -u)
    [ -n "$owners" ] || fail "no installed package holds $soname, which $(basename "$elf") links"
    found=""
    for p in $owners; do echo "$depends" | grep -qx "$p" && found=$p; done
    [ -n "$found" ] || fail "Depends lacks $owners for $soname of $(basename "$elf")"
  done
done
# Announcements need speech-dispatcher, Qt's plug-in for it and a German voice.
recommends=$(dpkg-deb -f "$deb" Recommends)
if readelf -d "$root/usr/lib/marvento/marvento" | grep -q 'libQt6TextToSpeech'; then
  for p in qt6-speech-speechd-plugin speech-dispatcher speech-dispatcher-espeak-ng; do
    echo "$recommends" | grep -qw "$p" || fail "the program speaks, but Recommends lacks $p"
  done
fi
echo "$recommends" | grep -qw pdf-viewer || fail "Recommends names no PDF viewer"

echo "marvento $version: lintian clean, layout, manual pages, copyright and changelog are right"

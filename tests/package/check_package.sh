#!/usr/bin/env bash
# Checks the Debian package that `make package` builds: the files it installs,
# that its dependencies name the Qt runtime packages, and that the programs of
# an unpacked copy run on the system's libraries, with lumeth-admin keeping its
# files in the per-user data folder rather than beside the installed binary.
# Exits 77 (skipped) when no package newer than the build's lumeth-cli exists.
set -euo pipefail
build=$1
version=$2

shopt -s nullglob
debs=("$build"/lumeth-admin_"$version"_*.deb)
if [ ${#debs[@]} -eq 0 ]; then
  echo "no lumeth-admin_${version}_*.deb in $build: run make package"
  exit 77
fi
deb=${debs[0]}
if [ "$build/tools/cli/lumeth-cli" -nt "$deb" ]; then
  echo "$deb is older than the build: run make package"
  exit 77
fi

failures=0
fail() {
  echo "FAIL: $*" >&2
  failures=$((failures + 1))
}

contents=$(dpkg-deb -c "$deb" | awk '{print $6}')
for f in ./usr/bin/lumeth-admin ./usr/bin/lumeth-cli ./usr/bin/lumeth-sim \
         ./usr/share/applications/lumeth-admin.desktop \
         ./usr/share/icons/hicolor/scalable/apps/lumeth-admin.svg; do
  grep -qxF "$f" <<<"$contents" || fail "$f is not in the package"
done
stray=$(grep -vE '^\./(usr/((bin|share)/.*)?)?$' <<<"$contents" || true)
[ -z "$stray" ] || fail "files outside /usr/bin and /usr/share: $stray"

depends=$(dpkg-deb -f "$deb" Depends)
names=$(sed -e 's/ *([^)]*)//g' -e 's/, */\n/g' <<<"$depends")
for p in libqt6core6 libqt6gui6 libqt6widgets6 libqt6network6 libstdc++6; do
  grep -qxF "$p" <<<"$names" || fail "Depends lacks $p: $depends"
done

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root/pkg"

for p in lumeth-admin lumeth-cli lumeth-sim; do
  bin="$root/pkg/usr/bin/$p"
  if objdump -p "$bin" | grep -qE '^\s*R(UN)?PATH'; then
    fail "$p carries a library search path: $(objdump -p "$bin" | grep -E 'R(UN)?PATH')"
  fi
  out=$("$bin" --version 2>&1) || fail "$p --version exited with $?"
  [ "$out" = "$p $version" ] || fail "$p --version printed \"$out\", not \"$p $version\""
done

# lumeth-cli labels draws its PDF without a display, on the "offscreen"
# platform of the installed Qt runtime.
labels_status=0
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$root/pkg/usr/bin/lumeth-cli" labels \
  "$build/demo/demo-panel.dat" -o "$root/labels.pdf" >/dev/null 2>&1 || labels_status=$?
[ "$labels_status" -eq 0 ] || fail "lumeth-cli labels from the package exited with $labels_status"
[ "$(head -c 4 "$root/labels.pdf" 2>/dev/null)" = "%PDF" ] || fail "lumeth-cli labels wrote no PDF"

entry="$root/pkg/usr/share/applications/lumeth-admin.desktop"
grep -qx 'Exec=lumeth-admin' "$entry" || fail "the launcher entry does not start lumeth-admin"
grep -qx 'Icon=lumeth-admin' "$entry" || fail "the launcher entry does not name the icon"

# Started from the unpacked copy (its bin folder writable, as for root), the
# window creates its folder under the per-user data folder and writes nothing
# into bin/. It waits at the login, so it is stopped after a moment.
mkdir -p "$root/data"
status=0
QT_QPA_PLATFORM=offscreen XDG_DATA_HOME="$root/data" timeout 3 "$root/pkg/usr/bin/lumeth-admin" \
  >/dev/null 2>&1 || status=$?
[ "$status" -eq 124 ] || fail "lumeth-admin from the package exited with $status before the login"
[ -d "$root/data/KOV/Lumeth Admin" ] || fail "no per-user data folder $root/data/KOV/Lumeth Admin"
extra=$(ls "$root/pkg/usr/bin" | grep -vxE 'lumeth-(admin|cli|sim)' || true)
[ -z "$extra" ] || fail "files written beside the installed binaries: $extra"

[ "$failures" -eq 0 ] || exit 1
echo "$deb: contents, dependencies and the unpacked programs are as expected"

#!/bin/sh
# Makes an archive that runs from any folder: the staged tree with the shared libraries that it needs but those that
# belong to the system: its C library, and the drivers of its graphics, which Ormel draws without.
#   make_portable.sh <tree> <folder for the archive> <version> <architecture>
set -eu
tree=$1
out=$2
version=$3
architecture=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
name="ormel-$version-$architecture"
to="$work/$name"
mkdir "$to"
cp -a "$tree/bin" "$tree/lib" "$tree/share" "$to/"
lib="$to/lib/ormel/lib"
plugins="$to/lib/ormel/plugins"
mkdir "$lib" "$plugins"

system='^(linux-vdso|ld-linux.*|libc|libm|libdl|librt|libpthread|libresolv|libdrm|libgbm)\.so'
needed() {
  ldd "$@" 2>/dev/null | awk '$2 == "=>" && $3 ~ /^\// { print $3 }' | sort -u
}
take() {
  needed "$@" | while read -r file; do
    base=$(basename "$file")
    echo "$base" | grep -Eq "$system" || [ -e "$lib/$base" ] || cp -L "$file" "$lib/$base"
  done
}

qt=$(qmake6 -query QT_INSTALL_PLUGINS)
for plugin in platforms/libqxcb.so platforms/libqoffscreen.so platforms/libqminimal.so imageformats/libqsvg.so \
  iconengines/libqsvgicon.so platformthemes/libqxdgdesktopportal.so xcbglintegrations/libqxcb-glx-integration.so \
  xcbglintegrations/libqxcb-egl-integration.so printsupport/libcupsprintersupport.so; do
  [ -e "$qt/$plugin" ] || continue
  mkdir -p "$plugins/$(dirname "$plugin")"
  cp -L "$qt/$plugin" "$plugins/$plugin"
done
programs="$to/lib/ormel/ormel $to/lib/ormel/ormelcmd $to/lib/ormel/VADOX1.EXE $to/lib/ormel/CONTOUR.EXE"
# shellcheck disable=SC2086  # a list of files
take $programs $(find "$plugins" -name '*.so')
# shellcheck disable=SC2086
patchelf --set-rpath '$ORIGIN/lib' $programs
find "$lib" -name '*.so*' -exec patchelf --set-rpath '$ORIGIN' {} +
find "$plugins" -name '*.so' -exec patchelf --set-rpath '$ORIGIN/../../lib' {} +
# Tables of coordinate reference systems, see src/geo/geo_data.h.
mkdir -p "$to/lib/ormel/geodata/proj" "$to/lib/ormel/geodata/gdal"
cp -L "$(dpkg -L proj-data | grep '/proj\.db$')" "$to/lib/ormel/geodata/proj/"
cp -rL "$(dpkg -L gdal-data | grep '/share/gdal$')/." "$to/lib/ormel/geodata/gdal/"
printf '[Paths]\nPlugins = plugins\n' >"$to/lib/ormel/qt.conf"
cat >"$to/README.txt" <<EOF
Ormel $version

Run bin/ormel for the window, bin/ormelcmd for the commands without one.  Nothing is installed; to remove Ormel delete
this folder.  It needs a system with the C library of $(ldd --version | sed -n '1s/.* //p') or newer.
EOF
tar --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner -C "$work" -c "$name" |
  xz -T1 -6 >"$out/$name.tar.xz"

#!/bin/sh
# Makes the Debian package of a staged tree.
#   make_deb.sh <tree> <folder for the package> <version> <architecture>
set -eu
tree=$1
out=$2
version=$3
architecture=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What the programs need of shared libraries, by the packages of this system.
mkdir "$work/debian"
printf 'Source: ormel\n\nPackage: ormel\nArchitecture: any\n' >"$work/debian/control"
depends=$(cd "$work" && dpkg-shlibdeps -O "$tree"/usr/lib/ormel/ormel "$tree"/usr/lib/ormel/ormelcmd \
  "$tree"/usr/lib/ormel/VADOX1.EXE "$tree"/usr/lib/ormel/CONTOUR.EXE 2>/dev/null |
  sed 's/^shlibs:Depends=//')

mkdir -p "$tree/DEBIAN"
cat >"$tree/DEBIAN/control" <<EOF
Package: ormel
Version: $version
Architecture: $architecture
Maintainer: the authors of Ormel <maintainers@ormel.example>
Installed-Size: $(du -sk "$tree/usr" | cut -f1)
Depends: $depends, qt6-qpa-plugins, fonts-liberation, fonts-dejavu-core
Section: science
Priority: optional
Description: groundwater flow by analytic elements and capture zones of wells
 Ormel models steady groundwater flow in an aquifer: wells, rivers, barriers
 and aquifer zones are drawn on a map, solved by the analytic element method,
 and the time-of-travel capture zone of each well follows, checked against the
 water that the well takes.  ormelcmd does the same without a window.
EOF
# Started by root without a project, Ormel remembers folders beside itself.
cat >"$tree/DEBIAN/postrm" <<'EOF'
#!/bin/sh
set -e
rm -f /usr/lib/ormel/Ormel.def
rmdir /usr/lib/ormel 2>/dev/null || true
EOF
chmod 755 "$tree/DEBIAN/postrm"
(cd "$tree" && find usr -type f -print0 | LC_ALL=C sort -z | xargs -0 md5sum >DEBIAN/md5sums)
dpkg-deb --root-owner-group -Zxz --build "$tree" "$out/ormel_${version}_$architecture.deb" >/dev/null
rm -r "$tree/DEBIAN"

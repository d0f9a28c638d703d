#!/bin/sh
# Installs what packages.txt, and further lists that are named, hold and the machine lacks. Says what it does; silent
# when nothing is missing.
set -eu
cd "$(dirname "$0")/.."
lists="packages.txt $*"  # from the root of the sources

missing=""
# shellcheck disable=SC2086  # a list of files
for package in $(grep -hv '^#' $lists); do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null 2>&1 || {
    echo "These packages are missing and neither root nor sudo is at hand to install them:$missing" >&2
    exit 1
  }
  as_root=sudo
fi
echo "Installing$missing"
export DEBIAN_FRONTEND=noninteractive
# shellcheck disable=SC2086  # a list of package names
$as_root apt-get install -y --no-install-recommends $missing >/dev/null 2>&1 || {
  $as_root apt-get update
  $as_root apt-get install -y --no-install-recommends $missing
}

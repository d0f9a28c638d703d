#!/bin/sh
# Makes the man pages of the programs from their own help.
#   man_pages.sh <folder of the programs> <folder for the pages>
set -eu
bin=$1
man=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A section from a program's help: the name of the section, then the command.
section() {
  title=$1
  shift
  printf '[%s]\n.nf\n' "$title"
  "$@" 2>&1 | sed -e 's/\\/\\\\/g' -e "s/^[.']/\\\\\\&&/"
  printf '.fi\n\n'
}

page() {
  program=$1
  name=$2
  file="$man/$(echo "$program" | tr '[:upper:]' '[:lower:]' | sed 's/\.exe$//').1"
  shift 2
  help2man --no-info --no-discard-stderr --name "$name" --output "$file" "$@" "$bin/$program"
  gzip -9n "$file"
}

mkdir -p "$man"
commands=$("$bin/ormelcmd" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\+\) .*/\1/p')
for command in $commands; do
  section "$(echo "$command" | tr '[:lower:]' '[:upper:]')" "$bin/ormelcmd" "$command" --help
done >"$work/ormelcmd.h2m"

page ormel "groundwater flow and capture zones of wells"
page ormelcmd "the commands of Ormel without its window" --include "$work/ormelcmd.h2m"
page VADOX1.EXE "solver of analytic element models"
page CONTOUR.EXE "contour lines of a grid"

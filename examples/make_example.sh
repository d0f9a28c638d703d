#!/bin/sh
# Makes examples/example.orm through the program's own commands: the well field of a small town in a river valley.
#
#   examples/make_example.sh [folder of ormelcmd]        default: build/release/bin
#
# Map and computation in metres, time in days.  A river of head line-sinks runs through the valley and gains from
# both sides; water comes down the valley and from recharge; a gravel terrace along the river conducts better and takes
# more recharge; a clay ridge in the north-east lets little through.  Six wells on the terrace supply the town.
set -eu
cd "$(dirname "$0")/.."
ormelcmd="${1:-build/release/bin}/ormelcmd"
project=examples/example.orm

"$ormelcmd" new "$project" --overwrite --portable --description "Well field of a small town in a river valley"
add() {
  kind=$1
  shift
  "$ormelcmd" add "$kind" "$project" "$@"
}

# Aquifer: 25 m of sand above clay at 80 m.
"$ormelcmd" set "$project" \
  Model.AQBase=80 Model.AQThickness=25 Model.AQHydCond=20 Model.AQPorosity=0.22 \
  Model.CONTOURShow=1 Model.CONTOURMinimum=90 Model.CONTOURMaximum=110 Model.CONTOURInterval=0.5 \
  Model.CONTOURLevel=90 Model.TRACECompute=1 Model.TRACEMaxTime=3650 Model.SOLVERIterations=10 \
  Model.ViewMessageLog=0 Model.EDITGRIDShow=0

# Regional flow down the valley, as steep as the river; the head is that of the observation well in the uplands.
add uniformflow --at 3000,4250 --head 103.2 --gradient 0.0004 --direction -8

# The river, from west to east, with the stages of its gauges.
add linesink --label "River, upper reach" --heads 98.8 97.3 \
  --points "-1500,1620 -800,1430 -200,1260 250,1180 700,1020 1150,960 1600,1010 2050,940"
add linesink --label "River, town reach" --heads 97.3 96.3 --resistance 1 --width 18 --depth 2 --location centreline \
  --points "2050,940 2450,760 2900,700 3350,790 3800,730 4200,590"
add linesink --label "River, lower reach" --heads 96.3 94.8 \
  --points "4200,590 4650,560 5100,660 5550,600 6050,420 6700,330 7500,240"

# Domains.  Recharge is positive into the aquifer: 0.0004 m/d are 146 mm a year.
add inhomogeneity --label "Valley" --recharge 0.0004 --color "#C0C0C0" \
  --points "-900,-900 6900,-900 6900,4700 -900,4700"
add inhomogeneity --label "Gravel terrace" --conductivity 55 --porosity 0.25 --recharge 0.0003 --color "#808000" \
  --points "620,1320 1700,1180 2900,1020 4100,960 4950,1000 5350,1400 5150,2050 4300,2450 3200,2600 2000,2520 1000,2150 560,1720"
add inhomogeneity --label "Clay ridge" --conductivity 2.5 --porosity 0.15 --color "#800000" \
  --points "4450,2950 5300,2750 5750,3150 5500,3700 4800,3850 4300,3450"

# The wells [m3/d].
well() {
  add well --label "$1" --at "$2" --rate "$3" --radius 0.3 --particles 20 --start-elevation 88 --setback 30 \
    --color "$4"
}
well "Mill Lane 1" 1450,1750 900 "#B22222"
well "Mill Lane 2" 1820,2080 650 "#B8460E"
well "Meadow" 2620,1650 1400 "#7A1FA2"
well "Church Field" 3120,2180 1100 "#00695C"
well "Terrace East" 3930,1780 1250 "#1A5FB4"
well "School" 4560,1450 450 "#8D6E00"

# Observed heads.
testpoint() {
  add testpoint --label "$1" --at "$2" --head "$3"
}
testpoint "OW-1" 900,2450 100.5
testpoint "OW-2" 2200,3000 101.2
testpoint "OW-3" 3600,3150 101.0
testpoint "OW-4" 2250,1400 98.3
testpoint "OW-5" 4800,2350 99.3
testpoint "OW-6" 5500,1500 98.6

# What the river gives and takes along the town, seen from the terrace.
add fluxline --label "Bank, town reach" --points "2050,1080 2900,860 4200,720"

add text --text "River" --at 1080,790 --size 11 --italic
add text --text "Gravel terrace" --at 3150,1130 --size 10 --italic
add text --text "Clay ridge" --at 4750,3450 --size 10 --italic

"$ormelcmd" window "$project" --window -600,100,6600,4300
rm -f examples/Ormel.def

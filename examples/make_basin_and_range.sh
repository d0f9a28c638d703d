#!/bin/sh
# Makes "examples/basin and range.orm" through the program's own commands: a closed valley between two mountain ranges.
#
#   examples/make_basin_and_range.sh [folder of ormelcmd]        default: build/release/bin
#
# Map and computation in feet, time in days.  The bedrock of the ranges bounds the basin fill all around.  Rain falls on
# the mountains and enters along their fronts, through the fans at their feet; nothing else feeds the basin.  It
# leaves through wells, through the river on the valley's floor and by evaporation from a playa, which is a drain here.
# A fault along the southern front holds the water of the fans back and lets it pass at one gap and around its ends.
# Lake clay confines the fill where the head stands above it; around the wells it is drained.
set -eu
cd "$(dirname "$0")/.."
ormelcmd="${1:-build/release/bin}/ormelcmd"
project="examples/basin and range.orm"

"$ormelcmd" new "$project" --overwrite --portable --map-units feet --units feet \
  --description "Wells in a basin between two mountain ranges"
add() {
  kind=$1
  shift
  "$ormelcmd" add "$kind" "$project" "$@"
}

# Aquifer: 395 ft of basin fill above bedrock at 3,950 ft, below clay at 4,345 ft.
"$ormelcmd" set "$project" \
  Model.AQBase=3950 Model.AQThickness=395 Model.AQHydCond=8 Model.AQPorosity=0.18 \
  Model.CONTOURShow=1 Model.CONTOURMinimum=4300 Model.CONTOURMaximum=4400 Model.CONTOURInterval=2.5 \
  Model.CONTOURLevel=200 Model.TRACECompute=1 Model.TRACEMaxTime=10950 Model.SOLVERIterations=15 \
  Model.ViewMessageLog=0 Model.EDITGRIDShow=0

# No regional flow: only the head at which the basin's iteration starts.
add uniformflow --at 27500,21000 --head 4345 --gradient 0 --direction 0

add barrier --label "Bedrock" --closed --ignore-outside --color "#5C4033" \
  --points "56500,6000 58000,14000 56500,24000 51500,31000 43500,34500 33500,35500 23500,34000 14500,35000 6000,31500 2000,24000 3000,15500 7500,9500 15500,6500 25500,5000 36500,5500 47500,4500"
add barrier --label "Range-front fault, east" --color "#B22222" \
  --points "46500,12000 42000,11400 37500,12200 33500,11800"
add barrier --label "Range-front fault, west" --color "#B22222" \
  --points "31000,11900 26000,12600 21000,12100 15500,13200"

# Recharge along the fronts, positive into the aquifer: 0.002 ft/d are 8.8 inches a year.
add inhomogeneity --label "Southern fans" --conductivity 16 --porosity 0.22 --recharge 0.002 --color "#808000" \
  --points "48000,6700 47500,9700 42000,9300 36000,10200 30000,9800 24000,10400 18500,10000 14500,10800 15000,8400 25000,7000 36000,7300"
add inhomogeneity --label "Northern fans" --conductivity 14 --porosity 0.2 --recharge 0.0015 --color "#808000" \
  --points "23000,29800 24000,32300 16500,33000 9000,30500 10000,27500 16000,29500"
add inhomogeneity --label "Playa silt" --conductivity 2 --porosity 0.3 --color "#C0A060" \
  --points "50000,19500 51000,23500 48000,27500 43000,29000 39000,27000 38500,22500 42000,19000 46500,18000"

# The river comes down from the western end and dries up in the playa; it runs on a bed of silt.
add linesink --label "River" --heads 4352 4316 --resistance 8 --width 25 --depth 4 --location centreline \
  --points "6000,17500 10500,17900 14500,19200 18500,18700 22500,19600 26000,20800 30000,20500 34000,21600 37000,22300"
add linesink --label "Playa" --heads 4316 4316 --drain --resistance 20 --width 300 --depth 2 \
  --points "47000,20700 44000,20300 41000,21800 40700,24500 42700,26600 45700,26400 48200,24000 48300,21600 47000,20700"

# The wells [ft3/d].
well() {
  add well --label "$1" --at "$2" --rate "$3" --radius 1 --particles 16 --start-elevation 4150 --setback 100 \
    --color "$4"
}
well "Town 1" 20900,15800 65000 "#B22222"
well "Town 2" 24700,16300 55000 "#B8460E"
well "Ranch" 13300,26500 50000 "#7A1FA2"
well "Pivot North" 26900,29300 70000 "#00695C"
well "Pivot East" 33000,28200 45000 "#1A5FB4"
well "Mine" 38000,15200 40000 "#8D6E00"

# Observed heads.
testpoint() {
  add testpoint --label "$1" --at "$2" --head "$3"
}
testpoint "MW-1" 32500,9000 4352.5
testpoint "MW-2" 29000,13500 4331
testpoint "MW-3" 29500,17500 4325.2
testpoint "MW-4" 22000,24500 4329.6
testpoint "MW-5" 17000,31500 4332.4
testpoint "MW-6" 50500,15500 4331.8
testpoint "MW-7" 36000,25500 4314.9
testpoint "MW-8" 10000,21500 4342.3

# What passes from the fans into the valley through the gap in the fault.
add fluxline --label "Gap in the fault" --points "31000,11900 33500,11800"

add text --text "River" --at 16000,20000 --size 11 --italic
add text --text "Playa" --at 44500,22500 --size 11 --italic
add text --text "Southern fans" --at 13000,7300 --size 10 --italic
add text --text "Northern fans" --at 8200,29800 --size 10 --italic
add text --text "Range-front fault" --at 34000,12800 --size 10 --italic

"$ormelcmd" window "$project" --window 0,500,61000,40500
rm -f examples/Ormel.def

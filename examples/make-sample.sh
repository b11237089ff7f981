#!/bin/sh
# Builds a sample diary whose dates are always current: every date is a text
# relative to today ("+2 days", "next Fri"). Usage: make-sample.sh FILE
set -e
FILE=${1:?usage: make-sample.sh FILE}
T=${TERVALON:-build/bin/tervalon}
rm -f "$FILE"
"$T" create "$FILE" >/dev/null
add() { "$T" add "$FILE" "$@"; }

home=$(add --type O --title "Home renovation")
kitchen=$(add --type O --title "Kitchen" --parent "$home")
add --type T --title "Measure the kitchen" --parent "$kitchen" --due "+1 day" --duration "1h" --priority 80 >/dev/null
add --type T --title "Choose cupboards" --parent "$kitchen" --due "next Fri" --duration "3h" --priority 60 >/dev/null
add --type T --title "Order worktop" --parent "$kitchen" --due "+10 days" --duration "1h" >/dev/null
add --type T --title "Book the plumber" --parent "$kitchen" --due "+5 days" --duration "30m" --priority 70 >/dev/null
add --type T --title "Fit the new sink" --parent "$kitchen" --due "+20 days" --duration "4h" >/dev/null
garden=$(add --type O --title "Garden" --parent "$home")
add --type T --title "Clear the borders" --parent "$garden" --due "+7 days" --duration "3h" >/dev/null
add --type T --title "Buy bulbs" --parent "$garden" --duration "1h" >/dev/null
add --type T --title "Plant bulbs" --parent "$garden" --due "+14 days" --duration "2h" >/dev/null
add --type T --title "Fix the fence" --parent "$garden" --due "+21 days" --duration "5h" --priority 40 >/dev/null
add --type T --title "Paint the hall" --parent "$home" --due "+30 days" --duration "8h" >/dev/null
add --type T --title "Replace the landing light" --parent "$home" --duration "1h" >/dev/null

site=$(add --type O --title "Club website")
design=$(add --type O --title "Design" --parent "$site")
add --type T --title "Collect ideas from members" --parent "$design" --due "+3 days" --duration "2h" --priority 90 >/dev/null
add --type T --title "Sketch the home page" --parent "$design" --due "next Fri" --duration "3h" >/dev/null
add --type T --title "Pick colours" --parent "$design" --due "+8 days" --duration "1h" >/dev/null
build=$(add --type O --title "Build" --parent "$site")
add --type T --title "Register the domain" --parent "$build" --due "+2 days" --duration "30m" --priority 95 >/dev/null
add --type T --title "Set up hosting" --parent "$build" --due "+6 days" --duration "2h" >/dev/null
add --type T --title "Write the about page" --parent "$build" --due "+12 days" --duration "2h" >/dev/null
add --type T --title "Fixtures page" --parent "$build" --due "+15 days" --duration "4h" >/dev/null
add --type T --title "Contact form" --parent "$build" --due "+18 days" --duration "3h" >/dev/null
add --type T --title "Photo gallery" --parent "$build" --due "+25 days" --duration "5h" >/dev/null
add --type T --title "Test on phones" --parent "$site" --due "+28 days" --duration "2h" >/dev/null
add --type T --title "Launch" --parent "$site" --due "+30 days" --duration "1h" --priority 100 >/dev/null

add --type T --title "Weekly review" --due "next Fri" --duration "1h" --repeat "T=3@N=1" >/dev/null
add --type T --title "Pay the window cleaner" --due "+4 days" --duration "10m" >/dev/null
add --type T --title "Renew car insurance" --due "+9 days" --duration "30m" --priority 85 >/dev/null

add --type A --title "Dentist" --start "+2 days 10:00" --duration "45m" >/dev/null
add --type A --title "Club committee meeting" --start "next Fri 19:30" --duration "2h" >/dev/null
add --type A --title "Lunch with Sam" --start "+6 days 12:30" --duration "1h30m" >/dev/null

add --type J --title "Started planning the kitchen" --start "yesterday 21:00" >/dev/null

people=$(add --type D --title "Friends")
add --type P --title "Sam Carter" --parent "$people" >/dev/null
add --type P --title "Alex Moreno" --parent "$people" >/dev/null
add --type L --title "Riverside Sports Club" >/dev/null

# Runs a script of commands in a fresh copy of the samples, with the program under test in the path,
# and fails unless it leaves the files that it should: RunCommands.sh SCRIPT FOLDER SAMPLES PROGRAM
set -euo pipefail

rm -rf "$2"
cp -R "$3" "$2"
cd "$2"
PATH="$(dirname "$4"):$PATH" bash "$1"
grep -q '<title>Books</title>' b.html
cmp -s <(grep -c 'id="order-' report.html) <(grep -c '<order ' orders.xml)
[ "$(grep -c '<order ' open.xml)" = "$(grep -c 'state="open"' orders.xml)" ]
cmp report.html pages/orders.html
cmp pages/orders-small.html found/orders-small.out
diff -r found handed
[ "$(cat orders.csv)" = "2025-0001,2025-01-14,paid,18
2025-0002,2025-02-03,shipped,17
2025-0003,2025-02-20,cancelled,24" ]
[ "$(grep -c '<order ' open-orders.xml)" = "$(grep -c 'state="open"' orders.xml)" ]

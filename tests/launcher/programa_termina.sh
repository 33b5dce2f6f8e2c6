#!/bin/sh
# The start-up program run by itself under a real X server: it shows its notice, waits for the
# user, ends with status 0 once the notice is answered with Enter, and leaves no process behind.
programa="$1"
if ! command -v xvfb-run >/dev/null || ! command -v xdotool >/dev/null; then
  echo "xvfb-run and xdotool are needed for this test"; exit 1
fi
# Under a session bus, as on a desktop (see tests/e2e/CMakeLists.txt).
bus=""
command -v dbus-run-session >/dev/null && bus="dbus-run-session --"
exec $bus xvfb-run -a sh -c '
  programa="$1"
  QT_QPA_PLATFORM=xcb "$programa" &
  pid=$!
  ventana=""
  for i in $(seq 1 100); do
    ventana=$(xdotool search --name "^Aviso de Runtime KVR$" 2>/dev/null | head -n 1)
    [ -n "$ventana" ] && break
    sleep 0.1
  done
  if [ -z "$ventana" ]; then echo "the notice did not appear"; kill $pid; exit 1; fi
  cuantas=$(xdotool search --onlyvisible --name "^Aviso de Runtime KVR$" | wc -l)
  if [ "$cuantas" != 1 ]; then echo "expected one notice, saw $cuantas"; kill $pid; exit 1; fi
  sleep 0.5
  if ! kill -0 $pid 2>/dev/null; then echo "the program did not wait for the user"; exit 1; fi
  hijos=$(pgrep -P $pid | tr "\n" " ")
  xdotool windowfocus --sync "$ventana" key Return
  for i in $(seq 1 50); do kill -0 $pid 2>/dev/null || break; sleep 0.1; done
  if kill -0 $pid 2>/dev/null; then echo "the program is still running"; kill $pid; exit 1; fi
  wait $pid; estado=$?
  if [ $estado != 0 ]; then echo "exit status $estado"; exit 1; fi
  sleep 0.5
  for p in $pid $hijos; do
    if kill -0 $p 2>/dev/null; then echo "process $p was left behind"; exit 1; fi
  done
  if pgrep -x RTimeKVR >/dev/null; then echo "a process was left behind"; exit 1; fi
  echo ok
' sh "$programa"

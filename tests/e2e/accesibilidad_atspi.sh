#!/bin/sh
# The AT-SPI check of every window (accesibilidad_atspi.py) on its own X display and session
# bus, as a desktop has them.
#   accesibilidad_atspi.sh KVR DEMO DATOS
exec dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" /usr/bin/python3 \
  "$(dirname "$0")/accesibilidad_atspi.py" "$@"

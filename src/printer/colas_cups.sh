#!/bin/bash
# Starts the print system when it is not running and sets up the two PDF queues (cups-pdf) that
# the printer dialog's tests and the demo host print to:
#   PDF            portrait, the default destination
#   PDF_Apaisado   landscape by default
# Run it as often as wanted: a running scheduler is left alone and the queues are set again to
# the same values. As root, or through sudo.
set -euo pipefail
export LC_ALL=C

sudo=""
[ "$(id -u)" = 0 ] || sudo="sudo"

activo() { lpstat -r 2>/dev/null | grep -q "scheduler is running"; }

if ! activo; then
  echo "== Arrancando cupsd"
  $sudo mkdir -p /run/cups
  $sudo /usr/sbin/cupsd
  for _ in $(seq 1 50); do
    activo && break
    sleep 0.2
  done
  activo || { echo "cupsd no responde" >&2; exit 1; }
fi

ppd=lsb/usr/cups-pdf/CUPS-PDF_opt.ppd
# pdftocairo turns the jobs into PostScript for cups-pdf with the text still readable in the PDF
# that comes out (pdftotext gives it back); the default renderer leaves glyphs without meaning.
cola() {  # name, orientation-requested (3 portrait, 4 landscape)
  lpstat -p "$1" >/dev/null 2>&1 || $sudo lpadmin -p "$1" -E -v cups-pdf:/ -m "$ppd" 2>/dev/null
  $sudo lpadmin -p "$1" -o orientation-requested-default="$2" -o pdftops-renderer-default=pdftocairo
  $sudo cupsenable "$1"
  $sudo cupsaccept "$1"
}
cola PDF 3
cola PDF_Apaisado 4
$sudo lpadmin -d PDF

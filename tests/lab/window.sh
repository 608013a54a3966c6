#!/bin/bash
# window.sh PROGRAM [ARG...]: runs a test of windows in a lab, with Wine's null driver for a display.
set -euo pipefail
"$VNDISCOVER_LAB_SCRIPTS/test-net.sh"
"$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" host reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null
# The programs that ran so far have a desktop without a driver.
"$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" --stop host
exec "$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" host "$@"

#!/bin/bash
# window.sh PROGRAM [ARG...]: runs a test with windows in a lab, with Wine's null display driver.
set -euo pipefail
"$VNDISCOVER_LAB_SCRIPTS/test-net.sh"
"$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" host reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null
# Programs that ran before have a desktop without a driver.
"$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" --stop host
exec "$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" host "$@"

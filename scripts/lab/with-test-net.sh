#!/bin/bash
# with-test-net.sh CMD [ARG...]: runs CMD in a private lab with the network for the tests (test-net.sh).
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
# shellcheck disable=SC2016 # expanded inside
exec "$here/private-net.sh" bash -c '"$0"/test-net.sh && "$@"' "$here" "$@"

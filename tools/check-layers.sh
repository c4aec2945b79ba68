#!/usr/bin/env bash
# Fails when a plug-in folder includes one at or above it in the order of layers, or
# when the folders' include graph has a loop (see ARCHITECTURE.md, "Layers").
#   tools/check-layers.sh [--graph] [ROOT]    ROOT defaults to this repository
set -euo pipefail
exec python3 "$(dirname "$0")/check_layers.py" "$@"

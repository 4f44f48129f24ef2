#!/usr/bin/env bash
# Installs the Python package the way a user does (pip, Debian's setuptools,
# nothing from the network) into <target>, from a copy of python/ so that
# the build leaves nothing in the source tree; then imports it from there.
#   install_package.sh <python3> <source python/ folder> <work folder>
set -euo pipefail
PYTHON="$1"
SOURCE="$2"
WORK="$3"
rm -rf "$WORK"
mkdir -p "$WORK"
cp -r "$SOURCE" "$WORK/source"
"$PYTHON" -m pip install --quiet --no-index --no-build-isolation --disable-pip-version-check --target "$WORK/site" "$WORK/source"
cd "$WORK"
PYTHONPATH="$WORK/site" "$PYTHON" -c "import qrx_host, pathlib; assert pathlib.Path(qrx_host.__file__).is_relative_to('$WORK/site'); print('qrx_host installed in', '$WORK/site')"

#!/usr/bin/env bash
# Installs the Python package the way a user does (pip, Debian's setuptools,
# nothing from the network) into <target>, from a copy of python/; checks that
# the build left nothing beside the sources (no build/, no .egg-info: a user's
# `pip install ./python` keeps the tree clean); then imports it from there.
#   install_package.sh <python3> <source python/ folder> <work folder>
set -euo pipefail
PYTHON="$1"
SOURCE="$2"
WORK="$3"
rm -rf "$WORK"
mkdir -p "$WORK"
cp -r "$SOURCE" "$WORK/source"
"$PYTHON" -m pip install --quiet --no-index --no-build-isolation --disable-pip-version-check --target "$WORK/site" "$WORK/source"
left=$(diff <(cd "$SOURCE" && find . -not -name '*.pyc' -not -name __pycache__ | sort) \
            <(cd "$WORK/source" && find . -not -name '*.pyc' -not -name __pycache__ | sort) || true)
if [ -n "$left" ]; then
  echo "pip left files in the source folder:" >&2
  echo "$left" >&2
  exit 1
fi
cd "$WORK"
PYTHONPATH="$WORK/site" "$PYTHON" -c "import qrx_host, pathlib; assert pathlib.Path(qrx_host.__file__).is_relative_to('$WORK/site'); print('qrx_host installed in', '$WORK/site')"

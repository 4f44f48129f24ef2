# Shared by scripts/demo and scripts/test: install what is missing, configure
# and build incrementally into build/.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD="${QRX_BUILD_DIR:-$ROOT/build}"

QRX_PACKAGES=(cmake ninja-build g++ pkg-config qtbase5-dev qtbase5-dev-tools
  libjsoncpp-dev zlib1g-dev libbenchmark-dev flex bison python3
  qttools5-dev qttools5-dev-tools xvfb xauth x11-utils fonts-wqy-microhei
  clang libclang-rt-14-dev)
QRX_PACKAGES+=(tshark) # the dissector's test reads captures with it
QRX_PACKAGES+=(lintian dpkg-dev help2man) # the Debian package: its check, its Depends, the manual pages
QRX_PACKAGES+=(python3-pytest python3-setuptools python3-wheel python3-pip)
QRX_PACKAGES+=(python3-matplotlib python3-mypy) # python3 -m qrx_host.plot draws recorded sessions; mypy checks the annotations
QRX_PACKAGES+=(libmosquitto-dev libsystemd-dev mosquitto mosquitto-clients) # qrx-bridge and its tests

qrx_install_missing() {
  local missing=()
  for p in "${QRX_PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
  fi
}

qrx_build() {
  if [ ! -f "$BUILD/build.ninja" ]; then
    cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  fi
  cmake --build "$BUILD" -j "$(nproc)"
}

# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
#
# Sourced by the scripts at the top and by .ci/: what a Debian 12 machine needs before it can build.

BUILD_PACKAGES=(g++ cmake ninja-build ccache pkg-config gettext
  libicu-dev libssl-dev libsqlite3-dev libpugixml-dev libgumbo-dev libpango1.0-dev libcli11-dev)
TEST_PACKAGES=(libgtest-dev libgmock-dev nlohmann-json3-dev fonts-dejavu-core openssl man-db)
BENCHMARK_PACKAGES=(libbenchmark-dev libplist-dev)
CHECK_PACKAGES=(clang libclang-rt-14-dev clang-tidy clang-format doxygen git)

# install_missing PACKAGE...: installs what is not there, by name; says what it cannot do.
install_missing() {
  local missing=() package
  if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system. Make sure that you have what these Debian 12 packages hold: $*" >&2
    return 0
  fi
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing, and only root can install them (no sudo here):" >&2
      echo "  apt-get install --no-install-recommends ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null || {
    echo "apt-get could not install: ${missing[*]}" >&2
    return 1
  }
}

# quietly COMMAND...: shows the command's output only when it fails.
quietly() {
  local log
  log=$(mktemp)
  if "$@" >"$log" 2>&1; then
    rm -f "$log"
  else
    cat "$log"
    rm -f "$log"
    return 1
  fi
}

export CMAKE_CXX_COMPILER_LAUNCHER=ccache

# Sourced by ./demo, ./check and the other scripts: makes sure that what they call is there.

# require_packages NAME...: installs the Debian packages that are missing. Elsewhere it names them.
require_packages() {
  local missing=() name
  if ! command -v dpkg-query > /dev/null || ! command -v apt-get > /dev/null; then
    local command
    for command in cmake ninja g++; do
      command -v "$command" > /dev/null || missing+=("$command")
    done
    if [ ${#missing[@]} -gt 0 ]; then
      printf 'This is not Debian, and these commands are missing: %s\n' "${missing[*]}" >&2
      printf 'All that is needed, by its Debian names: %s\n' "$*" >&2
      exit 1
    fi
    return 0
  fi

  for name in "$@"; do
    dpkg-query --show --showformat='${db:Status-Status}\n' "$name" 2> /dev/null |
      grep -qx installed || missing+=("$name")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo > /dev/null; then
      printf 'Missing packages, to be installed by root: %s\n' "${missing[*]}" >&2
      exit 1
    fi
    as_root=(sudo)
  fi
  printf 'Installing %s\n' "${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" > /dev/null
}

# shellcheck disable=SC2034  # read by the scripts that source this file
build_packages=(cmake g++ libcli11-dev libfmt-dev liblapack-dev libnlopt-dev librsvg2-dev
  libtomlplusplus-dev libxtb-dev libxxhash-dev ninja-build nlohmann-json3-dev pkg-config pybind11-dev
  python3-dev python3-numpy)
# shellcheck disable=SC2034
test_packages=(clang gfortran libgtest-dev librapidcheck-dev locales mypy nodejs python3-ase
  python3-matplotlib python3-pytest python3-qcelemental python3-scipy python3-venv python3-wheel)

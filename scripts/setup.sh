# Sourced by ./run and ./test: installs what is missing, configures and builds. Does nothing twice.
# Every failure ends with one line on the error stream that says what to do.

BUILD_DIR="$ROOT/build/release"
LOG_DIR="$ROOT/build"

PROGRAM_PACKAGES=(g++ cmake ninja-build pkg-config qtbase5-dev libqt5svg5-dev libgl-dev libglu1-mesa-dev
                  libopengl-dev libegl-dev libgl1-mesa-dri libpng-dev libtiff-dev libfftw3-dev libcli11-dev nlohmann-json3-dev
                  libnanoflann-dev ffmpeg)
TEST_PACKAGES=(libgtest-dev libgmock-dev libbenchmark-dev xvfb xauth xdotool python3)

die()
{
  printf 'mirelo: %s\n' "$1" >&2
  exit 2
}

# missing_packages NAME...: those of the packages that are not installed.
missing_packages()
{
  local installed name
  # A package that dpkg has never heard of makes dpkg-query fail; the others are listed all the same.
  installed=$(dpkg-query --show --showformat '${db:Status-Abbrev}${binary:Package}\n' "$@" 2>/dev/null |
    sed -n 's/^ii *\([^:]*\).*/\1/p') || true
  for name in "$@"; do
    grep -qxF -- "$name" <<<"$installed" || printf '%s\n' "$name"
  done
}

# install_packages NAME...: through apt-get, as root or with sudo. MIRELO_SKIP_INSTALL=1 leaves the machine as it is.
install_packages()
{
  [ "${MIRELO_SKIP_INSTALL:-0}" = 1 ] && return
  if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    die "this is not a Debian machine; install the counterparts of these Debian packages, then set MIRELO_SKIP_INSTALL=1: $*"
  fi
  local missing as_root=()
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "packages are missing and there is no sudo; as root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  printf 'Installing %s ...\n' "${missing[*]}"
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Acquire::Retries=1 -o Acquire::http::Timeout=20)
  mkdir -p "$LOG_DIR"
  { "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; } \
    >"$LOG_DIR/install.log" 2>&1 ||
    die "cannot install packages (is there a network? see build/install.log); by hand: apt-get install ${missing[*]}"
}

# configure_build ON|OFF: whether tests and benchmarks are built; a build that has them keeps them.
configure_build()
{
  local cache="$BUILD_DIR/CMakeCache.txt"
  [ "$1" = OFF ] && [ -f "$BUILD_DIR/build.ninja" ] && return
  [ -f "$BUILD_DIR/build.ninja" ] && grep -q '^MIRELO_BUILD_TESTS:BOOL=ON$' "$cache" && return
  mkdir -p "$LOG_DIR"
  (cd "$ROOT" && cmake --preset release -D MIRELO_BUILD_TESTS="$1" -D MIRELO_BUILD_BENCH="$1") >"$LOG_DIR/configure.log" 2>&1 ||
    die "cannot configure the build: $(grep -m 1 -A 2 'CMake Error' "$LOG_DIR/configure.log" | tail -n 1 | xargs) (see build/configure.log)"
}

# build_targets [TARGET...]: all when none is named.
build_targets()
{
  cmake --build "$BUILD_DIR" ${1:+--target "$@"} || die "the build failed; the first error above says where"
}

# Shared by ./run and ./test: installs what is missing and knows how to start things here. Sourced, not run.

packages_build=(g++ cmake ninja-build pkg-config ccache qt6-base-dev qt6-webengine-dev qt6-webchannel-dev libsqlite3-dev mdbtools-dev
    libcpp-httplib-dev fonts-dejavu-core xvfb xauth)
packages_test=(libgtest-dev libgmock-dev)

jobs=$(nproc 2>/dev/null || echo 2)

# Installs the packages given that are missing. Without the means to, names them and ends: nothing is half done.
install_missing() {
    local missing=() package
    if ! command -v dpkg-query >/dev/null 2>&1; then
        echo "This is no Debian: make sure that you have what these packages hold: $*"
        return 0
    fi
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null 2>&1; then
            echo "Missing packages: ${missing[*]}" >&2
            echo "Install them (neither root nor sudo is at hand here), then run this again." >&2
            return 1
        fi
        as=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as[@]}" apt-get update -qq &&
        "${as[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
            >/dev/null || {
        echo "Could not install: ${missing[*]}" >&2
        return 1
    }
}

# build PRESET [TARGET...]: configures and builds quietly; what the compiler says is shown when it fails.
build() {
    local preset=$1 log
    shift
    log=$(mktemp)
    local targets=()
    [ $# -gt 0 ] && targets=(--target "$@")
    if cmake --preset "$preset" >"$log" 2>&1 &&
        cmake --build --preset "$preset" -j "$jobs" "${targets[@]}" >>"$log" 2>&1; then
        rm -f "$log"
    else
        tail -n 60 "$log" >&2
        rm -f "$log"
        return 1
    fi
}

# As root the engine cannot build its sandbox and would refuse to start. Only here, never in the program.
engine_environment() {
    if [ "$(id -u)" -eq 0 ]; then
        echo "Running as root: the browser engine runs without its sandbox. Use an ordinary account for real work."
        export QTWEBENGINE_DISABLE_SANDBOX=1
    fi
}

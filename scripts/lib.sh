# Shared by run, test and bench. Sourced, not run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '== %s\n' "$*" >&2; }

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs the packages of a list that are missing, and Node.js unless one is there.
install_missing() {
    local list=$1 package missing=()
    while read -r package; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed' || missing+=("$package")
    done < <(grep -v '^#' "$list")
    command -v npm >/dev/null 2>&1 || missing+=(nodejs npm)
    [ ${#missing[@]} -eq 0 ] && return 0
    say "Installing: ${missing[*]}"
    as_root apt-get update -q >&2
    # A service that a package brings is not started: only the programs are needed.
    as_root env DEBIAN_FRONTEND=noninteractive RUNLEVEL=1 \
        apt-get install -y -q --no-install-recommends "${missing[@]}" >&2
}

# Configures and builds a preset; further arguments are targets.
build_preset() {
    local preset=$1
    shift
    [ -f "$root/build/$preset/build.ninja" ] || (cd "$root" && cmake --preset "$preset" >&2)
    (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"} >&2)
}

# A display of our own when there is none; ended with the calling script.
ensure_display() {
    [ -n "${DISPLAY:-}" ] && return 0
    local file
    file=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$file" >/dev/null 2>&1 &
    xvfb_pid=$!
    for _ in $(seq 100); do
        [ -s "$file" ] && break
        sleep 0.1
    done
    [ -s "$file" ] || { say "Xvfb did not start"; return 1; }
    DISPLAY=":$(tr -d '\n' <"$file")"
    export DISPLAY
    rm -f "$file"
}

stop_display() {
    [ -n "${xvfb_pid:-}" ] && kill "$xvfb_pid" 2>/dev/null
    return 0
}

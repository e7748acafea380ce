# Sourced by the commands here: where the tree is, how they talk, how a preset is configured.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
me=script/$(basename "$0")

say() { printf '%s: %s\n' "$me" "$*"; }
fail() {
    printf '%s: %s\n' "$me" "$*" >&2
    exit 1
}

# step TEXT COMMAND...: runs the command and tells how long it took.
step() {
    local text=$1 begin=$EPOCHREALTIME
    shift
    say "$text ..."
    "$@" || return
    say "$(awk -v a="$begin" -v b="$EPOCHREALTIME" -v t="$text" 'BEGIN { printf "%s: %.1f s", t, b - a }')"
}

# configure PRESET: makes its build folder. Later changes of CMake's files are seen by the build
# itself, but for those of the presets.
configure() {
    local preset=$1 log=$top/build/$1-configure.log launcher=()
    [ ! "$top/build/$preset/build.ninja" -nt "$top/CMakePresets.json" ] || return 0
    command -v cmake >/dev/null && command -v ninja >/dev/null ||
        fail "cmake or ninja is missing: run script/setup"
    if command -v ccache >/dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    mkdir -p "$top/build"
    (cd "$top" && cmake --preset "$preset" "${launcher[@]}") >"$log" 2>&1 || {
        cat "$log" >&2
        fail "CMake could not configure preset '$preset' (above)"
    }
    touch "$top/build/$preset/build.ninja"
}

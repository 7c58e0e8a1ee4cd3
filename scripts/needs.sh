# What the scripts need, and how it gets here. To be sourced.
# shellcheck shell=bash disable=SC2034

# package=what it brings: a command, one of several commands, or a file when it begins with "/"
needs_to_build=(
    "cmake=cmake"
    "g++=g++:c++:clang++"
    "ninja-build=ninja:make"
)
needs_to_test=(
    "python3=python3"
    "libgtest-dev=/usr/include/gtest/gtest.h"
)
# tests and checks that want these are left out without them
needs_for_more=(
    "clang=clang++"
    "clang-tidy=clang-tidy"
    "csound=csound"
    "sox=sox"
    "midicsv=midicsv"
    "timidity=timidity"
    "timgm6mb-soundfont=/usr/share/sounds/sf2/TimGM6mb.sf2"
    "python3-mido=/usr/lib/python3/dist-packages/mido/__init__.py"
    "mandoc=mandoc"
    "lintian=lintian"
    "dpkg-dev=dpkg-shlibdeps"
    "libxml2-utils=xmllint"
    "jq=jq"
    "vim=vim"
    "emacs-nox=emacs"
    "nodejs=node"
    "npm=npm"
    "chromium=chromium"
    "chromium-driver=chromedriver"
    "python3-selenium=/usr/lib/python3/dist-packages/selenium/__init__.py"
    "python3-jsonschema=/usr/lib/python3/dist-packages/jsonschema/__init__.py"
)
# the modules of the npm package
needs_for_modules=(
    "clang=clang++"
    "lld=wasm-ld"
    "wasi-libc=/usr/lib/wasm32-wasi/libc.a"
    "libc++-dev-wasm32=/usr/lib/wasm32-wasi/libc++.a"
    "libclang-rt-dev-wasm32=/usr/share/doc/libclang-rt-dev-wasm32"
    "binaryen=wasm-opt"
)
# the bench target counts instructions with it, where perf can not
needs_for_bench=(
    "valgrind=valgrind"
)
# scripts/test --all
needs_for_all=(
    "g++=g++"
    "clang=clang++"
    "g++-aarch64-linux-gnu=aarch64-linux-gnu-g++"
    "qemu-user=qemu-aarch64"
    "libc++-14-dev=/usr/lib/llvm-14/include/c++/v1/version"
    "libc++abi-14-dev=/usr/lib/llvm-14/lib/libc++abi.a"
    "g++-mingw-w64-x86-64-posix=x86_64-w64-mingw32-g++-posix"
    "wine64=/usr/lib/wine/wine64"
    "musescore3=musescore3"
    "lilypond=lilypond"
)
# scripts/test --coverage
needs_for_coverage=(
    "gcovr=gcovr"
    "g++=g++"
)

# scripts/try-fresh
needs_for_fresh=(
    "debootstrap=debootstrap"
)

# is_here COMMAND[:COMMAND...] or FILE
is_here() {
    local -a commands
    local command
    if [[ $1 == /* ]]; then
        [[ -e $1 ]]
        return
    fi
    IFS=: read -ra commands <<<"$1"
    for command in "${commands[@]}"; do
        if type -P "$command" >/dev/null; then return 0; fi
    done
    return 1
}

# missing ENTRY...: prints the packages that have not brought what they should
missing() {
    local entry
    for entry; do
        is_here "${entry#*=}" || echo "${entry%%=*}"
    done
}

# apt ARGUMENT...: apt-get, as root
apt() {
    local -a as_root=(env)
    if [[ $(id -u) -ne 0 ]]; then
        as_root=(sudo)
        [[ -t 0 ]] || as_root+=(-n)
    fi
    "${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get -qq "$@" >/dev/null 2>&1
}

# get ENTRY...: installs what is missing; fails, and says in one line what, when it can't
get() {
    local -a packages
    local package
    mapfile -t packages < <(missing "$@")
    [[ ${#packages[@]} -gt 0 ]] || return 0
    if is_here apt-get && { [[ $(id -u) -eq 0 ]] || is_here sudo; }; then
        echo "== installing ${packages[*]}" >&2
        apt update || true
        apt install -y --no-install-recommends "${packages[@]}" ||
            for package in "${packages[@]}"; do apt install -y --no-install-recommends "$package" || true; done
        mapfile -t packages < <(missing "$@")
        [[ ${#packages[@]} -gt 0 ]] || return 0
    fi
    echo "missing, and can't be installed from here: ${packages[*]}" >&2
    if is_here apt-get; then echo "as root: apt-get update && apt-get install ${packages[*]}" >&2; fi
    return 1
}

# use_fast_tools: ninja and ccache where they are; a build folder that exists keeps what it has
use_fast_tools() {
    if [[ -z ${CMAKE_GENERATOR:-} ]] && is_here ninja; then
        export CMAKE_GENERATOR=Ninja
    fi
    if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] && is_here ccache; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
}

# quiet NAME COMMAND...: runs a command; shows what it prints only when it fails
quiet() {
    local name=$1 output
    shift
    echo "== $name" >&2
    if ! output=$("$@" 2>&1); then
        printf '%s\n== %s: failed\n' "$output" "$name" >&2
        return 1
    fi
}

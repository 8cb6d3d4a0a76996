#!/usr/bin/env bash
# Installs what a bare Debian 12 lacks and builds the libraries for the Windows target into .deps/.
# With --bench, --fuzz or --check, also what the benchmarks, the fuzzing or the search for faults alone need. Quick when
# there is nothing to do.
set -euo pipefail
. "$(dirname "$0")/common.sh"

packages=(
    g++-mingw-w64-x86-64-posix cmake ninja-build    # cross compiler and build tools
    wine64                                          # runs the programs built
    libboost1.81-tools-dev libz-mingw-w64-dev       # b2; zlib for the target
    googletest dpkg-dev patch xz-utils              # sources, and what unpacks them
    tmux python3 clang-format lldb-14               # console tests, format check, dump reader
    ca-certificates git
)
benchmarks=no
if [ "${1-}" = --bench ]; then
    benchmarks=yes
    packages+=(libspdlog-dev libfmt-dev)            # headers of the libraries that the benchmarks compare with
fi
[ "${1-}" != --fuzz ] || packages+=(clang libclang-rt-14-dev llvm)  # libFuzzer; function names in its reports
[ "${1-}" != --check ] || packages+=(cppcheck clang-tidy)

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else die "installing packages needs root: $*"
    fi
}

missing_packages() {
    local package
    for package in "${packages[@]}"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || printf '%s\n' "$package"
    done
}

install_packages() {
    local missing
    mapfile -t missing < <(missing_packages)
    [ "${#missing[@]}" -gt 0 ] || return 0
    step "updating the package lists" as_root apt-get update
    step "installing ${#missing[@]} packages (a few minutes)" \
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}

# Source entries are derived from the machine's own Debian entries and kept in
# .deps/, so the machine's package configuration stays as it is.
source_entries() {
    local codename file
    codename=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
    mkdir -p "$deps/apt/parts" "$deps/apt/lists/partial"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -f "$file" ] && sed -n "s/^deb \(.*[[:space:]]$codename\)/deb-src \1/p" "$file"
    done >"$deps/apt/sources.list" || true
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -f "$file" ] && grep -q "^Suites:.*$codename" "$file" || continue
        sed 's/^Types:.*/Types: deb-src/' "$file" >"$deps/apt/parts/$(basename "$file")"
    done
}

apt_sources() {
    apt-get -o Dir::Etc::sourcelist="$deps/apt/sources.list" -o Dir::Etc::sourceparts="$deps/apt/parts" \
        -o Dir::State::lists="$deps/apt/lists" -o APT::Sandbox::User=root "$@"
}

# fetch_source PACKAGE: Debian's source package with Debian's patches, in .deps/src/PACKAGE/tree.
fetch_source() {
    local package=$1 dir=$deps/src/$1
    rm -rf "$dir"
    mkdir -p "$dir"
    (cd "$dir" && apt_sources source --download-only "$package" && dpkg-source -x ./*.dsc tree)
}

prepare_sources() {
    source_entries
    step "updating the source package lists" apt_sources update
}

build_boost() {
    cd "$deps/src/boost1.81/tree"
    echo "using gcc : mingw : x86_64-w64-mingw32-g++-posix ;" >user-config.jam
    b2 -j"$(nproc)" -d0 --user-config=user-config.jam --prefix="$deps/prefix" --build-dir="$deps/build/boost" \
        toolset=gcc-mingw target-os=windows address-model=64 link=static runtime-link=static \
        threading=multi variant=release threadapi=win32 define=BOOST_SYSTEM_USE_UTF8 --layout=system \
        --with-program_options --with-filesystem --with-system --with-date_time install
}

cmake_install() {
    local source=$1 build=$2
    shift 2
    cmake -G Ninja -S "$source" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$deps/prefix" "$@"
    ninja -C "$build" install
}
build_tinyxml() {
    cp "$root/cmake/tinyxml.CMakeLists.txt" "$deps/src/tinyxml/tree/CMakeLists.txt"
    cmake_install "$deps/src/tinyxml/tree" "$deps/build/tinyxml"
}
build_googletest() { cmake_install /usr/src/googletest "$deps/build/googletest" -DBUILD_GMOCK=ON; }
# Debian's sources take the version from outside; with 0.0.0 they take the one of their own project() call.
build_googlebenchmark() {
    cmake_install "$deps/src/benchmark/tree" "$deps/build/googlebenchmark" \
        -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_GTEST_TESTS=OFF -DBENCHMARK_ENABLE_WERROR=OFF \
        -DGIT_VERSION=0.0.0
}

# once NAME FUNCTION: runs the function unless it has succeeded before.
once() {
    [ -f "$deps/done/$1" ] && return
    "$2"
    mkdir -p "$deps/done"
    touch "$deps/done/$1"
}

add_boost() {
    step "fetching the source of Boost" fetch_source boost1.81
    step "building Boost for Windows (about a minute)" build_boost
    rm -rf "$deps/src/boost1.81" "$deps/build/boost"
}
add_tinyxml() {
    step "fetching the source of TinyXML" fetch_source tinyxml
    step "building TinyXML for Windows" build_tinyxml
}
add_googletest() { step "building GoogleTest for Windows" build_googletest; }
add_googlebenchmark() {
    step "fetching the source of Google Benchmark" fetch_source benchmark
    step "building Google Benchmark for Windows" build_googlebenchmark
}
# The headers of these two alone, in a folder of their own: the host's other headers are not for this target.
add_peers() {
    mkdir -p "$deps/peers/include"
    ln -sfn /usr/include/spdlog /usr/include/fmt "$deps/peers/include/"
}

install_packages
from_source=(boost tinyxml)
[ "$benchmarks" = no ] || from_source+=(googlebenchmark)
for name in "${from_source[@]}"; do
    [ -f "$deps/done/$name" ] || { prepare_sources; break; }
done
for name in "${from_source[@]}" googletest; do
    once "$name" "add_$name"
done
[ "$benchmarks" = no ] || once peers add_peers
prepare_wine

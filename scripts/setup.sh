#!/usr/bin/env bash
# Installs the packages that are missing on Debian or Ubuntu, and builds the libraries for Windows in .deps/. With
# --bench, --fuzz, --check or --sign, also what only the benchmarks, the fuzzing, the static analysis or the signing need.
# Quick when there is nothing to do.
set -euo pipefail
. "$(dirname "$0")/common.sh"

packages=(
    g++-mingw-w64-x86-64-posix cmake ninja-build    # cross compiler and build tools
    wine64                                          # runs the programs built
    libz-mingw-w64-dev                              # zlib for the target; Boost's tools: see oldest_boost
    libtinyxml-dev                                  # tells which version the archive has; its source is built
    googletest dpkg-dev patch xz-utils              # sources, and what unpacks them
    tmux python3 python3-markdown clang-format lldb # console tests, HTML page, format check, dump reader
    ca-certificates git
)
oldest_boost=81  # Boost 1.81; the newest that is installed is taken, or the newest that the archive has
libraries=(boost tinyxml googletest)
case ${1-} in
    --bench)
        packages+=(libspdlog-dev libfmt-dev)        # headers of the libraries that the benchmarks compare with
        libraries+=(googlebenchmark peers)
        ;;
    --fuzz) packages+=(clang libclang-rt-dev llvm) ;;  # libFuzzer; function names in its reports
    --check) packages+=(cppcheck clang-tidy universal-ctags) ;;
    --sign) packages+=(osslsigncode) ;;
esac

system_name() { (. /etc/os-release && printf '%s' "${!1-}") 2>/dev/null; }
unsupported() {
    die "only Debian 12 and 13 (both tried) and Ubuntu 24.04 and later (not tried) are supported;" \
        "this machine has $(system_name PRETTY_NAME), $1"
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else die "installing packages needs root: $*"
    fi
}

# installed[NAME]: the version of an installed package. boost: the minor number of the newest installed Boost tools.
declare -A installed
look_at_packages() {
    local status name version
    installed=()
    while read -r status name version; do
        [ "$status" != installed ] || installed[$name]=$version
    done < <(dpkg-query -W -f='${db:Status-Status} ${Package} ${Version}\n' \
        'libboost1.*-tools-dev' "${packages[@]}" 2>/dev/null)
    boost=$(printf '%s\n' "${!installed[@]}" | newest_boost)
}

# The greatest minor number among the names of packages in the input that are Boost tools; nothing if all are too old.
newest_boost() {
    sed -n 's/^libboost1\.\([0-9]*\)-tools-dev.*/\1/p' | sort -n | awk -v oldest="$oldest_boost" '
        $1 >= oldest { newest = $1 } END { print newest }'
}

install_packages() {
    local missing=() name
    command -v apt-get >/dev/null || unsupported "which has no apt"
    look_at_packages
    for name in "${packages[@]}"; do
        [ -n "${installed[$name]-}" ] || missing+=("$name")
    done
    [ -z "$boost" ] || [ "${#missing[@]}" -gt 0 ] || return 0
    step "updating the package lists" as_root apt-get update
    if [ -z "$boost" ]; then
        boost=$(apt-cache search --names-only '^libboost1\.[0-9]+-tools-dev$' | newest_boost)
        [ -n "$boost" ] || unsupported "whose archive has no Boost 1.$oldest_boost or later"
        missing+=("libboost1.$boost-tools-dev")
    fi
    step "installing ${#missing[@]} packages and what they need" \
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
    look_at_packages
}

# The machine's own archives as source entries for a release. They are kept in .deps/, so that the machine's package
# configuration stays as it is.
source_entries() {
    local suite=$1 system keyring codename
    system=$(system_name ID)
    codename=$(system_name VERSION_CODENAME)
    keyring=/usr/share/keyrings/$system-archive-keyring.gpg
    [ ! -f "$keyring" ] && keyring= || keyring="[signed-by=$keyring] "
    # shellcheck disable=SC2016  # apt replaces these names
    apt-get indextargets --format '$(SITE) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        awk -v own="$codename" -v suite="$suite" -v keyring="$keyring" '
            $2 == own || $2 == own "-security" || suite == own && $2 == own "-updates" {
                sub("^" own, suite, $2)
                print "deb-src " keyring $0
            }'
}

# fetch_source LIBRARY PACKAGE [RELEASE]: the source package with the distribution's patches, of this machine's release
# or another one, in .deps/src/LIBRARY/tree; its version in .deps/src/LIBRARY.version. apt gives up root's rights where
# it can.
fetch_source() {
    local dir=$deps/src/$1 package=$2 suite=${3:-$(system_name VERSION_CODENAME)} apt=$deps/apt/${3:-own} options
    options=(-o Dir::Etc::sourcelist="$apt/sources.list" -o Dir::Etc::sourceparts="$apt/parts"
        -o Dir::State::lists="$apt/lists")
    rm -rf "$dir" "$dir.version"
    mkdir -p "$dir" "$apt/lists/partial" "$apt/parts"
    source_entries "$suite" >"$apt/sources.list"
    if [ ! -s "$apt/sources.list" ]; then  # the machine has no package lists yet
        as_root apt-get update
        source_entries "$suite" >"$apt/sources.list"
    fi
    [ "$(id -u)" != 0 ] || chown _apt "$dir"
    apt-get "${options[@]}" update && cd "$dir" &&
        apt-get "${options[@]}" source --download-only "$package" && chown "$(id -u)" . ./* &&
        dpkg-source -x ./*.dsc tree && sed -n 's/^Version: //p' ./*.dsc >"$dir.version"
}

# What the program itself is built with, for the libraries that are linked into it.
hardening=$(tr '\n' ' ' <"$root/cmake/hardening.txt")

# b2 gets relative paths only, so the libraries do not depend on where they are built.
build_boost() {
    local only=(--with-program_options --with-filesystem --with-date_time)
    cd "$deps/src/boost/tree"
    [ ! -d libs/system/build ] || only+=(--with-system)
    echo "using gcc : mingw : x86_64-w64-mingw32-g++-posix ;" >user-config.jam
    b2 -j"$(nproc)" -d1 --user-config=user-config.jam --prefix="$deps/boost" --build-dir="$deps/build/boost" \
        toolset=gcc-mingw target-os=windows address-model=64 link=static runtime-link=static \
        threading=multi variant=release threadapi=win32 define=BOOST_SYSTEM_USE_UTF8 \
        cxxflags="$hardening" --layout=system "${only[@]}" install
}
cmake_install() {
    local library=$1 source=$2
    shift 2
    cmake -G Ninja -S "$source" -B "$deps/build/$library" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$deps/$library" "$@"
    ninja -C "$deps/build/$library" install
}
build_tinyxml() {
    cp "$root/cmake/tinyxml.CMakeLists.txt" "$deps/src/tinyxml/tree/CMakeLists.txt"
    cmake_install tinyxml "$deps/src/tinyxml/tree" -DCMAKE_CXX_FLAGS="$hardening"
}
build_googletest() { cmake_install googletest /usr/src/googletest -DBUILD_GMOCK=ON; }
# Debian's sources take the version from outside; with 0.0.0 they take the one of their own project() call.
build_googlebenchmark() {
    cmake_install googlebenchmark "$deps/src/googlebenchmark/tree" \
        -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_GTEST_TESTS=OFF -DBENCHMARK_ENABLE_WERROR=OFF \
        -DGIT_VERSION=0.0.0
}
# Only the headers of these two, in a folder of their own: the host's other headers are not for this target.
build_peers() {
    mkdir -p "$deps/peers/include"
    ln -sfn /usr/include/spdlog /usr/include/fmt "$deps/peers/include/"
}

# What Debian 13 lists of TinyXML is not always there; the source of Debian 12 is the same with the same patches.
fetch_tinyxml() { fetch_source tinyxml tinyxml || fetch_source tinyxml tinyxml bookworm; }

add_boost() {
    step "fetching the source of Boost 1.$boost" fetch_source boost "boost1.$boost"
    step "building Boost 1.$boost for Windows (about a minute)" build_boost
    rm -rf "$deps/src/boost" "$deps/build/boost"
}
add_tinyxml() {
    step "fetching the source of TinyXML" fetch_tinyxml
    step "building TinyXML for Windows" build_tinyxml
}
add_googletest() { step "building GoogleTest for Windows" build_googletest; }
add_googlebenchmark() {
    step "fetching the source of Google Benchmark" fetch_source googlebenchmark benchmark
    step "building Google Benchmark for Windows" build_googlebenchmark
}
add_peers() { build_peers; }

# What a library is built from, as far as it can change on this machine: compiler, packages, options.
ingredients() {
    printf '%s %s\n' compiler "${installed[g++-mingw-w64-x86-64-posix]}"
    case $1 in
        boost) printf 'boost %s\n%s\n' "${installed[libboost1.$boost-tools-dev]}" "$hardening" ;;
        googletest) printf 'googletest %s\n' "${installed[googletest]}" ;;
        tinyxml)
            printf 'tinyxml %s\n%s\n' "${installed[libtinyxml-dev]}" "$hardening"
            cat "$root/cmake/tinyxml.CMakeLists.txt"
            ;;
    esac
    declare -f "build_$1" cmake_install
}

# Builds a library unless .deps/ has it, built from just these ingredients.
provide() {
    local wanted
    wanted=$(ingredients "$1")
    [ "$wanted" != "$(cat "$deps/$1/built-from" 2>/dev/null)" ] || return 0
    rm -rf "${deps:?}/$1" "$deps/build/$1"
    "add_$1"
    printf '%s\n' "$wanted" >"$deps/$1/built-from"
}

install_packages
for library in "${libraries[@]}"; do
    provide "$library"
done

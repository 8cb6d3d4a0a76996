#!/usr/bin/env bash
# Checks the sources: all of them with cppcheck; the product and the demonstration library with check-structure.py and
# clang-tidy; given files, with clang-tidy only. Fails and prints what they report. .clang-tidy, .cppcheck-suppressions
# and check-structure.py say what is checked.
# Builds and installs nothing: run scripts/setup.sh --check before.
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$root"
export database=$root/build/check

look_with_cppcheck() {
    local sources
    mapfile -t sources < <(git ls-files '*.cpp')
    say "cppcheck in ${#sources[@]} sources ..."
    cppcheck -q -j"$(nproc)" --error-exitcode=1 --inline-suppr --suppressions-list=.cppcheck-suppressions \
        --enable=warning,style,performance,portability,information --language=c++ --std=c++20 --platform=win64 \
        --library=windows --library=boost --library=googletest \
        -D_WIN32 -D_WIN64 -D__GNUC__=12 -D__x86_64__ -DUNICODE -DNOMINMAX -DWIN32_LEAN_AND_MEAN -I. "${sources[@]}"
}

# The commands of the test build, without what clang does not know: an option and an attribute. The target's headers are
# those of the cross compiler; only the compiler's own must be clang's.
prepare_clang_tidy() {
    [ -f build/test/build.ninja ] || step "configuring the test build" cmake --preset test
    ninja -C build/test build.ninja >/dev/null
    mkdir -p "$database"
    ninja -C build/test -t compdb | sed 's/ -fno-tree-loop-distribute-patterns//' >"$database/compile_commands.json"
    {
        printf '%s\n' -p "$database" --quiet --extra-arg-before=--target=x86_64-w64-mingw32 \
            --extra-arg=-Wno-unknown-attributes
        x86_64-w64-mingw32-g++-posix -x c++ -v -E /dev/null 2>&1 >/dev/null |
            sed -n '/^#include </,/^End/s/^ /--extra-arg=-isystem/p' |
            grep -v '/gcc/[^/]*/[^/]*/include\(-fixed\)\?$'
    } >"$database/options"
}

# Checks one source. Prints its name, to show the progress, and then the findings.
look_into() {
    local found options status=0
    mapfile -t options <"$database/options"
    found=$(clang-tidy "${options[@]}" "$1" 2>&1) || status=$?
    printf '   %s\n' "$1"
    [ "$status" = 0 ] || { sed '/warnings\( and [0-9]* errors\?\)\? generated\.$/d' <<<"$found"; return 1; }
}

look_with_clang_tidy() {
    say "clang-tidy in $# sources ..."
    prepare_clang_tidy
    export -f look_into
    printf '%s\0' "$@" | xargs -0 -n1 -P"$(nproc)" bash -c 'look_into "$1"' bash ||
        die "clang-tidy reported problems: see above"
}

if [ "$#" = 0 ]; then
    scripts/check-structure.py || die "names or includes are not where they belong: see above"
    look_with_cppcheck || die "cppcheck reported problems: see above"
    mapfile -t product < <(git ls-files '*.cpp' ':!tests' ':!benchmarks')
    set -- "${product[@]}"
fi
look_with_clang_tidy "$@"

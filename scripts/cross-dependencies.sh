#!/usr/bin/env bash
# cross-dependencies.sh TOOLCHAIN FOLDER: prepares for another machine what the tests need and its distribution does not
# have ready: GoogleTest, from the sources in Debian's package, and {fmt} as headers alone. FOLDER is to be named in
# CMAKE_PREFIX_PATH.
set -euo pipefail
toolchain=$(realpath -- "$1")
mkdir -p "$2"
folder=$(realpath -- "$2")

"$(dirname -- "$0")/install-packages.sh" cmake ninja-build googletest libfmt-dev

if [ ! -e "$folder/lib/cmake/GTest" ]; then
    cmake -S /usr/src/googletest -B "$folder/build" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$folder" -DCMAKE_INSTALL_LIBDIR=lib -DBUILD_GMOCK=OFF >/dev/null
    cmake --build "$folder/build" --target install -- --quiet >/dev/null
fi

# The headers alone, since those of this machine's other libraries must not be found with them.
mkdir -p "$folder/include" "$folder/lib/cmake/fmt"
ln -sfn /usr/include/fmt "$folder/include/fmt"
cat >"$folder/lib/cmake/fmt/fmt-config.cmake" <<END
add_library(fmt::fmt INTERFACE IMPORTED)
target_include_directories(fmt::fmt INTERFACE $folder/include)
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
END

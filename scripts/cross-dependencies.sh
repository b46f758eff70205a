#!/usr/bin/env bash
# cross-dependencies.sh TOOLCHAIN FOLDER: prepares for another machine what the writers and the tests need and its
# distribution does not have ready: GoogleTest, from the sources in Debian's package, and {fmt}, nlohmann-json and utf8cpp
# as headers alone. For Windows also what the program needs: CLI11 as headers, and oneTBB from Debian's source package.
# FOLDER is to be named in CMAKE_PREFIX_PATH.
set -euo pipefail
toolchain=$(realpath -- "$1")
mkdir -p "$2"
folder=$(realpath -- "$2")
install_packages=$(realpath -- "$(dirname -- "$0")/install-packages.sh")

"$install_packages" cmake ninja-build googletest libfmt-dev nlohmann-json3-dev libutfcpp-dev

# cross_build SOURCE BUILD OPTION...: builds a library and installs it into the folder.
cross_build() {
    cmake -S "$1" -B "$2" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$folder" -DCMAKE_INSTALL_LIBDIR=lib "${@:3}" >/dev/null
    cmake --build "$2" --target install -- --quiet >/dev/null
}

# header_library NAME TARGET FOLDER [DEFINITION]: has CMake find a library of headers alone, those of this machine in
# /usr/include/FOLDER. Those of its other libraries must not be found with them.
header_library() {
    mkdir -p "$folder/include" "$folder/lib/cmake/$1"
    ln -sfn "/usr/include/$3" "$folder/include/$3"
    cat >"$folder/lib/cmake/$1/$1Config.cmake" <<END
add_library($2 INTERFACE IMPORTED)
target_include_directories($2 INTERFACE $folder/include)
target_compile_definitions($2 INTERFACE ${4-})
END
}

# debian_source PACKAGE: unpacks the source package in the current folder. Its list of packages is this machine's, read
# for sources and kept here.
debian_source() {
    mkdir -p lists/partial
    sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >src.sources
    local options=(-qq -o Dir::Etc::SourceParts=/dev/null -o "Dir::Etc::SourceList=$PWD/src.sources"
        -o "Dir::State::Lists=$PWD/lists" -o APT::Sandbox::User="$(id -un)")
    apt-get "${options[@]}" update
    apt-get "${options[@]}" source "$1" >/dev/null
}

if [ ! -e "$folder/lib/cmake/GTest" ]; then
    cross_build /usr/src/googletest "$folder/build" -DBUILD_GMOCK=OFF
fi
header_library fmt fmt::fmt fmt FMT_HEADER_ONLY
header_library nlohmann_json nlohmann_json::nlohmann_json nlohmann
header_library utf8cpp utf8cpp utf8cpp

grep -q 'SYSTEM_NAME Windows' "$toolchain" || exit 0

"$install_packages" libcli11-dev dpkg-dev
header_library CLI11 CLI11::CLI11 CLI

if [ ! -e "$folder/lib/cmake/TBB" ]; then
    mkdir -p "$folder/source"
    cd "$folder/source"
    debian_source onetbb
    cross_build "$folder"/source/onetbb-*/ "$folder/build-tbb" -DBUILD_SHARED_LIBS=OFF -DTBB_TEST=OFF \
        -DTBB_STRICT=OFF -DTBBMALLOC_BUILD=OFF
fi

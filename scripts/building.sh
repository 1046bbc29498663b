# shellcheck shell=bash

jobLimit() {
    echo "${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}"
}

# build PRESET: configures build/PRESET and builds everything in it.
build() {
    cmake --preset "$1" && cmake --build --preset "$1" --parallel "$(jobLimit)"
}

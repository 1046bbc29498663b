# Warnings, sanitizers and the compiler cache, the same for every target of our own.

option(TIDEBROOK_WERROR "Take warnings for errors" OFF)
set(TIDEBROOK_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

if(TIDEBROOK_SANITIZE)
    add_compile_options(-fsanitize=${TIDEBROOK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${TIDEBROOK_SANITIZE})
endif()

add_library(tidebrook_build_options INTERFACE)
target_compile_options(tidebrook_build_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${TIDEBROOK_WERROR}>:-Werror>)
target_compile_definitions(tidebrook_build_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER
    TIDEBROOK_VERSION="${PROJECT_VERSION}")

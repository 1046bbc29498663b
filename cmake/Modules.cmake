# A module is a folder and a library. What it links is all that it can include: others see a module
# only through an include directory that holds links to the headers of that module and nothing else,
# so that a wrong dependency fails at the #include already.

# A module in a folder of another, such as kit/files, is the target tidebrook_kit_files.
function(tidebrook_module module)
    cmake_parse_arguments(MODULE "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    string(REPLACE "/" "_" name ${module})
    set(gate ${CMAKE_BINARY_DIR}/modules/${name})
    file(MAKE_DIRECTORY ${gate}/${module})
    file(GLOB headers CONFIGURE_DEPENDS *.h)
    foreach(header ${headers})
        cmake_path(GET header FILENAME file)
        file(CREATE_LINK ${header} ${gate}/${module}/${file} SYMBOLIC)
    endforeach()

    add_library(tidebrook_${name} STATIC ${MODULE_SOURCES})
    target_include_directories(tidebrook_${name} PUBLIC ${gate})
    target_link_libraries(tidebrook_${name}
        PUBLIC ${MODULE_LINKS}
        PRIVATE ${MODULE_PRIVATE_LINKS} tidebrook_build_options)
endfunction()

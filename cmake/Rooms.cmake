# A room is a folder and a library. What it links is all that it can include: each room is seen
# by others only through an include directory that holds a link to that room and nothing else, so
# that a wrong arrow fails at the #include already.

# A room within a folder of another, such as ui/kit, is the target tidebrook_ui_kit.
function(tidebrook_room room)
    cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    string(REPLACE "/" "_" name ${room})
    set(gate ${CMAKE_BINARY_DIR}/rooms/${name})
    cmake_path(GET room PARENT_PATH folder)
    file(MAKE_DIRECTORY ${gate}/${folder})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${room} ${gate}/${room} SYMBOLIC)

    add_library(tidebrook_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(tidebrook_${name} PUBLIC ${gate})
    target_link_libraries(tidebrook_${name}
        PUBLIC ${ROOM_LINKS}
        PRIVATE ${ROOM_PRIVATE_LINKS} tidebrook_build_options)
endfunction()

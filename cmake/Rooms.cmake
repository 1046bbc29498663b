# A room is a folder and a library. What it links is all that it can include: each room is seen
# by others only through an include directory that holds a link to that room and nothing else, so
# that a wrong arrow fails at the #include already.

function(tidebrook_room room)
    cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    set(gate ${CMAKE_BINARY_DIR}/rooms/${room})
    file(MAKE_DIRECTORY ${gate})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${room} ${gate}/${room} SYMBOLIC)

    add_library(tidebrook_${room} STATIC ${ROOM_SOURCES})
    target_include_directories(tidebrook_${room} PUBLIC ${gate})
    target_link_libraries(tidebrook_${room}
        PUBLIC ${ROOM_LINKS}
        PRIVATE ${ROOM_PRIVATE_LINKS} tidebrook_build_options)
endfunction()

# A room is a folder of sources. A new file needs no line here: it is found by its place.
function(kestrune_room name)
    set(found "")
    foreach(folder ${ARGN})
        file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${folder}/*.cpp")
        list(APPEND found ${sources})
    endforeach()
    set(${name}_SOURCES ${found} PARENT_SCOPE)
endfunction()

function(kestrune_library name)
    add_library(${name} ${ARGN})
    target_compile_features(${name} PUBLIC cxx_std_20)
endfunction()

# One family of implementations of the interfaces in platform/.
function(kestrune_adapter family)
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/platform/${family}/*.cpp")
    kestrune_library(kestrune_${family} STATIC ${sources})
    target_link_libraries(kestrune_${family} PUBLIC kestrune_logic)
endfunction()

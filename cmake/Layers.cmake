# The system's layers. The top-level CMakeLists.txt names them once, lowest first, in
# LANYX_LAYER_ORDER; each folder then declares its layer with lanyx_layer(). A layer may use only
# layers below it: naming one above (or one not in the order) stops the configuration.

# lanyx_layer(<name> [SOURCES files...] [USES layers...] [LIBRARIES other link items...])
# makes the static library lanyx_<name>; a layer without sources yet is an interface library,
# so the layers above can name it before its first screen exists.
function(lanyx_layer name)
    cmake_parse_arguments(LAYER "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
    list(FIND LANYX_LAYER_ORDER ${name} own)
    if(own EQUAL -1)
        message(FATAL_ERROR "layer '${name}' is not in LANYX_LAYER_ORDER")
    endif()
    set(used_targets "")
    foreach(used IN LISTS LAYER_USES)
        list(FIND LANYX_LAYER_ORDER ${used} index)
        if(index EQUAL -1 OR NOT index LESS own)
            message(FATAL_ERROR "layer '${name}' may not use '${used}': it does not stand below it")
        endif()
        list(APPEND used_targets lanyx_${used})
    endforeach()

    set(target lanyx_${name})
    if(LAYER_SOURCES)
        add_library(${target} STATIC ${LAYER_SOURCES})
        target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR})
        target_link_libraries(${target} PUBLIC ${used_targets} ${LAYER_LIBRARIES})
        lanyx_warnings(${target})
    else()
        add_library(${target} INTERFACE)
        target_include_directories(${target} INTERFACE ${CMAKE_SOURCE_DIR})
        target_link_libraries(${target} INTERFACE ${used_targets} ${LAYER_LIBRARIES})
    endif()
endfunction()

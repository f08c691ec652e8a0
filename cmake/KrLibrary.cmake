# krodict_install_headers(HEADER...)
# Installs the public headers; private headers end in _p.h and stay in the source tree. The
# written ones (not the generated export headers) are what the API reference is made from.
function(krodict_install_headers)
    set(public)
    foreach(h ${ARGN})
        if(NOT h MATCHES "_p\\.h$")
            list(APPEND public ${h})
        endif()
    endforeach()
    install(FILES ${public} DESTINATION ${KRODICT_INSTALL_INCLUDEDIR})
    list(TRANSFORM public PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ REGEX "^[^/]")
    list(FILTER public EXCLUDE REGEX "^${CMAKE_BINARY_DIR}/")
    set_property(GLOBAL APPEND PROPERTY KRODICT_INSTALLED_HEADERS ${public})
endfunction()

# krodict_add_library(NAME SOURCES ... HEADERS ... LINK_PUBLIC ... LINK_PRIVATE ...)
# One shared library with its krOdict:: alias, export header, warnings, install rules.
# Sources and headers are listed explicitly, relative to the current directory.
function(krodict_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK_PUBLIC;LINK_PRIVATE" ${ARGN})
    add_library(${name} SHARED ${ARG_SOURCES} ${ARG_HEADERS})
    add_library(krOdict::${name} ALIAS ${name})
    string(TOLOWER ${name} lower)
    generate_export_header(${name} EXPORT_FILE_NAME ${CMAKE_CURRENT_BINARY_DIR}/${lower}_export.h)
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}>
        $<INSTALL_INTERFACE:${KRODICT_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${name} PUBLIC ${ARG_LINK_PUBLIC} PRIVATE ${ARG_LINK_PRIVATE})
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    krodict_set_warnings(${name})
    install(TARGETS ${name} EXPORT krOdictTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${KRODICT_INSTALL_INCLUDEDIR})
    krodict_install_headers(${ARG_HEADERS} ${CMAKE_CURRENT_BINARY_DIR}/${lower}_export.h)
endfunction()

# krodict_add_layer(NAME SOURCES ... HEADERS ... LINK ...)
# One layer of the dictionary library: an object library (position-independent, compiled as
# part of the shared krOdict) whose include directory is its own source directory. A layer sees
# the layers and libraries it links, and nothing else, so an include against the direction fails.
function(krodict_add_layer name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK" ${ARGN})
    add_library(${name} OBJECT ${ARG_SOURCES} ${ARG_HEADERS})
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_LINK})
    # The objects end up in krOdict: export its symbols, as its own sources would.
    target_compile_definitions(${name} PRIVATE krOdict_EXPORTS)
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    krodict_set_warnings(${name})
endfunction()

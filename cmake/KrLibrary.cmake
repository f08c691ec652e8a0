# krodict_add_library(NAME SOURCES ... HEADERS ... LINK_PUBLIC ... LINK_PRIVATE ...)
# One shared library with its krOdict:: alias, export header, warnings, install rules.
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
    # Public headers only: private headers end in _p.h and stay in the source tree.
    set(public)
    foreach(h ${ARG_HEADERS})
        if(NOT h MATCHES "_p\\.h$")
            list(APPEND public ${h})
        endif()
    endforeach()
    install(FILES ${public} ${CMAKE_CURRENT_BINARY_DIR}/${lower}_export.h
        DESTINATION ${KRODICT_INSTALL_INCLUDEDIR})
endfunction()

# krodict_glob_library(NAME DIRS dir... LINK_PUBLIC ... LINK_PRIVATE ...)
# The sources and headers of the listed directories (relative to the current one) make the library.
function(krodict_glob_library name)
    cmake_parse_arguments(ARG "" "" "DIRS;LINK_PUBLIC;LINK_PRIVATE" ${ARGN})
    set(srcs)
    set(hdrs)
    foreach(dir ${ARG_DIRS})
        file(GLOB s CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
        file(GLOB h CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.h)
        list(APPEND srcs ${s})
        list(APPEND hdrs ${h})
    endforeach()
    krodict_add_library(${name} SOURCES ${srcs} HEADERS ${hdrs}
        LINK_PUBLIC ${ARG_LINK_PUBLIC} LINK_PRIVATE ${ARG_LINK_PRIVATE})
    foreach(dir ${ARG_DIRS})
        target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/${dir}>)
    endforeach()
endfunction()

# Builds each probe (NAME|EXPECT|HEADER) in BUILD_DIR and checks the outcome: FAIL probes must
# stop with the compiler's "header not found", OK probes must build. Then checks that no source
# of the dictionary layers reaches around the include paths with a relative path, and that the
# shared LIBRARY exports nothing of a private class.
set(failures)
foreach(probe ${PROBES})
    string(REPLACE "|" ";" fields "${probe}")
    list(GET fields 0 name)
    list(GET fields 1 expect)
    list(GET fields 2 header)
    execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --target ${name}
        RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    set(log "${out}${err}")
    string(REGEX MATCH "[^\n]*(${header}: No such file or directory|'${header}' file not found)[^\n]*" error "${log}")
    if(expect STREQUAL "FAIL")
        if(rc EQUAL 0)
            list(APPEND failures "${name}: compiled, but ${header} must not be reachable")
        elseif(NOT error)
            list(APPEND failures "${name}: failed for another reason than the include:\n${log}")
        else()
            message(STATUS "${name}: refused as expected: ${error}")
        endif()
    elseif(NOT rc EQUAL 0)
        list(APPEND failures "${name}: must compile:\n${log}")
    else()
        message(STATUS "${name}: compiles as expected")
    endif()
endforeach()

# A quoted include is looked up beside the including file first, so "xml/COdictXmlFile.h" from
# odict/ would slip past the include paths: the layers include by file name only.
file(GLOB_RECURSE sources ${SOURCE_DIR}/odict/*.h ${SOURCE_DIR}/odict/*.cpp)
foreach(source ${sources})
    file(STRINGS ${source} lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"[^\"]*/")
    foreach(line ${lines})
        list(APPEND failures "${source}: include with a path: ${line}")
    endforeach()
endforeach()

# Private classes stay inside the library: none of their symbols is exported.
execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY} RESULT_VARIABLE rc OUTPUT_VARIABLE symbols)
if(NOT rc EQUAL 0)
    list(APPEND failures "cannot list the symbols of ${LIBRARY}")
endif()
string(REPLACE "\n" ";" symbols "${symbols}")
foreach(symbol ${symbols})
    if(symbol MATCHES "Private::|for [A-Za-z]*Private$")
        list(APPEND failures "private class exported: ${symbol}")
    endif()
endforeach()

if(failures)
    string(REPLACE ";" "\n" text "${failures}")
    message(FATAL_ERROR "${text}")
endif()

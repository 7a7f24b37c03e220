# Fails when a core folder includes a header of a folder it does not build on
# (model/ includes only model/; files/ the model and itself; the link, except
# the Qt connection, the model and itself) or a Qt header. Run as
#   cmake -DSOURCE_DIR=<source folder> -P check_layering.cmake
cmake_minimum_required(VERSION 3.25)

function(check_folder folder allowed)
    file(GLOB sources ${SOURCE_DIR}/${folder}/*.h ${SOURCE_DIR}/${folder}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "/link/connection\\.(h|cpp)$")
    foreach(source IN LISTS sources)
        file(RELATIVE_PATH name ${SOURCE_DIR} ${source})
        file(STRINGS ${source} qt REGEX "^#include <Q")
        if(qt)
            message(SEND_ERROR "${name} includes Qt (${qt}); the core is plain C++")
        endif()
        file(STRINGS ${source} includes REGEX "^#include \"")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" header "${line}")
            string(REGEX REPLACE "/.*" "" top "${header}")
            if(NOT top IN_LIST allowed)
                string(REPLACE ";" "/, " folders "${allowed}/")
                message(SEND_ERROR "${name} includes ${header}; ${folder}/ includes only ${folders}")
            endif()
        endforeach()
    endforeach()
endfunction()

check_folder(model "model")
check_folder(files "model;files")
check_folder(link "model;link")

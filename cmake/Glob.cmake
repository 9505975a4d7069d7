# Every folder lists its sources by glob, so adding a class is adding its two files.
function(glimrow_sources out)
    set(result)
    foreach(dir ${ARGN})
        file(GLOB found CONFIGURE_DEPENDS ${dir}/*.cpp)
        list(APPEND result ${found})
    endforeach()
    set(${out} ${result} PARENT_SCOPE)
endfunction()

# A static library from the given folders; an empty folder still yields a target so
# that everything links while a kit is being built up.
function(glimrow_library name)
    glimrow_sources(sources ${ARGN})
    if(NOT sources)
        set(empty ${CMAKE_CURRENT_BINARY_DIR}/${name}_empty.cpp)
        file(WRITE ${empty} "// ${name} has no sources yet\n")
        set(sources ${empty})
    endif()
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PRIVATE glimrow_warnings)
endfunction()

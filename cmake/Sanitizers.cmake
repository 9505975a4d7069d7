if(GLIMROW_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(GLIMROW_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(NOT GLIMROW_SANITIZE STREQUAL "")
    message(FATAL_ERROR "GLIMROW_SANITIZE must be empty, address or thread")
endif()

# A fuzzing build instruments everything for coverage; only the fuzz targets link the
# fuzzer's own main().
if(GLIMROW_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

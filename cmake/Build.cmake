# How everything here is compiled. Each target links zel_build.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
find_program(LLD ld.lld)
if(LLD)
    add_link_options(-fuse-ld=lld)
endif()

add_library(zel_build INTERFACE)
# Warnings of the compiler that everything is built with are errors; another one's stop nothing. No contraction: the same bits on every machine.
target_compile_options(zel_build INTERFACE -Wall -Wextra $<$<CXX_COMPILER_ID:GNU>:-Werror> -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    target_compile_options(zel_build INTERFACE -Wno-tautological-undefined-compare -Wno-undefined-bool-conversion)
endif()
if(ZEL_SANITIZE STREQUAL "THREAD")
    set(ZEL_SANITIZERS -fsanitize=thread -Wno-maybe-uninitialized)    # which its instructions hide from the compiler
elseif(ZEL_SANITIZE)
    # null and vptr would refuse the queries on a null `this` that the interface allows.
    set(ZEL_SANITIZERS -fsanitize=address,undefined -fno-sanitize=null,vptr -fno-sanitize-recover=all)
endif()
if(ZEL_SANITIZE)
    target_compile_options(zel_build INTERFACE ${ZEL_SANITIZERS} -fno-omit-frame-pointer)
    target_link_options(zel_build INTERFACE ${ZEL_SANITIZERS})
endif()
if(ZEL_FUZZ)
    target_compile_options(zel_build INTERFACE -fsanitize=fuzzer-no-link)    # so that libFuzzer sees which branches an input takes
endif()

# Queries on a null `this` are part of the interface, inline ones included, so hosts get the flag too.
set(ZEL_PUBLIC_OPTIONS -fno-delete-null-pointer-checks)
target_compile_options(zel_build INTERFACE ${ZEL_PUBLIC_OPTIONS})

# zel_room(NAME BELOW... FILES files...): one room of src/. OBJECT: every file reaches the linker, so no call upward can hide.
function(zel_room name)
    cmake_parse_arguments(ROOM "" "" "BELOW;FILES" ${ARGN})
    add_library(${name} OBJECT ${ROOM_FILES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC zel_build ${ROOM_BELOW})
endfunction()

# Flags shared by the library, its tests and its samples.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)          # only what carries KAR_API is exported
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)            # read by clang-tidy
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)   # a Windows test finds the library beside itself
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

option(KAR_SANITIZE "Address, undefined-behaviour and leak sanitizer" OFF)

# Results are compared bit by bit: a product and a sum are never fused.
set(KAR_EXACT_FLAGS -ffp-contract=off)

add_library(kar_warnings INTERFACE)
target_compile_options(kar_warnings INTERFACE
    -Wall -Wextra -Wpedantic
    -Wconversion -Wsign-conversion               # every narrowing is written out
    -Wshadow -Wold-style-cast -Wcast-align -Wcast-qual -Wunused -Wformat=2 -Wundef
    -Wdouble-promotion
    -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(kar_warnings INTERFACE
        -Wno-self-assign-overloaded              # the tests do it on purpose
        # points in a vector: values with a virtual operation, never deleted by base
        -Wno-delete-non-abstract-non-virtual-dtor)
else()
    target_compile_options(kar_warnings INTERFACE -Wduplicated-cond -Wlogical-op
        -Wno-maybe-uninitialized)                # reports uninitialised outputs of stated routines after inlining
endif()

if(KAR_SANITIZE)
    # float-divide-by-zero is left out: a division by zero gives an infinity, which is a stated result.
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(${sanitizers})
    add_link_options(${sanitizers})
endif()

option(KAR_COVERAGE "Count how often lines and branches run (GCC only)" OFF)
if(KAR_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()

if(WIN32)
    add_link_options(-static-libgcc -static-libstdc++ -static)   # a library without further files beside it
endif()

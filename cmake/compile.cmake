# Compiler settings that hold for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
include_directories(${PROJECT_SOURCE_DIR})

# Equality of computed doubles is part of the results: no fused multiply-add behind our back.
add_compile_options(-ffp-contract=off)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees overlapping copies in ordinary string concatenations.
    add_compile_options(-Wno-restrict)
endif()

if(POLYFAB_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_definitions(POLYFAB_SANITIZE)
endif()
if(POLYFAB_FUZZ)
    # Coverage feedback for every library; only the fuzz targets link the fuzzer's main.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# The language and the warnings that hold for every target of the project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

include_directories("${PROJECT_SOURCE_DIR}")
add_compile_definitions(QT_NO_KEYWORDS)  # "signals" and "slots" are words of ours too
add_compile_options(-fno-semantic-interposition)  # nobody replaces functions of the shared libraries; let them be inlined
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow "$<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>")
if(CIRRANE_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()

if(CIRRANE_SANITIZE)
    add_compile_options("-fsanitize=${CIRRANE_SANITIZE}" -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options("-fsanitize=${CIRRANE_SANITIZE}")
endif()

# For the rooms that are linked into a saver's module: only the entry point may be seen from outside.
function(cirrane_module_part target)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
endfunction()

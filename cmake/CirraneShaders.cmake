# Shader libraries: each one SPIR-V module with every entry point, checked when it is built.

# cirrane_add_shader_library(<target> <library> <work directory> <source>…)
# Makes the target, which builds the library from the sources. A source is named after its entry point; what it includes
# is found by the compiler.
function(cirrane_add_shader_library target library work_directory)
    cmake_path(GET library PARENT_PATH library_directory)
    file(MAKE_DIRECTORY "${work_directory}" "${library_directory}")

    set(modules)
    foreach(source IN LISTS ARGN)
        cmake_path(GET source STEM entry_point)
        set(module "${work_directory}/${entry_point}.spv")
        add_custom_command(
            OUTPUT "${module}"
            COMMAND "${GLSLANG_VALIDATOR}" -V --quiet --target-env vulkan1.3
                    --source-entrypoint main -e ${entry_point}
                    --depfile "${module}.d" -o "${module}" "${source}"
            DEPENDS "${source}"
            DEPFILE "${module}.d"
            COMMENT "Compiling ${entry_point} of ${target}"
            VERBATIM
        )
        list(APPEND modules "${module}")
    endforeach()

    # Joined and checked aside, so that nobody ever finds a library that failed its check.
    set(joined "${work_directory}/joined.spv")
    add_custom_command(
        OUTPUT "${library}"
        COMMAND "${SPIRV_LINK}" --target-env vulkan1.3 -o "${joined}" ${modules}
        COMMAND "${SPIRV_VAL}" --target-env vulkan1.3 "${joined}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${joined}" "${library}"
        DEPENDS ${modules}
        COMMENT "Linking shader library ${target}"
        VERBATIM
    )
    add_custom_target(${target} DEPENDS "${library}")
endfunction()

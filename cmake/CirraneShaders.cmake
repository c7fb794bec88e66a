# The saver's shader library: one SPIR-V module with every entry point, checked when it is built.

# cirrane_add_shader_library()
# Makes the target cirrane_shaders, which builds default.metallib into the bundle from the sources in
# resources/shaders. A source is named after its entry point; what it includes is found by the compiler.
function(cirrane_add_shader_library)
    set(source_directory "${PROJECT_SOURCE_DIR}/resources/shaders")
    set(work_directory "${PROJECT_BINARY_DIR}/shaders")
    set(library "${CIRRANE_BUNDLE_DIRECTORY}/default.metallib")
    file(MAKE_DIRECTORY "${work_directory}" "${CIRRANE_BUNDLE_DIRECTORY}")

    set(modules)
    foreach(source IN ITEMS
        QZLColorVertexShader.vert
        QZLColorFragmentShader.frag
        QZLLightVertexShader.vert
        QZLLightFragmentShader.frag
    )
        cmake_path(GET source STEM entry_point)
        set(module "${work_directory}/${entry_point}.spv")
        add_custom_command(
            OUTPUT "${module}"
            COMMAND "${GLSLANG_VALIDATOR}" -V --quiet --target-env vulkan1.3
                    --source-entrypoint main -e ${entry_point}
                    --depfile "${module}.d" -o "${module}" "${source_directory}/${source}"
            DEPENDS "${source_directory}/${source}"
            DEPFILE "${module}.d"
            COMMENT "Compiling shader ${entry_point}"
            VERBATIM
        )
        list(APPEND modules "${module}")
    endforeach()

    # Joined and checked aside, so that the bundle never holds a library that failed its check.
    set(joined "${work_directory}/default.spv")
    add_custom_command(
        OUTPUT "${library}"
        COMMAND "${SPIRV_LINK}" --target-env vulkan1.3 -o "${joined}" ${modules}
        COMMAND "${SPIRV_VAL}" --target-env vulkan1.3 "${joined}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${joined}" "${library}"
        DEPENDS ${modules}
        COMMENT "Linking shader library"
        VERBATIM
    )
    add_custom_target(cirrane_shaders DEPENDS "${library}")
endfunction()

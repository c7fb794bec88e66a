# Rules that put files into the bundle. Each appends its result to the list that the caller names.

# cirrane_copy_resource(<source> <destination> <list>)
function(cirrane_copy_resource source destination list)
    add_custom_command(
        OUTPUT "${destination}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${destination}"
        DEPENDS "${source}"
        VERBATIM
    )
    set(${list} ${${list}} "${destination}" PARENT_SCOPE)
endfunction()

# cirrane_add_catalogue(<po file> <mo file> <list>): a translation, checked (its formats above all) and compiled.
function(cirrane_add_catalogue source destination list)
    get_filename_component(directory "${destination}" DIRECTORY)
    add_custom_command(
        OUTPUT "${destination}"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${directory}"
        COMMAND "${GETTEXT_MSGFMT_EXECUTABLE}" --check "--output-file=${destination}" "${source}"
        DEPENDS "${source}"
        VERBATIM
    )
    set(${list} ${${list}} "${destination}" PARENT_SCOPE)
endfunction()

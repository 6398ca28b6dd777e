# Icons of the inspector: drawn as SVG in icons/, rendered to PNG at build time
# and compiled in as Qt resources.
#
#   include(vantle/resources/icons.cmake)
#   vantle_add_icons(icon_sources)
#   target_sources(vantle PRIVATE ${icon_sources})
#
# Call it in the CMakeLists.txt that defines the target (the rules that make the
# returned file are known in that directory only) and for one target only, after
# find_package(Qt6 COMPONENTS Core). A static library's user has to call
# Q_INIT_RESOURCE(vantle_icons) once.
#
#   :/Vantle_icons/Icons/NAME.png, NAME@2x.png    all but the two below
#   :/Vantle_icons/Icons/fileopen, fileopen@2x    asked for without extension
#   :/Vantle_images/ArrowShort.png                pixel size counts: 1x only

set(VANTLE_ICON_DIR "${CMAKE_CURRENT_LIST_DIR}/icons")

function(vantle_add_icons out_qrc)
    if(NOT TARGET Qt6::rcc)
        message(FATAL_ERROR "vantle_add_icons: find_package(Qt6 COMPONENTS Core) has to come first")
    endif()
    find_program(RSVG_CONVERT rsvg-convert DOC "Renders the SVG icons (package librsvg2-bin)")
    if(NOT RSVG_CONVERT)
        message(FATAL_ERROR "rsvg-convert not found: install librsvg2-bin")
    endif()

    set(dir "${CMAKE_CURRENT_BINARY_DIR}/icons")
    file(MAKE_DIRECTORY "${dir}")
    file(GLOB svgs CONFIGURE_DEPENDS "${VANTLE_ICON_DIR}/*.svg")

    set(pngs)
    set(icons)
    set(images)
    foreach(svg IN LISTS svgs)
        get_filename_component(name "${svg}" NAME_WE)
        if(name STREQUAL "ArrowShort")
            add_custom_command(
                OUTPUT "${dir}/${name}.png"
                COMMAND "${RSVG_CONVERT}" -z 1 -o "${dir}/${name}.png" "${svg}"
                DEPENDS "${svg}"
                COMMENT "Rendering image ${name}"
                VERBATIM)
            list(APPEND pngs "${dir}/${name}.png")
            string(APPEND images "    <file alias=\"${name}.png\">${dir}/${name}.png</file>\n")
            continue()
        endif()

        add_custom_command(
            OUTPUT "${dir}/${name}.png" "${dir}/${name}@2x.png"
            COMMAND "${RSVG_CONVERT}" -z 1 -o "${dir}/${name}.png" "${svg}"
            COMMAND "${RSVG_CONVERT}" -z 2 -o "${dir}/${name}@2x.png" "${svg}"
            DEPENDS "${svg}"
            COMMENT "Rendering icon ${name}"
            VERBATIM)
        list(APPEND pngs "${dir}/${name}.png" "${dir}/${name}@2x.png")

        set(extension ".png")
        if(name STREQUAL "fileopen")
            set(extension "")
        endif()
        foreach(scale IN ITEMS "" "@2x")
            string(APPEND icons
                "    <file alias=\"Icons/${name}${scale}${extension}\">${dir}/${name}${scale}.png</file>\n")
        endforeach()
    endforeach()

    set(qrc "${dir}/vantle_icons.qrc")
    file(CONFIGURE OUTPUT "${qrc}" @ONLY CONTENT
"<RCC>
  <qresource prefix=\"/Vantle_icons\">
${icons}  </qresource>
  <qresource prefix=\"/Vantle_images\">
${images}  </qresource>
</RCC>
")

    set(source "${CMAKE_CURRENT_BINARY_DIR}/qrc_vantle_icons.cpp")
    add_custom_command(
        OUTPUT "${source}"
        COMMAND Qt6::rcc --name vantle_icons --output "${source}" "${qrc}"
        DEPENDS "${qrc}" ${pngs}
        COMMENT "Compiling the icons"
        VERBATIM)
    set_source_files_properties("${source}" PROPERTIES GENERATED ON SKIP_AUTOGEN ON)

    set(${out_qrc} "${source}" PARENT_SCOPE)
endfunction()

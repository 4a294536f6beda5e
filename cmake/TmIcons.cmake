# tm_render_icons(OUT_VAR DESTINATION DIR SIZES size... SVGS file.svg...)
# Renders every SVG at every size into DIR/<name>-<size>.png with rsvg-convert at build time, so
# that the PNGs never drift from their drawings; OUT_VAR receives the PNG paths.
find_program(TM_RSVG_CONVERT rsvg-convert)
if(NOT TM_RSVG_CONVERT)
    message(FATAL_ERROR "rsvg-convert renders the icons: install librsvg2-bin (tools/install-deps.sh)")
endif()

function(tm_render_icons out_var)
    cmake_parse_arguments(ARG "" "DESTINATION" "SIZES;SVGS" ${ARGN})
    set(pngs)
    foreach(svg ${ARG_SVGS})
        get_filename_component(name ${svg} NAME_WE)
        foreach(size ${ARG_SIZES})
            set(png ${ARG_DESTINATION}/${name}-${size}.png)
            add_custom_command(OUTPUT ${png}
                COMMAND ${CMAKE_COMMAND} -E make_directory ${ARG_DESTINATION}
                COMMAND ${TM_RSVG_CONVERT} --width ${size} --height ${size} --output ${png} ${svg}
                DEPENDS ${svg}
                VERBATIM)
            list(APPEND pngs ${png})
        endforeach()
    endforeach()
    set(${out_var} ${pngs} PARENT_SCOPE)
endfunction()

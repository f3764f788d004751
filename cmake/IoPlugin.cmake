# zel_io_plugin(NAME FILES...): an IO plug-in, zel-io-NAME.so, with its manifest written beside it. It lies where the library
# of this build looks for plug-ins, and is installed where the installed library does.
function(zel_io_plugin name)
    set(folder ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/3dzel/plugins)
    add_library(zel-io-${name} MODULE ${ARGN})
    target_link_libraries(zel-io-${name} PRIVATE zel_build 3dzel)
    set_target_properties(zel-io-${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${folder})
    add_custom_command(TARGET zel-io-${name} POST_BUILD
        COMMAND zel-io-manifest $<TARGET_FILE:zel-io-${name}>
        BYPRODUCTS ${folder}/zel-io-${name}.formats
        COMMENT "Writing the manifest of zel-io-${name}")
    install(TARGETS zel-io-${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/3dzel/plugins)
    install(FILES ${folder}/zel-io-${name}.formats DESTINATION ${CMAKE_INSTALL_LIBDIR}/3dzel/plugins)
endfunction()

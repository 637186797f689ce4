# The boundary: the names of exported_names.txt, one a line, and nothing else leaves the library. The list becomes a linker
# version script, so that every exported name carries the version VELORIMRTL_1.
function(velorim_export_only target list)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} names REGEX "^[A-Za-z_]")
  list(JOIN names ";\n    " body)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "VELORIMRTL_1 {\n  global:\n    @body@;\n  local:\n    *;\n};\n" @ONLY)
  target_link_options(${target} PRIVATE -Wl,--version-script=${script} -Wl,--no-undefined-version -Wl,-z,defs)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

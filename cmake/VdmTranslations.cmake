# The add-on's translation template: every tr() text of its sources, collected by lupdate into
# <build>/translations/vdocumentmerger.ts on every build in which a source changed.
get_target_property(vdm_sources vdocumentmerger SOURCES)
list(FILTER vdm_sources INCLUDE REGEX "\\.(cpp|h)$")
set(vdm_ts_dir ${CMAKE_BINARY_DIR}/translations)
set(vdm_ts_file ${vdm_ts_dir}/vdocumentmerger.ts)
set(vdm_ts_list ${CMAKE_CURRENT_BINARY_DIR}/vdocumentmerger_ts_sources.lst)
# Includes are resolved from the add-on's folder, as the compiler does, so that lupdate sees
# the classes behind qualified tr() calls.
string(REPLACE ";" "\n" vdm_ts_list_text "-I${CMAKE_SOURCE_DIR}/src/vdocumentmerger;${vdm_sources}")
file(GENERATE OUTPUT ${vdm_ts_list} CONTENT "${vdm_ts_list_text}\n")

add_custom_command(
  OUTPUT ${vdm_ts_file}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${vdm_ts_dir}
  COMMAND Qt5::lupdate -silent -locations relative -no-obsolete @${vdm_ts_list} -ts ${vdm_ts_file}
  DEPENDS ${vdm_sources} ${vdm_ts_list}
  COMMENT "Collecting the add-on's texts for translators"
  VERBATIM)
add_custom_target(vdocumentmerger_ts ALL DEPENDS ${vdm_ts_file})

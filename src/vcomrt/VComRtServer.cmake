# vcomrt_register_server(TARGET <server library> PROGID <ProgID> CLSID <{...}> [DESTINATION <dir>])
#
# Writes <DESTINATION>/<ProgID>.reg so that CLSIDFromProgID and CoCreateInstance find the server.
# DESTINATION defaults to the vcomrt.d folder beside libvcomrt.so, which the runtime always searches;
# test doubles must go to a folder of their own, named at run time through VCOMRT_REGISTRY.
#
# Registration file format: UTF-8 text, one "Key=Value" per line, keys case-insensitive, blanks
# around keys and values ignored, empty lines and lines starting with '#' skipped:
#   ProgID=VZyl.Application
#   CLSID={8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}
#   Library=../libzylserver.so
# Library is absolute or relative to the folder that holds the registration file. All three keys
# are required; a file missing one is ignored.
function(vcomrt_register_server)
  cmake_parse_arguments(REG "" "TARGET;PROGID;CLSID;DESTINATION" "" ${ARGN})
  if(NOT REG_TARGET OR NOT REG_PROGID OR NOT REG_CLSID)
    message(FATAL_ERROR "vcomrt_register_server needs TARGET, PROGID and CLSID")
  endif()
  if(NOT TARGET ${REG_TARGET})
    message(FATAL_ERROR "vcomrt_register_server: no target ${REG_TARGET}")
  endif()
  # CMake's regular expressions have no {n} repetition.
  set(h "[0-9A-Fa-f]")
  set(h4 "${h}${h}${h}${h}")
  if(NOT REG_CLSID MATCHES "^\\{${h4}${h4}-${h4}-${h4}-${h4}-${h4}${h4}${h4}\\}$")
    message(FATAL_ERROR "vcomrt_register_server: CLSID '${REG_CLSID}' is not of the form {xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}")
  endif()

  if(REG_DESTINATION)
    set(dir "${REG_DESTINATION}")
    set(library "$<TARGET_FILE:${REG_TARGET}>")
  else()
    set(dir "$<TARGET_FILE_DIR:vcomrt>/vcomrt.d")
    # Relative when the server sits beside the runtime, so the library folder can move as a whole.
    set(library "$<IF:$<STREQUAL:$<TARGET_FILE_DIR:${REG_TARGET}>,$<TARGET_FILE_DIR:vcomrt>>,../$<TARGET_FILE_NAME:${REG_TARGET}>,$<TARGET_FILE:${REG_TARGET}>>")
  endif()

  file(GENERATE OUTPUT "${dir}/${REG_PROGID}.reg"
    CONTENT "# Automation server registration, written by the build\nProgID=${REG_PROGID}\nCLSID=${REG_CLSID}\nLibrary=${library}\n")
endfunction()

# What `cmake --install` puts in place: the host and the programs it starts, the add-on and the
# libraries they load, the word processor's registration, a desktop entry and the .zyl MIME type.
#
#   <prefix>/bin        programs
#   <prefix>/lib        libraries, found through RPATH $ORIGIN/../lib; the host loads the add-on
#                       from ../lib beside itself
#   <prefix>/lib/vcomrt.d  automation server registrations, beside the runtime
#   <prefix>/share/applications, <prefix>/share/mime/packages

# Programs and libraries, added to whichever of them this build has.
set(VDM_INSTALL_TARGETS
  vapphost_app
  docmerge
  dalodrive
  vapphost
  liolite
  vdocumentmerger
  vcomrt
  daloipc
  vzylserver
)

foreach(target IN LISTS VDM_INSTALL_TARGETS)
  if(TARGET ${target})
    install(TARGETS ${target} RUNTIME DESTINATION bin LIBRARY DESTINATION lib)
  endif()
endforeach()

if(TARGET vzylserver)
  # The server keeps its own RPATH into the office; the runtime it serves sits beside it.
  set_property(TARGET vzylserver APPEND PROPERTY INSTALL_RPATH "$ORIGIN")
  # Written by vcomrt_register_server with a library path relative to this folder.
  install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/vcomrt.d/VZyl.Application.reg DESTINATION lib/vcomrt.d)
endif()

# yrt::dirs::resources() is <lib>/../resources.
install(DIRECTORY DESTINATION resources)

# The entry names the installed host by its absolute path, which is known only at install time
# (cmake --install --prefix).
set(VDM_DESKTOP_TEMPLATE ${CMAKE_SOURCE_DIR}/dist/vapphost.desktop.in)
install(CODE "
  set(VAPPHOST_BIN \"\${CMAKE_INSTALL_PREFIX}/bin/vapphost\")
  configure_file(\"${VDM_DESKTOP_TEMPLATE}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share/applications/vapphost.desktop\" @ONLY)
  message(STATUS \"Installing: \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/share/applications/vapphost.desktop\")
")
install(FILES ${CMAKE_SOURCE_DIR}/dist/vapphost-zyl.xml DESTINATION share/mime/packages)

# A direct install (no staging through DESTDIR) makes the new type and entry known at once.
find_program(VDM_UPDATE_MIME_DATABASE update-mime-database)
find_program(VDM_UPDATE_DESKTOP_DATABASE update-desktop-database)
install(CODE "
  if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
    if(\"${VDM_UPDATE_MIME_DATABASE}\")
      execute_process(COMMAND \"${VDM_UPDATE_MIME_DATABASE}\" \"\${CMAKE_INSTALL_PREFIX}/share/mime\")
    endif()
    if(\"${VDM_UPDATE_DESKTOP_DATABASE}\")
      execute_process(COMMAND \"${VDM_UPDATE_DESKTOP_DATABASE}\" \"\${CMAKE_INSTALL_PREFIX}/share/applications\")
    endif()
  endif()
")

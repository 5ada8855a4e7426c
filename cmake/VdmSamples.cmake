# Sample documents for trying the host: <build>/samples/A.docx, B.doc and C.zyl, made by the
# office. A machine without the office builds without them.
find_program(VDM_SOFFICE soffice)
set(vdm_samples_dir ${CMAKE_BINARY_DIR}/samples)
add_custom_command(
  OUTPUT ${vdm_samples_dir}/samples.stamp
  COMMAND ${CMAKE_COMMAND} -DOUT=${vdm_samples_dir} -DSOFFICE=${VDM_SOFFICE}
          -P ${CMAKE_SOURCE_DIR}/cmake/VdmMakeSamples.cmake
  COMMAND ${CMAKE_COMMAND} -E touch ${vdm_samples_dir}/samples.stamp
  DEPENDS ${CMAKE_SOURCE_DIR}/cmake/VdmMakeSamples.cmake
  COMMENT "Making the sample documents with the office"
  VERBATIM)
add_custom_target(vdm_samples ALL DEPENDS ${vdm_samples_dir}/samples.stamp)

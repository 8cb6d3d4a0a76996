# add_version_resource(TARGET FILE_NAME DESCRIPTION): version and comments from the project() call.
function(add_version_resource target file_name description)
  set(resource_file_name "${file_name}")
  set(resource_description "${description}")
  set(rc "${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${rc}" @ONLY)
  target_sources(${target} PRIVATE "${rc}")
endfunction()

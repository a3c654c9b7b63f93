# SPDX-License-Identifier: MIT
# What is installed is stripped; its debug information goes below lib/debug, where debuggers look by build ID.
option(VESK_SEPARATE_DEBUG "Install debug information in files of its own" ON)
if(VESK_SEPARATE_DEBUG)
  install(CODE "set(CMAKE_INSTALL_DO_STRIP TRUE)" ALL_COMPONENTS)
endif()

# Installs the debug information of TARGET.
function(vesk_install_debug TARGET)
  if(NOT VESK_SEPARATE_DEBUG)
    return()
  endif()
  target_link_options(${TARGET} PRIVATE -Wl,--build-id=sha1)
  install(CODE "
    execute_process(COMMAND ${CMAKE_READELF} --notes $<TARGET_FILE:${TARGET}>
                    OUTPUT_VARIABLE notes COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCH \"Build ID: (..)([0-9a-f]+)\" id \"\${notes}\")
    set(folder \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/debug/.build-id/\${CMAKE_MATCH_1})
    set(debugFile \${folder}/\${CMAKE_MATCH_2}.debug)
    message(STATUS \"Installing: \${debugFile}\")
    file(MAKE_DIRECTORY \${folder})
    execute_process(COMMAND ${CMAKE_OBJCOPY} --only-keep-debug --compress-debug-sections
                            $<TARGET_FILE:${TARGET}> \${debugFile} COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD \${debugFile} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)"
    COMPONENT debug)
endfunction()

# kelpkit_finish_dll(TARGET DESCRIPTION): what every DLL of the project has: a version resource, hardening, and the
# symbols of a release in a file of their own.
function(kelpkit_finish_dll target description)
  set(KELPKIT_FILE_NAME "${target}")
  set(KELPKIT_FILE_DESCRIPTION "${description}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" ${target}.rc @ONLY)
  target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")

  if(MSVC)
    # With /DEBUG the linker keeps what nothing uses, unless it is told otherwise.
    target_link_options(${target} PRIVATE
      /HIGHENTROPYVA /DYNAMICBASE /NXCOMPAT /DEBUG $<$<NOT:$<CONFIG:Debug>>:/OPT:REF,ICF>
    )
  else()
    # Sections that stand in the file as in memory are mapped; others Wine reads whole.
    target_link_options(${target} PRIVATE -Wl,--high-entropy-va,--dynamicbase,--nxcompat,--file-alignment=0x1000)
    # Debuggers find the symbols by the link that the DLL keeps.
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND "${CMAKE_OBJCOPY}" --only-keep-debug $<TARGET_FILE:${target}> $<TARGET_FILE:${target}>.debug
      COMMAND "${CMAKE_OBJCOPY}" --strip-debug --strip-unneeded
        --add-gnu-debuglink=$<TARGET_FILE:${target}>.debug $<TARGET_FILE:${target}>
      VERBATIM
    )
  endif()
endfunction()

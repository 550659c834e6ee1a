# What a host receives beside the library: the version block of every
# shipped DLL and the import library in the platform linker's own format.

# The version, from the project() line, as a header the .rc files include.
configure_file(${CMAKE_CURRENT_LIST_DIR}/qziso32_version.h.in
               ${CMAKE_BINARY_DIR}/generated/qziso32_version.h @ONLY)

# Adds a VERSIONINFO block to `target`, a DLL named `file`, described by
# `description`, in the language `langid` (four hex digits, e.g. 0409).
function(qz_version_resource target file description langid)
  set(QZ_VI_FILE ${file})
  set(QZ_VI_DESCRIPTION ${description})
  set(QZ_VI_LANGID ${langid})
  get_filename_component(QZ_VI_INTERNAL ${file} NAME_WE)
  set(rc ${CMAKE_BINARY_DIR}/generated/version_${target}.rc)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version_info.rc.in ${rc} @ONLY)
  target_sources(${target} PRIVATE ${rc})
  set_source_files_properties(${rc} PROPERTIES
    OBJECT_DEPENDS ${CMAKE_BINARY_DIR}/generated/qziso32_version.h
    INCLUDE_DIRECTORIES ${CMAKE_BINARY_DIR}/generated)
endfunction()

qz_version_resource(qziso32 qziso32.dll "Kelendrix isolation layer" 0409)

# qziso32.lib: the import library for hosts built with the MSVC ABI (a
# 32-bit host refers to _Name@bytes, or _Name for the __cdecl ones).
find_program(QZ_LLVM_DLLTOOL NAMES llvm-dlltool)
if(QZ_LLVM_DLLTOOL)
  set(QZ_MSVC_IMPLIB ${CMAKE_BINARY_DIR}/qziso32.lib)
  add_custom_command(TARGET qziso32 POST_BUILD
    COMMAND bash ${CMAKE_SOURCE_DIR}/tools/make-msvc-lib.sh ${QZ_DEF} ${QZ_MSVC_IMPLIB}
            ${CMAKE_SIZEOF_VOID_P} ${CMAKE_NM} ${QZ_LLVM_DLLTOOL} ${QZ_OBJECTS}
    BYPRODUCTS ${QZ_MSVC_IMPLIB}
    COMMAND_EXPAND_LISTS VERBATIM)
endif()

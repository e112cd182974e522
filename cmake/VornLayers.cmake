# The library is built as a stack of layers, one folder each under include/vorn/ and src/.
# A layer may include the public and internal headers of the layers before it and never of
# a layer after it. ARCHITECTURE.md says what each layer is for.
#
# Each layer is an object library linking only to the layer before it. Its own private
# include directory comes first on its search path and holds, for every header of every
# later layer, a stub that stops the compiler with a message naming both layers. An upward
# include therefore fails the build wherever it is written, in a source or in a header.
set(VORN_LAYERS
    base runtime logging platform events messaging
    storage/crypto storage/keychain storage/keystore storage/prefs
    network behavior identity core facades sdk capi)

# The headers of one layer, relative to the include root they are included from.
function(vorn_layer_headers layer out)
  file(GLOB_RECURSE public RELATIVE ${PROJECT_SOURCE_DIR}/include CONFIGURE_DEPENDS
       ${PROJECT_SOURCE_DIR}/include/vorn/${layer}/*.hpp)
  file(GLOB_RECURSE internal RELATIVE ${PROJECT_SOURCE_DIR}/src CONFIGURE_DEPENDS
       ${PROJECT_SOURCE_DIR}/src/${layer}/*.hpp)
  set(${out} ${public} ${internal} PARENT_SCOPE)
endfunction()

# Where the stubs that keep `layer` from including any later layer are written.
function(vorn_layer_guard_dir layer out)
  string(REPLACE "/" "_" name ${layer})
  set(${out} ${PROJECT_BINARY_DIR}/layer-guards/${name} PARENT_SCOPE)
endfunction()

# Writes those stubs afresh, so that a header that moved down a layer loses its stub.
function(vorn_write_layer_guard layer)
  vorn_layer_guard_dir(${layer} dir)
  file(REMOVE_RECURSE ${dir})
  list(FIND VORN_LAYERS ${layer} index)
  list(LENGTH VORN_LAYERS count)
  math(EXPR first "${index} + 1")
  if(first LESS count)
    math(EXPR last "${count} - 1")
    foreach(i RANGE ${first} ${last})
      list(GET VORN_LAYERS ${i} later)
      vorn_layer_headers(${later} headers)
      foreach(header IN LISTS headers)
        file(WRITE ${dir}/${header}
             "#error \"layer '${layer}' must not include '${header}' of layer '${later}', which comes after it\"\n")
      endforeach()
    endforeach()
  endif()
endfunction()

# Settings every layer's objects share: the include roots, the export macro's build side,
# warnings, and the system libraries.
function(vorn_layer_defaults target)
  target_compile_definitions(${target} PRIVATE VORN_BUILDING_LIBRARY)
  target_include_directories(${target}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target}
    PUBLIC Threads::Threads nlohmann_json::nlohmann_json
    PRIVATE PkgConfig::UTF8PROC OpenSSL::Crypto ZLIB::ZLIB SQLite::SQLite3 CURL::libcurl vorn_warnings)
endfunction()

# Puts the guard of `layer` first on the search path of `target`.
function(vorn_use_layer_guard target layer)
  vorn_layer_guard_dir(${layer} guard)
  target_include_directories(${target} BEFORE PRIVATE ${guard})
endfunction()

# A floor is one object library; the installed libraries are made of the objects of their floors.

# hearth_library(NAME): the installed library hearth::NAME, which floors then fill.
function(hearth_library name)
  add_library(hearth_${name})
  add_library(hearth::${name} ALIAS hearth_${name})
  set_target_properties(hearth_${name} PROPERTIES EXPORT_NAME ${name} OUTPUT_NAME hearth-${name} LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  target_include_directories(hearth_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(hearth_${name} PUBLIC cxx_std_20)
  target_link_libraries(hearth_${name} PRIVATE $<BUILD_INTERFACE:hearth_flags>)
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(hearth_${name} PUBLIC HEARTH_STATIC)
  endif()
endfunction()

# hearth_floor(NAME LIBRARY library [FLOORS names...] [NEEDS targets...]): all sources below this folder become the
# floor hearth_NAME. FLOORS are the floors below it, NEEDS the packages it calls, which the library then links.
# The objects go into the library as sources, so that no floor has to be exported with it.
function(hearth_floor name)
  cmake_parse_arguments(FLOOR "" "LIBRARY" "FLOORS;NEEDS" ${ARGN})
  list(TRANSFORM FLOOR_FLOORS PREPEND hearth_)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  target_link_libraries(${FLOOR_LIBRARY} PRIVATE ${FLOOR_NEEDS})
  if(NOT sources) # headers only
    add_library(hearth_${name} INTERFACE)
    target_link_libraries(hearth_${name} INTERFACE ${FLOOR_FLOORS} ${FLOOR_NEEDS})
    return()
  endif()
  add_library(hearth_${name} OBJECT ${sources})
  set_target_properties(hearth_${name} PROPERTIES POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(hearth_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_compile_definitions(hearth_${name} PRIVATE HEARTH_BUILDING)
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(hearth_${name} PUBLIC HEARTH_STATIC)
  endif()
  target_link_libraries(hearth_${name} PUBLIC hearth_flags ${FLOOR_FLOORS} ${FLOOR_NEEDS})
  target_sources(${FLOOR_LIBRARY} PRIVATE $<TARGET_OBJECTS:hearth_${name}>)
endfunction()

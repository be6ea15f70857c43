# Draws the pictures of resources/icons at every size that is wanted and compiles them into a target, named
# ":/pictures/NAME-SIZE.png".
#
#   quendle_pictures(target NAMES information ... SIZES 16 32 ...)

find_program(RSVG_CONVERT rsvg-convert REQUIRED)

function(quendle_pictures target)
  cmake_parse_arguments(PICTURES "" "" "NAMES;SIZES" ${ARGN})
  set(folder ${PROJECT_BINARY_DIR}/pictures)
  file(MAKE_DIRECTORY ${folder})
  set(list "<RCC><qresource prefix=\"/pictures\">\n")
  foreach(name IN LISTS PICTURES_NAMES)
    set(drawing ${PROJECT_SOURCE_DIR}/resources/icons/${name}.svg)
    foreach(size IN LISTS PICTURES_SIZES)
      set(picture ${name}-${size}.png)
      add_custom_command(
        OUTPUT ${folder}/${picture}
        COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${folder}/${picture} ${drawing}
        DEPENDS ${drawing}
        VERBATIM)
      list(APPEND pictures ${folder}/${picture})
      string(APPEND list "<file>${picture}</file>\n")
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${folder}/pictures.qrc CONTENT "${list}</qresource></RCC>\n" @ONLY)
  # PNG is packed as well as it can be; packing it again would only cost time at every start.
  add_custom_command(
    OUTPUT ${folder}/pictures_resource.cpp
    COMMAND Qt6::rcc --name pictures --no-compress -o ${folder}/pictures_resource.cpp ${folder}/pictures.qrc
    DEPENDS ${folder}/pictures.qrc ${pictures}
    VERBATIM)
  target_sources(${target} PRIVATE ${folder}/pictures_resource.cpp)
  set_source_files_properties(${folder}/pictures_resource.cpp PROPERTIES
    SKIP_PRECOMPILE_HEADERS ON COMPILE_OPTIONS "-w")
endfunction()

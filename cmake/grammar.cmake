find_package(BISON 3.8 REQUIRED)
find_package(FLEX REQUIRED)

# zev_grammar(<name>): <name>_parser.y and <name>_scanner.l of this folder join the library.
function(zev_grammar name)
  set(parser ${CMAKE_CURRENT_BINARY_DIR}/${name}_parser)
  set(scanner ${CMAKE_CURRENT_BINARY_DIR}/${name}_scanner)
  bison_target(${name}_parser ${name}_parser.y ${parser}.cpp
    COMPILE_FLAGS "-Wall -Werror" DEFINES_FILE ${parser}.h)
  flex_target(${name}_scanner ${name}_scanner.l ${scanner}.cpp DEFINES_FILE ${scanner}.h)
  add_flex_bison_dependency(${name}_scanner ${name}_parser)
  add_custom_target(${name}_sources DEPENDS
    ${parser}.cpp ${parser}.h ${scanner}.cpp ${scanner}.h)
  target_sources(zevoci_objects PRIVATE ${parser}.cpp ${scanner}.cpp)
  target_include_directories(zevoci_objects PRIVATE ${PROJECT_BINARY_DIR})
  add_dependencies(zevoci_objects ${name}_sources)
  # What the generators write does not keep all rules that our own code does.
  set_source_files_properties(${parser}.cpp ${scanner}.cpp
    TARGET_DIRECTORY zevoci_objects
    PROPERTIES GENERATED TRUE COMPILE_OPTIONS
    "-Wno-old-style-cast;-Wno-shadow;-Wno-sign-compare;-Wno-unused-function")
endfunction()

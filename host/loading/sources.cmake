target_sources(host_loading PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/elf_reader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/initial_stack.cpp
  ${CMAKE_CURRENT_LIST_DIR}/input_file.cpp
  ${CMAKE_CURRENT_LIST_DIR}/loader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/program_search.cpp)

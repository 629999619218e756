target_sources(host_engine PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/address_set.cpp
  ${CMAKE_CURRENT_LIST_DIR}/advertised_sve.cpp
  ${CMAKE_CURRENT_LIST_DIR}/application_memory.cpp
  ${CMAKE_CURRENT_LIST_DIR}/memory_map.cpp
  ${CMAKE_CURRENT_LIST_DIR}/own_files.cpp
  ${CMAKE_CURRENT_LIST_DIR}/program_break.cpp)

target_sources(host_engine PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/stale_code.cpp
  ${CMAKE_CURRENT_LIST_DIR}/thread.cpp)

target_sources(host_engine PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/dispatch.cpp
  ${CMAKE_CURRENT_LIST_DIR}/execution.cpp
  ${CMAKE_CURRENT_LIST_DIR}/processes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/robust_list.cpp
  ${CMAKE_CURRENT_LIST_DIR}/syscalls.cpp
  ${CMAKE_CURRENT_LIST_DIR}/thread_calls.cpp)

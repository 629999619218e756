target_sources(host_engine PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/application_call.S
  ${CMAKE_CURRENT_LIST_DIR}/fatal.cpp
  ${CMAKE_CURRENT_LIST_DIR}/fork_lock.cpp
  ${CMAKE_CURRENT_LIST_DIR}/guarded_copy.S
  ${CMAKE_CURRENT_LIST_DIR}/kernel_action.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kernel_call.cpp
  ${CMAKE_CURRENT_LIST_DIR}/process_call.S)

target_sources(host_engine PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/client_faults.cpp
  ${CMAKE_CURRENT_LIST_DIR}/frame_records.cpp
  ${CMAKE_CURRENT_LIST_DIR}/host_signals.cpp
  ${CMAKE_CURRENT_LIST_DIR}/signal_actions.cpp
  ${CMAKE_CURRENT_LIST_DIR}/signal_calls.cpp
  ${CMAKE_CURRENT_LIST_DIR}/signal_delivery.cpp
  ${CMAKE_CURRENT_LIST_DIR}/signal_frame.cpp
  ${CMAKE_CURRENT_LIST_DIR}/signals.cpp
  ${CMAKE_CURRENT_LIST_DIR}/thread_signals.cpp)

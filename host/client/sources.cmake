target_sources(host_instruction_lists PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/api_instructions.cpp
  ${CMAKE_CURRENT_LIST_DIR}/api_operands.cpp
  ${CMAKE_CURRENT_LIST_DIR}/instruction_list.cpp)

target_sources(host_engine PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/api_inserted_code.cpp
  ${CMAKE_CURRENT_LIST_DIR}/api_process.cpp
  ${CMAKE_CURRENT_LIST_DIR}/block_builder.cpp
  ${CMAKE_CURRENT_LIST_DIR}/events.cpp
  ${CMAKE_CURRENT_LIST_DIR}/own_interface.cpp)

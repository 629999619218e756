target_sources(host_rewriting PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/assembler.cpp
  ${CMAKE_CURRENT_LIST_DIR}/block_code.cpp
  ${CMAKE_CURRENT_LIST_DIR}/control_flow.cpp
  ${CMAKE_CURRENT_LIST_DIR}/mangle.cpp
  ${CMAKE_CURRENT_LIST_DIR}/register_fields.cpp)

if(NOT TESSALY_CORE_ONLY)
  target_sources(host_engine PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/branch_tables.cpp
    ${CMAKE_CURRENT_LIST_DIR}/code_cache.cpp
    ${CMAKE_CURRENT_LIST_DIR}/code_cache_interrupted.cpp
    ${CMAKE_CURRENT_LIST_DIR}/context_switch.S)
endif()

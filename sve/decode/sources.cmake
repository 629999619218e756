target_sources(sve_common PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/disassembly.cpp
  ${CMAKE_CURRENT_LIST_DIR}/operand_text.cpp
  ${CMAKE_CURRENT_LIST_DIR}/register_use.cpp)
list(APPEND sources_by_length
  ${CMAKE_CURRENT_LIST_DIR}/bridge.cpp
  ${CMAKE_CURRENT_LIST_DIR}/instructions.cpp
  ${CMAKE_CURRENT_LIST_DIR}/sve_utils.cpp)

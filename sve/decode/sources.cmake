target_sources(sve PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/bridge.cpp
  ${CMAKE_CURRENT_LIST_DIR}/instructions.cpp
  ${CMAKE_CURRENT_LIST_DIR}/sve_utils.cpp)

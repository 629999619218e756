target_sources(sve_common PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/compares.cpp
  ${CMAKE_CURRENT_LIST_DIR}/counts.cpp
  ${CMAKE_CURRENT_LIST_DIR}/floating_point_arithmetic.cpp
  ${CMAKE_CURRENT_LIST_DIR}/floating_point_compare.cpp
  ${CMAKE_CURRENT_LIST_DIR}/floating_point_convert.cpp
  ${CMAKE_CURRENT_LIST_DIR}/floating_point_fused.cpp
  ${CMAKE_CURRENT_LIST_DIR}/floating_point_reduce.cpp
  ${CMAKE_CURRENT_LIST_DIR}/integer.cpp
  ${CMAKE_CURRENT_LIST_DIR}/integer_helpers.cpp
  ${CMAKE_CURRENT_LIST_DIR}/memory.cpp
  ${CMAKE_CURRENT_LIST_DIR}/memory_access.cpp
  ${CMAKE_CURRENT_LIST_DIR}/permutes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/predicates.cpp
  ${CMAKE_CURRENT_LIST_DIR}/probe_${CMAKE_SYSTEM_PROCESSOR}.cpp)

list(APPEND sources_by_length
  ${CMAKE_CURRENT_LIST_DIR}/compare.cpp
  ${CMAKE_CURRENT_LIST_DIR}/contiguous_memory.cpp
  ${CMAKE_CURRENT_LIST_DIR}/counting.cpp
  ${CMAKE_CURRENT_LIST_DIR}/first_fault.cpp
  ${CMAKE_CURRENT_LIST_DIR}/floating_point.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gather_scatter.cpp
  ${CMAKE_CURRENT_LIST_DIR}/immediates_shifts_moves.cpp
  ${CMAKE_CURRENT_LIST_DIR}/integer_arithmetic.cpp
  ${CMAKE_CURRENT_LIST_DIR}/permutes_reductions.cpp
  ${CMAKE_CURRENT_LIST_DIR}/predicates.cpp
  ${CMAKE_CURRENT_LIST_DIR}/stub_entries.cpp)

# Each processor has its own scalar_unit.h.
set(scalar_unit_directory ${CMAKE_CURRENT_LIST_DIR}/${CMAKE_SYSTEM_PROCESSOR})

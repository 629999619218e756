# target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/....cpp)
target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/integer_arithmetic.cpp)
target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/contiguous_memory.cpp)
target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/predicates.cpp)

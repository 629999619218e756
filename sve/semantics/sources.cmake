target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/integer_helpers.cpp)
target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/predicates.cpp)
target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/counts.cpp)
target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/memory_access.cpp)

target_sources(sve_common PRIVATE ${CMAKE_CURRENT_LIST_DIR}/operands.cpp)
list(APPEND sources_by_length ${CMAKE_CURRENT_LIST_DIR}/vector_length.cpp)

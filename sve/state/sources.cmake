target_sources(sve PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/operands.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vector_length.cpp)

configure_file(${CMAKE_CURRENT_LIST_DIR}/configured_length.h.in
               ${PROJECT_BINARY_DIR}/include/sve/state/configured_length.h @ONLY)
target_include_directories(sve PUBLIC ${PROJECT_BINARY_DIR}/include)

target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/counters.cpp)

target_sources(sve PRIVATE ${CMAKE_CURRENT_LIST_DIR}/counters.cpp)

if(NOT TESSALY_CORE_ONLY)
  # What a host loads. It exports the whole core by name; the host's functions stay undefined, they
  # come from the executable that loads it. Its own definitions bind within, whatever that exports.
  add_library(sve_client SHARED)
  target_sources(sve_client PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/emulate.cpp
    ${CMAKE_CURRENT_LIST_DIR}/saved_vectors.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sve_client.cpp
    ${CMAKE_CURRENT_LIST_DIR}/thread_state.cpp
    ${CMAKE_CURRENT_LIST_DIR}/transfer.cpp)
  target_include_directories(sve_client PRIVATE ${PROJECT_SOURCE_DIR}/host/include)
  target_link_libraries(sve_client PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,sve>)
  target_link_options(sve_client PRIVATE -Wl,-Bsymbolic)
endif()

target_sources(sve PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/counters.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vector_writes.cpp)

if(NOT TESSALY_CORE_ONLY)
  # The library that a host loads. It exports the whole core by name. The host's functions stay
  # undefined here, because the executable that loads the library provides them. -Bsymbolic makes
  # the library use its own definitions, whatever that executable exports.
  add_library(sve_client SHARED)
  target_sources(sve_client PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/architectural.cpp
    ${CMAKE_CURRENT_LIST_DIR}/emulate.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fault_tolerant_loads.cpp
    ${CMAKE_CURRENT_LIST_DIR}/memory_emulation.cpp
    ${CMAKE_CURRENT_LIST_DIR}/modes.cpp
    ${CMAKE_CURRENT_LIST_DIR}/pending_writes.cpp
    ${CMAKE_CURRENT_LIST_DIR}/program_access.cpp
    ${CMAKE_CURRENT_LIST_DIR}/runs.cpp
    ${CMAKE_CURRENT_LIST_DIR}/saved_vectors.cpp
    ${CMAKE_CURRENT_LIST_DIR}/signal_record.cpp
    ${CMAKE_CURRENT_LIST_DIR}/sve_client.cpp
    ${CMAKE_CURRENT_LIST_DIR}/thread_state.cpp
    ${CMAKE_CURRENT_LIST_DIR}/transfer.cpp
    ${CMAKE_CURRENT_LIST_DIR}/v_write_warning.cpp)
  target_include_directories(sve_client PRIVATE ${PROJECT_SOURCE_DIR}/host/include)
  target_link_libraries(sve_client PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,sve>)
  target_link_options(sve_client PRIVATE -Wl,-Bsymbolic)
endif()

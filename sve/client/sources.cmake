target_sources(sve_common PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/counters.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vector_writes.cpp)

list(APPEND client_sources
  ${CMAKE_CURRENT_LIST_DIR}/architectural.cpp
  ${CMAKE_CURRENT_LIST_DIR}/emulate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/fault_tolerant_loads.cpp
  ${CMAKE_CURRENT_LIST_DIR}/memory_emulation.cpp
  ${CMAKE_CURRENT_LIST_DIR}/pending_writes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/program_access.cpp
  ${CMAKE_CURRENT_LIST_DIR}/runs.cpp
  ${CMAKE_CURRENT_LIST_DIR}/saved_vectors.cpp
  ${CMAKE_CURRENT_LIST_DIR}/signal_record.cpp
  ${CMAKE_CURRENT_LIST_DIR}/sve_client.cpp
  ${CMAKE_CURRENT_LIST_DIR}/thread_state.cpp
  ${CMAKE_CURRENT_LIST_DIR}/transfer.cpp
  ${CMAKE_CURRENT_LIST_DIR}/v_write_warning.cpp)

# A library that a host loads: sve_client(CLIENT CORE). It exports the whole core by name. The
# host's functions stay undefined here, because the executable that loads the library provides them.
# -Bsymbolic makes the library use its own definitions, whatever that executable exports.
function(sve_client client core)
  add_library(${client} SHARED ${client_sources})
  target_include_directories(${client} PRIVATE ${PROJECT_SOURCE_DIR}/host/include)
  target_link_libraries(${client} PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,${core}>)
  target_link_options(${client} PRIVATE -Wl,-Bsymbolic)
endfunction()

target_sources(host_options PRIVATE ${CMAKE_CURRENT_LIST_DIR}/options.cpp)

if(NOT TESSALY_CORE_ONLY)
  target_sources(host_engine PRIVATE ${CMAKE_CURRENT_LIST_DIR}/runtime.cpp)
  target_sources(tessaly PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/client_by_length.cpp
    ${CMAKE_CURRENT_LIST_DIR}/client_library.cpp
    ${CMAKE_CURRENT_LIST_DIR}/main.cpp)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/tessaly-sweep
                 ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/tessaly-sweep COPYONLY)
endif()

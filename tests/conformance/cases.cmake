# This library makes instruction words and machine states for the conformance test, for the
# comparison of fast paths with reference functions, and for the fuzzer.
add_library(conformance_cases STATIC)
foreach(source addresses arena machine_image row_shape states values words)
  target_sources(conformance_cases PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${source}.cpp)
endforeach()
target_include_directories(conformance_cases PUBLIC # fp_registers.h, by processor
                           ${CMAKE_CURRENT_LIST_DIR}/${CMAKE_SYSTEM_PROCESSOR})
target_link_libraries(conformance_cases PUBLIC sve)
if(TESSALY_SANITIZE)
  # GCC 12 raises a false alarm within std::regex.
  set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/row_shape.cpp PROPERTIES
    COMPILE_OPTIONS -Wno-maybe-uninitialized)
endif()
